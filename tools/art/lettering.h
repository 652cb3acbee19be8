// The show's lettering: letters drawn as strokes with cut corners, at any size and weight.
#pragma once

#include <string>

namespace zentrak::art {

// A line of text. Capitals, digits and . , - + ! ? ' : & / # * ( ) < >; lower case is set as capitals, and
// any other character is a gap.
class Lettering {
public:
    // `height` is that of a capital in pixels, `tracking` the gap between letters as a fraction of it.
    Lettering(const std::string& text, float height, float tracking = 0.3f);

    float width() const { return mWidth; } // pixels, between the centre lines of the outer strokes
    float height() const { return mHeight; }

    // The distance from (x, y) to the nearest centre line, in pixels; (0, 0) is the upper left corner of the
    // first letter, y goes down. Subtract half the weight for the distance to the edge of the letters.
    float distance(float x, float y) const;

private:
    std::string mText;
    float mHeight, mTracking, mWidth;
};

} // namespace zentrak::art
