// The studio's window: the picture, the panel, the timeline, and the keys that work on them.
#pragma once

#include "pan_overlay.h"
#include "pan_panorama.h"
#include "studio_editor.h"
#include "studio_files.h"
#include "studio_panel.h"
#include "studio_preview.h"
#include "studio_show.h"
#include "studio_timeline.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zentrak::studio {

class Window;

// The line between the picture and the timeline: what goes on, and switches.
class Bar : public panorama::Control {
public:
    static constexpr float HEIGHT = 26;

    explicit Bar(Window& window);
    panorama::Control* clone() override; // null: there is one
    int handleEvent(panorama::Event& event) override;
    void draw() override;
    Box2 getBox(const std::string& label); // of a switch; for tests

private:
    struct Switch {
        std::string label;
        bool on;
        void (Window::*command)();
    };

    Window& mWindow;

    std::vector<Switch> getSwitches() const;
    Box2 getSwitchBox(size_t index);
};

class Window : public panorama::Panorama {
public:
    // Opens the script that the show edits; a broken one is waited for. Both have to outlive the window, and
    // the show to be open.
    Window(Show& show, Editor& editor);
    ~Window() override;

    Editor& getEditor() { return mEditor; }
    Show& getShow() { return mShow; }
    Timeline& getTimeline() { return *mTimeline; }
    Panel& getPanel() { return *mPanel; }
    panorama::Overlay& getOverlay() { return *mOverlay; }
    Bar& getBar() { return *mBar; }
    std::string getMessage() const;                // what was said a moment ago, or nothing
    std::vector<std::string> getErrors() const;    // lines that stand on the picture
    double getOwnTime() const { return mOwnTime; } // seconds of the last frame that were the studio's
    bool isPreviewing() const { return mPreview != nullptr; }
    void setWatching(bool on) { mWatching = on; }

    // A frame, or, while nothing moves, a short wait for an event or a change on disk. Returns whether to go
    // on, as DisplayGL::update.
    bool step();
    bool isResting() const { return mResting; }      // the next step may draw nothing
    size_t getFrameCount() const { return mFrames; } // drawn so far

    int onKeyDown(const display::KeyEvent& event) override;
    int onKeyUp(const display::KeyEvent& event) override;
    int onCharDown(const display::CharEvent& event) override;
    int onQuit() override;
    void onResize(int oldWidth, int oldHeight) override;
    void onDraw() override;

    // Commands, each with its key (studio_keys.cpp).
    void help();
    void chooseScript();
    void togglePreview();
    void save();
    void quit();
    void undo();
    void redo();
    void togglePlay() { mShow.setPlaying(!mShow.isPlaying()); }
    void playFromMouse();
    void goToStart();
    void goToEnd();
    void nextBookmark() { seekBookmark(1); }
    void previousBookmark() { seekBookmark(-1); }
    void addBookmark();
    void addSection();
    void openAddMenu();
    void split();
    void copy();
    void cut() { mEditor.cut(); }
    void paste();
    void duplicate();
    void remove() { mEditor.removeSelected(); }
    void selectAll();
    void selectLater();
    void escape();
    void rename();
    void toggleEnabled() { mEditor.toggleEnabled(); }
    void drawEarlier() { mEditor.reorder(-1); }
    void drawLater() { mEditor.reorder(1); }
    void toggleLoop();
    void toggleSnap() { mTimeline->mSnapping = !mTimeline->mSnapping; }
    void toggleFollow() { mTimeline->mFollow = !mTimeline->mFollow; }
    void toggleReplay();
    void toggleMute() { mShow.setMuted(!mShow.isMuted()); }
    void togglePicture() { mPictureAlone = !mPictureAlone; }
    void toggleOpen();
    void openAll() { mTimeline->foldAll(true); }
    void closeAll() { mTimeline->foldAll(false); }
    void zoomIn() { mTimeline->zoom(1.5, mTimeline->toX(mShow.getTime())); }
    void zoomOut() { mTimeline->zoom(1 / 1.5, mTimeline->toX(mShow.getTime())); }
    void fit() { mTimeline->fit(); }
    void zoomToSelection();
    void larger() { setScale(std::min(3.0f, getScale() + 0.25f)); }
    void smaller() { setScale(std::max(0.5f, getScale() - 0.25f)); }

protected:
    int dispatch(panorama::Event& event) override;

private:
    struct Command {
        int key; // display::Key
        int modifiers;
        const char* name;
        const char* text; // empty: not in the help
        void (Window::*command)();
    };

    Show& mShow;
    Editor& mEditor;
    std::unique_ptr<ScriptFile> mFile;
    FolderWatch mWatch;
    bool mWatching = true;
    double mLastPoll = 0;
    Timeline* mTimeline; // these are the workspace's
    Panel* mPanel;
    Bar* mBar;
    panorama::Overlay* mOverlay;
    bool mPictureAlone = false;
    bool mQuitting = false;
    bool mKeyWasCommand = false; // the key that is down was: the character that it types is not text
    bool mWaiting = false;       // the script was broken when it was opened: for it to be mended
    std::unique_ptr<Preview> mPreview;
    uint32_t mPlayedVersion = 0; // of the document, as the show has it
    uint32_t mKeptVersion = 0;   // as the recovery file has it
    std::string mTitle;
    std::string mMessage;
    double mMessageTime = -100;
    double mOwnTime = 0;
    size_t mFrames = 0;
    bool mResting = false;
    std::string mScriptError;
    std::optional<std::string> mGone; // what the script on disk was before it was removed
    std::map<std::string, std::string> mFileErrors;

    static const std::vector<Command>& getCommands();
    void say(const std::string& message);
    bool nudge(const display::KeyEvent& event);
    void nudgeTime(double seconds);
    std::optional<std::pair<double, double>> getSelectedTime() const;
    void layout();
    Box2 getPictureBox() const; // of the interface's pixels
    void drawPictureGround();
    void drawErrors();
    void showTitle();
    void openScript(size_t script);
    bool replace(const std::string& text, const std::string& label);
    bool startFrom(const std::string& text, const std::string& label);
    void restore(const std::string& orphan);
    void loadFromDisk(const std::string& text);
    void setSaved(const std::string& text);
    void waitForScript();
    void offerRecovery();
    void keepUnsaved();
    bool pollFiles();
    bool hasNews();
    void checkScript();
    void checkFile(const std::string& name);
    void loadPreview();
    void askAboutDisk(const std::string& text);
    void askToSave(const std::string& before, const std::function<void()>& then);
    bool write(bool overwrite);
    void seekBookmark(int direction);
    void openMenu(Vector2f place, int element, double time, double value);
    void addElementItems(std::vector<panorama::MenuItem>& items, Vector2f place, int element, double time,
                         double value);
    void addSpanItems(std::vector<panorama::MenuItem>& items, Vector2f place, int span, double time);
    void addRulerItems(std::vector<panorama::MenuItem>& items, double time);
    void openEffectMenu(Vector2f place, int parent, double time);
    void openTriggerMenu(Vector2f place, int span, double time);
    void openCurveMenu(Vector2f place, int span);
    void revealSelection();
    void pasteAt(double time);
    void insertSection(int element, double time);
    void insertBookmark(double time);
    void followDocument();
};

} // namespace zentrak::studio
