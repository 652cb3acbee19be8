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
    bool mLoop = false;           // the show outlasts the music
    bool mPaused = false;         // time is frozen at mPausedTime
    float mStartTime = 0;         // seconds; where the show starts and where the key T goes
    float mTime = 0;              // seconds of the music if there is sound, otherwise mRawTime
    float mRawTime = 0;           // seconds of the script
    float mPausedTime = 0;
    bool mFullscreen = false;
    std::string mTitle;       // of the window
    int mHeight = 0;          // pixels
    int mWidth = 0;           // pixels
    bool mOsdShow = true;     // whether the on-screen display may appear
    int mOsdLocation = 0;     // 0 top, 1 middle, 2 bottom
    float mOsdDelay = 2.0f;   // seconds that it stays up
    float mOsdTime = -100.0f; // when it last appeared
    bool mNoListener = true;  // openDisplay doesn't add the driver to the listeners
    int mSetupWidth = 0;      // these four come from the setup file; nothing reads them
    int mSetupHeight = 0;
    std::string mSetupFilename;
    std::string mSetupTitle;
    std::string mScriptFile; // the last one loaded
    am::ArchiveManager mArchives;
    am::VideoFile* mVideo = nullptr; // owned; if set, every frame is written to a file
    am::Image mFrame;                // what mVideo writes
    float mDumpRate = 0;             // frames per second
    script::ScriptEngine mScript;

    Kindler() = default;
    ~Kindler() override; // calls saveXml if the setup was read
    Kindler(const Kindler&) = delete;
    Kindler& operator=(const Kindler&) = delete;

    // Reads "setup.local.xml", or "setup.xml" if there is none, and loads what it names. Throws Exception if
    // both are missing, or a script is. A root that is not "demo" changes nothing. A second call does
    // nothing.
    void setup();
    // Writes what keys can change back into "setup.local.xml", if it exists; logs if it can't. Throws if the
    // file isn't valid any more.
    void saveXml();

    // Registers `effect` under `name`. It stays the caller's and must outlive run().
    void addCallback(std::string name, Effect& effect);

    // Plays the show, from opening the window to its end. At the end of the music the process exits.
    void run();
    // Throws what the display throws; when dumping, also for an odd height, which can't be grabbed.
    void openDisplay(int width, int height, bool fullscreen, const std::string& title);
    // Opens the music; on failure mNoSound is set.
    void openSound(const char* file);
    void openDevices();

    // Seeks to `t` seconds, or to 0 if it is less. This is where music and clock are synchronised.
    void setTime(float t);
    // Refreshes mRawTime and mTime.
    void getTime();

    void drawOsd();

    int onKeyDown(const display::KeyEvent& event) override;
    void onDraw() override;

    // What a launcher's buttons do when released: "button_run" closes the window, "button_exit" ends the
    // process. The editor's controls don't report here.
    virtual void controlAction(panorama::Control* control, panorama::Action action);

protected:
    // Called by setup for each script: adds it to mScript. Throws if it is missing or broken.
    virtual void loadScript(const std::string& name);
    // Sets up every effect that was added. The display must be open.
    void loadEffects();

private:
    struct Editor; // creates mGui and deletes it

    display::Batch mOsd;
    bool mEditing = false; // mGui exists

    bool hasSound() const;
    [[noreturn]] void endProcess();
    bool editorVisible() const;
    void fitFrame(int width, int height);
};

} // namespace zentrak::kindler
