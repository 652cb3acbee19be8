// The timeline editor in use: real mouse and keys on a real window; checks the script in memory and the
// picture.
#include "allocations.h"
#include "editor.h"

#include "dis_display.h"
#include "dis_key.h"
#include "pan_controlfactory.h"
#include "pan_label.h"
#include "pan_slider.h"
#include "pan_stat.h"
#include "real_show.h"
#include "script_effect.h"
#include "script_spline.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

using namespace zentrak;
using namespace zentrak::test;
using kindler::Effector;
using mathbase::Box2;
using mathbase::Vector2f;

namespace {

// One white span from 20 to 40, followed by one with a curve.
const std::string TWO_SPANS = "<script><effect name=\"grey\" start=\"20\" end=\"40\"/>"
                              "<effect name=\"grey\" start=\"50\" end=\"70\">"
                              "<spline name=\"grey\" type=\"linear\"><key time=\"0\" value=\"0\"/>"
                              "<key time=\"0.5\" value=\"0.5\"/><key time=\"0.75\" value=\"0.25\"/></spline>"
                              "</effect></script>";

Vector2f middle(const Box2& box) {
    return Vector2f(std::floor((box.x1 + box.x2) * 0.5f), std::floor((box.y1 + box.y2) * 0.5f));
}

// The grey in the middle of the picture's quarter.
int greyOf(const Picture& picture) {
    return picture.at(picture.width * 3 / 4, picture.height / 4)[0];
}

// Rows of several kinds: nested spans, splines of both.
const std::string NEST =
    "<script><effect name=\"outer\" start=\"0\" end=\"100\">"
    "<spline name=\"a\"><key value=\"0\"/></spline><spline name=\"b\"><key value=\"0\"/></spline>"
    "<effect name=\"inner\" start=\"5\" end=\"25\"><spline name=\"c\"><key value=\"0\"/></spline>"
    "<effect name=\"innermost\" start=\"1\" end=\"2\"/></effect>"
    "<effect name=\"second\" start=\"30\" end=\"40\"/></effect>"
    "<effect name=\"last\" start=\"3\" end=\"9\"/></script>";

} // namespace

TEST(TheEditor, IsHiddenUntilTabAndMovesThePictureToTheUpperRightQuarterAndBack) {
    EditedShow show("<script><effect name=\"grey\" end=\"100\"/></script>");
    show.play([&] {
        show.frame([&] { EXPECT_FALSE(show.gui().isVisible()); });
        const Picture hidden = show.picture();
        for (const auto& [x, y] :
             {std::pair(2, 2), std::pair(1277, 2), std::pair(2, 797), std::pair(1277, 797)})
            EXPECT_EQ(hidden.at(x, y)[0], 255) << x << " " << y;
        show.open();
        const Picture shown = show.picture();
        for (const auto& [x, y] :
             {std::pair(640, 0), std::pair(1279, 0), std::pair(640, 399), std::pair(1279, 399)})
            EXPECT_EQ(shown.at(x, y)[0], 255) << x << " " << y;
        for (const auto& [x, y] : {std::pair(639, 0), std::pair(639, 399), std::pair(640, 400),
                                   std::pair(1279, 400), std::pair(2, 2), std::pair(2, 797)})
            EXPECT_LT(shown.at(x, y)[0], 100) << x << " " << y;
        show.close();
        EXPECT_EQ(comparePictures(show.picture(), hidden).changed, 0);
    });
}

TEST(TheEditor, HasARowForEachSpanAndEachSplineInTheOrderOfTheScript) {
    EditedShow show(NEST);
    show.play([&] {
        show.open();
        show.frame([&] {
            struct Expected {
                const char* caption;
                int level;
                float height;
                bool curve;
            };
            const Expected expected[] = {
                {"outer", 0, 30, false},  {"a", 0, 70, true},     {"b", 0, 70, true},
                {"inner", 1, 30, false},  {"c", 1, 70, true},     {"innermost", 2, 30, false},
                {"second", 1, 30, false}, {"last", 0, 30, false}, {"opening", 0, 30, false}};
            int index = 0;
            float y = 0;
            for (const Expected& e : expected) {
                kindler::Row* const row = show.row(index);
                ASSERT_NE(row, nullptr) << e.caption;
                EXPECT_EQ(row->getCaption(), e.caption);
                EXPECT_EQ(row->getName(), e.caption);
                EXPECT_EQ(row->getType(), "control");
                EXPECT_EQ(row->mLevel, e.level) << e.caption;
                EXPECT_EQ(row->getArea(), Box2(0, y, 10 * 200 + 200, y + e.height)) << e.caption;
                EXPECT_EQ(show.curve(index) != nullptr, e.curve);
                EXPECT_EQ(show.bar(index) != nullptr, !e.curve);
                y += e.height;
                ++index;
            }
            EXPECT_EQ(show.row(index), nullptr);
            EXPECT_EQ(show.bar(0)->getArea(), Box2(0, 2, 1000, 27));
            EXPECT_EQ(show.bar(3)->getArea(), Box2(50, 2, 250, 27)); // in its parent's time
            EXPECT_EQ(show.curve(4)->getArea(), Box2(50, 2, 250, 72));
            EXPECT_EQ(show.bar(3)->mEffect, show.effect(0).mChildren[0]);
            EXPECT_EQ(show.curve(4)->mSpline, show.effect(0).mChildren[0]->mSplines[0]);
            EXPECT_FALSE(show.curve(4)->mOwnsSpline);
            EXPECT_GE(show.control("effects")->getArea().y2, y);
        });
    });
}

TEST(TheEditor, EachLevelOfTheNestIndentsItsLabelByTwentyPixels) {
    EditedShow show("<script><effect name=\"a\" end=\"9\"><spline name=\"a\"><key/></spline>"
                    "<effect name=\"a\" end=\"9\"><effect name=\"a\" end=\"9\"/></effect></effect></script>");
    show.play([&] {
        show.open();
        const Picture picture = show.picture();
        const auto labelOf = [&](int row) { // where its text begins
            const Box2 box = show.box(show.row(row));
            for (int x = int(box.x1) + 1; x < 199; ++x)
                for (int y = int(box.y1) + 1; y < int(box.y2) - 1; ++y)
                    if (picture.at(x, y)[0] > 180)
                        return x - int(box.x1);
            return -1;
        };
        const int first = labelOf(0);
        EXPECT_GE(first, 5);
        EXPECT_LT(first, 10);
        EXPECT_EQ(labelOf(1), first); // a curve is indented like its span
        EXPECT_EQ(labelOf(2), first + 20);
        EXPECT_EQ(labelOf(3), first + 40);
    });
}

TEST(TheEditor, DraggingABarMovesItsSpanAndThePictureFollows) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(30);
        show.open();
        EXPECT_EQ(greyOf(show.picture()), 255);
        show.drag(middle(show.box(show.bar(0))), 150, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 35);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 55);
            EXPECT_EQ(show.bar(0)->getArea(), Box2(350, 2, 550, 27));
            EXPECT_EQ(show.kindler().mScript.mScriptLength, 10000);
        });
        show.setTime(36);
        EXPECT_EQ(greyOf(show.picture()), 255);
        show.drag(middle(show.box(show.bar(0))), -250, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 10);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 30);
        });
    });
}

TEST(TheEditor, TheBarFollowsEveryStepOfADrag) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        const Vector2f from = middle(show.box(show.bar(0)));
        show.press(from);
        show.frame([&] { EXPECT_EQ(show.bar(0)->mDragPart, Effector::PART_BAR); });
        for (int step = 1; step <= 10; ++step) {
            show.moveTo(Vector2f(from.x + 7 * float(step), from.y + float(step)));
            show.frame([&] { EXPECT_FLOAT_EQ(show.bar(0)->getArea().x1, 200 + 7 * float(step)); });
        }
        show.release();
        show.frame([&] { EXPECT_EQ(show.bar(0)->mDragPart, Effector::PART_NONE); });
        show.moveTo(Vector2f(from.x + 200, from.y));
        show.frame([&] { EXPECT_FLOAT_EQ(show.effect(0).mStart, 27); });
    });
}

TEST(TheEditor, ABarAtStartZeroDoesNotMoveToTheLeft) {
    EditedShow show("<script><effect name=\"grey\" start=\"0\" end=\"20\"/></script>");
    show.play([&] {
        show.open();
        show.drag(middle(show.box(show.bar(0))), -60, 0);
        show.frame([&] {
            EXPECT_EQ(show.effect(0).mStart, 0);
            EXPECT_EQ(show.effect(0).mEnd, 20);
        });
    });
}

TEST(TheEditor, TheLeftHandleStopsOneSecondBeforeTheEnd) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        const Box2 box = show.box(show.bar(0));
        show.drag(Vector2f(box.x1 + 4, box.y1 + 10), -50, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 15);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 40);
        });
        show.drag(Vector2f(box.x1 - 46, box.y1 + 10), 400, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 39);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 40);
            EXPECT_EQ(show.bar(0)->getArea(), Box2(390, 2, 400, 27));
        });
    });
}

TEST(TheEditor, TheLeftHandleStopsAtTimeZero) {
    EditedShow show("<script><effect name=\"grey\" start=\"5\" end=\"40\"/></script>");
    show.play([&] {
        show.open();
        const Box2 box = show.box(show.bar(0));
        show.drag(Vector2f(box.x1 + 4, box.y1 + 10), -120, 0);
        show.frame([&] {
            EXPECT_EQ(show.effect(0).mStart, 0);
            EXPECT_EQ(show.effect(0).mEnd, 40);
        });
    });
}

TEST(TheEditor, TheRightHandleStopsOneSecondAfterTheStart) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(45);
        show.open();
        EXPECT_NE(greyOf(show.picture()), -1);
        const Box2 box = show.box(show.bar(0));
        show.drag(Vector2f(box.x2 - 4, box.y1 + 10), 80, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 20);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 48);
        });
        EXPECT_EQ(greyOf(show.picture()), 255); // second 45 is in it now
        show.drag(Vector2f(box.x2 + 76, box.y1 + 10), -500, 0);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 20);
            EXPECT_FLOAT_EQ(show.effect(0).mEnd, 21);
        });
    });
}

TEST(TheEditor, TheCurvesOfASpanGoWithItsBar) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        show.drag(middle(show.box(show.bar(1))), -100, 0);
        show.frame([&] {
            EXPECT_EQ(show.bar(1)->getArea(), Box2(400, 2, 600, 27));
            EXPECT_EQ(show.curve(2)->getArea(), Box2(400, 2, 600, 72));
        });
    });
}

TEST(TheEditor, ADragGoesOnOverOtherControlsAndEndsThere) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        const Box2 slider = show.box(show.control("timeslider"));
        show.press(middle(show.box(show.bar(0))));
        show.moveTo(Vector2f(500, slider.y1 + 5)); // over the time slider
        float start = 0;
        show.frame([&] { start = show.effect(0).mStart; });
        EXPECT_FLOAT_EQ(start, 20.0f); // the middle of the bar is at x = 500
        show.moveTo(Vector2f(550, slider.y1 + 5));
        show.moveTo(Vector2f(600, 100)); // beside the picture
        show.frame([&] { EXPECT_FLOAT_EQ(show.effect(0).mStart, 30); });
        show.moveTo(Vector2f(550, slider.y1 + 5));
        show.release();
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(0).mStart, 25);
            EXPECT_EQ(show.gui().mScroll, 0);
        });
        show.moveTo(middle(show.box(show.bar(0))));
        show.moveTo(Vector2f(700, 415));
        show.frame([&] { EXPECT_FLOAT_EQ(show.effect(0).mStart, 25); });
    });
}

TEST(TheEditor, DraggingAKeyChangesTheCurveAndThePicture) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(50.5f);
        show.open();
        EXPECT_NEAR(greyOf(show.picture()), 128, 1);
        show.drag(show.keyPlace(2, 1), 0, 14); // 0.4 downward
        show.frame([&] { EXPECT_NEAR(show.curve(2)->mSpline->mKeys[1].value, 0.9f, 0.02f); });
        EXPECT_NEAR(greyOf(show.picture()), 230, 6);
        show.drag(show.keyPlace(2, 1), -50, 0); // a quarter of a second
        show.frame([&] { EXPECT_NEAR(show.curve(2)->mSpline->mKeys[1].time, 0.25f, 0.004f); });
    });
}

TEST(TheEditor, AKeyDraggedAcrossItsNeighbourStaysSelected) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        show.drag(show.keyPlace(2, 1), 80, 0); // from 0.5 to 0.9, past 0.75
        show.frame([&] {
            const auto& keys = show.curve(2)->mSpline->mKeys;
            ASSERT_EQ(keys.size(), 3u);
            EXPECT_NEAR(keys[2].time, 0.9f, 0.004f);
            EXPECT_NEAR(keys[2].value, 0.5f, 0.02f);
            EXPECT_FLOAT_EQ(keys[1].time, 0.75f);
            EXPECT_EQ(show.curve(2)->mSelected, 2);
        });
    });
}

TEST(TheEditor, TheMenuAddsAndDeletesKeysAndChangesTheType) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(50.6f);
        show.open();
        const auto rowPlace = [](const Box2& menu, int row) {
            return Vector2f(menu.x1 + 20, menu.y1 + 5 + 15 * float(row) + 5);
        };
        const auto choose = [&](panorama::Context& menu, int row) {
            Box2 area;
            show.frame([&] {
                EXPECT_EQ(show.gui().mPanorama.mWorkspace.mContext, &menu);
                area = menu.mArea.area;
            });
            show.click(rowPlace(area, row));
        };
        panorama::Spline* const curve = show.curve(2);
        const Box2 box = show.box(curve);
        const int before = greyOf(show.picture());

        show.click(Vector2f(box.x1 + 120, box.y1 + 56), 3); // time 0.6
        choose(curve->mContextEmpty, 0);
        show.frame([&] {
            ASSERT_EQ(curve->mSpline->getNumKeys(), 4);
            EXPECT_NEAR(curve->mSpline->mKeys[2].time, 0.6f, 0.004f);
            EXPECT_EQ(show.gui().mPanorama.mWorkspace.mContext, nullptr);
        });
        EXPECT_NE(greyOf(show.picture()), before);

        show.click(show.keyPlace(2, 2), 3);
        choose(curve->mContext, 0);
        show.frame([&] { EXPECT_EQ(curve->mSpline->getNumKeys(), 3); });
        EXPECT_EQ(greyOf(show.picture()), before);

        show.click(Vector2f(box.x1 + 160, box.y1 + 15), 3);
        show.frame([&] {});
        Box2 area;
        show.frame([&] { area = curve->mContextEmpty.mArea.area; });
        show.moveTo(rowPlace(area, 2)); // "type" opens its own
        show.frame([&] { area = curve->mContextType.mArea.area; });
        show.click(rowPlace(area, 0));
        show.frame([&] { EXPECT_EQ(curve->mSpline->mMode, mathbase::SPLINE_SQUARE); });
        EXPECT_NEAR(greyOf(show.picture()), 128, 1); // holds the key at 0.5
    });
}

TEST(TheEditor, AMenuAtTheWindowsEdgeIsWholeInIt) {
    EditedShow show(
        "<script><effect name=\"grey\" end=\"200\"><spline name=\"grey\"><key value=\"0\"/></spline>"
        "</effect></script>");
    show.play([&] {
        show.open();
        panorama::Spline* const curve = show.curve(1);
        const Box2 box = show.box(curve);
        show.click(Vector2f(box.x2 - 2, box.y2 - 2), 3);
        show.frame([&] {
            const Box2& menu = curve->mContextEmpty.mArea.area;
            EXPECT_LE(menu.x2 + 2 + curve->mContextType.mArea.area.getWidth(), EditedShow::WIDTH);
            EXPECT_LE(menu.y2, EditedShow::HEIGHT);
            EXPECT_GT(menu.getWidth(), 20);
        });
        show.viewer().key("Tab"); // leaves no menu behind
        show.until("the end of the editor", [&] { return !show.gui().isVisible(); });
        show.frame([&] { EXPECT_EQ(show.gui().mPanorama.mWorkspace.mContext, nullptr); });
    });
}

TEST(TheEditor, KeysSelectAddAndDeleteInTheCurveWithTheFocus) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(50.1f);
        show.open();
        panorama::Spline* const curve = show.curve(2);
        show.click(show.keyPlace(2, 0));
        show.frame([&] { EXPECT_EQ(curve->mSelected, 0); });
        show.viewer().key("Right");
        show.until("the next key", [&] { return curve->mSelected == 1; });
        show.viewer().key("Left");
        show.until("the key before", [&] { return curve->mSelected == 0; });
        show.viewer().key("Left");
        show.viewer().key("Insert");
        show.until("a new key", [&] { return curve->mSpline->getNumKeys() == 4; });
        show.frame([&] {
            EXPECT_EQ(curve->mSelected, 0);
            EXPECT_FLOAT_EQ(curve->mSpline->mKeys[1].time, 0.25f);
            EXPECT_FLOAT_EQ(curve->mSpline->mKeys[1].value, 0.25f);
        });
        EXPECT_NEAR(greyOf(show.picture()), 26, 1);
        show.viewer().key("Delete");
        show.until("one key less", [&] { return curve->mSpline->getNumKeys() == 3; });
        EXPECT_NEAR(greyOf(show.picture()), 64, 1); // the first key is the new one now
        show.frame([&] { EXPECT_FLOAT_EQ(show.kindler().mRawTime, 50.1f); }); // it did not seek
    });
}

TEST(TheEditor, KeysWithTheFocusDoNotReachTheShowUntilEsc) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(30);
        show.open();
        show.viewer().key("Right"); // nothing has the focus
        show.until("a seek", [&] { return show.kindler().mRawTime == 35; });
        show.click(middle(show.box(show.bar(0))));
        show.viewer().key("Right");
        show.viewer().key("space");
        show.viewer().key("q");
        show.viewer().key("m");
        show.settle();
        show.frame([&] {
            EXPECT_EQ(show.kindler().mRawTime, 35);
            EXPECT_TRUE(show.kindler().mPaused);
            EXPECT_FALSE(show.kindler().mMuted);
        });
        show.viewer().key("Escape"); // gives the keys back, and does not quit
        show.viewer().key("Right");
        show.until("a seek", [&] { return show.kindler().mRawTime == 40; });
        show.click(middle(show.box(show.bar(0))));
        show.close(); // Tab is the editor's, whatever has the focus
        show.viewer().key("m");
        show.until("the mute", [&] { return show.kindler().mMuted; });
    });
}

TEST(TheEditor, ClicksOnWhatUsesNoKeysLeaveThemToTheShow) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(30);
        show.open();
        float time = 30;
        const Vector2f places[] = {Vector2f(960, 200), // the picture
                                   Vector2f(250, 325), // the help
                                   Vector2f(300, 100), // the graph
                                   middle(show.box(show.control("timeslider")))};
        for (const Vector2f& place : places) {
            show.click(middle(show.box(show.bar(0)))); // the row has them,
            show.click(place);                         // and loses them
            show.viewer().key("Right");
            time += 5;
            EXPECT_TRUE(show.until("a seek", [&] { return show.kindler().mRawTime == time; }))
                << place.x << " " << place.y;
        }
    });
}

// Escape ends the show, and all edits with it, only when the keys are the show's.
TEST(TheEditor, EscClosesAMenuThenGivesTheKeysBackThenEndsTheShow) {
    EditedShow show(TWO_SPANS);
    bool ended = false;
    show.play([&] {
        show.open();
        show.click(middle(show.box(show.curve(2))), 3);
        const auto menu = [&] { return show.gui().mPanorama.mWorkspace.mContext; };
        show.frame([&] { EXPECT_EQ(menu(), &show.curve(2)->mContextEmpty); });
        show.viewer().key("Escape");
        show.settle();
        show.frame([&] {
            EXPECT_EQ(menu(), nullptr);
            EXPECT_NE(show.gui().mPanorama.mWorkspace.getFocus(), nullptr);
        });
        show.viewer().key("Escape");
        show.settle();
        show.frame([&] { EXPECT_EQ(show.gui().mPanorama.mWorkspace.getFocus(), nullptr); });
        show.viewer().key("Escape");
        ended = show.ends();
    });
    EXPECT_TRUE(ended);
}

TEST(TheEditor, KeysUnderAnOpenMenuGoToTheShow) {
    EditedShow show(TWO_SPANS);
    bool ended = false;
    show.play([&] {
        show.setTime(30);
        show.open();
        show.click(middle(show.box(show.curve(2))), 3);
        const auto menu = [&] { return show.gui().mPanorama.mWorkspace.mContext; };
        show.frame([&] { EXPECT_EQ(menu(), &show.curve(2)->mContextEmpty); });
        show.viewer().key("Right");
        show.settle();
        show.frame([&] {
            EXPECT_EQ(show.kindler().mRawTime, 35);
            EXPECT_EQ(menu(), &show.curve(2)->mContextEmpty);
        });
        show.viewer().key("q");
        ended = show.ends();
    });
    EXPECT_TRUE(ended);
}

TEST(TheEditor, TheFirstKeyOfACurveIsGrabbedAtItsWholeWidth) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        const Vector2f key = show.keyPlace(2, 0);
        show.drag(Vector2f(key.x - 3, key.y), 23, 10);
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.curve(2)->mSpline->mKeys[0].time, 0.1f);
            EXPECT_EQ(show.curve(2)->mSelected, 0);
        });
        show.viewer().key("Delete"); // the curve has the keys
        show.until("one key less", [&] { return show.curve(2)->mSpline->getNumKeys() == 2; });
    });
}

TEST(TheEditor, TheRulersPrototypeIsRegisteredOnce) {
    const auto count = [] {
        int rulers = 0;
        for (panorama::Control* control : panorama::ControlFactory::mControl)
            rulers += control->getType() == "timeruler";
        return rulers;
    };
    for (int i = 0; i < 2; ++i) {
        EditedShow show(TWO_SPANS);
        show.play([&] { show.frame([&] { EXPECT_EQ(count(), 1); }); });
    }
}

TEST(TheEditor, AClickThatHitsTheEditorDoesNotReachTheDriver) {
    // Before the editor, where the driver is.
    struct Driver : display::Listener {
        int presses = 0;
        int onMouseDown(const display::MouseButtonEvent&) override {
            ++presses;
            return WHATEVER;
        }
    } driver;
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.frame([&] {
            display::DisplayGL& display = *show.kindler().mDisplay;
            driver.attachToDisplay(&display);
            std::rotate(display.mListeners.begin(), display.mListeners.end() - 1, display.mListeners.end());
        });
        show.click(Vector2f(300, 600));
        show.frame([&] { EXPECT_EQ(driver.presses, 1); }); // hidden, it hits nothing
        show.open();
        show.click(middle(show.box(show.bar(0))));
        show.click(Vector2f(100, 600));
        show.frame([&] { EXPECT_EQ(driver.presses, 1); });
        show.frame([&] { driver.attachToDisplay(nullptr); });
    });
}

TEST(TheEditor, TheSliderScrollsTheTimeOfAllRows) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        panorama::Slider* slider = nullptr;
        show.frame([&] { slider = dynamic_cast<panorama::Slider*>(show.control("timeslider")); });
        ASSERT_NE(slider, nullptr);
        const Box2 box = show.box(slider);
        show.drag(Vector2f(box.x1 + 18, box.y1 + 10), 300, 0);
        show.frame([&] {
            const float width = box.getWidth() - 36;
            const float position = std::floor(slider->getValue());
            EXPECT_GT(position, 200);
            EXPECT_FLOAT_EQ(show.gui().mScroll, position / width);
            for (int i = 0; show.row(i); ++i) {
                EXPECT_FLOAT_EQ(show.row(i)->getControl(0)->getOffset().x, position / width * 200 * 10);
                EXPECT_EQ(show.row(i)->getControl(0)->getOffset().y, 0);
            }
        });
        show.frame([&] { EXPECT_EQ(show.kindler().mRawTime, 0); }); // it does not seek
    });
}

TEST(TheEditor, CtrlAndTheWheelScrollTheTimeWhereverTheMouseIs) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        for (const float x : {60.0f, 900.0f}) { // over the labels, and over the strip
            float before = 0, after = 0;
            show.moveTo(Vector2f(x, 415));
            show.frame([&] { before = show.gui().mScroll; });
            show.viewer().keyDown("Control_L");
            show.viewer().wheel(1);
            show.viewer().keyUp("Control_L");
            show.settle();
            show.frame([&] { after = show.gui().mScroll; });
            EXPECT_NEAR(after, before + 0.1f, 0.002f);
        }
        show.viewer().keyDown("Control_L");
        show.viewer().wheel(-3);
        show.viewer().keyUp("Control_L");
        show.settle();
        show.frame([&] { EXPECT_EQ(show.gui().mScroll, 0); });
    });
}

TEST(TheEditor, TheWheelAloneScrollsTheRows) {
    std::string script = "<script>";
    for (int i = 0; i < 40; ++i)
        script += "<effect name=\"e" + std::to_string(i) + "\" start=\"1\" end=\"20\"/>";
    EditedShow show(script + "</script>");
    show.play([&] {
        show.open();
        show.moveTo(Vector2f(500, 600));
        float before = 0, after = 0;
        show.frame([&] { before = show.row(20)->getAreaWorld().y1; });
        show.viewer().wheel(-3);
        show.settle();
        show.frame([&] { after = show.row(20)->getAreaWorld().y1; });
        const float view = show.box(show.control("effects")->getParent()).getHeight();
        EXPECT_NEAR(after, before - 150 * (41 * 30 - view) / (41 * 30), 2);
        show.frame([&] { EXPECT_EQ(show.gui().mScroll, 0); });
        show.viewer().wheel(-60);
        show.settle();
        show.frame([&] { // the last row is in view, at the bottom
            const Box2 last = show.row(40)->getAreaWorld();
            EXPECT_NEAR(last.y2, show.control("effects")->getParent()->getAreaWorld().y2, 1);
        });
        show.drag(Vector2f(700, 700), 0, 0);
    });
}

TEST(TheEditor, BarsUnderTheLabelsAreOutOfReach) {
    EditedShow show("<script><effect name=\"grey\" start=\"0\" end=\"100\"/></script>");
    show.play([&] {
        show.open();
        show.frame([&] { show.row(0)->setScrollPos(95); });
        show.moveTo(Vector2f(110, 415)); // where the left end would be
        show.frame([&] { EXPECT_EQ(show.bar(0)->mHoverPart, Effector::PART_NONE); });
        show.moveTo(Vector2f(400, 415));
        show.frame([&] { EXPECT_EQ(show.bar(0)->mHoverPart, Effector::PART_BAR); });
        show.moveTo(Vector2f(110, 415));
        show.frame([&] { EXPECT_EQ(show.bar(0)->mHoverPart, Effector::PART_NONE); });
    });
}

TEST(TheEditor, ShowsTheFrameRate) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        auto* const stat = dynamic_cast<panorama::Stat*>(show.control("fps_stat"));
        auto* const fps = dynamic_cast<panorama::Label*>(show.control("fps"));
        ASSERT_NE(stat, nullptr);
        ASSERT_NE(fps, nullptr);
        show.until("samples", [&] { return stat->getValueCount() >= 3; });
        show.frame([&] {
            const float value = stat->getValue(stat->getValueCount() - 1);
            EXPECT_GT(value, 0);
            char text[32];
            snprintf(text, sizeof text, "%.2f", double(value));
            EXPECT_EQ(fps->getText(), text);
        });
    });
}

TEST(TheEditor, ALargerWindowKeepsTheLayoutOfRowsSliderAndPicture) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.setTime(30);
        show.open();
        show.click(middle(show.box(show.bar(1)))); // the focus changes the order of the list
        show.frame([&] {
            display::DisplayGL& display = *show.kindler().mDisplay;
            display.mWindowMode.width = 1000;
            display.mWindowMode.height = 700;
            display.open();
        });
        show.until("the new size", [&] { return show.control("main")->getArea().x2 == 1000; });
        show.settle();
        show.frame([&] {
            EXPECT_EQ(show.row(0)->getCaption(), "grey");
            EXPECT_EQ(show.bar(0)->mEffect, &show.effect(0));
            EXPECT_EQ(show.row(0)->getArea().y1, 0);
            EXPECT_EQ(show.row(1)->getArea().y1, 30);
            auto* const slider = dynamic_cast<panorama::Slider*>(show.control("timeslider"));
            EXPECT_EQ(slider->mMax, slider->getArea().getWidth() - 36);
        });
        const Picture picture = show.picture();
        EXPECT_EQ(picture.at(990, 10)[0], 255);
        EXPECT_EQ(picture.at(501, 349)[0], 255);
        EXPECT_LT(picture.at(499, 10)[0], 100);
        EXPECT_LT(picture.at(990, 351)[0], 100);
    });
}

// Bad input: absurd scripts and layouts.

namespace {

// What the driver prints about a layout.
std::string failure(const std::string& layout) {
    TempDir dir;
    const WorkingDir working(dir.path());
    writeFile(dir.file("layout.xml"), layout);
    writeFile(dir.file("script.xml"), TWO_SPANS);
    writeFile(dir.file("setup.xml"), "<demo><archive path=\"" + sourcePath("data") +
                                         "\"/><display title=\"Layout\" width=\"320\" height=\"200\"/>"
                                         "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    kindler::Kindler kindler;
    kindler.setup();
    try {
        kindler.run();
    } catch (const std::exception& e) {
        EXPECT_EQ(kindler.mDisplay->mListeners.size(), 1u); // the editor is gone
        return e.what();
    }
    return "";
}

std::string workspace(const std::string& controls) {
    return "<panorama><workspace style=\"style.xml\"><child>" + controls + "</child></workspace></panorama>";
}

} // namespace

TEST(ALayout, ThatLacksWhatTheEditorNeedsIsRefusedWithTheNames) {
    const std::string lacks = "[Gui] The layout 'layout.xml' lacks ";
    const std::string all =
        "a control \"main\", a container \"effects\", a slider \"timeslider\", a stat \"fps_stat\"";
    EXPECT_EQ(failure(workspace("")), lacks + all);
    EXPECT_EQ(failure("<other></other>"), lacks + all);
    const std::string main = "<flow id=\"main\"/>", effects = "<layoutstack id=\"effects\"/>",
                      slider = "<slider id=\"timeslider\"/>", stat = "<stat id=\"fps_stat\"/>";
    EXPECT_EQ(failure(workspace(effects + slider + stat)), lacks + "a control \"main\"");
    EXPECT_EQ(failure(workspace(main + slider + stat)), lacks + "a container \"effects\"");
    EXPECT_EQ(failure(workspace(main + effects + stat)), lacks + "a slider \"timeslider\"");
    EXPECT_EQ(failure(workspace(main + effects + slider)), lacks + "a stat \"fps_stat\"");
    EXPECT_EQ(failure(workspace(main + effects + "<label id=\"timeslider\"/>" + stat)),
              lacks + "a slider \"timeslider\"");
}

TEST(ALayout, MayGiveTheTimeSliderARangeOfItsOwn) {
    EditedShow show(TWO_SPANS);
    std::string layout = readFile(sourcePath("data/layout.xml"));
    const std::string tag = "<slider id=\"timeslider\" ";
    ASSERT_NE(layout.find(tag), std::string::npos);
    layout.replace(layout.find(tag), tag.size(), tag + "min=\"-100\" max=\"300\" ");
    writeFile(show.dir().file("layout.xml"), layout);
    show.play([&] {
        show.open();
        const Box2 box = show.box(show.control("timeslider"));
        show.press(Vector2f(box.x1 + 45 * box.getWidth() / 100, box.y1 + 10)); // beside the handle
        show.release();
        show.frame([&] {
            auto* const slider = dynamic_cast<panorama::Slider*>(show.control("timeslider"));
            EXPECT_EQ(slider->mMin, -100);
            EXPECT_EQ(slider->mMax, 300);
            EXPECT_NEAR(show.gui().mScroll, -20 / (slider->getArea().getWidth() - 36), 1e-3);
        });
    });
}

TEST(AScript, WithoutEffectsGivesAnEmptyEditorWithItsFrameRate) {
    EditedShow show("<script></script>");
    show.play([&] {
        show.open();
        auto* const stat = dynamic_cast<panorama::Stat*>(show.control("fps_stat"));
        show.until("samples", [&] { return stat->getValueCount() >= 2; });
        show.frame([&] { EXPECT_EQ(show.row(1), nullptr); }); // only the test's own row
        show.drag(Vector2f(500, 600), 60, 40);
    });
}

TEST(AScript, OfSpansThatNobodyCanDragIsShownWithoutThem) {
    EditedShow show(
        "<script><effect name=\"grey\" start=\"40\" end=\"20\"><spline name=\"a\"><key/></spline></effect>"
        "<effect name=\"grey\" start=\"nan\" end=\"nan\"><spline name=\"a\"><key/></spline></effect>"
        "<effect name=\"grey\" start=\"0\" end=\"1e38\"><spline name=\"a\"><key "
        "time=\"nan\"/></spline></effect>"
        "<effect name=\"grey\" start=\"-1e38\" end=\"1e38\"><spline name=\"a\"><key time=\"1e38\"/></spline>"
        "</effect><effect name=\"grey\" start=\"inf\" end=\"inf\"/></script>");
    show.play([&] {
        show.open();
        for (int row = 0; row < 9; ++row) {
            Box2 box;
            show.frame([&] { box = show.row(row)->mArea.clip; });
            if (box.getHeight() < 10)
                continue;
            show.drag(Vector2f(204, box.y1 + 12), 30, 0);
            show.drag(Vector2f(700, box.y1 + 12), 30, 5);
            show.click(Vector2f(600, box.y1 + 14), 3);
            show.click(Vector2f(100, 600));
        }
        show.frame([&] {
            EXPECT_EQ(show.effect(0).mStart, 40);
            EXPECT_EQ(show.effect(0).mEnd, 20);
            EXPECT_TRUE(std::isnan(show.effect(1).mStart));
            EXPECT_EQ(show.bar(0)->getArea().getWidth(), 0);
        });
    });
}

TEST(AScript, OfFiveThousandSpansWithSplinesOpensAndScrolls) {
    std::string script = "<script>";
    for (int i = 0; i < 5000; ++i)
        script += "<effect name=\"e\" start=\"" + std::to_string(i % 150) + "\" end=\"" +
                  std::to_string(i % 150 + 20) +
                  "\"><spline name=\"s\"><key value=\"0.5\"/></spline></effect>";
    EditedShow show(script + "</script>");
    show.play([&] {
        show.open();
        show.moveTo(Vector2f(600, 600));
        show.viewer().wheel(-5);
        show.drag(Vector2f(1274, 410), 0, 300); // the bar of the rows, to its end
        show.frame([&] { EXPECT_EQ(show.row(10000)->getArea().y1, 5000 * 100); });
        show.settle();
    });
}

// The show in data/, as its author sees it.

TEST(TheRealShow, FollowsWhatIsDoneToItsBarsAndKeys) {
    // Rows: a curve of the opening, and the background of the title's scene, which is the third span.
    constexpr int OPENING = 2, BACKGROUND = 6;
    EditedShow show(realScript());
    RealEffects effects(show.kindler());
    show.play([&] {
        show.setTime(8);
        show.open();
        const Picture before = show.picture();
        float start = 0, end = 0;
        show.frame([&] {
            ASSERT_EQ(show.row(BACKGROUND)->getCaption(), "clear");
            ASSERT_NE(show.curve(OPENING), nullptr);
            start = show.effect(2).mStart;
            end = show.effect(2).mEnd;
        });
        const auto quarterChanged = [&](const Picture& now) {
            int changed = 0;
            for (int y = 0; y < 400; y += 4)
                for (int x = 640; x < 1280; x += 4)
                    changed += std::abs(int(now.at(x, y)[0]) - int(before.at(x, y)[0])) > 24;
            return changed / 16000.0;
        };
        EXPECT_LT(quarterChanged(show.picture()), 0.02); // it stands still

        show.drag(middle(show.box(show.bar(BACKGROUND))), 100,
                  0); // the background begins after the current time
        show.frame([&] {
            EXPECT_FLOAT_EQ(show.effect(2).mStart, start + 10);
            EXPECT_FLOAT_EQ(show.effect(2).mEnd, end + 10);
        });
        EXPECT_GT(quarterChanged(show.picture()), 0.1);

        show.drag(middle(show.box(show.bar(BACKGROUND))), -100, 0);
        show.frame([&] { EXPECT_FLOAT_EQ(show.effect(2).mStart, start); });
        EXPECT_LT(quarterChanged(show.picture()), 0.02);

        float value = 0;
        show.frame([&] { value = show.curve(OPENING)->mSpline->mKeys[0].value; });
        show.drag(show.keyPlace(OPENING, 0), 8, 14);
        show.frame([&] {
            const auto& keys = show.curve(OPENING)->mSpline->mKeys;
            EXPECT_GT(keys[0].time, 0);
            EXPECT_NEAR(keys[0].value, value + 0.4f, 0.03f);
        });
    });
}

// The editor is warm when its graph of the frame rate is full: until then it keeps adding columns.
TEST(TheEditor, AllocatesNothingOnceWarm) {
    EditedShow show(TWO_SPANS);
    show.play([&] {
        show.open();
        show.frame([&] {
            for (int i = 0; i < panorama::Stat::SAMPLES; ++i)
                dynamic_cast<panorama::Stat&>(*show.control("fps_stat")).addValue(float(20 + i % 20));
        });
        show.moveTo(middle(show.box(show.bar(0))));
        for (int i = 0; i < 30; ++i)
            show.settle();
        size_t before = 0, after = 0;
        show.frame([&] { before = allocationCount(); });
        for (int i = 0; i < 10; ++i)
            show.settle();
        show.frame([&] { after = allocationCount(); });
        EXPECT_EQ(after, before);
    });
}
