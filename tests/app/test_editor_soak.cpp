// The editor over the real show under random real events, determined by a seed.
//   ZENTRAK_SOAK_SECONDS=900 ZENTRAK_SOAK_SEED=7 tests/with_display build/release/tests/app/test_editor_soak
// Without them it takes a few seconds with the seed 1.
#include "dis_display.h"
#include "editor.h"
#include "real_show.h"
#include "script_effect.h"
#include "script_spline.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Box2;
using mathbase::Vector2f;

namespace {

int setting(const char* name, int otherwise) {
    const char* text = getenv(name);
    return text ? atoi(text) : otherwise;
}

class Hands {
public:
    Hands(EditedShow& show, unsigned seed) : mShow(show), mRandom(seed) {}

    // One random action.
    void act() {
        ++mCount;
        switch (number(20)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
            return drag(1);
        case 6:
        case 7:
            return menu();
        case 8:
        case 9:
        case 10:
            return key();
        case 11:
        case 12:
            return mShow.viewer().wheel(number(9) - 4);
        case 13:
            mShow.viewer().keyDown("Control_L");
            mShow.viewer().wheel(number(5) - 2);
            return mShow.viewer().keyUp("Control_L");
        case 14:
            return drag(2 + number(2)); // with the other buttons
        case 15:
            return mShow.viewer().click(1 + number(3));
        case 16: // a double click
            mShow.viewer().click(1);
            return mShow.viewer().click(1);
        case 17:
            return number(20) == 0 ? resize() : move();
        default:
            return move();
        }
    }

    long count() const { return mCount; }

    // Collects the targets; on the show's thread.
    void look() {
        mSeen.clear();
        std::vector<panorama::Control*> controls{mShow.control("timeslider"), mShow.control("main")};
        for (int i = 0; panorama::Control* row = mShow.row(i); ++i)
            controls.push_back(row->getControl(0));
        for (panorama::Control* control : controls) {
            Seen seen{control->mArea.clip, {}};
            if (seen.box.getWidth() < 4)
                continue;
            if (const auto* curve = dynamic_cast<panorama::Spline*>(control)) {
                const Box2& world = curve->mArea.world;
                for (const auto& key : curve->mSpline->mKeys) {
                    const Vector2f at(world.x1 + world.getWidth() * key.time,
                                      world.y1 + world.getHeight() * 0.5f * (1 + key.value));
                    if (at.x >= 0 && at.x < float(mWidth) && at.y >= 0 && at.y < float(mHeight))
                        seen.keys.push_back(at);
                }
            }
            mSeen.push_back(seen);
        }
    }

private:
    struct Seen {
        Box2 box;
        std::vector<Vector2f> keys;
    };

    EditedShow& mShow;
    std::mt19937 mRandom;
    long mCount = 0;

    std::vector<Seen> mSeen;
    int mWidth = EditedShow::WIDTH; // of the window
    int mHeight = EditedShow::HEIGHT;

    int number(int end) { return int(mRandom() % unsigned(end)); }

    // Mostly on a target: a bar, a handle, a key, a slider.
    Vector2f place() {
        if (mSeen.empty() || number(4) == 0)
            return Vector2f(float(number(mWidth)), float(number(mHeight)));
        const Seen& seen = mSeen[size_t(number(int(mSeen.size())))];
        const Box2& box = seen.box;
        if (!seen.keys.empty() && number(3) != 0)
            return seen.keys[size_t(number(int(seen.keys.size())))];
        Vector2f place(box.x1 + box.getWidth() * float(number(1000)) / 1000,
                       box.y1 + box.getHeight() * float(number(1000)) / 1000);
        switch (number(5)) {
        case 0:
            place.x = box.x1 + 3;
            break;
        case 1:
            place.x = box.x2 - 3;
            break;
        default:
            break;
        }
        return place;
    }

    // Inside the window: its frame has buttons that close or hide it.
    void moveTo(Vector2f to) {
        mShow.viewer().moveTo(std::clamp(int(to.x), 1, mWidth - 2), std::clamp(int(to.y), 1, mHeight - 2));
    }

    void move() { moveTo(place()); }

    void drag(int button) {
        move();
        mShow.viewer().buttonDown(button);
        for (int steps = number(6); steps >= 0; --steps)
            move();
        mShow.viewer().buttonUp(button);
    }

    // Opens a menu, and mostly chooses something in it.
    void menu() {
        const Vector2f at = place();
        moveTo(at);
        mShow.viewer().click(3);
        for (int steps = 1 + number(3); steps > 0; --steps)
            moveTo(Vector2f(at.x + float(number(160) - 20), at.y + float(number(70) - 10)));
        if (number(6) != 0)
            mShow.viewer().click(1);
    }

    void key() {
        static const char* const names[] = {"Left", "Right", "Insert", "Delete", "Insert", "space",
                                            "p",    "o",     "m",      "t",      "Tab",    "Return",
                                            "a",    "F1",    "alt+t",  "Up",     "Home",   "ctrl+o"};
        mShow.viewer().key(names[number(int(std::size(names)))]);
    }

    void resize() {
        const int width = 900 + number(400), height = 2 * (300 + number(100));
        mWidth = width;
        mHeight = height;
        mShow.frame([&] {
            display::DisplayGL& display = *mShow.kindler().mDisplay;
            display.mWindowMode.width = width;
            display.mWindowMode.height = height;
            display.open();
        });
    }
};

// What no event may break.
void check(script::Effect& effect) {
    EXPECT_GE(effect.mStart, 0) << effect.mName;
    EXPECT_GE(effect.mEnd - effect.mStart, 0.1f) << effect.mName;
    for (script::Spline* spline : effect.mSplines)
        for (size_t i = 1; i < spline->mKeys.size(); ++i)
            EXPECT_LE(spline->mKeys[i - 1].time, spline->mKeys[i].time)
                << effect.mName << " " << spline->mName;
    for (script::Effect* child : effect.mChildren)
        check(*child);
}

} // namespace

TEST(TheEditor, SurvivesAnyInput) {
    const int seconds = setting("ZENTRAK_SOAK_SECONDS", 5);
    EditedShow show(realScript());
    std::unique_ptr<RealEffects> effects; // left out in short runs, for more frames
    if (getenv("ZENTRAK_SOAK_SECONDS"))
        effects.reset(new RealEffects(show.kindler()));
    show.play([&] {
        Hands hands(show, unsigned(setting("ZENTRAK_SOAK_SEED", 1)));
        show.setTime(10);
        show.open();
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        while (std::chrono::steady_clock::now() < end && !::testing::Test::HasFailure()) {
            for (int i = 0; i < 20; ++i)
                hands.act();
            bool visible = false;
            show.frame([&] {
                for (script::Effect* effect : show.kindler().mScript.mEffects)
                    check(*effect);
                visible = show.gui().isVisible();
                hands.look();
            });
            if (!visible)
                show.viewer().key("Tab");
            show.settle();
        }
        printf("%ld acts in %d seconds\n", hands.count(), seconds);
    });
}
