#include "pan_menubar.h"

#include "pan_box.h"
#include "pan_look.h"
#include "pan_workspace.h"
#include "xml_iterator.h"

#include <algorithm>
#include <memory>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float CAPTION_INSET = 2.0f; // pixels that the box of the active caption begins before it

} // namespace

Menubar::Menubar() {
    const Vector4f white(1, 1, 1, 1), pushed(0, 0, 0, 0.8f);
    mType = "menubar";
    mBack.color = {white, Vector4f(0.6f, 0.6f, 0.6f, 1)};
    mBack.border.first = Vector4f(0.1f, 0.1f, 0.1f, 0.7f);
    mBack.highlight = {white, Vector4f(0.4f, 0.4f, 0.4f, 1)};
    mBack.pushed = {pushed, pushed};
    mText.color.first = Vector4f(0, 0, 0, 1);
    mText.highlight.first = white;
    mText.pushed.first = white;
}

Menubar::~Menubar() {
    for (ContextData* menu : mMenus)
        delete menu;
}

Control* Menubar::clone() {
    return new Menubar;
}

void Menubar::load(xml::IteratorConst& it) {
    Control::load(it);
    const std::string& caption = it->getValue("caption");
    if (!caption.empty())
        setCaption(caption);
    xml::IteratorConst item = it.createIterator("item");
    while (++item) {
        auto owned = std::make_unique<ContextData>();
        ContextData* const menu = owned.get();
        mMenus.push_back(menu);
        owned.release();
        menu->setCaption(item->getValue("caption"));
        menu->load(item);
    }
}

void Menubar::buildChildArea() {
    Control::buildChildArea();
    mChildArea.area.y1 += mHeight;
}

bool Menubar::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mOpen;
}

int Menubar::handleEvent(Event& event) {
    if (mOpen && hasLostMenu()) {
        mOpen = mJustOpened = false;
        leave();
    }
    if (event.type == "mousemove")
        hover(event.mousePos);
    else if (event.type == "reset" && !mOpen)
        leave();
    if (mActive >= 0 && size_t(mActive) < mMenus.size() && event.button == 0) {
        if (event.type == "mouseup" && mOpen) {
            if (mJustOpened && mOverItem)
                mJustOpened = false;
            else
                close();
        } else if (event.type == "mousedown") {
            if (mOpen)
                return 0;
            setMenuContext(mMenus[size_t(mActive)]);
            mOpen = mJustOpened = true;
        }
    }
    if (!mOpen)
        Control::handleEvent(event);
    return 0;
}

void Menubar::close() {
    resetContext();
    mActive = -1;
    mOpen = false;
}

// Another menu was opened instead, or it was closed from elsewhere.
bool Menubar::hasLostMenu() {
    const Workspace* root = dynamic_cast<Workspace*>(getRoot());
    return root && std::find(mMenus.begin(), mMenus.end(), root->mContext) == mMenus.end();
}

// The mouse has gone elsewhere.
void Menubar::leave() {
    mActive = -1;
    mOverItem = false;
    for (ContextData* menu : mMenus)
        menu->highlight = false;
}

void Menubar::hover(Vector2f position) {
    if (!mOpen)
        mActive = -1;
    mOverItem = false;
    float x = mLeft;
    for (size_t i = 0; i < mMenus.size(); ++i) {
        ContextData& menu = *mMenus[i];
        const float end = x + look::getTextLength(*this, menu.mCaptionText);
        menu.highlight = isInside(Box2(x, mArea.world.y1, end, mArea.world.y1 + mHeight), position);
        if (menu.highlight) {
            mOverItem = true;
            mActive = int(i);
            if (mOpen)
                setMenuContext(&menu);
        }
        x = end + mGap;
    }
}

// The left edge of the active menu's caption.
float Menubar::getActiveLeft() {
    float x = mLeft;
    for (int i = 0; i < mActive && size_t(i) < mMenus.size(); ++i)
        x += look::getTextLength(*this, mMenus[size_t(i)]->mCaptionText) + mGap;
    return x;
}

void Menubar::setMenuContext(Context* context) {
    if (!context)
        return;
    context->setPosition(Vector2f(getActiveLeft(), mArea.world.y1 + mHeight));
    Control::setContext(context);
}

void Menubar::draw() {
    if (Render* render = getRender())
        drawBar(*render);
    Control::draw();
}

// The bar is meant for the top of the window: its lower edge is at mHeight, wherever its top is.
void Menubar::drawBar(Render& render) {
    const Box2& world = mArea.world;
    look::fill(render, Box2(world.x1, world.y1, world.x2, mHeight), mBack.color);
    render.setColor(mBack.border.first, mBack.border.second);
    render.drawLine(Vector2f(world.x1, mHeight - 0.5f), Vector2f(world.x2, mHeight - 0.5f));

    const float middle = world.y1 + 0.5f * mHeight;
    float x = mLeft;
    for (size_t i = 0; i < mMenus.size() && x < mArea.clip.x2; ++i) {
        const std::string& caption = mMenus[i]->mCaptionText;
        const float end = x + render.getTextLength(caption);
        const bool active = int(i) == mActive;
        if (active)
            look::fill(render, Box2(x - CAPTION_INSET, world.y1, end, world.y1 + mHeight),
                       mOpen ? mBack.pushed : mBack.highlight);
        const ColorPair& color = !active ? mText.color : mOpen ? mText.pushed : mText.highlight;
        look::drawText(render, caption, color.first, Vector2f(x, middle));
        x = end + mGap;
    }
}

} // namespace zentrak::panorama
