#include "studio_window.h"

#include "dis_glcheck.h"
#include "dis_key.h"
#include "glfw2.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zentrak::studio {

namespace {

constexpr double POLL = 0.4;  // seconds between two looks at the files
constexpr double REST = 0.02; // seconds between two looks at the events while nothing moves
constexpr double MESSAGE = 5; // seconds that a message stays
constexpr size_t ERROR_LINES = 10;
constexpr const char* EMPTY_SCRIPT = "<script>\n</script>\n";
constexpr const char* PREVIEW = "the player's editor"; // where its errors are

double seconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

Window::Window(Show& show, Editor& editor)
    : Panorama(&show.getDisplay()), mShow(show), mEditor(editor), mWatch(".") {
    mOverlay = new panorama::Overlay;
    mOverlay->mBack = {{color::faint, color::faint},
                       {color::panel, color::panel},
                       {color::raised, color::raised},
                       {shade(color::raised, 1.35f), color::raised},
                       {}};
    mOverlay->mText.color.first = color::ink;
    mOverlay->mText.highlight.first = color::selected;
    mOverlay->mText.inactive.first = color::faint;
    mOverlay->mCaption.color.first = color::accent;
    mOverlay->mCaption.inactive.first = color::dim;
    mTimeline = new Timeline(editor, show);
    mPanel = new Panel(editor, *mOverlay);
    mBar = new Bar(*this);
    mWorkspace.mRaiseOnFocus = false;
    for (panorama::Control* control :
         {static_cast<panorama::Control*>(mTimeline), static_cast<panorama::Control*>(mPanel),
          static_cast<panorama::Control*>(mBar), static_cast<panorama::Control*>(mOverlay)})
        addControl(control);
    mTimeline->mOnMenu = [this](Vector2f place, int element, double time, double value) {
        openMenu(place, element, time, value);
    };
    mTimeline->mOnRename = [this](int element) {
        mEditor.select({mEditor.getDocument()[element].id});
        rename();
    };
    mPanel->mOnRefused = [this](const std::string& text) { say(text); };
    const display::WindowMode& mode = show.getDisplay().mWindowMode;
    setScale(mode.height >= 1300 ? 2.0f : 1.0f);
    layout();
    openScript(show.getEdited());
}

Window::~Window() = default;

void Window::say(const std::string& message) {
    mMessage = message;
    mMessageTime = seconds();
}

std::string Window::getMessage() const {
    return seconds() - mMessageTime < MESSAGE ? mMessage : std::string();
}

// Layout. The picture is at the upper right in the shape of the show, the panel to the left of it.

void Window::layout() {
    const float width = getSize().x, height = getSize().y;
    const float top = std::floor(height * 0.46f);
    const Box2 all(0, 0, width, height);
    if (!(mWorkspace.getArea() == all))
        mWorkspace.setArea(all);
    const auto place = [](panorama::Control& control, const Box2& area) {
        if (!(control.getArea() == area))
            control.setArea(area);
    };
    place(*mPanel, Box2(0, 0, Panel::WIDTH, top));
    place(*mBar, Box2(0, top, width, top + Bar::HEIGHT));
    place(*mTimeline, Box2(0, top + Bar::HEIGHT, width, height));
    place(*mOverlay, all);
    const bool shown = !mPictureAlone;
    for (panorama::Control* control :
         {static_cast<panorama::Control*>(mTimeline), static_cast<panorama::Control*>(mPanel),
          static_cast<panorama::Control*>(mBar)})
        if (control->getVisible() != shown)
            control->setVisible(shown);
}

Box2 Window::getPictureBox() const {
    const Box2& all = mWorkspace.mArea.world;
    Box2 room(Panel::WIDTH, 0, all.x2, mBar->mArea.world.y1);
    if (mPictureAlone)
        room = all;
    if (mPreview) { // where the player has it
        const display::WindowMode& mode = mShow.getDisplay().mWindowMode;
        return Box2(float(mode.width - (mode.width >> 1)) / getScale(), 0, float(mode.width) / getScale(),
                    float(mode.height >> 1) / getScale());
    }
    float width = room.getWidth(), height = width / mShow.getAspect();
    if (height > room.getHeight()) {
        height = room.getHeight();
        width = height * mShow.getAspect();
    }
    const float x = std::floor((room.x1 + room.x2 - width) / 2),
                y = std::floor((room.y1 + room.y2 - height) / 2);
    return Box2(x, y, x + std::floor(width), y + std::floor(height));
}

void Window::onResize(int, int) {
    if (mWorkspace.mDisplay && mBar)
        layout();
}

// A frame

// The display notes in FPS_EVENT when the window is uncovered; waiting for events is left to this, since it
// has an eye on the files too.
bool Window::step() {
    if (mResting) {
        display->sleep(REST);
        glfw2::glfwPollEvents();
        if (!hasNews() && !display->mDirty && !display->mQuittingBlocking)
            return true;
        display->setFps(display::DisplayGL::FPS_VSYNC, 0);
        mResting = false;
    }
    display->setDirty(false);
    const bool goOn = display->update();
    if (goOn && mShow.isStill() && !display->mDirty) {
        display->setFps(display::DisplayGL::FPS_EVENT, 0);
        display->setDirty(false);
        mResting = true;
    }
    return goOn;
}

// What changes the interface without an event: a file, a message that has stood long enough, the caret.
bool Window::hasNews() {
    return pollFiles() || (!mMessage.empty() && getMessage().empty()) || mPanel->hasKeys();
}

void Window::onDraw() {
    ++mFrames;
    if (getMessage().empty())
        mMessage.clear();
    const double start = seconds();
    if (mPreview && (!mPreview->isShown() || mOverlay->isOpen())) // a question is asked in the studio
        togglePreview();
    pollFiles();
    layout();
    mShow.update();
    if (mPreview)
        mPreview->setTime(mShow.getTime());
    mTimeline->update();
    mPanel->update();
    followDocument();
    keepUnsaved();
    showTitle();
    const Box2 box = getPictureBox();
    const double beforePicture = seconds();
    const float scale = getScale();
    mShow.draw(Box2(std::floor(box.x1 * scale), std::floor(box.y1 * scale), std::floor(box.x2 * scale),
                    std::floor(box.y2 * scale)));
    GL_CALL(glFinish()); // what the show draws is not the studio's
    const double afterPicture = seconds();
    beginDraw();
    drawPictureGround();
    if (!mPreview)
        mWorkspace.draw();
    endDraw();
    GL_CALL(glFinish());
    mOwnTime = seconds() - afterPicture + beforePicture - start;
}

// The background around the picture, and what is shown on top of it.
void Window::drawPictureGround() {
    Paint paint(mWorkspace.mRender);
    paint.unclip();
    const Box2 box = getPictureBox();
    const Box2 all(mPictureAlone ? 0 : Panel::WIDTH, 0, mWorkspace.mArea.world.x2,
                   mPictureAlone ? mWorkspace.mArea.world.y2 : mBar->mArea.world.y1);
    for (const Box2& rest : {Box2(all.x1, all.y1, box.x1, all.y2), Box2(box.x2, all.y1, all.x2, all.y2),
                             Box2(box.x1, all.y1, box.x2, box.y1), Box2(box.x1, box.y2, box.x2, all.y2)})
        if (!mPreview)
            paint.box(rest, color::edge);
    if (const std::optional<double> progress = mShow.getProgress()) {
        char text[64];
        snprintf(text, sizeof text, "Replaying: %d %%", int(*progress * 100));
        paint.box(box, Vector4f(0, 0, 0, 1));
        paint.text(box.x1 + 14, box.y2 - 16, text, color::accent);
        paint.box(Box2(box.x1, box.y2 - 4, box.x1 + box.getWidth() * float(*progress), box.y2),
                  color::accent);
    }
    drawErrors();
}

std::vector<std::string> Window::getErrors() const {
    std::vector<std::string> lines;
    const auto add = [&lines](const std::string& text) {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            if (line.find_first_not_of(" \t\r") != std::string::npos)
                lines.push_back(line);
    };
    if (!mScriptError.empty())
        add(mFile->getName() + ": " + mScriptError);
    for (const auto& [name, error] : mFileErrors)
        add(name + ": " + error);
    for (const Show::Failure& failure : mShow.getFailures())
        add(failure.where + ": " + failure.text);
    for (const Document::Problem& problem : mEditor.getDocument().getProblems())
        add(mFile->getName() + ":" + std::to_string(problem.line) + ": " + problem.text);
    return lines;
}

void Window::drawErrors() {
    std::vector<std::string> lines = getErrors();
    if (lines.empty())
        return;
    if (lines.size() > ERROR_LINES) {
        lines.resize(ERROR_LINES);
        lines.push_back("...");
    }
    Paint paint(mWorkspace.mRender);
    const Box2 picture = getPictureBox();
    const Box2 box(picture.x1 + 6, picture.y1 + 6, picture.x2 - 6,
                   picture.y1 + 18 + 17 * float(lines.size()));
    paint.box(box, color::bad);
    paint.frame(box, color::accent);
    for (size_t i = 0; i < lines.size(); ++i)
        paint.text(box.x1 + 10, box.y1 + 14 + 17 * float(i), paint.fit(lines[i], box.getWidth() - 20),
                   color::ink);
}

void Window::showTitle() {
    const std::string title = mFile->getName() + (mEditor.isSaved() ? "" : " *") + " - Zentrak studio";
    if (title == mTitle)
        return;
    mTitle = title;
    mShow.getDisplay().mWindowMode.title = title;
    glfw2::glfwSetWindowTitle(title.c_str());
}

void Window::followDocument() {
    if (mPlayedVersion == mEditor.getDocument().getVersion())
        return;
    mPlayedVersion = mEditor.getDocument().getVersion();
    mShow.setDocument(mEditor.getDocument());
}

// Files

void Window::openScript(size_t script) {
    mShow.edit(script);
    mFile = std::make_unique<ScriptFile>(mShow.getScriptFolder(), mShow.getScripts()[script]);
    mEditor.open(EMPTY_SCRIPT);
    mScriptError.clear();
    mPlayedVersion = 0;
    mKeptVersion = mEditor.getDocument().getVersion();
    mWaiting = false;
    const std::optional<std::string> text = mFile->read();
    if (!text) {
        say(mFile->getName() + " does not exist yet: Ctrl+S makes it");
    } else if (text->find_first_not_of(" \t\r\n") != std::string::npos) {
        try {
            mEditor.open(*text);
        } catch (const Exception& exception) {
            mScriptError = exception.what();
        }
    }
    followDocument();
    mTimeline->fit();
    if (mScriptError.empty())
        offerRecovery();
    else
        waitForScript();
}

// Another text, as a step that can be undone. Returns whether it can be read, and says so if not.
bool Window::replace(const std::string& text, const std::string& label) {
    try {
        mEditor.replace(text, label);
    } catch (const Exception& exception) {
        mOverlay->openDialog("It can't be read", {exception.what(), "Nothing is lost: its file stays."},
                             {{"Close", [this] {
                                   if (mWaiting)
                                       waitForScript();
                               }}});
        return false;
    }
    mScriptError.clear();
    return true;
}

// Goes on with another text than the file's.
bool Window::startFrom(const std::string& text, const std::string& label) {
    if (!replace(text, label))
        return false;
    if (mWaiting) // a save replaces the broken file, which becomes the backup
        mEditor.setSavedText(mFile->read().value_or(""));
    mWaiting = false;
    say("Ctrl+S saves it as " + mFile->getName());
    return true;
}

void Window::restore(const std::string& orphan) {
    if (!startFrom(orphan, "Restore"))
        return;
    keepUnsaved();
    mFile->dropOrphan();
    offerRecovery();
}

void Window::loadFromDisk(const std::string& text) {
    if (!mOverlay->isDialog())
        mOverlay->close(); // a menu is of elements that may be gone
    if (replace(text, "Load"))
        setSaved(text);
}

void Window::setSaved(const std::string& text) {
    mEditor.setSavedText(text);
    mKeptVersion = 0; // the next frame keeps or drops what is unsaved
}

// A script that can't be read when it is opened: asks what to do, until it is mended.
void Window::waitForScript() {
    mWaiting = true;
    const std::optional<std::string> orphan = mFile->takeOrphan(), backup = mFile->readBackup();
    std::vector<panorama::DialogButton> buttons;
    if (orphan)
        buttons.push_back({"Unsaved work", [this, orphan] { restore(*orphan); }});
    if (backup)
        buttons.push_back({"Backup", [this, backup] { startFrom(*backup, "Open the backup"); }});
    buttons.push_back({"Leave", [this] { quit(); }});
    std::vector<std::string> lines = {
        mScriptError, "", "Mend it with a text editor: as soon as it is saved, it is opened here."};
    if (orphan)
        lines.push_back("Or go on with the work that the studio had not saved when it ended.");
    if (backup)
        lines.push_back("Or go on with " + mFile->getName() + ".bak, the script before the last save.");
    mOverlay->openDialog(mFile->getName() + " can't be read", std::move(lines), std::move(buttons));
}

void Window::offerRecovery() {
    const std::optional<std::string> orphan = mFile->takeOrphan();
    if (!orphan)
        return;
    if (*orphan == mEditor.getDocument().getText() || orphan->empty()) {
        mFile->dropOrphan();
        offerRecovery();
        return;
    }
    mOverlay->openDialog("There is work that was not saved",
                         {"The studio ended before " + mFile->getName() + " was saved.",
                          "Restoring is one step that can be undone. Later, the next start asks again."},
                         {{"Restore", [this, orphan] { restore(*orphan); }},
                          {"Throw away",
                           [this] {
                               mFile->dropOrphan();
                               offerRecovery();
                           }},
                          {"Later", nullptr}});
}

// After each edit, and not in the middle of a gesture.
void Window::keepUnsaved() {
    const uint32_t version = mEditor.getDocument().getVersion();
    if (version == mKeptVersion || mEditor.inGesture())
        return;
    mKeptVersion = version;
    if (mEditor.isSaved())
        mFile->dropUnsaved();
    else if (!mFile->keepUnsaved(mEditor.getDocument().getText()))
        say("Unsaved work can't be kept beside the script");
}

// Of several in the setup file.
void Window::chooseScript() {
    const std::vector<std::string>& scripts = mShow.getScripts();
    std::vector<panorama::MenuItem> items;
    for (size_t i = 0; i < scripts.size(); ++i)
        items.push_back({scripts[i], i == mShow.getEdited() ? "is open" : "",
                         [this, i] { askToSave("you open another", [this, i] { openScript(i); }); },
                         i != mShow.getEdited()});
    mOverlay->openMenu(Vector2f(12, 44), std::move(items));
}

void Window::save() {
    mPanel->leaveKeys();
    if (write(false))
        say("Saved " + mFile->getName());
}

// Returns whether the file is written. Asks if it has changed on disk meanwhile.
bool Window::write(bool overwrite) {
    mEditor.endGesture();
    const std::string text = mEditor.getDocument().getText();
    switch (mFile->save(text, mEditor.getSavedText(), overwrite)) {
    case ScriptFile::Saved::YES:
        mEditor.setSavedText(text);
        mScriptError.clear();
        mFile->dropUnsaved();
        mKeptVersion = mEditor.getDocument().getVersion();
        return true;
    case ScriptFile::Saved::CHANGED_ON_DISK:
        mOverlay->openDialog(mFile->getName() + " has changed on disk",
                             {"Somebody else has written it since it was read here.",
                              "Overwritten, theirs is kept as " + mFile->getName() + ".bak."},
                             {{"Overwrite",
                               [this] {
                                   if (write(true))
                                       say("Saved " + mFile->getName());
                               }},
                              {"Load theirs",
                               [this] {
                                   if (const std::optional<std::string> theirs = mFile->read())
                                       loadFromDisk(*theirs);
                               }},
                              {"Cancel", nullptr}});
        return false;
    case ScriptFile::Saved::FAILED:
        mOverlay->openDialog(mFile->getName() + " could not be saved",
                             {"The file is as it was, and the work is still here.",
                              "The disk may be full, or the folder read-only."},
                             {{"Close", nullptr}});
        return false;
    }
    return false;
}

// Whether any has changed.
bool Window::pollFiles() {
    if (!mWatching || seconds() - mLastPoll < POLL)
        return false;
    mLastPoll = seconds();
    const std::vector<std::string> changed = mWatch.poll();
    const std::vector<std::string>& scripts = mShow.getScripts();
    if (changed.empty())
        return false;
    bool any = false; // of what the player's editor may be made of
    for (const std::string& name : changed) {
        any = any || name.ends_with(".xml");
        if (name == mFile->getName() || "./" + name == mFile->getPath() || name == mFile->getPath())
            checkScript();
        else if (name.ends_with(".xml") && std::find(scripts.begin(), scripts.end(), name) == scripts.end())
            checkFile(name); // the show reports its scripts
    }
    mShow.reload(changed);
    if (mPreview && any)
        loadPreview();
    return true;
}

void Window::checkScript() {
    const std::optional<std::string> text = mFile->read();
    if (!text && !mWaiting) {
        mGone = mEditor.getSavedText();
        setSaved("");
        say(mFile->getName() + " is gone: Ctrl+S writes it again");
    }
    if (!text || *text == mEditor.getSavedText()) {
        mScriptError.clear();
        return;
    }
    try {
        Document().load(*text);
    } catch (const Exception& exception) {
        mScriptError = exception.what();
        if (mWaiting)
            waitForScript(); // with the new error
        return;
    }
    if (mWaiting) {
        mOverlay->close();
        openScript(mShow.getEdited());
        return;
    }
    mScriptError.clear();
    const bool same = mEditor.isSaved() || mGone == mEditor.getDocument().getText();
    mGone.reset();
    if (*text == mEditor.getDocument().getText()) {
        setSaved(*text);
    } else if (same) {
        mTimeline->cancelDrag();
        loadFromDisk(*text);
        say(mFile->getName() + " has changed on disk, and is loaded");
    } else {
        askAboutDisk(*text);
    }
}

void Window::askAboutDisk(const std::string& text) {
    mTimeline->cancelDrag();
    mOverlay->openDialog(
        mFile->getName() + " has changed on disk",
        {"There is unsaved work here. Loaded, theirs takes its place; undo brings yours back.",
         "Kept, yours overwrites theirs at the next save."},
        {{"Load theirs", [this, text] { loadFromDisk(text); }},
         {"Keep mine", [this, text] { setSaved(text); }}});
}

void Window::checkFile(const std::string& name) {
    mFileErrors.erase(name);
    std::ifstream stream(name, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream)
        return;
    xml::XmlParser parser;
    try {
        parser.parse(text);
    } catch (const std::exception& exception) {
        mFileErrors[name] = exception.what();
        return;
    }
    if (parser.getName() == "panorama" && !mPreview)
        say(name + " has changed: F9 shows the player's editor");
}

// The player's editor, for those who change its layout and style.

void Window::togglePreview() {
    if (mPreview) {
        mPreview.reset();
        mFileErrors.erase(PREVIEW);
    } else {
        loadPreview();
    }
}

// If it can't be loaded, the present one stays.
void Window::loadPreview() {
    mFileErrors.erase(PREVIEW);
    try {
        mPreview = std::make_unique<Preview>(mShow.getDisplay(), mEditor.getDocument(), mShow.getLength());
    } catch (const std::exception& exception) {
        mFileErrors[PREVIEW] = exception.what();
    }
}

void Window::askToSave(const std::string& before, const std::function<void()>& then) {
    if (mEditor.isSaved()) {
        then();
        return;
    }
    mOverlay->openDialog("Save " + mFile->getName() + " before " + before + "?",
                         {"It has changes that are not saved."},
                         {{"Save",
                           [this, then] {
                               if (write(false))
                                   then();
                           }},
                          {"Don't save",
                           [this, then] {
                               mFile->dropUnsaved();
                               then();
                           }},
                          {"Cancel", nullptr}});
}

int Window::onQuit() {
    mPanel->leaveKeys();
    if (mEditor.isSaved() || mQuitting) {
        mFile->dropUnsaved();
        return WHATEVER;
    }
    askToSave("you leave", [this] {
        mQuitting = true;
        quit();
    });
    return BLOCK | DIRTY;
}

// Input

// A menu or a question takes all of it; keys are commands unless a field has them.
int Window::dispatch(panorama::Event& event) {
    if (mPreview)
        return 0;
    if (mOverlay->isOpen())
        return mOverlay->handleEvent(event);
    if (event.type == "mousedown" && !isInside(mPanel->getAreaWorld(), event.mousePos))
        mPanel->leaveKeys();
    return event.isKey() && !mPanel->hasKeys() ? 0 : Panorama::dispatch(event);
}

namespace {

// Keys that a field for text leaves to the program.
bool isForEveryone(const display::KeyEvent& event) {
    using namespace display;
    if (event.key >= KEY_F1 && event.key <= KEY_F12)
        return true;
    return event.ctrl() &&
           (event.key == KEY_s || event.key == KEY_q || event.key == KEY_z || event.key == KEY_y);
}

} // namespace

int Window::onKeyUp(const display::KeyEvent& source) {
    mKeyWasCommand = false;
    return Panorama::onKeyUp(source);
}

int Window::onCharDown(const display::CharEvent& source) {
    return mKeyWasCommand ? int(BLOCK) : Panorama::onCharDown(source);
}

int Window::onKeyDown(const display::KeyEvent& source) {
    mShow.getDisplay().setDirty(true);
    mKeyWasCommand = false;
    if (mPreview) {
        if (source.key == display::KEY_F9 || source.key == display::KEY_ESC)
            togglePreview();
        else if (source.key == display::KEY_SPACE)
            togglePlay();
        return BLOCK;
    }
    if (mOverlay->isOpen())
        return Panorama::onKeyDown(source);
    const bool panel = mPanel->hasKeys();
    if (panel && !isForEveryone(source) && Panorama::onKeyDown(source))
        return BLOCK;
    int modifiers = 0;
    if (source.ctrl())
        modifiers |= display::KEYMOD_LCTRL;
    if (source.shift())
        modifiers |= display::KEYMOD_LSHIFT;
    if (source.alt())
        modifiers |= display::KEYMOD_LALT;
    for (const Command& command : getCommands()) {
        if (command.key != source.key || command.modifiers != modifiers || !command.command)
            continue;
        if (mTimeline->isDragging() && command.key != display::KEY_ESC)
            return BLOCK; // first the one gesture, then the other
        if (panel)
            mPanel->leaveKeys();
        mKeyWasCommand = true;
        (this->*command.command)();
        return BLOCK;
    }
    return !panel && nudge(source) ? int(BLOCK) : int(WHATEVER);
}

// The bar

Bar::Bar(Window& window) : mWindow(window) {
    mName = mType = "bar";
    mRaiseOnFocus = false;
}

panorama::Control* Bar::clone() {
    return nullptr;
}

std::vector<Bar::Switch> Bar::getSwitches() const {
    Show& show = mWindow.getShow();
    const Timeline& timeline = mWindow.getTimeline();
    return {{"Help", false, &Window::help},
            {"Mute", show.isMuted(), &Window::toggleMute},
            {"Replay", show.isReplaying(), &Window::toggleReplay},
            {"Follow", timeline.mFollow, &Window::toggleFollow},
            {"Snap", timeline.mSnapping, &Window::toggleSnap},
            {"Loop", show.getLoop().has_value(), &Window::toggleLoop},
            {show.isPlaying() ? "Pause" : "Play", show.isPlaying(), &Window::togglePlay},
            {"Save", !mWindow.getEditor().isSaved(), &Window::save}};
}

Box2 Bar::getSwitchBox(size_t index) {
    constexpr float WIDTH = 62;
    const Box2& all = mArea.world;
    const float right = all.x2 - 8 - WIDTH * float(index);
    return Box2(right - WIDTH + 4, all.y1 + 3, right, all.y2 - 3);
}

Box2 Bar::getBox(const std::string& label) {
    const std::vector<Switch> switches = getSwitches();
    for (size_t i = 0; i < switches.size(); ++i)
        if (switches[i].label == label)
            return getSwitchBox(i);
    return Box2();
}

int Bar::handleEvent(panorama::Event& event) {
    if (event.type == "mousedown" && event.button == 0) {
        const std::vector<Switch> switches = getSwitches();
        for (size_t i = 0; i < switches.size(); ++i)
            if (isInside(getSwitchBox(i), event.mousePos))
                (mWindow.*switches[i].command)();
        return 1;
    }
    return Control::handleEvent(event);
}

void Bar::draw() {
    panorama::Render* const render = getRender();
    if (!render)
        return;
    Paint paint(*render);
    const Box2& all = mArea.world;
    paint.clip(all);
    paint.box(all, color::panel);
    paint.line(all.x1, all.y1, all.x2, all.y1, color::edge);
    paint.line(all.x1, all.y2 - 1, all.x2, all.y2 - 1, color::edge);
    const float middle = (all.y1 + all.y2) / 2;
    const std::vector<Switch> switches = getSwitches();
    for (size_t i = 0; i < switches.size(); ++i) {
        const Box2 box = getSwitchBox(i);
        paint.box(box, switches[i].on ? color::accent : color::raised);
        const float x = std::floor((box.x1 + box.x2 - paint.width(switches[i].label)) / 2);
        paint.text(x, middle, switches[i].label, switches[i].on ? color::edge : color::ink);
    }
    const float room = getSwitchBox(switches.size() - 1).x1 - 30;
    std::string text = mWindow.getMessage();
    if (text.empty()) {
        const Editor& editor = mWindow.getEditor();
        text = editor.getSelection().empty() ? "F1 helps. Right button: menus. Ctrl and wheel: zoom."
                                             : std::to_string(editor.getSelection().size()) + " selected";
        if (!editor.getUndoLabel().empty())
            text += "   Ctrl+Z takes back: " + editor.getUndoLabel();
    }
    paint.text(all.x1 + 12, middle, paint.fit(text, room),
               mWindow.getMessage().empty() ? color::dim : color::accent);
}

} // namespace zentrak::studio
