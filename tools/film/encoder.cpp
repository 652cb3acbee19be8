#include "film/encoder.h"

#include "film/child.h"
#include "ztk_system.h"

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace zentrak::film {

namespace {

using Words = std::vector<std::string>;

// The ffmpeg options for a file with this extension; empty if it is unknown.
Words codecsFor(const std::string& ending) {
    if (ending == ".mp4" || ending == ".mov" || ending == ".mkv")
        return {"-c:v",    "libx264", "-preset", "medium", "-crf", "18",        "-pix_fmt",
                "yuv420p", "-c:a",    "aac",     "-b:a",   "256k", "-movflags", "+faststart"};
    if (ending == ".webm")
        return {"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0", "-pix_fmt", "yuv420p", "-c:a", "libopus"};
    if (ending == ".gif")
        return {"-filter_complex", "split[a][b];[a]palettegen=stats_mode=diff[p];[b][p]paletteuse"};
    return {};
}

} // namespace

Encoder::Encoder(const std::string& path, const std::string& sound, int width, int height, int rate)
    : mPath(path), mFrameSize(size_t(width) * size_t(height) * 4) {
    const std::string ending = std::filesystem::path(path).extension();
    Words codecs = codecsFor(ending);
    if (codecs.empty())
        throw Exception("zentrak-film: '%s' has to end in .mp4, .mov, .mkv, .webm or .gif", path.c_str());

    Words words = {"ffmpeg",      "-loglevel",
                   "error",       "-y",
                   "-f",          "rawvideo",
                   "-pix_fmt",    "bgra",
                   "-video_size", std::to_string(width) + "x" + std::to_string(height),
                   "-framerate",  std::to_string(rate),
                   "-i",          "-"};
    if (!sound.empty() && ending != ".gif")
        words.insert(words.end(), {"-i", sound, "-shortest"});
    words.insert(words.end(), codecs.begin(), codecs.end());
    words.push_back("file:" + path);

    int ends[2];
    if (pipe(ends) != 0)
        throw Exception("zentrak-film: no pipe to ffmpeg");
    mProgram = startChild(words, ends[0], false, ends[1]);
    ::close(ends[0]);
    mInput = ends[1];
}

Encoder::~Encoder() {
    if (mInput >= 0)
        close();
}

int Encoder::close() {
    ::close(mInput);
    mInput = -1;
    return waitForChild(mProgram);
}

void Encoder::add(const am::Image& frame) {
    const unsigned char* bytes = frame->getData();
    for (size_t left = mFrameSize; left > 0;) {
        const ssize_t written = write(mInput, bytes, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            finish();
            throw Exception("zentrak-film: ffmpeg has stopped writing '%s'", mPath.c_str());
        }
        bytes += written;
        left -= size_t(written);
    }
}

void Encoder::finish() {
    const int status = close();
    if (status == 127)
        throw Exception("zentrak-film: ffmpeg can't be started: is the package ffmpeg installed?");
    if (status != 0)
        throw Exception("zentrak-film: ffmpeg failed on '%s' (status %d)", mPath.c_str(), status);
}

} // namespace zentrak::film
