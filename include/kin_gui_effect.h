// The bar of one span on the time axis of the editor.
#pragma once

#include "pan_control.h"

#include <string>
#include <vector>

namespace zentrak::script {
class Effect;
}

namespace zentrak::kindler {

// Dragged, the bar moves its span and keeps the length; by one of its ends it changes that end alone. A span
// never starts before time 0 and lasts at least a second. What it writes takes effect on the next frame; the
// length of the script stays, and cuts off what reaches beyond it.
class Effector : public panorama::Control {
public:
    // Pixels per second, for every row of the editor.
    static constexpr float SCALE = 10.0f;

    enum Part : int { PART_NONE = 0, PART_BAR = 1, PART_LEFT = 2, PART_RIGHT = 3 };

    script::Effect* mEffect = nullptr; // not owned; null moves nothing
    int mHoverPart = PART_NONE;
    int mDragPart = PART_NONE; // held by the mouse

    Effector();

    panorama::Control* clone() override; // a plain new one, owned by the caller

    // The bar of a span, relative to its row. A span that is NaN, or ends before it starts, has no width.
    static mathbase::Box2 getBar(const script::Effect& effect);

    // A control that is as wide as the bar and moves with it: the curves of the span. Not owned; it lives as
    // long as the bar.
    void addFollower(Control* control) { mFollowers.push_back(control); }

    void load(xml::IteratorConst& it) override;
    bool acceptEvents(panorama::Event& event) override; // also while the mouse is on a part or holds one
    int handleEvent(panorama::Event& event) override;
    void draw() override;

private:
    std::vector<Control*> mFollowers;

    void onCaptureLost() override;
    int findPart(const mathbase::Vector2f& place) const;
    mathbase::Box2 getHandle(int part) const;
    void drag(float delta);
    void follow();
};

} // namespace zentrak::kindler
