// The film itself: frames and sound in, a file out, by way of ffmpeg.
#pragma once

#include "am_image.h"

#include <string>
#include <sys/types.h>

namespace zentrak::film {

class Encoder {
public:
    // Starts ffmpeg, which writes over `path`. The ending of the name decides the kind: .mp4, .mov and .mkv
    // (H.264, AAC), .webm (VP9, Opus) or .gif (no sound). `sound` is a file that ffmpeg reads, or empty.
    // Throws Exception for another ending, or without ffmpeg.
    Encoder(const std::string& path, const std::string& sound, int width, int height, int rate);
    ~Encoder(); // ends ffmpeg without a look at how it went, if finish() was not called
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    // Adds one frame, of the size given. Throws Exception if ffmpeg has given up; it has said why on standard
    // error.
    void add(const am::Image& frame);

    // Ends the film: from here on it can be played. Throws Exception if ffmpeg failed.
    void finish();

private:
    int close();

    std::string mPath;
    pid_t mProgram;
    int mInput;
    size_t mFrameSize; // bytes
};

} // namespace zentrak::film
