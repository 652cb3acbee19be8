// Which pixels of a window something was drawn over.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zentrak::panorama {

// Boxes are in pixels, as the corner of the window that was set up is; a fraction of a pixel counts as the
// whole of it, and so do up to three more to its sides: four pixels of a row have one bit. What lies outside
// the window counts as if it were at its edge.
class Coverage {
public:
    // Nothing is covered then. Memory is asked for when the window grows.
    void setup(const mathbase::Vector2f& corner, const mathbase::Vector2f& size);

    void clear(); // nothing is covered

    // Boxes with an extent, and finite.
    void add(const mathbase::Box2& box);
    bool touches(const mathbase::Box2& box) const;

private:
    // Bits and rows from the first to the last.
    struct Cells {
        size_t left, right, top, bottom;
    };

    Cells           cellsOf(const mathbase::Box2& box) const;
    static uint64_t bitsOf(const Cells& cells, size_t word); // those of the cells in this word of a row

    mathbase::Vector2f mCorner;
    size_t             mWords = 1; // a row
    size_t             mRows = 1;
    size_t             mTop = 1, mBottom = 0; // the rows that may have a bit set, from the first to the last
    std::vector<uint64_t> mBits = {0};
};

} // namespace zentrak::panorama
