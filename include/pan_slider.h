// A handle on a track: a value between two bounds.
#pragma once

#include "pan_inputcontrol.h"
#include "pan_interval.h"

namespace zentrak::panorama {

// Dragged, paged by a press beside the handle (0.2 of the track), or turned by the wheel (0.1 a step): each
// sends action 8. The position runs from 0, at the left or the top, to 1, and the user never moves it out of
// that range.
class Slider : public InputControl {
public:
    int mDirection = 1; // 0 horizontal, 1 vertical
    bool mDragging = false;
    float mSize = 3.0f;        // half the handle, pixels
    float mHoverAmount = 0.0f; // 1 with the mouse on the handle, else 0
    float mMin = 0.0f;         // the value at position 0; may be above mMax
    float mMax = 1.0f;         // and at position 1
    Interval mPosition;        // 0 to 1

    Slider();

    Control* clone() override; // a plain new one, owned by the caller

    float getValue();                             // what it glides to
    void setValue(float value, bool immediately); // sends nothing; may lie outside the bounds
    void turn(float steps);                       // of the wheel, wherever the mouse is; sends action 8

    // "size", "min", "max", "percent" (the position), "direction" ("horisontal"). A number that is not finite
    // is ignored, as is a size below 0.
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for what it takes
    void draw() override;

private:
    float getStart() const;        // of the track along the axis, window coordinates
    float getLength() const;       // of the track, pixels
    float getHalf() const;         // of the handle: mSize, but no more than the track has room for
    float getHandle();             // where the handle is drawn now
    mathbase::Box2 getHandleBox(); // where it is hit
    float along(const mathbase::Vector2f& place) const;
    void moveTo(float position, bool immediately);
    void onCaptureLost() override;
};

} // namespace zentrak::panorama
