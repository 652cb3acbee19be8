#include "film/sheet.h"

#include "art/lettering.h"

#include <algorithm>
#include <cstdio>

namespace zentrak::film {

namespace {

constexpr int CELL_WIDTH = 320, GAP = 8, CAPTION = 24; // pixels
constexpr float LETTER_HEIGHT = 10, STROKE = 1.4f;

int cellHeight(int width, int height) {
    return std::max(1, int(int64_t(CELL_WIDTH) * height / width));
}

int rowsFor(long frames) {
    return int(std::min<long>(Sheet::ROWS, (frames + Sheet::COLUMNS - 1) / Sheet::COLUMNS));
}

// The mean colour of the pixels of `frame` under pixel (x, y) of a thumbnail of size `cell`.
art::Colour meanColour(const am::Image& frame, int x, int y, const int* cell) {
    const int width = frame->getWidth(), height = frame->getHeight();
    const int left = int(int64_t(x) * width / cell[0]), top = int(int64_t(y) * height / cell[1]);
    const int right = std::max(left + 1, int(int64_t(x + 1) * width / cell[0]));
    const int bottom = std::max(top + 1, int(int64_t(y + 1) * height / cell[1]));
    unsigned sum[3] = {};
    for (int row = top; row < bottom; ++row) {
        const unsigned char* pixel = frame->getData() + 4 * (int64_t(row) * width + left);
        for (int column = left; column < right; ++column, pixel += 4)
            for (int channel = 0; channel < 3; ++channel)
                sum[channel] += pixel[channel];
    }
    const float scale = 1 / (255.0f * float(right - left) * float(bottom - top));
    return {float(sum[2]) * scale, float(sum[1]) * scale, float(sum[0]) * scale, 1};
}

} // namespace

Sheet::Sheet(long first, long last, int width, int height)
    : mCell{CELL_WIDTH, cellHeight(width, height)},
      mCanvas(COLUMNS * (CELL_WIDTH + GAP) + GAP,
              rowsFor(last - first) * (cellHeight(width, height) + CAPTION) + GAP) {
    const long count = std::min<long>(COLUMNS * ROWS, last - first);
    for (long i = 0; i < count; ++i)
        mFrames.push_back(first + (last - first) * (2 * i + 1) / (2 * count));
    mCanvas.paint([](float, float) { return art::Colour{0.08f, 0.08f, 0.09f, 1}; });
}

bool Sheet::wants(long frame) const {
    return std::binary_search(mFrames.begin(), mFrames.end(), frame);
}

void Sheet::add(const am::Image& frame, double time) {
    const int left = GAP + int(mAdded % COLUMNS) * (mCell[0] + GAP);
    const int top = GAP + int(mAdded / COLUMNS) * (mCell[1] + CAPTION);
    ++mAdded;
    for (int y = 0; y < mCell[1]; ++y)
        for (int x = 0; x < mCell[0]; ++x)
            mCanvas.at(left + x, top + y) = meanColour(frame, x, y, mCell);

    char text[32];
    snprintf(text, sizeof text, "%d:%04.1f", int(time / 60), time - 60 * int(time / 60));
    const art::Lettering letters(text, LETTER_HEIGHT);
    for (int y = 0; y < CAPTION; ++y)
        for (int x = 0; x < mCell[0]; ++x) {
            const float distance = letters.distance(float(x) - 2, float(y) - 6) - STROKE / 2;
            mCanvas.blend(left + x, top + mCell[1] + y, {0.8f, 0.8f, 0.82f, art::clamp01(0.5f - distance)});
        }
}

bool Sheet::write(const std::string& path) const {
    return mCanvas.write(path);
}

} // namespace zentrak::film
