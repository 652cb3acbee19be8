// A view on children that are larger than it, with a bar for each direction.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// The wheel scrolls down, and with Ctrl to the right. In a window that is not maximized the corner between
// the two bars drags the window's size. Each change of position is sent as ACTION_SCROLL.
class Scrollbars : public Control {
public:
    bool mVertical = true;      // the vertical bar exists
    bool mHorisontal = true;    // the horizontal bar exists
    float mPosX = 0;            // pixels of the horizontal thumb from the start of its track
    float mPosY = 0;            // pixels of the vertical thumb from the start of its track
    float mBarSize = 12.0f;     // pixels across a bar
    float mThumbSize = 30.0f;   // pixels along a thumb
    bool mDragVertical = false; // what the left button holds
    bool mDragHorisontal = false;
    bool mDragResize = false;
    mathbase::Box2 mTrackVertical; // boxes in window coordinates
    mathbase::Box2 mTrackHorisontal;
    mathbase::Box2 mCorner;
    mathbase::Box2 mThumbVertical;
    mathbase::Box2 mThumbHorisontal;

    Scrollbars(); // maximized

    Control* clone() override; // without children; owned by the caller

    // `direction` names the bar that stays: "horisontal" or "vertical"; anything else keeps both.
    void load(xml::IteratorConst& it) override;
    void setArea(mathbase::Box2 box) override;
    void buildChildArea() override;
    bool acceptEvents(Event& event) override; // also while something is held
    int handleEvent(Event& event) override;
    void draw() override;

    virtual void buildScrollbars(); // keeps the thumbs on their tracks, and the children where the thumbs say

private:
    float getTravelX() const; // pixels that a thumb can go
    float getTravelY() const;
    bool isHeld() const { return mDragVertical || mDragHorisontal || mDragResize; }
    void press(const Event& event);
    void release();
    int turnWheel(const Event& event);
    void drag(mathbase::Vector2f delta);
    void resizeWindow(mathbase::Vector2f delta);
    void drawBar(Render& render, const mathbase::Box2& track, const mathbase::Box2& thumb, bool held);
    void onCaptureLost() override;
};

} // namespace zentrak::panorama
