#include "pan_tabview.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_look.h"
#include "pan_tabcolors.h"

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

constexpr float STRIP = 18.0f; // pixels, the height of the tabs

} // namespace

TabView::TabView() {
    mType = "tabview";
    mRaiseOnFocus = false; // the tabs keep their order
    setTabColors(*this);
}

Control* TabView::clone() {
    return new TabView;
}

void TabView::load(xml::IteratorConst& it) {
    Control::load(it);
    if (!mControls.empty())
        mControls.front()->setVisible(true);
}

void TabView::setArea(Box2 box) {
    mTabArea.area = Box2(box.x1, box.y1, box.x2, box.y1 + STRIP);
    Control::setArea(box);
    buildArea(mTabArea, false);
}

void TabView::buildChildArea() {
    mChildArea.area = Box2(0, mTabArea.area.getHeight(), mArea.area.getWidth(), mArea.area.getHeight());
}

float TabView::getTabWidth(const Control& page) {
    return look::getTextLength(*this, page.mCaptionText) + 2.0f * float(mTabPadding);
}

int TabView::handleEvent(Event& event) {
    Alive alive(*this);
    const int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (event.type == "mousemove")
        mHoverTab = getTabAt(event.mousePos);
    else if (event.type == "reset")
        mHoverTab = -1;
    else if (event.type == "mousedown" && mHoverTab >= 0 && mHoverTab < int(mControls.size()))
        showPage(mHoverTab);
    return result;
}

// The tab under a point, or -1.
int TabView::getTabAt(Vector2f position) {
    const Box2& strip = mTabArea.world;
    int found = -1;
    float x = strip.x1;
    for (size_t i = 0; i < mControls.size(); ++i) {
        const float end = x + getTabWidth(*mControls[i]);
        if (isInside(Box2(x, strip.y1, end, strip.y2), position))
            found = int(i);
        x = end;
    }
    return found;
}

void TabView::showPage(int index) {
    for (Control* page : mControls)
        page->setVisible(false);
    mControls[size_t(index)]->setVisible(true);
}

void TabView::draw() {
    if (Render* render = getRender())
        drawTabs(*render);
    Control::draw();
}

// What lies beyond the right edge is not drawn.
void TabView::drawTabs(Render& render) {
    const Box2& strip = mTabArea.world;
    float x = strip.x1;
    for (size_t i = 0; i < mControls.size() && x < mTabArea.clip.x2; ++i) {
        const Control& page = *mControls[i];
        const float end = x + getTabWidth(page);
        const Box2 tab(x, strip.y1, end, strip.y2);
        look::fill(render, tab, page.mVisible ? mBack.pushed : mBack.color);
        const bool marked = page.mVisible || int(i) == mHoverTab;
        look::drawCentred(render, page.mCaptionText, (marked ? mText.highlight : mText.color).first, tab);
        x = end;
    }
}

} // namespace zentrak::panorama
