// A bar of menus along the top of the window.
#pragma once

#include "pan_context.h"
#include "pan_control.h"

#include <vector>

namespace zentrak::panorama {

// A press on a caption opens its menu; sliding along the bar changes to the next one. Its children live below
// the bar.
class Menubar : public Control {
public:
    // A menu; the bar shows its caption.
    class ContextData : public Context {
    public:
        bool highlight = false; // the mouse is on its caption
    };

    bool mOpen = false;               // a menu is showing
    bool mJustOpened = false;         // the press that opened it has not been released
    float mHeight = 20.0f;            // pixels of the bar
    float mLeft = 5.0f;               // pixels before the first caption
    float mGap = 15.0f;               // pixels between captions
    int mActive = -1;                 // index of the active menu, or -1
    bool mOverItem = false;           // the mouse is on a caption
    std::vector<ContextData*> mMenus; // owned

    Menubar();
    ~Menubar() override;

    Control* clone() override; // without menus; owned by the caller

    void load(xml::IteratorConst& it) override; // each child `item` is a menu, and is loaded in its turn
    void buildChildArea() override;
    bool acceptEvents(Event& event) override; // also while a menu is open, wherever the mouse is
    int handleEvent(Event& event) override;   // always 0
    void draw() override;

    void setMenuContext(Context* context); // opens it below the caption of the active menu

private:
    void hover(mathbase::Vector2f position);
    void leave();
    void close();
    bool hasLostMenu();
    float getActiveLeft();
    void drawBar(Render& render);
};

} // namespace zentrak::panorama
