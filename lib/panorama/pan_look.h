// The look that the input controls share: a dark and quiet palette, and shapes on whole pixels.
#pragma once

#include "mb_box2.h"
#include "mb_vector4.h"
#include "pan_box.h"
#include "pan_control.h"
#include "pan_number.h"
#include "pan_render.h"

#include <algorithm>

namespace zentrak::panorama::look {

// The palette. Its blue is that of the windows' title bars.
inline constexpr mathbase::Vector4f accent(0.323f, 0.323f, 0.54f, 1.0f);
inline constexpr mathbase::Vector4f bright(0.60f, 0.60f, 0.95f, 1.0f); // the accent as a line or a mark
inline constexpr mathbase::Vector4f edge(0.36f, 0.36f, 0.42f, 1.0f);
inline constexpr mathbase::Vector4f field(0.06f, 0.06f, 0.08f, 0.92f); // what is typed or plotted into
inline constexpr mathbase::Vector4f ink(0.85f, 0.85f, 0.89f, 1.0f);
inline constexpr mathbase::Vector4f white(1.0f, 1.0f, 1.0f, 1.0f);
inline constexpr mathbase::Vector4f faint(0.42f, 0.42f, 0.46f, 1.0f); // text and marks of inactive controls

inline void setPair(ColorPair& pair, const mathbase::Vector4f& first, const mathbase::Vector4f& second) {
    pair.first = first;
    pair.second = second;
}
inline void setPair(ColorPair& pair, const mathbase::Vector4f& both) {
    setPair(pair, both, both);
}

// The state that picks a pair out of a palette, the strongest first.
inline const ColorPair& pick(const ColorSet& set, bool inactive, bool pushed, bool hover) {
    return inactive ? set.inactive : pushed ? set.pushed : hover ? set.highlight : set.color;
}

// The colours of text in each state; of what can be pushed, as a raised box; and of a sunk one.
void setTextLook(ColorSet& set);
void setRaisedLook(ColorSet& set);
void setSunkLook(ColorSet& set);

inline mathbase::Box2 toPixels(const mathbase::Box2& box) {
    return mathbase::Box2(toPixel(box.x1), toPixel(box.y1), toPixel(box.x2), toPixel(box.y2));
}
inline mathbase::Box2 shrunk(const mathbase::Box2& box, float by) {
    return mathbase::Box2(box.x1 + by, box.y1 + by, box.x2 - by, box.y2 - by);
}

// A box with a gradient downwards, and an outline; nothing if the box is inverted or fully transparent.
void fill(Render& render, const mathbase::Box2& box, const ColorPair& pair);
void outline(Render& render, const mathbase::Box2& box, const ColorPair& pair);

// Clips to the intersection of both boxes, which may be empty.
void clipTo(Render& render, const mathbase::Box2& a, const mathbase::Box2& b);

inline const mathbase::Box2 noClip(0, 0, -1, -1); // for Render::setClipArea

// A caption in one colour: from `position` to the right, and vertically centred in a box.
void drawText(Render& render, const std::string& caption, const mathbase::Vector4f& color,
              const mathbase::Vector2f& position);
void drawCentred(Render& render, const std::string& caption, const mathbase::Vector4f& color,
                 const mathbase::Box2& box);

// In pixels; 0 where there is no window to draw in.
float getTextLength(Control& control, const std::string& caption);

// A round spot with a soft edge, drawn pixel by pixel: for small ones.
void drawDisc(Render& render, const mathbase::Vector2f& centre, float radius,
              const mathbase::Vector4f& color);

// A triangle of seven pixels by four around `centre`, in the current colour.
enum class Arrow { DOWN, RIGHT };
void drawArrow(Render& render, const mathbase::Vector2f& centre, Arrow arrow);

} // namespace zentrak::panorama::look
