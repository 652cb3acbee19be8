#include "pan_coverage.h"

#include <algorithm>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

constexpr float  CELL = 4; // pixels of a row that have one bit
constexpr size_t WORD = 64;
constexpr float  MOST = 16384; // pixels; no window is as large

// Whole cells in a length; at least one.
size_t cellsIn(float pixels, float cell) {
    return pixels >= cell ? size_t(std::ceil(std::min(pixels, MOST) / cell)) : 1;
}

// The cell that a place is in, of `count`.
size_t cellAt(float place, size_t count) {
    return place > 0 ? std::min(size_t(std::min(place, MOST)), count - 1) : 0;
}

} // namespace

void Coverage::setup(const Vector2f& corner, const Vector2f& size) {
    mCorner = corner;
    mWords = (cellsIn(size.x, CELL) + WORD - 1) / WORD;
    mRows = cellsIn(size.y, 1);
    mBits.assign(mWords * mRows, 0);
    mTop = 1, mBottom = 0;
}

void Coverage::clear() {
    if (mTop <= mBottom)
        std::fill(mBits.begin() + long(mTop * mWords), mBits.begin() + long((mBottom + 1) * mWords), 0);
    mTop = 1, mBottom = 0;
}

Coverage::Cells Coverage::cellsOf(const Box2& box) const {
    const size_t columns = mWords * WORD;
    return {cellAt((box.x1 - mCorner.x) / CELL, columns),
            cellAt(std::ceil((box.x2 - mCorner.x) / CELL) - 1, columns), cellAt(box.y1 - mCorner.y, mRows),
            cellAt(std::ceil(box.y2 - mCorner.y) - 1, mRows)};
}

uint64_t Coverage::bitsOf(const Cells& cells, size_t word) {
    uint64_t bits = ~uint64_t(0);
    if (word == cells.left / WORD)
        bits &= ~uint64_t(0) << cells.left % WORD;
    if (word == cells.right / WORD)
        bits &= ~uint64_t(0) >> (WORD - 1 - cells.right % WORD);
    return bits;
}

void Coverage::add(const Box2& box) {
    const Cells cells = cellsOf(box);
    mTop = mTop > mBottom ? cells.top : std::min(mTop, cells.top);
    mBottom = std::max(mBottom, cells.bottom);
    for (size_t word = cells.left / WORD; word <= cells.right / WORD; ++word) {
        const uint64_t bits = bitsOf(cells, word);
        for (size_t row = cells.top; row <= cells.bottom; ++row)
            mBits[row * mWords + word] |= bits;
    }
}

bool Coverage::touches(const Box2& box) const {
    Cells cells = cellsOf(box);
    cells.top = std::max(cells.top, mTop);
    cells.bottom = std::min(cells.bottom, mBottom);
    for (size_t word = cells.left / WORD; word <= cells.right / WORD; ++word) {
        const uint64_t bits = bitsOf(cells, word);
        for (size_t row = cells.top; row <= cells.bottom; ++row)
            if (mBits[row * mWords + word] & bits)
                return true;
    }
    return false;
}

} // namespace zentrak::panorama
