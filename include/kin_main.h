// The driver: reads the setup file, opens window and sound, and runs the show frame by frame.
#pragma once

#include "am_archivemanager.h"
#include "am_image.h"
#include "dis_batch.h"
#include "dis_clock.h"
#include "dis_display.h"
#include "dis_listener.h"
#include "kin_effect.h"
#include "kin_music.h"
#include "pan_control.h"
#include "script_engine.h"

#include <string>

namespace zentrak::am {
class VideoFile;
}

namespace zentrak::kindler {

class Gui;

class Kindler : public display::Listener {
public:
    display::DisplayGL* mDisplay = nullptr; // owned; openDisplay makes it
    Gui* mGui = nullptr;                    // owned for the length of run; not cleared at its end
    display::Clock mClock;                  // the time of the script
    bool mNoSound = false;                  // no audio at all
    bool mMuted = false;
    Music mMusic;
    float mDemoLength = 500.0f; // seconds; with sound that of the music
    std::string mMusicFile;
    bool mSetupDone = false;      // setup is complete, and the end saves
    bool mDisplayEnabled = false; // the setup file has a display element
    bool mLoop = false;           // the end of the music is not the end of the show
    bool mPaused = false;         // time stands still at mPausedTime
    float mStartTime = 0;         // seconds; where the show starts and where the key T goes
    float mTime = 0;              // seconds of the music if there is sound, else mRawTime
    float mRawTime = 0;           // seconds of the script
    float mPausedTime = 0;
    bool mFullscreen = false;
    std::string mTitle;       // of the window
    int mHeight = 0;          // pixels
    int mWidth = 0;           // pixels
    bool mOsdShow = true;     // the on-screen display may show at all
    int mOsdLocation = 0;     // 0 top, 1 middle, 2 bottom
    float mOsdDelay = 2.0f;   // seconds that it stays up
    float mOsdTime = -100.0f; // when it was raised last
    bool mNoListener = true;  // openDisplay does not add the driver to the listeners
    int mSetupWidth = 0;      // these four are kept from the setup file and read by nothing
    int mSetupHeight = 0;
    std::string mSetupFilename;
    std::string mSetupTitle;
    std::string mScriptFile; // the last one loaded
    am::ArchiveManager mArchives;
    am::VideoFile* mVideo = nullptr; // owned; set, every frame is written to a file
    am::Image mFrame;                // what mVideo writes
    float mDumpRate = 0;             // frames a second
    script::ScriptEngine mScript;

    Kindler() = default;
    ~Kindler() override; // saves the setup if it was read
    Kindler(const Kindler&) = delete;
    Kindler& operator=(const Kindler&) = delete;

    // Reads "setup.local.xml", or else "setup.xml", and loads what it names. Throws Exception without either
    // of the two, and without the script. A root that is not "demo" changes nothing. Once it is done a second
    // call does nothing.
    void setup();
    // Writes what keys can change back into "setup.local.xml", if that is there.
    void saveXml();

    // Registers `effect`, which stays the caller's and must outlive run(), under `name`.
    void addCallback(std::string name, Effect& effect);

    // The show, from opening the window to the end of the loop. At the end of the music the process exits.
    void run();
    // Throws what the display throws; in a dump also on an odd height, which can't be grabbed.
    void openDisplay(int width, int height, bool fullscreen, const std::string& title);
    // Opens the music; without any, mNoSound is set.
    void openSound(const char* file);
    void openDevices();

    // Goes to `t` seconds, or 0 if that is less. Music and clock meet here.
    void setTime(float t);
    // Refreshes mRawTime and mTime.
    void getTime();

    void drawOsd();

    int onKeyDown(const display::KeyEvent& event) override;
    void onDraw() override;

    // What the buttons of a launcher do when they are released: "button_run" closes the window, "button_exit"
    // ends the process. No control of the editor reports here.
    virtual void controlAction(panorama::Control* control, panorama::Action action);

protected:
    // Sets up every effect that was added. The display must be open.
    void loadEffects();

private:
    struct Editor; // makes mGui, and deletes it

    display::Batch mOsd;
    bool mEditing = false; // mGui is there

    bool hasSound() const;
    [[noreturn]] void endProcess();
    bool editorVisible() const;
    void fitFrame(int width, int height);
};

} // namespace zentrak::kindler
