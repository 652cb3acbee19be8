// The show's own lettering: letters drawn as strokes with cut corners, at any size and weight.
#pragma once

#include <string>

namespace zentrak::art {

// A line of text set between two heights. Capitals, digits and . , - + ! ? ' : & / # * ( ) < >; small letters
// are set as capitals, and what it has no letter for is a gap.
class Lettering {
public:
    // `height` is that of a capital in pixels, `tracking` the gap between letters as a part of it.
    Lettering(const std::string& text, float height, float tracking = 0.3f);

    float width() const { return mWidth; } // pixels, from the first stroke's middle to the last one's
    float height() const { return mHeight; }

    // The distance of (x, y) to the nearest stroke's middle line, in pixels; (0, 0) is the upper left corner
    // of the first letter, y goes down. Less half the weight it is the distance to the letters' edge.
    float distance(float x, float y) const;

private:
    std::string mText;
    float mHeight, mTracking, mWidth;
};

} // namespace zentrak::art
