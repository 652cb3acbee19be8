// One line of text in a control: as much of it as fits, with dots for the rest.
#pragma once

#include "mb_box2.h"

#include <string>

namespace zentrak::panorama {

class Render;

// However long the text is, only what fits is measured and drawn, and nothing is done twice while text and
// width stay: it allocates nothing once warm.
class TextLine {
public:
    // The position of a line in its box. A line that is too long begins at the start.
    enum Align : int { START = 0, MIDDLE = 1, END = 2 };

    // Bytes of Latin-1, each one glyph of the font, control bytes included.
    void set(const std::string& text);
    const std::string& get() const { return mText; }

    // What is drawn into a box of this many pixels, and how wide that is. A width of NaN is 0.
    const std::string& fit(Render& render, float width);
    float getLength() const { return mLength; } // as of the last fit

    // Draws into the box, in the first colour of `render`, on whole pixels. `vertical` MIDDLE centres the
    // capitals. Leaves the font aligned to the left.
    void draw(Render& render, const mathbase::Box2& box, Align horizontal, Align vertical);

private:
    std::string mText;
    std::string mShown; // what fits in mWidth
    float mWidth = -1.0f;
    float mLength = 0.0f; // of mShown, pixels
};

} // namespace zentrak::panorama
