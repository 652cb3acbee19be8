// The timeline editor over the running show: displays and changes the script in memory.
#pragma once

#include "dis_listener.h"
#include "pan_control.h"
#include "pan_panorama.h"

#include <string>

namespace zentrak::display {
class DisplayGL;
}
namespace zentrak::panorama {
class Label;
class Slider;
class Stat;
} // namespace zentrak::panorama
namespace zentrak::script {
class ScriptEngine;
}

namespace zentrak::kindler {

class Ruler;

// clang-format off
// The interface is the file "layout.xml". It has to hold these controls:
//
//     main        any              shown and hidden by Tab; while it is shown the picture is in the upper right
//     effects     any container    gets the rows; best a "layoutstack" in a "scrollbar"
//     timeslider  slider           scrolls the time axis; without a range in the layout, in pixels of its width
//     fps_stat    stat             graph of the frame rate
//     fps         label            the frame rate as a number; may be missing
//     ruler       timeruler        the time axis with the time now (Ruler); may be missing
//
// Edits change the script's records in memory, and are never written to a file.
// clang-format on
class Gui : public panorama::Callback, public display::Listener {
public:
    display::DisplayGL* mDisplay; // not owned
    panorama::Panorama mPanorama;
    script::ScriptEngine* mEngine; // not owned
    float mFpsTime = 0;            // when the frame rate was shown last, seconds
    int mFpsFrames = 0;            // frames since then
    bool mSetup = false;
    float mDemoLength = 0; // seconds; to be set before setup
    float mScroll = 0;     // of the time axis: 0 to 1

    // Joins the listeners of the display, followed by its Panorama. The display must be open.
    Gui(display::DisplayGL* window, script::ScriptEngine* engine);

    void contextAction(panorama::Context* context, std::string text) override;
    void controlAction(panorama::Control* control, panorama::Action action) override; // of "timeslider" alone
    int onKeyDown(const display::KeyEvent& event) override; // Tab; never stops an event
    void onDraw() override;                                 // asserts "mSetup"

    // Reads the layout and builds the rows: once. Throws Exception without the layout file, and when it lacks
    // a control that has to be there, with the names of all that are missing.
    void setup();

    // Whether "main" is shown. False before setup.
    bool isVisible() const { return mMain && mMain->getVisible(); }

private:
    panorama::Control* mMain = nullptr; // these are the layout's
    panorama::Control* mRows = nullptr;
    panorama::Slider* mSlider = nullptr;
    panorama::Stat* mStat = nullptr;
    panorama::Label* mFps = nullptr; // or null
    Ruler* mRuler = nullptr;         // or null
    bool mFitsSlider = false;        // the layout sets no range for the slider
    std::string mText;

    void findControls();
    void addRows();
    void fitSlider();
    float getSliderTravel() const; // pixels
    void placeGround();
    void showFrameRate(float fps);
};

} // namespace zentrak::kindler
