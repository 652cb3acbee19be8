// Encodes a film with ffmpeg.
#pragma once

#include "am_image.h"

#include <string>
#include <sys/types.h>

namespace zentrak::film {

class Encoder {
public:
    // Starts ffmpeg, which overwrites `path`. The extension selects the format: .mp4, .mov and .mkv (H.264,
    // AAC), .webm (VP9, Opus) or .gif (no sound). `sound` is a file that ffmpeg reads, or empty. Throws
    // Exception for another extension, or without ffmpeg.
    Encoder(const std::string& path, const std::string& sound, int width, int height, int rate);
    ~Encoder(); // ends ffmpeg and ignores errors, unless finish() was called
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    // Adds one frame of the given size. Throws Exception if ffmpeg has failed; it has reported why on
    // standard error.
    void add(const am::Image& frame);

    // Completes the file. Throws Exception if ffmpeg failed.
    void finish();

private:
    int close();

    std::string mPath;
    pid_t mProgram;
    int mInput;
    size_t mFrameSize; // bytes
};

} // namespace zentrak::film
