// The few shapes that controls are made of.
#pragma once

#include "dis_display.h"
#include "dis_font.h"
#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"
#include "pan_shapes.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::panorama {

// For setColor: no second colour.
inline constexpr mathbase::Vector4f NO_COLOR(0.0f, 0.0f, 0.0f, -1.0f);

// Coordinates are pixels of the window from its upper left corner, y downward. Shapes and text are cut by the
// clip area here, collected, and drawn in a few calls (Shapes). The picture is as if each were drawn at once,
// and is complete after flush(): call it before drawing with OpenGL directly.
//
// All of it needs the window to be open.
class Render {
public:
    display::DisplayGL* mDisplay = nullptr; // not owned; null until setup
    mathbase::Vector2f mSize;               // of the window, in this frame
    mathbase::Vector2f mDrawOffset;         // of the view, in this frame
    mathbase::Vector4f mColorFirst;
    mathbase::Vector4f mColorSecond;
    display::Font* mFont = nullptr; // owned; null until setup

    Render();
    Render(const Render&) = delete;
    Render& operator=(const Render&) = delete;

    virtual ~Render();

    // Loads the font. Throws what loading a font throws.
    virtual void setup(display::DisplayGL* display);

    // Begins a frame: sets the state and the projection, with `margin` pixels around the window in view.
    // Asserts "mDisplay".
    virtual void setupDraw(mathbase::Vector2f size, mathbase::Vector2f offset, float margin);

    // For all shapes until the next call. A second colour with an alpha below 0 is the first one.
    virtual void setColor(const mathbase::Vector4f& first, const mathbase::Vector4f& second);

    // Nothing is drawn outside, in whole pixels of the window: fractions are cut off. A y2 of exactly -1: no
    // clipping.
    virtual void setClipArea(mathbase::Box2 area);

    // Direction 1: a gradient from left to right; any other: from top to bottom.
    virtual void drawBox(const mathbase::Box2& box, int direction);

    // One pixel wide, inside the box: the upper corners in the first colour, the lower in the second.
    virtual void drawBorder(const mathbase::Box2& box);

    // In the first colour. At least three segments; -1: as many as the size needs. `start` turns it, in
    // revolutions.
    virtual void drawCircle(const mathbase::Box2& box, int segments, float start);

    virtual void drawLine(const mathbase::Vector2f& a,
                          const mathbase::Vector2f& b); // one pixel wide, first colour

    // At `position`, centred on its y, in the first colour: to the right of its x, to the left or to both
    // sides, by the font's mode. Set on whole pixels. Nothing without a font.
    virtual void drawText(const std::string& text, mathbase::Vector2f position);

    // The whole texture over the box, tinted by the first colour.
    virtual void drawTexture(display::Texture& texture, const mathbase::Box2& box);

    virtual float getTextLength(const std::string& text); // pixels; bytes are glyphs; 0 without a font
    virtual float getTime();                              // seconds, the display's

    float getAdvance(unsigned char c) const; // pixels, of one character
    float getFontHeight() const;             // pixels, of a line
    void setFontMode(int mode);              // a display::Font alignment: 0 left, 1 right, 2 centred

    void flush(); // draws what is collected

private:
    void drawPolygon(const mathbase::Vector2f* points, int count);
    void drawQuad(const mathbase::Box2& box, const mathbase::Vector4f& upperLeft,
                  const mathbase::Vector4f& upperRight, const mathbase::Vector4f& lowerRight,
                  const mathbase::Vector4f& lowerLeft);
    int clipPolygon(const mathbase::Vector2f* points, int count);

    float mMargin = 0;         // pixels, of this frame
    mathbase::Vector2f mPixel; // a pixel of the window in units of the view: 1 without a margin
    mathbase::Box2 mView;      // all that the window shows
    mathbase::Box2 mClip;      // in units of the view; its edges are those of pixels
    bool mWhole = true;        // whole numbers are edges of pixels
    Shapes mShapes;
    std::vector<mathbase::Vector2f> mPolygon; // while it is cut
    std::vector<mathbase::Vector2f> mCut;
};

} // namespace zentrak::panorama
