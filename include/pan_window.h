// A frame with a title bar by which it is dragged; a double click on the bar maximizes it, and back.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// In a Workspace it may leave the screen; anywhere else it stops at the upper left corner of its parent, and
// at no other edge.
class Window : public Control {
public:
    AreaSet mTitleArea;            // the title bar
    bool mDragging = false;        // the window is being moved
    mathbase::Vector2f mDragStart; // where the mouse was at the press
    mathbase::Box2 mDragArea;      // mArea.area at the press

    Window();

    Control* clone() override; // without children; owned by the caller

    void load(xml::IteratorConst& it) override; // `caption`: the title
    void setArea(mathbase::Box2 box) override;
    void buildChildArea() override;
    bool acceptEvents(Event& event) override; // also while it is dragged
    int handleEvent(Event& event) override;
    void draw() override;

private:
    void pressTitle(const Event& event);
    void drag(mathbase::Vector2f position);
    void onCaptureLost() override;
};

} // namespace zentrak::panorama
