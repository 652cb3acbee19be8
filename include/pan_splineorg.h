// A spline widget that always has a curve of its own: for layouts, where there is no record to edit.
#pragma once

#include "pan_spline.h"

namespace zentrak::panorama {

// A key by its position: x from 0 at the left edge to 1 at the right one, y from -1 at the upper edge to 1 at
// the lower one. Both may lie beyond.
struct SplineNodeOrg {
    float x = 0;
    float y = 0;
};

class SplineOrg : public Spline {
public:
    SplineOrg();

    Control* clone() override; // a plain new one, owned by the caller

    // Inserts after all nodes of the same or a lesser x, and returns the index.
    int addNode(const SplineNodeOrg& node);
};

} // namespace zentrak::panorama
