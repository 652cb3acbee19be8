#include "kin_main.h"

#include "am_videofile.h"
#include "dis_glcheck.h"
#include "kin_gui.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace zentrak::kindler {

// Also runs when an exception ends the show; if saving fails, the setup file stays as it was.
Kindler::~Kindler() {
    if (mSetupDone) {
        try {
            saveXml();
        } catch (const std::exception&) { // logged where it was thrown
        }
    }
    attachToDisplay(nullptr);
    if (mDisplayEnabled && mDisplay)
        delete mDisplay;
    delete mVideo;
}

void Kindler::addCallback(std::string name, Effect& effect) {
    mScript.addCallback(name, &effect);
    effect.mName = name;
    effect.mDisplay = mDisplay;
}

// Listens after the driver, so the editor is drawn over the picture. Also destroyed when an exception ends
// the show.
struct Kindler::Editor {
    explicit Editor(Kindler& owner) : kindler(owner), gui(new Gui(owner.mDisplay, &owner.mScript)) {
        kindler.mGui = gui.get();
        kindler.mEditing = true;
        gui->mDemoLength = kindler.mDemoLength;
        gui->setup();
    }
    ~Editor() { kindler.mEditing = false; }
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    Kindler& kindler;
    std::unique_ptr<Gui> gui;
};

void Kindler::run() {
    mNoListener = false;
    if (mDisplayEnabled)
        openDisplay(mWidth, mHeight, mFullscreen, mTitle);
    if (!mNoSound)
        openSound(mMusicFile.c_str());
    if (!mDisplayEnabled)
        return;

    loadEffects();
    if (hasSound()) {
        mMusic.mStream->play();
        mMusic.mPaused = false;
        mDemoLength = float(mMusic.mLength) / float(mMusic.mRate);
    }
    const Editor editor(*this);
    setTime(std::max(0.0f, mStartTime));
    mOsdTime = -100.0f;
    mDisplay->updateBlocking();
}

// Loads all effects in order of name, whether or not the script uses them.
void Kindler::loadEffects() {
    for (const auto& [name, callback] : mScript.mCallbacks) {
        Effect* const effect = dynamic_cast<Effect*>(callback);
        if (!effect)
            continue;
        effect->mDisplay = mDisplay;
        ZTK_LOG("log", "app", "Loading effect: %s.", name.c_str());
        const clock_t start = clock();
        effect->setup();
        const clock_t end = clock();
        ZTK_LOG("log", "app", "Loading effect '%s' took %.3f seconds\n", name.c_str(),
                double(end - start) / 1000000.0);
    }
}

// Listeners draw in the order in which they joined; the driver is first.
void Kindler::openDisplay(int width, int height, bool fullscreen, const std::string& title) {
    display::WindowMode mode(title, width, height, fullscreen);
    mode.canResize = true;
    mDisplay = new display::DisplayGL(mode);
    if (!mNoListener)
        attachToDisplay(mDisplay);
    mDisplay->open();
    if (mVideo) {
        mDisplay->setFps(display::DisplayGL::FPS_DELTA, mDumpRate);
        fitFrame(width, height);
    } else {
        mDisplay->setFps(display::DisplayGL::FPS_VSYNC, 30.0f);
    }
    mDisplay->setArchive(&mArchives);
}

// Allocates the image that the dump grabs into. A window of odd height can't be grabbed.
void Kindler::fitFrame(int width, int height) {
    if (height & 1)
        throw Exception("[Kindler] A dump needs an even height of the window, not %d", height);
    if (mFrame.isNull() || mFrame->getWidth() != width || mFrame->getHeight() != height) {
        mFrame.assign(new am::ImageObject);
        mFrame->resize(width, height);
        mVideo->attach(mFrame);
    }
}

void Kindler::openSound(const char* file) {
    if (mNoSound)
        return;
    mNoSound = !mMusic.setup(mArchives.readFile(file, -1));
    if (mNoSound && *file)
        ZTK_LOG("warning", "app", "The music '%s' is not played", file);
}

void Kindler::openDevices() {
    if (mDisplayEnabled)
        openDisplay(mWidth, mHeight, mFullscreen, mTitle);
    if (!mNoSound)
        openSound(mMusicFile.c_str());
}

bool Kindler::hasSound() const {
    return !mNoSound && mMusic.mStream;
}

// Sets the clock to the position that the stream has actually reached.
void Kindler::setTime(float t) {
    t = std::max(0.0f, t);
    if (hasSound()) {
        const float rate = float(mMusic.mRate);
        mMusic.mStream->setPosition(int(std::min(double(t * rate), double(mMusic.mLength))));
        t = float(mMusic.mStream->getPosition()) / rate;
    }
    mClock.setTime(t);
    if (mPaused)
        mPausedTime = t;
    mOsdTime = t;
}

void Kindler::getTime() {
    mRawTime = mPaused ? mPausedTime : mClock.getTime();
    mTime = hasSound() ? float(mMusic.mStream->getPosition()) / float(mMusic.mRate) : mRawTime;
}

// While the editor is visible, the picture goes to the upper right quarter of the window.
bool Kindler::editorVisible() const {
    return mEditing && mGui->isVisible();
}

void Kindler::controlAction(panorama::Control* control, panorama::Action action) {
    if (action != panorama::ACTION_RELEASE)
        return;
    if (control->getName() == "button_run")
        mDisplay->close();
    else if (control->getName() == "button_exit")
        endProcess();
}

// Closes the sound device while the sound library still exists.
void Kindler::endProcess() {
    mMusic = Music();
    exit(0);
}

// Draws one frame. The editor and the toolkit draw after this, over the picture.
void Kindler::onDraw() {
    if (hasSound() && !mMusic.mStream->isPlaying() && !mMusic.mPaused) {
        if (mLoop)
            mMusic.mStream->setPosition(0); // doesn't restart it: silent from now on
        else
            endProcess();
    }
    getTime();
    if (!mDisplayEnabled)
        return;

    const int width = mDisplay->mWindowMode.width;
    const int height = mDisplay->mWindowMode.height;
    if (editorVisible())
        GL_CALL(glViewport(width - (width >> 1), height >> 1, width >> 1, height >> 1));
    mScript.update(mRawTime);
    if (mVideo) {
        fitFrame(width, height);
        mDisplay->getScreenShot(mFrame);
        mVideo->writeFrame();
    }
    const bool raised = mOsdShow && mOsdTime + mOsdDelay > mTime;
    if (mVideo || (!editorVisible() && raised)) {
        mDisplay->resetStates();
        drawOsd();
    }
}

} // namespace zentrak::kindler
