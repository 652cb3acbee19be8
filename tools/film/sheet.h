// A contact sheet: thumbnails of a film in rows, each with its time.
#pragma once

#include "am_image.h"
#include "art/canvas.h"

#include <string>
#include <vector>

namespace zentrak::film {

class Sheet {
public:
    static constexpr int COLUMNS = 6, ROWS = 4;

    // Covers the frames `first` to `last`, of the given size in pixels, with COLUMNS * ROWS thumbnails, each
    // from the middle of its part of the film, or with all frames if there are fewer.
    Sheet(long first, long last, int width, int height);

    bool wants(long frame) const;

    // Adds a frame that the sheet wants, in order. `time` is in seconds.
    void add(const am::Image& frame, double time);

    // Writes a PNG. Returns false, after a line on standard error, if that failed.
    bool write(const std::string& path) const;

private:
    std::vector<long> mFrames;
    int mCell[2]; // width and height of a thumbnail
    size_t mAdded = 0;
    art::Canvas mCanvas;
};

} // namespace zentrak::film
