// The tree of controls without a window: geometry, focus, events, actions, and loading from a layout.
#include "inputs.h"
#include "pan_button.h"
#include "pan_context.h"
#include "pan_control.h"
#include "pan_controlfactory.h"
#include "pan_flow.h"
#include "pan_frame.h"
#include "pan_label.h"
#include "pan_panel.h"
#include "support.h"
#include "tree.h"
#include "ztk_system.h"

#include <functional>
#include <memory>
#include <tuple>
#include <utility>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

// With a child area of its own: 3 pixels in from the left, 20 from the top, 4 from the right and the bottom.
class Framed : public Plain {
public:
    using Plain::Plain;
    void buildChildArea() override {
        mChildArea.area = Box2(3, 20, mArea.area.getWidth() - 4, mArea.area.getHeight() - 4);
    }
};

// Runs a function on events of one type.
class Doing : public Plain {
public:
    std::string word;
    std::function<void()> work;

    using Plain::Plain;
    int handleEvent(Event& event) override {
        if (event.type == word && work) {
            const std::function<void()> now = std::exchange(work, nullptr);
            now();
            return 1;
        }
        return Plain::handleEvent(event);
    }
};

// Registers control types as a Panorama does.
void registerTypes() {
    static const bool done = [] {
        ControlFactory factory;
        for (Control* prototype : std::initializer_list<Control*>{new Button, new Flow, new Frame, new Label,
                                                                  new Panel, new Workspace})
            factory.addControlType(prototype);
        return true;
    }();
    EXPECT_TRUE(done);
}

class ControlTest : public ::testing::Test {
protected:
    Workspace root;

    ControlTest() {
        registerTypes();
        root.setArea(Box2(0, 0, 800, 600));
    }

    template <class T = Plain>
    T& add(Box2 area, Control* parent = nullptr) {
        T* control = new T(area);
        (parent ? parent : &root)->addControl(control, -1);
        return *control;
    }
    Flow& addFlow(Box2 area) {
        Flow* flow = new Flow;
        flow->mArea.area = area;
        root.addControl(flow, -1);
        return *flow;
    }
    int press(float x, float y) { return send(root, "mousedown", Vector2f(x, y)); }
    int move(float x, float y) { return send(root, "mousemove", Vector2f(x, y)); }

    void loadStyle(const std::string& elements) {
        auto document = std::make_unique<xml::XmlParser>();
        document->parse("<panorama>" + elements + "</panorama>");
        root.loadStyle(document.release());
    }
};

// Defaults

TEST_F(ControlTest, ItsDefaults) {
    Plain control;
    EXPECT_EQ(control.mArea.area, Box2());
    EXPECT_EQ(control.mArea.world, Box2());
    EXPECT_EQ(control.mArea.clip, Box2());
    EXPECT_EQ(control.mBack.border.first, Vector4f(0.1f, 0.1f, 0.1f, 1));
    EXPECT_EQ(control.mBack.border.second, Vector4f(0, 0, 0, 1));
    for (const ColorSet* set : {&control.mBack, &control.mCaption, &control.mText}) {
        const ColorPair* pairs[] = {&set->border, &set->color, &set->highlight, &set->pushed, &set->inactive};
        for (const ColorPair* pair : pairs) {
            if (pair == &control.mBack.border)
                continue;
            EXPECT_EQ(pair->first, Vector4f(0, 0, 0, 0));
            EXPECT_EQ(pair->second, Vector4f(0, 0, 0, 0));
        }
    }
    EXPECT_EQ(control.getName(), "control");
    EXPECT_EQ(control.getCaption(), "control");
    EXPECT_EQ(control.getType(), "control");
    EXPECT_TRUE(control.mRaiseOnFocus);
    EXPECT_TRUE(control.getVisible());
    EXPECT_FALSE(control.getInactive());
    EXPECT_FALSE(control.getMaximized());
    EXPECT_FALSE(control.mHover);
    EXPECT_FALSE(control.mAreaSaved);
    EXPECT_EQ(control.getParent(), nullptr);
    EXPECT_EQ(control.getFocus(), nullptr);
    EXPECT_EQ(control.getRender(), nullptr);
    EXPECT_EQ(control.getDisplay(), nullptr);
    EXPECT_EQ(control.getRoot(), &control);
    EXPECT_EQ(control.getOffset(), Vector2f());
    EXPECT_EQ(control.getChildCount(), 0u);
    EXPECT_EQ(control.getChild(0), nullptr);
    EXPECT_EQ(control.getControl(7), nullptr);
    xml::IteratorConst style = control.getStyle("button");
    EXPECT_FALSE(++style);
}

TEST_F(ControlTest, AWorkspaceIsTheRoot) {
    Workspace fresh;
    EXPECT_EQ(fresh.getName(), "workspace");
    EXPECT_EQ(fresh.getType(), "workspace");
    EXPECT_EQ(fresh.getParent(), nullptr);
    EXPECT_EQ(fresh.mContext, nullptr);
    EXPECT_TRUE(fresh.mContextFresh);
    EXPECT_EQ(fresh.getRender(), &fresh.mRender);
    EXPECT_EQ(fresh.getWorldClipArea(false), Box2(-10000, -10000, 10000, 10000));
    EXPECT_EQ(fresh.getWorldClipArea(true), Box2(-10000, -10000, 10000, 10000));
    Plain& child = add(Box2(0, 0, 10, 10));
    EXPECT_EQ(child.getRoot(), &root);
    EXPECT_EQ(child.getRender(), &root.mRender);
    EXPECT_EQ(child.mRender, &root.mRender);
}

// Geometry

TEST_F(ControlTest, WorldAndClipOfNestedBoxes) {
    Framed& outer = add<Framed>(Box2(100, 50, 300, 250));
    Plain& inner = add(Box2(10, 10, 400, 60), &outer);
    EXPECT_EQ(outer.mArea.world, Box2(100, 50, 300, 250));
    EXPECT_EQ(outer.mArea.clip, Box2(100, 50, 300, 250));
    EXPECT_EQ(outer.mChildArea.area, Box2(3, 20, 196, 196));
    EXPECT_EQ(outer.mChildArea.world, Box2(103, 70, 296, 246));
    EXPECT_EQ(outer.mChildArea.clip, Box2(103, 70, 296, 246));
    EXPECT_EQ(inner.mArea.world, Box2(113, 80, 503, 130));
    EXPECT_EQ(inner.mArea.clip, Box2(113, 80, 296, 130));
    EXPECT_EQ(inner.mChildArea.area, Box2(0, 0, 390, 50));
    EXPECT_EQ(inner.getWorldOffset(), Vector2f(113, 80));
    EXPECT_EQ(inner.getLocalOffset(false), Vector2f(103, 70));
    EXPECT_EQ(inner.getLocalOffset(true), Vector2f(113, 80));
    EXPECT_EQ(inner.getWorldClipArea(true), Box2(113, 80, 296, 130));
    EXPECT_EQ(inner.getAreaWorld(), inner.mArea.world);
    EXPECT_EQ(inner.getChildAreaWorld(), inner.mChildArea.world);
}

TEST_F(ControlTest, ABoxOutsideItsParentHasAClipOfZero) {
    Plain& outer = add(Box2(100, 100, 200, 200));
    Plain& inner = add(Box2(150, 0, 160, 10), &outer);
    EXPECT_EQ(inner.mArea.world, Box2(250, 100, 260, 110));
    EXPECT_EQ(inner.mArea.clip, Box2());
    EXPECT_EQ(inner.mChildArea.clip, Box2());
}

TEST_F(ControlTest, AnOffsetMovesAControlAndAllInIt) {
    Plain& outer = add(Box2(100, 100, 200, 200));
    Plain& inner = add(Box2(10, 10, 90, 90), &outer);
    Plain& core = add(Box2(1, 2, 30, 40), &inner);
    inner.setOffset(Vector2f(5, 20));
    EXPECT_EQ(inner.mArea.area, Box2(10, 10, 90, 90));
    EXPECT_EQ(inner.mArea.world, Box2(105, 90, 185, 170));
    EXPECT_EQ(inner.mArea.clip, Box2(105, 100, 185, 170));
    EXPECT_EQ(core.mArea.world, Box2(106, 92, 135, 130));
    EXPECT_EQ(core.mArea.clip, Box2(106, 100, 135, 130));
    inner.setOffset(Vector2f());
    EXPECT_EQ(core.mArea.world, Box2(111, 112, 140, 150));
}

TEST_F(ControlTest, SetPositionKeepsTheSize) {
    Plain& control = add(Box2(10, 20, 110, 70));
    control.setPosition(Vector2f(-5, 7));
    EXPECT_EQ(control.getArea(), Box2(-5, 7, 95, 57));
    EXPECT_EQ(control.mArea.clip, Box2(-5, 7, 95, 57)); // the workspace clips only far outside
}

TEST_F(ControlTest, TheTreeEndsAtTenThousandPixels) {
    Plain& control = add(Box2(-1e6f, -20000, 1e30f, 20000));
    EXPECT_EQ(control.mArea.clip, Box2(-10000, -10000, 10000, 10000));
}

TEST_F(ControlTest, MaximizedFillsTheParentsChildAreaAndGoesBack) {
    Framed& outer = add<Framed>(Box2(0, 0, 207, 124));
    Plain& inner = add(Box2(5, 6, 50, 60), &outer);
    Plain& core = add(Box2(), &inner);
    core.setMaximized(true);
    inner.setMaximized(true);
    EXPECT_TRUE(inner.mAreaSaved);
    EXPECT_EQ(inner.mSavedArea, Box2(5, 6, 50, 60));
    EXPECT_EQ(inner.getArea(), Box2(0, 0, 200, 100));
    EXPECT_EQ(core.getArea(), Box2(0, 0, 200, 100));
    outer.setArea(Box2(0, 0, 107, 64));
    EXPECT_EQ(inner.getArea(), Box2(0, 0, 100, 40));
    EXPECT_EQ(core.getArea(), Box2(0, 0, 100, 40));
    inner.setMaximized(true); // on already: the saved box stays
    EXPECT_EQ(inner.mSavedArea, Box2(5, 6, 50, 60));
    inner.setMaximized(false);
    EXPECT_EQ(inner.getArea(), Box2(5, 6, 50, 60));
    EXPECT_EQ(core.getArea(), Box2(0, 0, 45, 54));
    EXPECT_FALSE(inner.mAreaSaved);
    inner.setArea(Box2(1, 1, 2, 2));
    inner.setMaximized(false); // nothing saved: stays
    EXPECT_EQ(inner.getArea(), Box2(1, 1, 2, 2));
}

TEST_F(ControlTest, OccupiedIsTheBoxAroundTheVisibleChildren) {
    Plain& outer = add(Box2(0, 0, 100, 100));
    EXPECT_EQ(outer.getOccupiedArea(), Box2());
    add(Box2(10, 20, 300, 40), &outer);
    add(Box2(-7, 0, 5, 450), &outer);
    add(Box2(0, 0, 9000, 9000), &outer).setVisible(false);
    EXPECT_EQ(outer.getOccupiedArea(), Box2(-7, 0, 300, 450));
}

TEST_F(ControlTest, ZeroNegativeEnormousAndNanAreasAreAccepted) {
    const float sides[] = {0, -5, 5, 1e9f, -1e9f, 3e38f, -3e38f, ENDLESS, -ENDLESS, NO_NUMBER};
    Plain& outer = add(Box2(0, 0, 100, 100));
    Plain& inner = add(Box2(0, 0, 10, 10), &outer);
    for (float a : sides)
        for (float b : sides)
            for (float c : sides) {
                outer.setArea(Box2(a, b, c, 50));
                outer.setOffset(Vector2f(b, c));
                inner.setMaximized(true);
                inner.setMaximized(false);
                const Box2& clip = inner.mArea.clip;
                EXPECT_TRUE(clip.getWidth() >= 0 && clip.getHeight() >= 0);
                EXPECT_TRUE(clip.x1 >= -10000 && clip.x2 <= 10000);
                EXPECT_TRUE(clip.y1 >= -10000 && clip.y2 <= 10000);
                move(a, b);
                press(b, c);
                inner.setArea(Box2(0, 0, 10, 10));
            }
}

TEST_F(ControlTest, ABoxOfNanIsNeverHit) {
    Plain& control = add(Box2(NO_NUMBER, 0, 100, 100));
    EXPECT_EQ(control.mArea.clip, Box2());
    EXPECT_FALSE(control.acceptEvents(*std::make_unique<Event>(makeEvent("mousedown", Vector2f(50, 50)))));
    control.setArea(Box2(0, 0, 100, NO_NUMBER));
    EXPECT_EQ(control.mArea.clip, Box2());
}

// Children

TEST_F(ControlTest, ChildrenAreInsertedAtAnIndexAndDeleted) {
    Plain& a = add(Box2());
    Plain& b = add(Box2());
    root.mRaiseOnFocus = false;
    Plain* c = new Plain;
    root.addControl(c, 1);
    EXPECT_EQ(root.getControl(0), &a);
    EXPECT_EQ(root.getControl(1), c);
    EXPECT_EQ(root.getControl(2), &b);
    EXPECT_EQ(root.getFocus(), c);
    EXPECT_EQ(c->getParent(), &root);
    root.deleteControl(99); // nothing there
    EXPECT_EQ(root.getControlSize(), 3u);
    root.deleteControl(1);
    EXPECT_EQ(root.getFocus(), nullptr);
    EXPECT_EQ(root.getControlSize(), 2u);
    root.addControl(nullptr, -1);
    root.addControl(new Plain, 1000);
    EXPECT_EQ(root.getChildCount(), 3u);
    root.deleteControls();
    EXPECT_EQ(root.getControlSize(), 0u);
}

TEST_F(ControlTest, AControlDeletedPastItsParentLeavesIt) {
    Plain* child = &add(Box2());
    Flow& flow = addFlow(Box2());
    Plain* row = new Plain;
    flow.addControl(row);
    EXPECT_EQ(root.getControlSize(), 2u);
    delete row;
    EXPECT_EQ(flow.getControlSize(), 0u);
    EXPECT_TRUE(flow.mSizes.empty());
    delete child;
    EXPECT_EQ(root.getControlSize(), 1u);
}

TEST_F(ControlTest, AControlGivenToAnotherMoves) {
    Plain& first = add(Box2(0, 0, 100, 100));
    Plain& second = add(Box2(50, 50, 100, 100));
    Plain& child = add(Box2(1, 1, 10, 10), &first);
    second.addControl(&child, -1);
    EXPECT_EQ(first.getControlSize(), 0u);
    EXPECT_EQ(first.getFocus(), nullptr);
    ASSERT_EQ(second.getControlSize(), 1u);
    EXPECT_EQ(child.mArea.world, Box2(51, 51, 60, 60));
}

TEST_F(ControlTest, FindControlGoesDepthFirst) {
    Plain& a = add(Box2());
    Plain& deep = add(Box2(), &a);
    Plain& b = add(Box2());
    deep.setName("wanted");
    b.setName("wanted");
    EXPECT_EQ(root.findControl("workspace"), &root);
    EXPECT_EQ(root.findControl("wanted"), &deep);
    EXPECT_EQ(root.findControl("Wanted"), nullptr);
    EXPECT_EQ(root.findControl(""), nullptr);
}

TEST_F(ControlTest, AControlCannotHangBelowItself) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& b = add(Box2(0, 0, 50, 50), &a);
    CaptureStdout out;
    a.setParent(&b);
    EXPECT_EQ(a.getParent(), &root);
    a.setParent(&a);
    EXPECT_EQ(a.getParent(), &root);
    b.addControl(&a, -1);
    EXPECT_EQ(a.getParent(), &root);
    EXPECT_EQ(b.getControlSize(), 0u);
    EXPECT_EQ(root.getControlSize(), 1u);
    a.addControl(&a, -1);
    EXPECT_EQ(a.getControlSize(), 1u);
    EXPECT_NE(out.text().find("The control 'control' can't be inside itself"), std::string::npos);
    a.setArea(Box2(0, 0, 70, 70)); // ends
}

TEST_F(ControlTest, ANestingOfTenThousandIsRefused) {
    std::string text;
    {
        CaptureStdout out;
        Control* inner = &root;
        for (int i = 0; i < 10000; ++i) { // outermost first
            std::unique_ptr<Plain> next(new Plain(Box2(0, 0, 700, 500)));
            inner->addControl(next.get(), -1);
            if (next->getParent() != inner)
                break;
            inner = next.release();
        }
        Control* outer = new Plain(Box2(0, 0, 700, 500)); // and innermost first
        for (int i = 0; i < 10000; ++i) {
            std::unique_ptr<Plain> next(new Plain(Box2(0, 0, 700, 500)));
            next->addControl(outer, -1);
            if (outer->getParent() != next.get())
                break;
            outer = next.release();
        }
        delete outer;
        text = out.text();
    }
    EXPECT_NE(text.find("The control 'control' is left out: it would be nested more than 256 deep"),
              std::string::npos);
    int depth = 0;
    for (Control* control = root.getControl(0); control; control = control->getControl(0))
        ++depth;
    EXPECT_EQ(depth, Control::MAX_DEPTH);
    root.setArea(Box2(0, 0, 640, 480));
    EXPECT_EQ(move(10, 10), 1);
    EXPECT_EQ(press(10, 10), 1);
    send(root, "keydown");
    EXPECT_EQ(root.findControl("nobody"), nullptr);
}

TEST_F(ControlTest, AChainOfTenThousandParentsIsAsked) {
    std::vector<std::unique_ptr<Plain>> chain(10000);
    Control* parent = &root;
    for (std::unique_ptr<Plain>& link : chain) {
        link = std::make_unique<Plain>();
        link->mParent = parent;
        parent = link.get();
    }
    EXPECT_EQ(parent->getRoot(), &root);
    EXPECT_EQ(parent->getRender(), &root.mRender);
    EXPECT_EQ(parent->getDisplay(), nullptr);
    parent->sendAction(ACTION_PRESS, nullptr);
    parent->setFocus(nullptr);
    Plain stranger;
    CaptureStdout out;
    parent->addControl(&stranger, -1);
    EXPECT_EQ(stranger.getParent(), nullptr);
}

// Focus

TEST_F(ControlTest, TheFocusRunsFromTheRoot) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& a1 = add(Box2(0, 0, 50, 50), &a);
    Plain& b = add(Box2(200, 0, 300, 100));
    EXPECT_EQ(root.getFocus(), &b);
    a.setFocus(&a1);
    EXPECT_EQ(root.getFocus(), &a);
    EXPECT_EQ(a.getFocus(), &a1);
    EXPECT_EQ(b.getFocus(), nullptr);
    b.setFocus(&b);
    EXPECT_EQ(root.getFocus(), &b);
    EXPECT_EQ(b.getFocus(), &b);
    EXPECT_EQ(a.getFocus(), nullptr);
    send(root, "keydown"); // the control itself: no endless walk
    a1.setVisible(true);
    EXPECT_EQ(a.getFocus(), &a1);
    EXPECT_EQ(a1.getFocus(), nullptr);
    root.clearFocus();
    EXPECT_EQ(root.getFocus(), nullptr);
    EXPECT_EQ(a.getFocus(), nullptr);
}

TEST_F(ControlTest, ClickingAChildRaisesItAboveItsSiblings) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& b = add(Box2(50, 50, 150, 150));
    press(20, 20);
    EXPECT_EQ(root.getControl(1), &a);
    press(75, 75); // both are there: the upper one gets it
    EXPECT_EQ(a.heard, (std::vector<std::string>{"mousedown", "mousedown"}));
    EXPECT_TRUE(b.heard.empty());
}

TEST_F(ControlTest, ClickingAChildOfAFlowDoesNotRaiseIt) {
    Flow& flow = addFlow(Box2(0, 0, 100, 100));
    Plain* a = new Plain;
    Plain* b = new Plain;
    flow.addControl(a);
    flow.addControl(b);
    flow.setArea(Box2(0, 0, 100, 100));
    press(5, 5);
    EXPECT_EQ(flow.getFocus(), a);
    EXPECT_EQ(flow.getControl(0), a);
    EXPECT_EQ(flow.getControl(1), b);
}

// Events

TEST_F(ControlTest, AClickOnTheEmptyBackgroundIsPassedOn) {
    Plain& a = add(Box2(0, 0, 100, 100));
    press(10, 10);
    send(root, "keydown");
    EXPECT_EQ(a.heard.back(), "keydown");
    a.heard.clear();
    EXPECT_EQ(press(400, 400), 0);
    EXPECT_EQ(send(root, "mouseup", Vector2f(400, 400)), 0);
    EXPECT_EQ(send(root, "keydown", Vector2f(400, 400)), 0);
    EXPECT_TRUE(a.heard.empty());
    EXPECT_EQ(root.getFocus(), nullptr);
}

TEST_F(ControlTest, AnEventThatHitsAControlGives1) {
    Plain& a = add(Box2(0, 0, 100, 100));
    add(Box2(10, 10, 20, 20), &a);
    EXPECT_EQ(press(5, 5), 1);
    EXPECT_EQ(press(15, 15), 1);
    EXPECT_EQ(send(root, "mouseup", Vector2f(15, 15)), 1);
    EXPECT_EQ(move(15, 15), 1);
}

TEST_F(ControlTest, AFocusThatDoesNothingWithKeysDoesNotKeepThem) {
    add(Box2(0, 0, 100, 100));
    press(5, 5);
    for (const char* type : {"keydown", "keyup", "keychardown", "keycharup"})
        EXPECT_EQ(send(root, type, Vector2f(5, 5)), 0) << type;
}

TEST_F(ControlTest, LowerEdgesBelongToABoxAndUpperOnesDoNot) {
    Plain& a = add(Box2(10, 10, 20, 20));
    for (const auto& [x, y, hit] : {std::tuple(10, 10, 1), std::tuple(19, 19, 1), std::tuple(20, 15, 0),
                                    std::tuple(15, 20, 0), std::tuple(9, 15, 0), std::tuple(15, 9, 0)}) {
        a.heard.clear();
        press(float(x), float(y));
        EXPECT_EQ(int(a.heard.size()), hit) << x << " " << y;
    }
}

TEST_F(ControlTest, AHiddenChildGetsNoEventsEvenIfItIsOnTop) {
    Plain& below = add(Box2(0, 0, 100, 100));
    Plain& top = add(Box2(0, 0, 100, 100));
    top.setVisible(false);
    press(10, 10);
    EXPECT_TRUE(top.heard.empty());
    EXPECT_EQ(below.heard, (std::vector<std::string>{"mousedown"}));
}

TEST_F(ControlTest, KeysGoToTheFocusWhereverTheMouseIs) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& b = add(Box2(200, 0, 300, 100));
    press(10, 10);
    a.heard.clear();
    for (const char* type : {"keydown", "keyup", "keychardown", "keycharup"})
        send(root, type, Vector2f(250, 50));
    EXPECT_EQ(a.heard, (std::vector<std::string>{"keydown", "keyup", "keychardown", "keycharup"}));
    EXPECT_TRUE(b.heard.empty());
    send(root, "mousewheel", Vector2f(250, 50));
    EXPECT_EQ(b.heard, (std::vector<std::string>{"mousewheel"}));
}

TEST_F(ControlTest, EveryMoveTakesTheHoverStateOfTheWholeTreeBack) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& left = add(Box2(0, 0, 50, 100), &a);
    Plain& right = add(Box2(50, 0, 100, 100), &a);
    move(25, 50);
    EXPECT_TRUE(root.mHover && a.mHover && left.mHover);
    EXPECT_FALSE(right.mHover);
    move(75, 50);
    EXPECT_FALSE(left.mHover);
    EXPECT_TRUE(right.mHover);
    Plain& cover = add(Box2(0, 0, 50, 100)); // over the left half
    move(25, 50);
    EXPECT_FALSE(a.mHover);
    EXPECT_FALSE(right.mHover);
    EXPECT_TRUE(cover.mHover);
    move(400, 400);
    EXPECT_FALSE(cover.mHover);
}

TEST_F(ControlTest, AMoveResetsEachControlOnceHoweverDeep) {
    Plain& a = add(Box2(0, 0, 100, 100));
    Plain& b = add(Box2(0, 0, 100, 100), &a);
    Plain& c = add(Box2(0, 0, 100, 100), &b);
    Plain& aside = add(Box2(90, 90, 95, 95), &b);
    Event event = makeEvent("mousemove", Vector2f(50, 50));
    for (int i = 0; i < 2; ++i) { // of one event twice, too
        c.heard.clear();
        aside.heard.clear();
        root.handleEvent(event);
        EXPECT_EQ(c.heard, (std::vector<std::string>{"reset", "mousemove"}));
        EXPECT_EQ(aside.heard, (std::vector<std::string>{"reset"}));
    }
}

TEST_F(ControlTest, HoverKeepsAcceptEventsTrueUntilTheNextReset) {
    Plain& a = add(Box2(0, 0, 100, 100));
    move(50, 50);
    Event outside = makeEvent("mouseup", Vector2f(400, 400));
    EXPECT_TRUE(a.acceptEvents(outside));
    send(root, "mouseup", Vector2f(400, 400));
    EXPECT_EQ(a.heard.back(), "mouseup");
    send(a, "reset", Vector2f(400, 400));
    EXPECT_FALSE(a.acceptEvents(outside));
}

TEST_F(ControlTest, AControlMayBeDeletedInItsOwnEvent) {
    for (const char* word : {"mousedown", "mousemove", "reset", "mouseup", "mousewheel", "keydown"}) {
        Plain& group = add(Box2(0, 0, 100, 100));
        Doing& doing = add<Doing>(Box2(0, 0, 100, 100), &group);
        Control* self = &doing;
        doing.word = word;
        doing.work = [self] { delete self; };
        send(root, word == std::string("reset") ? "mousemove" : word, Vector2f(50, 50));
        EXPECT_EQ(group.getControlSize(), 0u) << word;
        root.deleteControls();
    }
}

TEST_F(ControlTest, ItsParentMayBeDeletedInItsEvent) {
    for (const char* word : {"mousedown", "mousemove", "reset", "mouseup", "mousewheel", "keydown"}) {
        Plain& group = add(Box2(0, 0, 100, 100));
        Doing& doing = add<Doing>(Box2(0, 0, 100, 100), &group);
        add(Box2(0, 0, 10, 10), &group);
        group.setFocus(&doing);
        Control* parent = &group;
        doing.word = word;
        doing.work = [parent] { delete parent; };
        send(root, word == std::string("reset") ? "mousemove" : word, Vector2f(50, 50));
        EXPECT_EQ(root.getControlSize(), 0u) << word;
    }
}

TEST_F(ControlTest, AllControlsMayBeDeletedInAnEvent) {
    for (const char* word : {"mousedown", "mousemove", "reset", "keydown"}) {
        Plain& group = add(Box2(0, 0, 100, 100));
        Doing& doing = add<Doing>(Box2(0, 0, 100, 100), &group);
        doing.word = word;
        doing.work = [this] { root.deleteControls(); };
        send(root, word == std::string("reset") ? "mousemove" : word, Vector2f(50, 50));
        EXPECT_EQ(root.getControlSize(), 0u) << word;
    }
}

// The mouse capture

namespace {

// Captures the mouse with each press.
struct Holds : Plain {
    int lost = 0;

    explicit Holds(Box2 area = Box2()) : Plain(area) {}
    int handleEvent(Event& event) override {
        if (event.type == "mousedown")
            captureMouse(event);
        return Plain::handleEvent(event);
    }
    void onCaptureLost() override { ++lost; }
    using Control::releaseMouse;
};

} // namespace

TEST_F(ControlTest, ACaptureGetsMovesAndTheReleaseOverOtherControls) {
    Holds& holds = add<Holds>(Box2(0, 0, 100, 100));
    Plain& other = add(Box2(200, 0, 300, 100));
    root.mRaiseOnFocus = false; // the other one stays on top
    press(10, 10);
    EXPECT_EQ(root.getCapture(), &holds);
    holds.heard.clear();
    move(250, 50);
    send(root, "mouseup", Vector2f(250, 50), 1); // of another button
    EXPECT_EQ(root.getCapture(), &holds);
    send(root, "mouseup", Vector2f(250, 50));
    EXPECT_EQ(root.getCapture(), nullptr);
    EXPECT_EQ(holds.heard, (std::vector<std::string>{"reset", "mousemove", "mouseup", "mouseup"}));
    EXPECT_EQ(other.heard, (std::vector<std::string>{"reset"}));
    EXPECT_EQ(holds.lost, 0);
    move(250, 50);
    EXPECT_EQ(other.heard.back(), "mousemove");
}

TEST_F(ControlTest, APressAfterACaptureFindsTheHoverStateUpToDate) {
    add<Holds>(Box2(0, 0, 100, 100));
    Plain& other = add(Box2(200, 0, 300, 100));
    press(10, 10);
    move(250, 50);
    send(root, "mouseup", Vector2f(250, 50));
    EXPECT_FALSE(other.mHover);
    press(250, 50);
    EXPECT_TRUE(other.mHover);
}

TEST_F(ControlTest, ACaptureIsLostToAMenuAnotherControlAndWhenHidden) {
    Plain& group = add(Box2(0, 0, 800, 600));
    Holds& a = add<Holds>(Box2(0, 0, 100, 100), &group);
    Holds& b = add<Holds>(Box2(200, 0, 300, 100), &group);
    press(10, 10);
    press(210, 10);
    EXPECT_EQ(root.getCapture(), &b);
    EXPECT_EQ(a.lost, 1);
    Context menu;
    a.setContext(&menu);
    EXPECT_EQ(root.getCapture(), nullptr);
    EXPECT_EQ(b.lost, 1);
    root.resetContext();
    press(10, 10);
    group.setVisible(false);
    move(10, 10);
    EXPECT_EQ(root.getCapture(), nullptr);
    EXPECT_EQ(a.lost, 2);
}

TEST_F(ControlTest, WhoHasTheMouseMayBeDeletedOrGiveItBack) {
    Holds& a = add<Holds>(Box2(0, 0, 100, 100));
    press(10, 10);
    a.releaseMouse();
    EXPECT_EQ(root.getCapture(), nullptr);
    EXPECT_EQ(a.lost, 0);
    press(10, 10);
    root.deleteControls();
    EXPECT_EQ(root.getCapture(), nullptr);
    Holds outlives(Box2(0, 0, 100, 100));
    {
        Workspace gone;
        gone.setArea(Box2(0, 0, 800, 600));
        gone.addControl(&outlives, -1);
        send(gone, "mousedown", Vector2f(10, 10));
        EXPECT_EQ(gone.getCapture(), &outlives);
        root.addControl(&outlives, -1); // moves to another tree
    }
    EXPECT_EQ(outlives.lost, 1);
    EXPECT_EQ(root.getCapture(), nullptr);
}

// Actions

TEST_F(ControlTest, AnActionClimbsToTheNearestCallbacks) {
    Plain& a = add(Box2());
    Plain& b = add(Box2(), &a);
    Heard first, second, above;
    a.setCallback(&first);
    a.setCallback(&second);
    root.setCallback(&above);
    b.sendAction(ACTION_CHANGE, nullptr);
    EXPECT_EQ(first.actions, (std::vector<int>{8}));
    EXPECT_EQ(first.sources, (std::vector<Control*>{&b}));
    EXPECT_EQ(second.actions, (std::vector<int>{8}));
    EXPECT_TRUE(above.actions.empty());
    a.sendContextAction(nullptr, "a.b");
    EXPECT_EQ(second.texts, (std::vector<std::string>{"a.b"}));
    b.sendContextAction(nullptr, "c"); // only to its own: none
    EXPECT_EQ(first.texts.size(), 1u);
}

TEST_F(ControlTest, AnActionWithNoCallbacksAnywhereGoesNowhere) {
    Plain& a = add(Box2());
    Plain& b = add(Box2(), &a);
    b.sendAction(ACTION_PRESS, nullptr);
    b.setCallback(nullptr);
    b.sendAction(ACTION_PRESS, &a);
}

TEST_F(ControlTest, TheReceiverOfAnActionMayDeleteItsSource) {
    struct Deletes : Callback {
        void controlAction(Control* source, Action) override { delete source; }
    } deletes;
    Heard later;
    Plain& a = add(Box2());
    a.setCallback(&deletes);
    a.setCallback(&later);
    a.sendAction(ACTION_PRESS, nullptr);
    EXPECT_EQ(root.getControlSize(), 0u);
    EXPECT_TRUE(later.actions.empty());
}

// Menus

TEST_F(ControlTest, WithAContextOpenClicksElsewhereCloseItAndReachNothing) {
    Plain& below = add(Box2(0, 0, 800, 600));
    Plain& button = add(Box2(0, 0, 50, 20));
    Context menu;
    menu.addOption("a", "");
    menu.setPosition(Vector2f(300, 300));
    button.setContext(&menu);
    EXPECT_EQ(root.mContext, &menu);
    EXPECT_TRUE(root.mContextFresh);
    EXPECT_EQ(menu.getParent(), &button);
    below.heard.clear();
    send(root, "mouseup", Vector2f(10, 10)); // of the click that opened it
    EXPECT_EQ(root.mContext, &menu);
    EXPECT_FALSE(root.mContextFresh);
    EXPECT_EQ(press(100, 100), 0);
    EXPECT_EQ(root.mContext, &menu);
    EXPECT_TRUE(below.heard.empty());
    send(root, "mouseup", Vector2f(100, 100), 1); // another button
    EXPECT_EQ(root.mContext, &menu);
    send(root, "mouseup", Vector2f(100, 100));
    EXPECT_EQ(root.mContext, nullptr);
    press(100, 100);
    EXPECT_EQ(below.heard.back(), "mousedown");
}

TEST_F(ControlTest, OfTheKeysUnderAnOpenMenuOnlyEscIsTakenAndClosesIt) {
    Plain& below = add(Box2(0, 0, 200, 200));
    press(100, 100); // the focus
    Context menu;
    menu.addOption("a", "");
    below.setContext(&menu);
    below.heard.clear();
    for (const char* type : {"keydown", "keyup"})
        for (const int key : {int(display::KEY_q), int(display::KEY_SPACE), int(display::KEY_TAB)}) {
            Event other = makeEvent(type);
            other.key = key;
            EXPECT_EQ(root.handleEvent(other), 0) << type << key;
        }
    Event character = makeEvent("keychardown");
    EXPECT_EQ(root.handleEvent(character), 0);
    EXPECT_EQ(root.mContext, &menu);
    EXPECT_TRUE(below.heard.empty());

    Event escape = makeEvent("keydown");
    escape.key = display::KEY_ESC;
    EXPECT_EQ(root.handleEvent(escape), 1);
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_EQ(root.handleEvent(escape), 0);
}

// Colours

TEST_F(ControlTest, Hex2vecReadsPairsOfDigits) {
    Plain control;
    EXPECT_EQ(control.hex2vec("ff008033"), Vector4f(1, 0, 128 / 255.0f, 51 / 255.0f));
    EXPECT_EQ(control.hex2vec("FF0080aB"), Vector4f(1, 0, 128 / 255.0f, 171 / 255.0f));
    EXPECT_EQ(control.hex2vec("336699"), Vector4f(51 / 255.0f, 102 / 255.0f, 153 / 255.0f, 1)); // alpha 1
    EXPECT_EQ(control.hex2vec("ff"), Vector4f(1, 0, 0, 1));
    EXPECT_EQ(control.hex2vec(""), Vector4f(0, 0, 0, 1));
    EXPECT_EQ(control.hex2vec("gf-1zz"), Vector4f(15 / 255.0f, 1 / 255.0f, 0, 1));
    EXPECT_EQ(control.hex2vec("#f00"), Vector4f(15 / 255.0f, 0, 0, 1));
    control.hex2vec(std::string(100000, 'f'));
}

// Loading

TEST_F(ControlTest, WithoutAnAreaItFillsItsParent) {
    Framed& outer = add<Framed>(Box2(0, 0, 207, 124));
    Plain& inner = add(Box2(), &outer);
    loadText(inner, "<plain id='a'/>");
    EXPECT_EQ(inner.getName(), "a");
    EXPECT_TRUE(inner.getMaximized());
    EXPECT_EQ(inner.getArea(), Box2(0, 0, 200, 100));
}

TEST_F(ControlTest, AnAreaIsReadByEitherNameOrTheSumOfBoth) {
    Plain& control = add(Box2());
    loadText(control, "<plain><area x='1.5' y='2' width='10' height='20'/></plain>");
    EXPECT_EQ(control.getArea(), Box2(1.5f, 2, 11.5f, 22));
    EXPECT_FALSE(control.getMaximized());
    loadText(control, "<plain><area w='10' h='20'/></plain>");
    EXPECT_EQ(control.getArea(), Box2(0, 0, 10, 20));
    loadText(control, "<plain><area width='5' w='10' height='1' h='20px'/></plain>");
    EXPECT_EQ(control.getArea(), Box2(0, 0, 15, 21));
    loadText(control, "<plain><area/><area x='-3' w='1' h='1'/></plain>"); // the last one counts
    EXPECT_EQ(control.getArea(), Box2(-3, 0, -2, 1));
    loadText(control, "<plain><area x='nan' y='inf' w='1e99' h='what'/></plain>");
    EXPECT_EQ(control.getArea(), Box2(0, 0, 0, 0));
}

TEST_F(ControlTest, AnAreaMayBeMaximizedAndKeepsWhereItGoesBackTo) {
    Plain& control = add(Box2());
    loadText(control, "<plain><area x='10' y='10' w='100' h='50' maximized='true'/></plain>");
    EXPECT_TRUE(control.getMaximized());
    root.setArea(Box2(0, 0, 400, 300));
    EXPECT_EQ(control.getArea(), Box2(0, 0, 400, 300));
    control.setMaximized(false);
    EXPECT_EQ(control.getArea(), Box2(10, 10, 110, 60));
}

TEST_F(ControlTest, HiddenAndVisibleAreRead) {
    Plain& control = add(Box2());
    for (const auto& [text, visible] :
         {std::pair("<p/>", true), std::pair("<p hidden='true'/>", false),
          std::pair("<p hidden='false'/>", true), std::pair("<p visible='false'/>", false),
          std::pair("<p visible='true'/>", true), std::pair("<p visible='true' hidden='true'/>", false),
          std::pair("<p hidden='TRUE' visible='no'/>", true)}) {
        loadText(control, text);
        EXPECT_EQ(control.getVisible(), visible) << text;
    }
}

TEST_F(ControlTest, ColoursAreReadByPaletteAndPair) {
    Plain control;
    loadText(control,
             "<p><color name='back.border' first='ff0000' second='00ff0080'/>"
             "<color name='caption.pushed' first='0000ff'/><color name='text.inactive' second='ffffff'/>"
             "<color name='back.nothing' first='ffffff'/><color name='front.color' first='ffffff'/>"
             "<color name='backcolor' first='ffffff'/><color name='back.color.x' first='ffffff'/>"
             "<color first='ffffff'/><color name='.' first='ffffff'/></p>");
    EXPECT_EQ(control.mBack.border.first, Vector4f(1, 0, 0, 1));
    EXPECT_EQ(control.mBack.border.second, Vector4f(0, 1, 0, 128 / 255.0f));
    EXPECT_EQ(control.mCaption.pushed.first, Vector4f(0, 0, 1, 1));
    EXPECT_EQ(control.mCaption.pushed.second, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(control.mText.inactive.first, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(control.mText.inactive.second, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(control.mBack.color.first, Vector4f(0, 0, 0, 0));
}

TEST_F(ControlTest, AChildElementWithSeveralControlsAddsThemInOrder) {
    Plain& control = add(Box2(0, 0, 100, 100));
    std::string text;
    {
        CaptureStdout out;
        loadText(control, "<p><child><label id='a'/><nonsense id='b'/><frame id='c'/></child><child><!-- -->"
                          "<panel id='d'/></child></p>");
        text = out.text();
    }
    ASSERT_EQ(control.getControlSize(), 3u);
    EXPECT_EQ(control.getControl(0)->getName(), "a");
    EXPECT_EQ(control.getControl(0)->getType(), "label");
    EXPECT_EQ(control.getControl(1)->getName(), "c");
    EXPECT_EQ(control.getControl(2)->getName(), "d");
    EXPECT_EQ(text.substr(0, text.find(" (")), "[log][loadChild],  -> Control type 'nonsense' not found");
    EXPECT_EQ(text.find('\n'), text.size() - 1); // once
}

TEST_F(ControlTest, TheLayoutOverridesTheStyle) {
    loadStyle("<panel caption='style'><color name='text.color' first='ff0000' second='ff0000'/></panel>");
    Plain& control = add(Box2());
    loadText(control, "<p><child><panel/><panel caption='own'/></child></p>");
    EXPECT_EQ(control.getControl(0)->getCaption(), "style");
    EXPECT_EQ(control.getControl(1)->getCaption(), "own");
    EXPECT_EQ(control.getControl(1)->mText.color.first, Vector4f(1, 0, 0, 1));
}

TEST_F(ControlTest, AClassReplacesTheTypesStyleFoundOrNot) {
    loadStyle("<panel caption='panel'/><red caption='red'/>");
    Plain& control = add(Box2());
    loadText(control, "<p><child><panel/><panel class='red'/><panel class='blue'/></child></p>");
    EXPECT_EQ(control.getControl(0)->getCaption(), "panel");
    EXPECT_EQ(control.getControl(1)->getCaption(), "red");
    EXPECT_EQ(control.getControl(2)->getCaption(), "");
}

TEST_F(ControlTest, AStyleThatHoldsItselfEnds) {
    loadStyle("<panel><child><panel/></child></panel><frame><child><label class='loop'/></child></frame>"
              "<loop><child><frame/><frame/></child></loop>");
    Plain& control = add(Box2());
    CaptureStdout out;
    loadText(control, "<p><child><panel/><frame/></child></p>");
    EXPECT_EQ(control.getControlSize(), 2u);
    EXPECT_NE(out.text().find("The style 'panel' holds a control of its own style"), std::string::npos);
    EXPECT_NE(out.text().find("The style 'frame' holds a control of its own style"), std::string::npos);
}

TEST_F(ControlTest, StylesThatDoubleAreBounded) {
    std::string style;
    for (int i = 0; i < 40; ++i)
        style += "<s" + std::to_string(i) + "><child><frame class='s" + std::to_string(i + 1) +
                 "'/><frame class='s" + std::to_string(i + 1) + "'/></child></s" + std::to_string(i) + ">";
    loadStyle(style);
    Plain& control = add(Box2());
    CaptureStdout out;
    loadText(control, "<p><child><frame class='s0'/></child></p>");
    EXPECT_NE(out.text().find("The styles hold more than 20000 controls: 'frame' and more are left out"),
              std::string::npos);
}

TEST_F(ControlTest, ALayoutNestedTenThousandDeepIsCut) {
    std::string text;
    for (int i = 0; i < 10000; ++i)
        text += "<flow><child>";
    for (int i = 0; i < 10000; ++i)
        text += "</child></flow>";
    Plain& control = add(Box2());
    CaptureStdout out;
    try {
        loadText(control, "<p><child>" + text + "</child></p>");
    } catch (const Exception&) {
        SUCCEED(); // the parser has limits of its own
        return;
    }
    int depth = 0;
    for (Control* inner = &control; inner; inner = inner->getControl(0))
        ++depth;
    EXPECT_LE(depth, Control::MAX_DEPTH);
    EXPECT_NE(out.text().find("The flow 'control' is left out: it would be nested more than 256 deep"),
              std::string::npos);
}

TEST_F(ControlTest, TwoHundredFlowsInEachOtherAreLaidOut) {
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "<flow><area percent='1'/><child>";
    text += "<label id='core'><area percent='1'/></label>";
    for (int i = 0; i < 200; ++i)
        text += "</child></flow>";
    Plain& control = add(Box2(0, 0, 300, 200));
    loadText(control, "<p><child><flow><child>" + text + "</child></flow></child></p>");
    root.setArea(Box2(0, 0, 400, 300));
    Control* core = root.findControl("core");
    ASSERT_TRUE(core);
    EXPECT_EQ(core->mArea.world, Box2(0, 0, 400, 300));
}

TEST_F(ControlTest, NumbersDoNotDependOnTheLocale) {
    const CommaLocale comma;
    if (!comma)
        GTEST_SKIP() << "localedef or its sources are missing";
    Plain& control = add(Box2());
    loadText(control, "<p><area x='1.25' w='2.5'/></p>");
    EXPECT_EQ(control.getArea(), Box2(1.25f, 0, 3.75f, 0));
}

// Factory

TEST_F(ControlTest, TheFactoryClonesTheFirstOfAType) {
    class Other : public Plain {
    public:
        explicit Other(int number) : mNumber(number) { mType = "other"; }
        Control* clone() override { return new Other(mNumber); }
        int mNumber;
    };
    controlFactory.addControlType(new Other(1));
    controlFactory.addControlType(new Other(2));
    controlFactory.addControlType(nullptr);
    const std::unique_ptr<Control> made(controlFactory.create("other"));
    ASSERT_TRUE(made);
    EXPECT_EQ(dynamic_cast<Other&>(*made).mNumber, 1);
    EXPECT_EQ(controlFactory.create("Other"), nullptr);
    EXPECT_EQ(controlFactory.create(""), nullptr);
}

// Flow

class FlowTest : public ControlTest {
protected:
    Flow& flow;

    FlowTest() : flow(addFlow(Box2(0, 0, 50, 120))) {}

    Plain& child(float size) {
        Plain* control = new Plain;
        flow.addControl(control);
        if (size > 0)
            flow.setSize(control, size);
        else
            flow.setPercent(control, -size);
        return *control;
    }
};

TEST_F(FlowTest, ItsDefaults) {
    EXPECT_EQ(flow.getType(), "flow");
    EXPECT_EQ(flow.mDirection, 1);
    EXPECT_FALSE(flow.mRaiseOnFocus);
    EXPECT_EQ(flow.mBack.color.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(flow.mBack.color.second, Vector4f(1, 0, 0, 1));
    Plain* control = new Plain;
    flow.addControl(control);
    EXPECT_EQ(flow.getSize(control), 10.0f);
    flow.setPercent(control, 25);
    EXPECT_EQ(flow.getSize(control), -25.0f);
    EXPECT_EQ(flow.getSize(nullptr), 0.0f);
}

TEST_F(FlowTest, SharesDivideWhatTheFixedSizesLeave) {
    Plain& a = child(20);
    Plain& b = child(-1);
    Plain& c = child(-3);
    flow.setArea(Box2(0, 0, 50, 120));
    EXPECT_EQ(a.getArea(), Box2(0, 0, 50, 20));
    EXPECT_EQ(b.getArea(), Box2(0, 20, 50, 45));
    EXPECT_EQ(c.getArea(), Box2(0, 45, 50, 120));
    flow.setDirection(Flow::HORIZONTAL);
    flow.setArea(Box2(7, 7, 127, 57));
    EXPECT_EQ(a.getArea(), Box2(0, 0, 20, 50));
    EXPECT_EQ(b.getArea(), Box2(20, 0, 45, 50));
    EXPECT_EQ(c.getArea(), Box2(45, 0, 120, 50));
}

TEST_F(FlowTest, SharesAreRoundedToWholePixels) {
    Plain& a = child(-1);
    Plain& b = child(-1);
    Plain& c = child(-1);
    flow.setArea(Box2(0, 0, 50, 100));
    EXPECT_EQ(a.getArea(), Box2(0, 0, 50, 33));
    EXPECT_EQ(b.getArea(), Box2(0, 33, 50, 66));
    EXPECT_EQ(c.getArea(), Box2(0, 66, 50, 99));
}

TEST_F(FlowTest, FixedSizesThatExceedTheLengthLeaveNothingForTheShares) {
    Plain& a = child(100);
    Plain& b = child(-5);
    Plain& c = child(80);
    flow.setArea(Box2(0, 0, 50, 120));
    EXPECT_EQ(a.getArea(), Box2(0, 0, 50, 100));
    EXPECT_EQ(b.getArea(), Box2(0, 100, 50, 100));
    EXPECT_EQ(c.getArea(), Box2(0, 100, 50, 180));
}

TEST_F(FlowTest, SharesOfNothingGetNothing) {
    Plain& a = child(20);
    Plain& b = child(0);
    flow.setArea(Box2(0, 0, 50, 120));
    EXPECT_EQ(a.getArea(), Box2(0, 0, 50, 20));
    EXPECT_EQ(b.getArea(), Box2(0, 20, 50, 20));
}

TEST_F(FlowTest, SizesOfNanAndInfinityAreAccepted) {
    for (float size : {NO_NUMBER, ENDLESS, -ENDLESS, 3e38f, -3e38f})
        child(size);
    child(-1);
    flow.setArea(Box2(0, 0, 50, 120));
    flow.setArea(Box2(0, 0, NO_NUMBER, ENDLESS));
    flow.setArea(Box2(0, 0, -50, -120));
}

TEST_F(FlowTest, ADeletedChildsSizeIsForgotten) {
    child(20);
    child(-1);
    flow.deleteControl(0);
    EXPECT_EQ(flow.mSizes.size(), 1u);
    Plain& moved = static_cast<Plain&>(*flow.getControl(0));
    root.addControl(&moved, -1);
    EXPECT_TRUE(flow.mSizes.empty());
    child(1);
    flow.deleteControls();
    EXPECT_TRUE(flow.mSizes.empty());
}

TEST_F(FlowTest, DirectionSizeAndPercentAreRead) {
    loadText(flow,
             "<flow direction='horisontal'><area w='120' h='50'/><child><label><area size='20'/></label>"
             "<label><area percent='1'/></label><label><area percent='3'/></label><label/></child></flow>");
    EXPECT_EQ(flow.mDirection, 0);
    ASSERT_EQ(flow.getControlSize(), 4u);
    EXPECT_EQ(flow.getControl(0)->getArea(), Box2(0, 0, 20, 50));
    EXPECT_EQ(flow.getControl(1)->getArea(), Box2(20, 0, 43, 50)); // the last one's 10 are fixed as well
    EXPECT_EQ(flow.getControl(2)->getArea(), Box2(43, 0, 111, 50));
    EXPECT_EQ(flow.getControl(3)->getArea(), Box2(111, 0, 121, 50));
    Flow other;
    loadText(other, "<flow direction='horizontal'/>");
    EXPECT_EQ(other.mDirection, 1);
}

// Panel

TEST_F(ControlTest, APanelsDefaultsAndItsChildArea) {
    Panel* panel = new Panel;
    root.addControl(panel, -1);
    EXPECT_EQ(panel->getType(), "panel");
    EXPECT_EQ(panel->getCaption(), "");
    EXPECT_EQ(panel->mBack.color.first, Vector4f(0.6f, 0.6f, 0.6f, 0.6f));
    EXPECT_EQ(panel->mBack.color.second, Vector4f(1, 1, 1, 0.07f));
    EXPECT_EQ(panel->mText.color.first, Vector4f(1, 1, 1, 1));
    panel->setArea(Box2(100, 100, 300, 200));
    EXPECT_EQ(panel->getChildArea(), Box2(5, 15, 194, 94));
    EXPECT_EQ(panel->getChildAreaWorld(), Box2(105, 115, 294, 194));
    panel->setArea(Box2(100, 100, 104, 105)); // smaller than its edges
    EXPECT_EQ(panel->mChildArea.clip, Box2());
}

TEST_F(ControlTest, ClonesAreNewOnesOfTheSameClass) {
    Flow flow;
    Panel panel;
    flow.setDirection(Flow::HORIZONTAL);
    panel.setCaption("one");
    for (Control* prototype :
         {static_cast<Control*>(&flow), static_cast<Control*>(&panel), static_cast<Control*>(&root)}) {
        const std::unique_ptr<Control> clone(prototype->clone());
        EXPECT_EQ(clone->getType(), prototype->getType());
        EXPECT_EQ(clone->getParent(), nullptr);
    }
    const std::unique_ptr<Control> clone(flow.clone());
    EXPECT_EQ(dynamic_cast<Flow&>(*clone).mDirection, 1); // by its default constructor
}

} // namespace
