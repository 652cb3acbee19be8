// A curve with nodes of its own, edited like a Spline: for layouts that want a curve and no record behind it.
#pragma once

#include "mb_vector2.h"
#include "pan_context.h"
#include "pan_control.h"
#include "pan_drag.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

// A point that the curve passes through: x from 0 at the left edge to 1 at the right one, y from -1 at the
// upper edge to 1 at the lower one. Both may lie beyond.
struct SplineNodeOrg {
    float x = 0;
    float y = 0;
};

// Mouse, keys, menus and the action are those of Spline.
class SplineOrg : public Control {
public:
    std::vector<SplineNodeOrg> mNodes;    // ascending by x
    std::string mMode = "smooth";         // "square", "linear" or "smooth"
    float mSize = 3.5f;                   // pixels from a node's middle that hit it, less 1
    int mHoverNode = -1;                  // under the mouse, or -1
    int mSelected = -1;                   // or -1
    int mDragNode = -1;                   // held by the left button, or -1
    int mDeleteIndex = -1;                // what the menu's "delete key" removes
    mathbase::Vector2f mContextPos{0, 0}; // where the menu was asked for
    Context mContextEmpty;                // the menu beside the nodes
    Context mContext;                     // the menu of a node
    Context mContextType;                 // the sub-menu that both share

    SplineOrg();
    ~SplineOrg() override;

    Control* clone() override; // a plain new one, owned by the caller

    // Inserts behind all nodes of the same or a lesser x, and returns the index.
    int addNode(const SplineNodeOrg& node);

    void setSplineType(std::string type); // "square", "linear" or "smooth"; any other is ignored

    // The curve at `x`: 0 without nodes, constant before the first and behind the last. Smooth passes through
    // every node with the slope between its neighbours.
    float evaluate(float x) const;

    void load(xml::IteratorConst& it) override; // `type`, and a node for each `item`, by `x` and `y`
    bool acceptEvents(Event& event) override;   // also while a node is held, wherever the mouse is
    int handleEvent(Event& event) override;     // "delete key" without a node there does nothing
    void draw() override;

private:
    Drag mDrag; // of mDragNode

    bool hasNode(int index) const;
    mathbase::Vector2f toWindow(const SplineNodeOrg& node) const;
    int findNode(const mathbase::Vector2f& place) const;

    void dragNode(const mathbase::Vector2f& place);
    void onMouseDown(const Event& event);
    bool onKeyDown(const Event& event);
    void onContext(const std::string& text);
    void removeNode(int index);
    void insertNode();

    void drawSquare(Render& render);
    void drawLinear(Render& render);
    void drawSmooth(Render& render);
    void drawNodes(Render& render);
};

} // namespace zentrak::panorama
