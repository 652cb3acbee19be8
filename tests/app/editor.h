// The driver and its editor on a real window, operated by real keys and a real mouse, with the script in
// memory to inspect.
#pragma once

#include "input.h"
#include "kin_gui.h"
#include "kin_gui_effect.h"
#include "kin_gui_row.h"
#include "kin_main.h"
#include "pan_spline.h"
#include "picture.h"
#include "support.h"

#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace zentrak::test {

// Fills its part of the window with the value of the spline "grey", or with white if there is none.
struct Grey : kindler::Effect {
    float grey = 1;

    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;
};

// A show that runs on this thread while a test uses it from another one. The test may read or change the show
// only inside `frame`.
//
//     EditedShow show("<script>...</script>");
//     show.play([&] {
//         show.open();
//         show.drag(show.middle(*show.bar(0)), 50, 0);
//         show.frame([&] { EXPECT_EQ(show.effect(0).mStart, 5); });
//     });
class EditedShow {
public:
    static constexpr int WIDTH = 1280;
    static constexpr int HEIGHT = 800;

    // A paused show without sound, with the effect "grey" and whatever is added to kindler().
    explicit EditedShow(const std::string& script);
    ~EditedShow();
    EditedShow(const EditedShow&) = delete;
    EditedShow& operator=(const EditedShow&) = delete;

    kindler::Kindler& kindler() { return mKindler; }
    const TempDir& dir() const { return mDir; }

    // Runs the show until `use` returns.
    void play(const std::function<void()>& use);

    // Runs a task on the show's thread after all events sent so far are handled; then draws a frame.
    void frame(const std::function<void()>& what);
    Picture picture();     // what the window shows
    void setTime(float t); // seconds, paused
    Viewer& viewer() { return *mViewer; }
    bool until(const std::string& what,
               const std::function<bool()>& done); // `done` runs on the show's thread
    void settle();                                 // all that was sent has been handled and drawn
    bool ends();                                   // waits a while for the show to end by itself

    void open(); // the editor, by Tab
    void close();

    // Parts of the editor; for use inside frame(). Rows are in the order of the script, whatever has the
    // focus.
    kindler::Gui& gui() { return *mKindler.mGui; }
    kindler::Row* row(int index);
    kindler::Effector* bar(int row);  // null for a row with a curve
    panorama::Spline* curve(int row); // null for a row with a bar
    panorama::Control* control(const std::string& name);
    script::Effect& effect(int index) { return *mKindler.mScript.mEffects[size_t(index)]; }
    mathbase::Box2 box(panorama::Control* control); // its visible part, in the window; from any thread
    mathbase::Vector2f keyPlace(int row, int key);  // from any thread

    // The mouse. Each press comes after a move, as from a hand.
    void moveTo(mathbase::Vector2f place);
    void press(mathbase::Vector2f place, int button = 1); // X's numbers
    void release(int button = 1);
    void click(mathbase::Vector2f place, int button = 1);
    void drag(mathbase::Vector2f from, float dx, float dy); // in five steps

private:
    class Hook;

    void waitForFrame();

    TempDir mDir;
    Grey mGrey;
    kindler::Kindler mKindler;
    std::unique_ptr<Hook> mHook;
    std::unique_ptr<Viewer> mViewer;
    std::string mTitle;
};

} // namespace zentrak::test
