// A tree of texts that open and close.
#pragma once

#include "pan_inputcontrol.h"
#include "pan_textline.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

// A press on an item selects it, sends action 8 and logs "item name : %s\n"; one on its arrow, or a double
// click, opens or closes it. With the keys: Up, Down, Page Up, Page Down, Home and End select, Left and Right
// close and open or go up and down a level, Return opens and closes. The wheel, with Ctrl across,
// and the bars scroll. The cost of a frame depends on the visible rows alone.
class TreeView : public InputControl {
public:
    static constexpr float INDENT = 16.0f; // pixels a level
    static constexpr float BAR = 8.0f;     // thickness of a scroll bar, pixels
    static constexpr float LONGEST = 4096; // of an item's text, pixels; what is longer is cut

    // An item. The list holds them in the order in which they are shown when all are open.
    struct Node {
        std::string id;
        TextLine text;
        float size = 18.0f; // height of its row, pixels
        int depth = 0;
        int parent = -1; // index, or -1 at the top
        int next = 0;    // index after all of its descendants
        bool open = false;
        float length = -1.0f; // of the text, pixels; -1 until it was first shown
    };

    TreeView();

    Control* clone() override; // a plain new one without items, owned by the caller

    // "size", the height of the items that have none; "text", a heading. Each "item" with "id", "text",
    // "size" and items of its own. Items replace those that were loaded before, as from a style.
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for what it takes
    void draw() override;
    void setArea(mathbase::Box2 box) override;

    // Adds an item after those of `parent`, or at the top level with -1. Returns its index; the indices
    // after it grow by one. A size that is not from 1 to 1000 is that of the tree.
    int addItem(int parent, const std::string& id, const std::string& text, float size = 0);
    void deleteItems();
    int getItemCount() const { return int(mNodes.size()); }
    const Node* getItem(int index) const; // null for an index out of range

    int getSelected() const { return mSelected; } // -1 for none
    void setSelected(int index);                  // sends and logs nothing; -1 for none
    void setOpen(int index, bool open);

    int getRowCount();     // items whose parents are all open
    int getRow(int index); // of an item; -1 where it is not among them
    float getScroll(bool across) const { return across ? mScrollX : mScrollY; } // pixels
    void setScroll(bool across, float pixels);

private:
    enum Held { NOTHING, VERTICAL, ACROSS };

    void onCaptureLost() override;
    void buildRows();
    void measureRows();
    mathbase::Box2 getView(); // the part that shows rows, window coordinates
    mathbase::Box2 getThumb(bool across);
    float getOverflow(bool across); // pixels
    int rowAt(const mathbase::Vector2f& place);
    bool overArrow(int row, float x);
    void selectRow(int row);
    void goToRow(int row);
    void showRow(int row);
    bool handlePress(const Event& event);
    bool handleKey(const Event& event);
    void drawNode(const Node& node, int depth, const mathbase::Box2& row, bool selected, bool hover);
    void drawBar(bool across);

    std::vector<Node> mNodes;
    std::vector<int> mRows;   // indices of the items whose parents are all open
    std::vector<float> mTops; // of each row, and the end of the last, pixels
    bool mBuilt = false;      // both are up to date
    bool mMeasured = false;   // mWidth is up to date
    float mWidth = 0;         // of the widest row, pixels
    float mSize = 18.0f;      // of items without a size
    int mSelected = -1;
    int mHoverRow = -1;
    float mScrollX = 0, mScrollY = 0;
    Held mDrag = NOTHING;
    float mGrip = 0; // where the bar is held, pixels from the thumb's start
    TextLine mHeading;
};

} // namespace zentrak::panorama
