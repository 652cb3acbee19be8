// The editor of one keyed curve: draws it, and adds, moves and removes its keys.
#pragma once

#include "mb_splinebase.h"
#include "mb_vector2.h"
#include "pan_context.h"
#include "pan_control.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

// Shows the times 0 to 1 from its left edge to its right one, and the values -1 to 1 from its upper edge to
// its lower one. Keys beyond that exist, but out of sight.
//
// The left button drags a key, the right one opens a menu: for the key under the mouse, or for the curve.
// With the focus, Left and Right select the key before and after, Del removes the selected one, and Insert
// adds one after it. Each step of a drag sends ACTION_SPLINE.
class Spline : public Control {
public:
    using SplineBase = mathbase::SplineBase<float, mathbase::SplineBaseKey<float>>;
    using Key = mathbase::SplineBaseKey<float>;

    bool mOwnsSpline = false;                // the curve is deleted with the widget
    SplineBase* mSpline = nullptr;           // null shows nothing
    std::vector<mathbase::Vector2f> mPoints; // of the curve: time and value
    bool mDirty = true;                      // mPoints is out of date
    float mSize = 3.5f;                      // radius of a key; it is hit a pixel beyond
    float mMouseX = 0;                       // pixels; of the last move
    int mHoverKey = 0;                       // under the mouse, or -1
    int mSelected = -1;                      // or -1
    int mDragKey = -1;                       // held by the left button, or -1
    int mDeleteIndex = -1;                   // what the menu's "delete key" removes
    mathbase::Vector2f mContextPos{0, 0};    // where the menu was opened
    Context mContextEmpty;                   // the menu away from the keys
    Context mContext;                        // the menu of a key
    Context mContextType;                    // the sub-menu that both share

    Spline();
    ~Spline() override;

    Control* clone() override; // a plain new one, owned by the caller

    // The curve to edit; null for none. It is deleted with the widget, or by the next call, if `own` is set:
    // then it must be a plain SplineBase made by new.
    void setSpline(SplineBase* spline, bool own);
    void setSplineType(std::string type); // "square", "linear" or "smooth"; any other is ignored

    // Its own curve: `type`, and a key for each `item`, at the time `x` with the value `y`.
    void load(xml::IteratorConst& it) override;
    // Also while a key is held, and on the part of a key that lies outside the widget.
    bool acceptEvents(Event& event) override;
    // The menus report by an event "context". Aborts on the assertion
    // "mDeleteIndex>=0 && mDeleteIndex<(int)m_spline->getNumKeys()" when there is no key to delete.
    int handleEvent(Event& event) override;
    void draw() override;

private:
    std::string mMode; // as drawn

    void onCaptureLost() override;
    bool isFocused() const;
    bool hasKey(int index) const;
    int findKey(const mathbase::Vector2f& position) const;
    mathbase::Vector2f toWindow(float time, float value) const;
    mathbase::Vector2f toWindow(int index) const; // of a key that exists
    bool fromWindow(const mathbase::Vector2f& position, Key& key) const;
    void onMouseDown(const Event& event);
    bool onKeyDown(const Event& event);
    void onContext(const std::string& text);
    void openMenu(Context& menu, const mathbase::Vector2f& position);
    void dragKey(const mathbase::Vector2f& position);
    void addKey(const Key& key);
    void removeKey(int index);
    void insertKey();
    void buildPoints(int steps);
    void drawCurve(Render& render);
    void drawKeys(Render& render);
};

} // namespace zentrak::panorama
