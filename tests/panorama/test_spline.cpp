// The curve widget, operated by events: the effect of each on the curve and the selection.
#include "dis_key.h"
#include "pan_spline.h"
#include "pan_splineorg.h"
#include "xml_parser.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;

namespace {

// Records the actions of its children.
struct Listening : Control, Callback {
    std::vector<Action> actions;

    Listening() {
        setArea(Box2(0, 0, 1000, 1000));
        setCallback(this);
    }
    Control* clone() override { return nullptr; }
    void controlAction(Control*, Action action) override { actions.push_back(action); }
};

// A widget of 200 by 100 at (100, 50): a tenth of a second is 20 pixels, a tenth of a value 5.
class SplineTest : public ::testing::Test {
protected:
    Listening mParent;
    Spline& mSpline = *new Spline;

    SplineTest() {
        mSpline.setArea(Box2(100, 50, 300, 150));
        mParent.addControl(&mSpline, -1);
        mSpline.setSpline(new Spline::SplineBase, true);
        mSpline.mSpline->mMode = mathbase::SPLINE_LINEAR;
    }

    Spline::SplineBase& curve() { return *mSpline.mSpline; }

    void keys(const std::vector<std::pair<float, float>>& list) {
        for (const auto& [time, value] : list) {
            Spline::Key key;
            key.time = time;
            key.value = value;
            curve().addKey(key);
        }
    }

    int send(const char* type, Vector2f place, int button = 0) {
        Event event;
        event.type = type;
        event.mousePos = place;
        event.button = button;
        return mSpline.handleEvent(event);
    }
    int press(int key) {
        Event event;
        event.type = "keydown";
        event.key = key;
        return mSpline.handleEvent(event);
    }
    void choose(const std::string& path) {
        Event event;
        event.type = "context";
        event.text = path;
        mSpline.handleEvent(event);
    }
    static Vector2f place(float time, float value) { return Vector2f(100 + 200 * time, 100 + 50 * value); }
    void grab(float time, float value) {
        send("mousemove", place(time, value));
        send("mousedown", place(time, value));
    }
};

} // namespace

TEST_F(SplineTest, BeginsWithNothingSelected) {
    Spline fresh;
    EXPECT_FALSE(fresh.mOwnsSpline);
    EXPECT_EQ(fresh.mSpline, nullptr);
    EXPECT_TRUE(fresh.mPoints.empty());
    EXPECT_TRUE(fresh.mDirty);
    EXPECT_EQ(fresh.mSize, 3.5f);
    EXPECT_EQ(fresh.mHoverKey, 0);
    EXPECT_EQ(fresh.mSelected, -1);
    EXPECT_EQ(fresh.mDragKey, -1);
    EXPECT_EQ(fresh.getType(), "spline");
}

TEST_F(SplineTest, MenusHoldTheEntriesOfKeysAndTypes) {
    const auto captions = [](Context& menu) {
        std::vector<std::string> list;
        for (unsigned int i = 0; i < menu.getControlSize(); ++i)
            list.push_back(menu.getControl(i)->getCaption());
        return list;
    };
    using List = std::vector<std::string>;
    EXPECT_EQ(captions(mSpline.mContextEmpty), (List{"add key", "-------", "type"}));
    EXPECT_EQ(captions(mSpline.mContext), (List{"delete key", "---------", "type"}));
    EXPECT_EQ(captions(mSpline.mContextType), (List{"square", "linear", "smooth"}));
    EXPECT_EQ(mSpline.mContextEmpty.getCaption(), "spline");
    EXPECT_EQ(mSpline.mContext.getCaption(), "spline");
    EXPECT_EQ(mSpline.mContextEmpty.getControl(2), &mSpline.mContextType);
    EXPECT_EQ(mSpline.mContext.getControl(2), &mSpline.mContextType);
}

TEST_F(SplineTest, ARowOfTheMenuReportsItsPath) {
    keys({{0.5f, 0}});
    Event event;
    event.type = "context";
    event.text = "square";
    mSpline.mContextEmpty.setParent(&mSpline);
    mSpline.mContextType.setParent(&mSpline.mContextEmpty);
    mSpline.mContextType.sendContextEvent(event);
    EXPECT_EQ(curve().mMode, mathbase::SPLINE_SQUARE);
    event.text = "add key";
    mSpline.mContextPos = place(0.25f, 0.5f);
    mSpline.mContextEmpty.sendContextEvent(event);
    ASSERT_EQ(curve().getNumKeys(), 2);
    EXPECT_FLOAT_EQ(curve().mKeys[0].time, 0.25f);
    EXPECT_FLOAT_EQ(curve().mKeys[0].value, 0.5f);
}

TEST_F(SplineTest, TheFirstKeyInReachIsHovered) {
    keys({{0.5f, 0}, {0.51f, 0}});
    send("mousemove", place(0.5f, 0) + Vector2f(4.5f, -4.5f));
    EXPECT_EQ(mSpline.mHoverKey, 0);
    send("mousemove", place(0.5f, 0) + Vector2f(4.6f, 0)); // only the other one is in reach
    EXPECT_EQ(mSpline.mHoverKey, 1);
    send("mousemove", place(0.5f, 0) + Vector2f(0, 4.6f));
    EXPECT_EQ(mSpline.mHoverKey, -1);
}

TEST_F(SplineTest, ADragSetsTimeAndValueAndReports) {
    keys({{0, 0}, {0.5f, 0}, {1, 0}});
    grab(0.5f, 0);
    EXPECT_EQ(mSpline.mDragKey, 1);
    EXPECT_EQ(mSpline.mSelected, 1);
    mSpline.mDirty = false;
    send("mousemove", place(0.6f, -0.8f));
    EXPECT_FLOAT_EQ(curve().mKeys[1].time, 0.6f);
    EXPECT_FLOAT_EQ(curve().mKeys[1].value, -0.8f);
    EXPECT_TRUE(mSpline.mDirty);
    EXPECT_EQ(mParent.actions, (std::vector<Action>{ACTION_SPLINE}));
    send("mouseup", place(0.6f, -0.8f));
    EXPECT_EQ(mSpline.mDragKey, -1);
    EXPECT_EQ(mSpline.mHoverKey, -1);
    send("mousemove", place(0.9f, 0.9f));
    EXPECT_FLOAT_EQ(curve().mKeys[1].time, 0.6f);
}

TEST_F(SplineTest, ADragAcrossANeighbourKeepsTheKeySelectedAtItsNewIndex) {
    keys({{0.2f, 0.1f}, {0.4f, 0.2f}, {0.8f, 0.3f}});
    grab(0.2f, 0.1f);
    send("mousemove", place(0.5f, 0.1f));
    EXPECT_EQ(mSpline.mDragKey, 1);
    EXPECT_EQ(mSpline.mSelected, 1);
    EXPECT_EQ(mSpline.mHoverKey, 1);
    send("mousemove", place(0.9f, 0.1f)); // and across the next
    EXPECT_EQ(mSpline.mSelected, 2);
    EXPECT_FLOAT_EQ(curve().mKeys[2].value, 0.1f);
    EXPECT_FLOAT_EQ(curve().mKeys[0].value, 0.2f);
    send("mousemove", place(0.1f, 0.1f)); // and back across both at once
    EXPECT_EQ(mSpline.mSelected, 0);
    EXPECT_EQ(curve().getNumKeys(), 3);
}

TEST_F(SplineTest, ADragIsNotBounded) {
    keys({{0.5f, 0}});
    grab(0.5f, 0);
    send("mousemove", Vector2f(-900, 2000));
    EXPECT_FLOAT_EQ(curve().mKeys[0].time, -5);
    EXPECT_FLOAT_EQ(curve().mKeys[0].value, 38);
}

TEST_F(SplineTest, ADragRunsTheTangents) {
    curve().mMode = mathbase::SPLINE_SMOOTH;
    keys({{0, 0}, {0.5f, 0}, {1, 0}});
    grab(0.5f, 0);
    send("mousemove", place(0.5f, 0.4f));
    EXPECT_NE(curve().mKeys[0].tangentOut, 0);
    EXPECT_FLOAT_EQ(curve().mMax, 0.4f);
}

TEST_F(SplineTest, AKeyOfAnExtremelyNarrowWidgetIsHit) {
    keys({{0, 0}});
    mSpline.setArea(Box2(100, 50, 100 + 1e-38f, 150));
    send("mousemove", Vector2f(100, 100));
    EXPECT_EQ(mSpline.mHoverKey, 0);
}

TEST_F(SplineTest, AKeyAtTheEdgeIsHitAtItsWholeWidth) {
    keys({{0, 0}, {1, 0}, {2, 0}});
    const auto accepts = [&](Vector2f position) {
        Event event;
        event.type = "mousemove";
        event.mousePos = position;
        return mSpline.acceptEvents(event);
    };
    EXPECT_TRUE(accepts(Vector2f(95.5f, 100)));
    EXPECT_FALSE(accepts(Vector2f(95, 100)));
    EXPECT_FALSE(accepts(Vector2f(97, 90)));
    EXPECT_TRUE(accepts(Vector2f(304, 100)));
    EXPECT_FALSE(accepts(place(2, 0))); // out of sight
    Control& other = *new Spline;
    mParent.addControl(&other, -1);
    send("mousemove", Vector2f(97, 100));
    send("mousedown", Vector2f(97, 100));
    EXPECT_EQ(mSpline.mDragKey, 0);
    EXPECT_EQ(mParent.getFocus(), &mSpline); // so that the keyboard acts on it
}

TEST_F(SplineTest, DeletingTheLastRemainingKeyLeavesAnEmptySplineThatIsZero) {
    keys({{0.5f, 0.7f}});
    send("mousemove", place(0.5f, 0.7f));
    send("mousedown", place(0.5f, 0.7f), 1);
    EXPECT_EQ(mSpline.mDeleteIndex, 0);
    choose("spline.delete key");
    EXPECT_EQ(curve().getNumKeys(), 0);
    EXPECT_EQ(curve().evaluate(0.5f), 0);
    EXPECT_EQ(mSpline.mSelected, -1);
}

TEST_F(SplineTest, DeletingNoKeyAborts) {
    keys({{0.5f, 0}});
    mSpline.mDeleteIndex = 1;
    EXPECT_DEATH(choose("spline.delete key"),
                 "mDeleteIndex>=0 && mDeleteIndex<\\(int\\)m_spline->getNumKeys\\(\\)");
    mSpline.mDeleteIndex = -1;
    EXPECT_DEATH(choose("spline.delete key"),
                 "mDeleteIndex>=0 && mDeleteIndex<\\(int\\)m_spline->getNumKeys\\(\\)");
}

TEST_F(SplineTest, AKeyIsAddedWhereTheMenuWasAskedFor) {
    keys({{0, 0}, {1, 0}});
    send("mousemove", place(0.3f, 0.6f));
    send("mousedown", place(0.3f, 0.6f), 1);
    mSpline.mDirty = false;
    choose("spline.add key");
    ASSERT_EQ(curve().getNumKeys(), 3);
    EXPECT_FLOAT_EQ(curve().mKeys[1].time, 0.3f);
    EXPECT_FLOAT_EQ(curve().mKeys[1].value, 0.6f);
    EXPECT_TRUE(mSpline.mDirty);
}

TEST_F(SplineTest, TheMenuSetsTheType) {
    for (const auto& [path, mode] : {std::pair("spline.type.square", 0), std::pair("spline.type.smooth", 2),
                                     std::pair("spline.type.linear", 1)}) {
        mSpline.mDirty = false;
        choose(path);
        EXPECT_EQ(curve().mMode, mode);
        EXPECT_TRUE(mSpline.mDirty);
    }
    choose("spline.type.unknown");
    choose("spline.-------");
    choose("type.square");
    EXPECT_EQ(curve().mMode, 1);
}

TEST_F(SplineTest, AnyOtherTypeIsIgnored) {
    mSpline.setSplineType("cubic");
    EXPECT_EQ(curve().mMode, mathbase::SPLINE_LINEAR);
    mSpline.setSplineType("smooth");
    EXPECT_EQ(curve().mMode, mathbase::SPLINE_SMOOTH);
}

TEST_F(SplineTest, LeftAndRightStayInTheList) {
    keys({{0, 0}, {0.5f, 0}, {1, 0}});
    EXPECT_EQ(press(display::KEY_LEFT), 1);
    EXPECT_EQ(mSpline.mSelected, 0);
    press(display::KEY_LEFT);
    EXPECT_EQ(mSpline.mSelected, 0);
    for (int i = 0; i < 4; ++i)
        press(display::KEY_RIGHT);
    EXPECT_EQ(mSpline.mSelected, 2);
}

TEST_F(SplineTest, KeysOnAnEmptySplineSelectNothing) {
    press(display::KEY_LEFT);
    press(display::KEY_RIGHT);
    press(display::KEY_DEL);
    EXPECT_EQ(mSpline.mSelected, -1);
    EXPECT_EQ(curve().getNumKeys(), 0);
}

TEST_F(SplineTest, InsertAddsTheMeanOfTheSelectedKeyAndTheNext) {
    curve().mAutoTangents = false;
    Spline::Key a, b;
    a = {0.2f, 0.1f, 1, 2};
    b = {0.6f, 0.5f, 3, 6};
    curve().addKey(a);
    curve().addKey(b);
    mSpline.mSelected = 0;
    press(display::KEY_INSERT);
    ASSERT_EQ(curve().getNumKeys(), 3);
    EXPECT_FLOAT_EQ(curve().mKeys[1].time, 0.4f);
    EXPECT_FLOAT_EQ(curve().mKeys[1].value, 0.3f);
    EXPECT_FLOAT_EQ(curve().mKeys[1].tangentIn, 2);
    EXPECT_FLOAT_EQ(curve().mKeys[1].tangentOut, 4);
    EXPECT_EQ(mSpline.mSelected, 0);
}

TEST_F(SplineTest, InsertAtTheLastKeyAppendsAtTimeOne) {
    keys({{0, 0.2f}, {0.5f, 0.7f}});
    mSpline.mSelected = 1;
    press(display::KEY_INSERT);
    ASSERT_EQ(curve().getNumKeys(), 3);
    EXPECT_FLOAT_EQ(curve().mKeys[2].time, 1.0f);
    EXPECT_FLOAT_EQ(curve().mKeys[2].value, 0.7f);
}

TEST_F(SplineTest, InsertBeforeTheSelectionKeepsItOnItsKey) {
    keys({{3, 0.2f}, {5, 0.7f}});
    mSpline.mSelected = 1;
    press(display::KEY_INSERT); // at time 1, before both
    EXPECT_EQ(curve().mKeys[0].time, 1.0f);
    EXPECT_EQ(mSpline.mSelected, 2);
}

TEST_F(SplineTest, InsertIntoAnEmptySplineAddsTheOrigin) {
    press(display::KEY_INSERT);
    ASSERT_EQ(curve().getNumKeys(), 1);
    EXPECT_EQ(curve().mKeys[0].time, 0);
    EXPECT_EQ(curve().mKeys[0].value, 0);
}

TEST_F(SplineTest, DelRemovesTheSelectedKeyUntilNoneIsLeft) {
    keys({{0, 0}, {0.5f, 0.5f}, {1, 1}});
    press(display::KEY_DEL); // nothing is selected
    EXPECT_EQ(curve().getNumKeys(), 3);
    mSpline.mSelected = 1;
    press(display::KEY_DEL);
    EXPECT_EQ(curve().getNumKeys(), 2);
    EXPECT_EQ(mSpline.mSelected, 1);
    press(display::KEY_DEL);
    EXPECT_EQ(mSpline.mSelected, 0);
    press(display::KEY_DEL);
    press(display::KEY_DEL);
    EXPECT_EQ(curve().getNumKeys(), 0);
    EXPECT_EQ(mSpline.mSelected, -1);
}

TEST_F(SplineTest, WithoutTheFocusKeysAreNotTaken) {
    keys({{0, 0}});
    mParent.setFocus(nullptr);
    EXPECT_EQ(press(display::KEY_RIGHT), 0);
    EXPECT_EQ(mSpline.mSelected, -1);
}

TEST_F(SplineTest, DeletingWhileDraggingEndsTheDrag) {
    keys({{0.5f, 0}});
    grab(0.5f, 0);
    press(display::KEY_DEL);
    send("mousemove", place(0.9f, 0));
    EXPECT_EQ(curve().getNumKeys(), 0);
    EXPECT_EQ(mSpline.mDragKey, -1);
}

TEST_F(SplineTest, AHeldKeyKeepsTheEvents) {
    keys({{0.5f, 0}});
    Event outside;
    outside.mousePos = Vector2f(900, 900);
    send("mousemove", Vector2f(900, 900));
    EXPECT_FALSE(mSpline.acceptEvents(outside));
    grab(0.5f, 0);
    send("reset", Vector2f(900, 900));
    EXPECT_TRUE(mSpline.acceptEvents(outside));
}

TEST_F(SplineTest, AWidgetWithoutASideMovesNothing) {
    keys({{0.5f, 0.25f}});
    mSpline.setArea(Box2(100, 50, 100, 150));
    send("mousemove", Vector2f(100, 112.5f));
    send("mousedown", Vector2f(100, 112.5f));
    send("mousemove", Vector2f(150, 60));
    EXPECT_EQ(curve().mKeys[0].time, 0.5f);
    mSpline.mContextPos = Vector2f(100, 100);
    choose("spline.add key");
    EXPECT_EQ(curve().getNumKeys(), 1);
}

TEST_F(SplineTest, WithoutACurveEventsDoNothing) {
    mSpline.setSpline(nullptr, false);
    grab(0.5f, 0);
    send("mousedown", place(0, 0), 1);
    for (const int key : {display::KEY_LEFT, display::KEY_RIGHT, display::KEY_DEL, display::KEY_INSERT})
        press(key);
    choose("spline.add key");
    choose("spline.delete key");
    choose("spline.type.square");
    EXPECT_EQ(mSpline.mDragKey, -1);
}

TEST_F(SplineTest, LoadsACurveOfItsOwn) {
    xml::XmlParser document;
    document.parse(
        "<panorama><spline type=\"square\"><item x=\"0.5\" y=\"1\"/><item x=\"0\" y=\"-1\"/></spline>"
        "</panorama>");
    xml::IteratorConst it = static_cast<const xml::XmlParser&>(document).createIterator("spline");
    ASSERT_TRUE(++it);
    Spline loaded;
    loaded.load(it);
    EXPECT_TRUE(loaded.mOwnsSpline);
    ASSERT_NE(loaded.mSpline, nullptr);
    EXPECT_EQ(loaded.mSpline->mMode, mathbase::SPLINE_SQUARE);
    ASSERT_EQ(loaded.mSpline->getNumKeys(), 2);
    EXPECT_EQ(loaded.mSpline->mKeys[0].time, 0);
    EXPECT_EQ(loaded.mSpline->mKeys[0].value, -1);
    EXPECT_EQ(loaded.mSpline->mKeys[1].value, 1);
}

TEST_F(SplineTest, DoesNotFreeWhatItDoesNotOwn) {
    Spline::SplineBase mine;
    {
        Spline widget;
        widget.setSpline(&mine, false);
        widget.setSpline(nullptr, false);
        widget.setSpline(&mine, false);
    }
    mine.addKey({});
    EXPECT_EQ(mine.getNumKeys(), 1);
}

// A layout may put any control into a curve.
TEST_F(SplineTest, MayBeDeletedByTheActionOfAControlInIt) {
    struct Deleting : Control {
        Control* clone() override { return nullptr; }
        int handleEvent(Event&) override {
            delete mParent; // and this with it
            return 1;
        }
    };
    for (Control* widget : {static_cast<Control*>(new Spline), static_cast<Control*>(new SplineOrg)}) {
        widget->setArea(Box2(400, 50, 600, 150));
        mParent.addControl(widget, -1);
        Deleting* child = new Deleting;
        child->setArea(Box2(0, 0, 200, 100));
        widget->addControl(child, -1);
        Event event;
        event.type = "mousedown";
        event.mousePos = Vector2f(500, 100);
        EXPECT_EQ(mParent.handleEvent(event), 1);
        EXPECT_EQ(mParent.getControlSize(), 1u);
    }
}

TEST_F(SplineTest, ClonesAreFresh) {
    keys({{0.5f, 0}});
    Control* const clone = mSpline.clone();
    ASSERT_NE(dynamic_cast<Spline*>(clone), nullptr);
    EXPECT_EQ(dynamic_cast<Spline*>(clone)->mSpline, nullptr);
    delete clone;
}
