// Pages on top of each other, and a strip of tabs above them that chooses which one shows.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// Each child is a page, and its caption is the text of its tab.
class TabView : public Control {
public:
    AreaSet mTabArea;     // the strip of tabs
    int mTabPadding = 10; // pixels on each side of a tab's caption
    int mHoverTab = -1;   // index of the tab under the mouse, or -1

    TabView();

    Control* clone() override; // without pages; owned by the caller

    void load(xml::IteratorConst& it) override; // shows the first page
    void setArea(mathbase::Box2 box) override;
    void buildChildArea() override;
    int handleEvent(Event& event) override;
    void draw() override;

private:
    float getTabWidth(const Control& page);
    int getTabAt(mathbase::Vector2f position);
    void showPage(int index);
    void drawTabs(Render& render);
};

} // namespace zentrak::panorama
