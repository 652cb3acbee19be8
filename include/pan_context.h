// The pop-up menu: every menu of the toolkit is one, and so is every entry of a menu.
#pragma once

#include "mb_vector2.h"
#include "pan_control.h"
#include "pan_render.h"

#include <string>
#include <utility>

namespace zentrak::panorama {

// Its rows are its children, all of them contexts; a row that has rows of its own opens them as a sub-menu.
// A menu lives in window coordinates: the corner of mArea.area alone says where its rows and sub-menus are.
// It is open from Control::setContext to Control::resetContext, drawn over all else.
//
// It owns its rows, and is owned by whoever made it. It closes when it, or the control that opened it, is
// deleted or hidden. A menu may be a row of several others, and reports to the one that has opened it; before
// those are deleted, its owner has to take it out of all but one of them.
class Context : public Control {
public:
    static constexpr float ROW_HEIGHT = 10.0f; // pixels
    static constexpr int MAX_DEPTH = 64;       // of menus in menus in a file

    float mMargin = 5.0f;      // pixels inside the edge
    float mExtraWidth = 20.0f; // pixels added to the widest caption
    float mRowGap = 5.0f;      // pixels between rows, which belong to no row
    float mFixedWidth = -1.0f; // pixels; the width when above 0, else it is computed
    int mHighlight = -1;       // the row under the mouse, or -1
    int mOpenOption = -1;      // the row whose sub-menu is open, or -1
    std::string mSelected;     // the caption of the row that is marked as current

    Context();
    ~Context() override;

    Control* clone() override; // without rows; owned by the caller

    // Each child `item` is a row with the caption `caption`, and is loaded in its turn; not deeper than
    // MAX_DEPTH.
    void load(xml::IteratorConst& it) override;
    void setParent(Control* parent) override; // the menu above, or the control that opens it
    Render* getRender() override;
    void setArea(mathbase::Box2 area) override; // rows have no boxes of their own to lay out
    int handleEvent(Event& event) override;     // always 0
    void draw() override;

    // Inserts a row, owned here from then on, at `index`; -1 for the end. It takes no focus, so the rows keep
    // their order.
    void addControl(Control* control, int index) override;

    virtual void deleteOptions(); // and forgets the marks

    // A new row at the end, owned here; give it rows of its own for a sub-menu.
    virtual Context* addOption(std::string caption, std::string name);

    // Renames the row at `index`; a negative one means the row under the mouse, or the first if there is
    // none. Nothing if there is no such row.
    virtual void setOption(std::string caption, int index);

    // Marks the row with this caption as current and returns its index; -1, with the mark unchanged, if there
    // is none.
    virtual int setHighlight(const std::string& caption);

    virtual void setFixedWidth(float width); // pixels, from the next resize on; 0 and less: as the rows need

    // Makes the area as large as the rows need, with its corner kept, and closes the sub-menu.
    virtual void resize();

    // Reports a row, named by the event's text: puts this caption and a "." before it and hands it to the
    // menu above, or, from the topmost, as an event and as an action to the control that opened it. A
    // receiver may delete this menu.
    virtual void sendContextEvent(Event& event);

    // Closes and detaches the menus that this control has opened; for a control that is being deleted.
    static void letGo(Control& owner);

private:
    static Context* sFirst; // of the menus of controls that do not delete them

    void close();
    void link();
    void unlink();
    int getDepth() const;
    Control* getRow(int index) const;
    Context* getSubMenu(int index) const;
    float getRowTop(int index) const;
    std::pair<int, int> getRowsBetween(float y1, float y2) const;
    void hover(mathbase::Vector2f position);
    void openOption(int index, Context& menu);
    void drawRow(Render& render, int index);
    const std::string& fit(const Render& render, const std::string& caption);

    Context* mPrevious = nullptr; // in the list that starts at sFirst
    Context* mNext = nullptr;
    std::string mFitted; // the caption that was cut last
};

} // namespace zentrak::panorama
