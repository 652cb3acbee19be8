// The base of every widget: a rectangle in a tree, with a name, a palette, and a share in the flow of events.
#pragma once

#include "dis_display.h"
#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"
#include "pan_event.h"
#include "xml_iterator.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

class Alive;
class Context;
class Control;
class Render;
class Workspace;

// What controls report to their callbacks. A number without a name here is a widget's own.
enum Action : int {
    ACTION_PRESS = 0,
    ACTION_RELEASE = 1,
    ACTION_SCROLL = 7, // a scroll bar moved
    ACTION_CHANGE = 8, // of a value
    ACTION_SPLINE = 9  // a key of a curve was dragged
};

// One box in three forms, in pixels.
struct AreaSet {
    mathbase::Box2 area;  // relative to the parent
    mathbase::Box2 world; // in the window
    mathbase::Box2 clip;  // `world`, clipped by all parents; (0, 0, 0, 0) if nothing is left
};

// Two colours, red to alpha from 0 to 1, as Render::setColor takes them.
struct ColorPair {
    mathbase::Vector4f first;
    mathbase::Vector4f second; // an alpha below 0: as the first
};

struct ColorSet {
    ColorPair border;
    ColorPair color;
    ColorPair highlight;
    ColorPair pushed;
    ColorPair inactive;
};

// Receives what controls report.
class Callback {
public:
    virtual ~Callback() = default;

    // A row of a menu was chosen: `text` is its path, as in "spline.type.linear".
    virtual void contextAction(Context* context, std::string text);
    virtual void controlAction(Control* control, Action action) = 0;
};

// Positions of a control are relative to its parent's child area. All belongs to the main thread.
//
// A receiver of an event or an action may delete any control, including the one that sent it.
class Control {
public:
    static constexpr int MAX_DEPTH = 256; // of nested controls; deeper ones are refused

    AreaSet mArea;                        // the control's own box
    AreaSet mChildArea;                   // the box in which children live
    ColorSet mBack;                       // of the background
    ColorSet mCaption;                    // of the caption
    ColorSet mText;                       // of text
    std::string mName = "control";        // what findControl finds
    std::string mCaptionText = "control"; // what is written on it
    std::string mType = "control";        // its element in a layout file
    bool mRaiseOnFocus = true;            // a child that takes the focus goes on top of the others
    Control* mParent = nullptr;           // null for the root
    Control* mFocus = nullptr;            // the child that has the focus, or this control itself
    mathbase::Vector2f mOffset;           // scroll position, pixels: subtracted from the children's positions
    std::vector<Control*> mControls;      // children, drawn first to last; owned
    std::vector<Callback*> mCallbacks;    // not owned
    bool mHover = false;                  // the mouse is over it
    bool mInactive = false;               // greyed out
    bool mVisible = true;
    bool mMaximized = false;   // fills its parent's child area
    mathbase::Box2 mSavedArea; // the area before that
    bool mAreaSaved = false;   // mSavedArea holds a box
    Render* mRender = nullptr; // the root's, once asked for

    Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    virtual ~Control(); // and its children

    // A new, default-constructed object of the same class, owned by the caller.
    virtual Control* clone() = 0;

    virtual std::string getType();
    virtual display::DisplayGL* getDisplay(); // the root's; null without a root that has one

    // Logs and refuses a parent that is below this control.
    virtual void setParent(Control* parent);
    virtual Control* getParent();
    virtual Control* getRoot(); // the topmost: this one without a parent

    virtual unsigned int getChildCount();
    virtual Control* getChild(unsigned int index); // null past the end

    // "rrggbbaa" in hexadecimal, 0 to 1 each. Missing channels are 0, a missing alpha is 1, and characters
    // that aren't digits are 0.
    virtual mathbase::Vector4f hex2vec(const std::string& text);

    // Reads the element that `it` points at, with all controls in it. Ignores what it does not know; an
    // unknown type of control is logged.
    virtual void load(xml::IteratorConst& it);

    // The elements of this name in the style document; none without one.
    virtual xml::IteratorConst getStyle(const std::string& name);

    virtual std::string getName();
    virtual void setName(std::string name);
    virtual std::string getCaption();
    virtual void setCaption(std::string caption);
    virtual void setInactive(bool inactive);
    virtual bool getInactive();
    virtual void setVisible(bool visible); // showing it clears the focus of its children
    virtual bool getVisible();
    bool isShown() const; // visible, and so are all its parents

    virtual mathbase::Box2 getArea();
    virtual mathbase::Box2 getAreaWorld();
    virtual mathbase::Box2 getChildArea();
    virtual mathbase::Box2 getChildAreaWorld();
    virtual void setArea(mathbase::Box2 area);             // and lays out all below
    virtual void setPosition(mathbase::Vector2f position); // its upper left corner; the size stays
    virtual mathbase::Vector2f getOffset();
    virtual void setOffset(mathbase::Vector2f offset); // pixels; lays out all below

    // Layout, called by setArea. buildChildArea sets mChildArea.area, relative to the area; buildArea works
    // out the world and clip boxes of one of the two.
    virtual void buildChildArea();
    virtual void buildArea(AreaSet& set, bool child);
    virtual mathbase::Vector2f getLocalOffset(bool child);
    virtual mathbase::Box2 getLocalClipArea(bool child);
    virtual mathbase::Vector2f getWorldOffset();
    virtual mathbase::Box2 getWorldClipArea(bool child);

    virtual bool getMaximized();
    virtual void setMaximized(bool on);

    // The smallest box around all visible children and the origin, where the children would be if unscrolled.
    virtual mathbase::Box2 getOccupiedArea();

    // Inserts a child before `index`; -1 or past the end: last. Takes ownership, also from another control,
    // and gives it the focus. Ignores null. A child that would be deeper than MAX_DEPTH, or below itself, is
    // logged and refused: its owner stays the same.
    virtual void addControl(Control* control, int index);
    virtual void deleteControl(unsigned int index); // nothing past the end
    virtual void deleteControls();
    virtual Control* getControl(unsigned int index); // null past the end
    virtual size_t getControlSize();                 // how many there are

    // This control, or the first below it, depth first; null if none has this name.
    virtual Control* findControl(const std::string& name);

    virtual void setCallback(Callback* callback); // adds one; not owned

    // To the callbacks of the nearest control upward that has any. A null source means this control.
    virtual void sendAction(Action action, Control* source);
    virtual void sendContextAction(Context* context, std::string text); // only to its own callbacks

    virtual bool acceptEvents(Event& event);

    // 1 when the event hit this control or one below it, or was a key for it; else 0.
    virtual int handleEvent(Event& event);

    virtual Render* getRender(); // the root's, null without one
    virtual Control* getFocus();
    virtual void setFocus(Control* control); // a child, this control, or null; up to the root
    virtual void clearFocus();               // here and below

    virtual void setContext(Context* context); // opens a menu; not owned
    virtual void resetContext();               // closes it

    virtual void draw(); // the children; a widget draws itself first

protected:
    // The two halves of setArea.
    void layoutSelf(const mathbase::Box2& area);
    void layoutChildren();

    // Captures the mouse for a press: until that button is released all moves and releases go to this control
    // alone, wherever the mouse is. For a press only, and only in a tree whose root is a Workspace; any other
    // capture there ends.
    void captureMouse(const Event& press);
    void releaseMouse(); // earlier than that; nothing without a capture
    // The capture has ended without the button's release: a menu was opened, another control took the mouse,
    // or this one was hidden. The control must stop dragging.
    virtual void onCaptureLost();

    // Passes a "reset" to all that is below. False if that has deleted this control.
    bool resetChildren(Event& reset);

    // Called when a child has been deleted or moved to another control.
    virtual void forget(Control* child);

private:
    friend class Alive;
    friend class Workspace;

    void leaveParent();
    int passDown(Event& event, int result);

    Alive* mAlive = nullptr;         // notified when this is deleted
    Workspace* mCapturing = nullptr; // the root, while this control has the mouse
    bool mIsChild = false;           // one of its parent's children, and not a menu that it opened
};

} // namespace zentrak::panorama
