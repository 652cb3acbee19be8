#include "studio_window.h"

#include "dis_glcheck.h"
#include "dis_key.h"
#include "glfw2.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zentrak::studio {

namespace {

constexpr double POLL = 0.4;  // seconds between two looks at the files
constexpr double MESSAGE = 5; // seconds that a message stays
constexpr size_t ERROR_LINES = 10;

double seconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

Window::Window(Show& show, Editor& editor, ScriptFile& file)
    : Panorama(&show.getDisplay()), mShow(show), mEditor(editor), mFile(file), mWatch(".") {
    mOverlay = new Overlay;
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
    const display::WindowMode& mode = show.getDisplay().mWindowMode;
    setScale(mode.height >= 1300 ? 2.0f : 1.0f);
    layout();
    mTimeline->fit();
    followDocument();
    offerRecovery();
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

void Window::setScale(float scale) {
    mScale = std::clamp(scale, 0.5f, 3.0f);
    onResize(0, 0);
}

void Window::layout() {
    const display::WindowMode& mode = mShow.getDisplay().mWindowMode;
    const float width = std::floor(float(mode.width) / mScale),
                height = std::floor(float(mode.height) / mScale);
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

void Window::onDraw() {
    const double start = seconds();
    pollFiles();
    layout();
    mShow.update();
    mTimeline->update();
    mPanel->update();
    followDocument();
    keepUnsaved();
    showTitle();
    const Box2 box = getPictureBox();
    const double beforePicture = seconds();
    const display::WindowMode& mode = mShow.getDisplay().mWindowMode;
    mShow.draw(Box2(std::floor(box.x1 * mScale), std::floor(box.y1 * mScale), std::floor(box.x2 * mScale),
                    std::floor(box.y2 * mScale)));
    GL_CALL(glFinish()); // what the show draws is not the studio's
    const double afterPicture = seconds();

    panorama::Render& render = mWorkspace.mRender;
    const Vector2f size(std::floor(float(mode.width) / mScale), std::floor(float(mode.height) / mScale));
    render.setupDraw(size, Vector2f(0, 0), 0);
    GL_CALL(glViewport(0, 0, GLsizei(size.x * mScale), GLsizei(size.y * mScale)));
    GL_CALL(glEnable(GL_BLEND));
    drawPictureGround();
    mWorkspace.draw();
    render.flush();
    GL_CALL(glViewport(0, 0, mode.width, mode.height));
    GL_CALL(glFinish());
    mOwnTime = seconds() - afterPicture + beforePicture - start;
}

// What the picture leaves of its part of the window, and what stands on it.
void Window::drawPictureGround() {
    Paint paint(mWorkspace.mRender);
    paint.unclip();
    const Box2 box = getPictureBox();
    const Box2 all(mPictureAlone ? 0 : Panel::WIDTH, 0, mWorkspace.mArea.world.x2,
                   mPictureAlone ? mWorkspace.mArea.world.y2 : mBar->mArea.world.y1);
    for (const Box2& rest : {Box2(all.x1, all.y1, box.x1, all.y2), Box2(box.x2, all.y1, all.x2, all.y2),
                             Box2(box.x1, all.y1, box.x2, box.y1), Box2(box.x1, box.y2, box.x2, all.y2)})
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
        add(mFile.getName() + ": " + mScriptError);
    for (const auto& [name, error] : mFileErrors)
        add(name + ": " + error);
    for (const Show::Failure& failure : mShow.getFailures())
        add("effect " + failure.where + ": " + failure.text);
    for (const Document::Problem& problem : mEditor.getDocument().getProblems())
        add(mFile.getName() + ":" + std::to_string(problem.line) + ": " + problem.text);
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

// The title tells of unsaved work.
void Window::showTitle() {
    const std::string title = mFile.getName() + (mEditor.isSaved() ? "" : " *") + " - Zentrak studio";
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

void Window::offerRecovery() {
    const std::optional<std::string> unsaved = mFile.readUnsaved();
    if (!unsaved)
        return;
    if (*unsaved == mEditor.getDocument().getText()) {
        mFile.dropUnsaved();
        return;
    }
    mAskedRecovery = true;
    const std::string& text = *unsaved;
    mOverlay->openDialog("There is work that was not saved",
                         {"The studio ended the last time before " + mFile.getName() + " was saved.",
                          "Restored, it is one step that can be undone, and not saved yet."},
                         {{"Restore",
                           [this, text] {
                               mAskedRecovery = false;
                               try {
                                   mEditor.replace(text, "Restore");
                                   say("Restored: Ctrl+S saves it");
                               } catch (const Exception& exception) {
                                   say(std::string("It can't be restored: ") + exception.what());
                               }
                           }},
                          {"Throw away", [this] {
                               mAskedRecovery = false;
                               mFile.dropUnsaved();
                           }}});
}

// After each edit, and not in the middle of a gesture.
void Window::keepUnsaved() {
    const uint32_t version = mEditor.getDocument().getVersion();
    if (version == mKeptVersion || mEditor.inGesture() || mAskedRecovery)
        return;
    mKeptVersion = version;
    if (mEditor.isSaved())
        mFile.dropUnsaved();
    else if (!mFile.keepUnsaved(mEditor.getDocument().getText()))
        say("Unsaved work can't be kept beside the script");
}

void Window::save() {
    mPanel->leaveKeys();
    if (write(false))
        say("Saved " + mFile.getName());
}

// Whether it is written. Asks where the file has changed meanwhile.
bool Window::write(bool overwrite) {
    mEditor.endGesture();
    const std::string text = mEditor.getDocument().getText();
    switch (mFile.save(text, mEditor.getSavedText(), overwrite)) {
    case ScriptFile::Saved::YES:
        mEditor.setSavedText(text);
        mScriptError.clear();
        mFile.dropUnsaved();
        mKeptVersion = mEditor.getDocument().getVersion();
        return true;
    case ScriptFile::Saved::CHANGED_ON_DISK:
        mOverlay->openDialog(mFile.getName() + " has changed on disk",
                             {"Somebody else has written it since it was read here.",
                              "Overwritten, theirs is kept as " + mFile.getName() + ".bak."},
                             {{"Overwrite",
                               [this] {
                                   if (write(true))
                                       say("Saved " + mFile.getName());
                               }},
                              {"Load theirs",
                               [this] {
                                   if (const std::optional<std::string> theirs = mFile.read()) {
                                       mEditor.replace(*theirs, "Load");
                                       mEditor.setSavedText(*theirs);
                                   }
                               }},
                              {"Cancel", nullptr}});
        return false;
    case ScriptFile::Saved::FAILED:
        mOverlay->openDialog("It could not be saved", {mFile.getPath() + " is as it was."},
                             {{"Close", nullptr}});
        return false;
    }
    return false;
}

void Window::pollFiles() {
    if (!mWatching || seconds() - mLastPoll < POLL)
        return;
    mLastPoll = seconds();
    std::vector<std::string> changed = mWatch.poll();
    if (changed.empty())
        return;
    for (const std::string& name : changed) {
        if (name == mFile.getName() || "./" + name == mFile.getPath() || name == mFile.getPath())
            checkScript();
        else if (name.ends_with(".xml"))
            checkFile(name);
    }
    mShow.reload(changed);
}

void Window::checkScript() {
    const std::optional<std::string> text = mFile.read();
    if (!text || *text == mEditor.getSavedText()) {
        mScriptError.clear();
        return;
    }
    try {
        Document().load(*text);
    } catch (const Exception& exception) {
        mScriptError = exception.what();
        return;
    }
    mScriptError.clear();
    if (*text == mEditor.getDocument().getText()) {
        mEditor.setSavedText(*text);
    } else if (mEditor.isSaved()) {
        mTimeline->cancelDrag();
        mEditor.replace(*text, "Load");
        mEditor.setSavedText(*text);
        say(mFile.getName() + " has changed on disk, and is loaded");
    } else {
        askAboutDisk(*text);
    }
}

void Window::askAboutDisk(const std::string& text) {
    mTimeline->cancelDrag();
    mOverlay->openDialog(
        mFile.getName() + " has changed on disk",
        {"There is unsaved work here. Loaded, theirs takes its place; undo brings yours back.",
         "Kept, yours overwrites theirs at the next save."},
        {{"Load theirs",
          [this, text] {
              mEditor.replace(text, "Load");
              mEditor.setSavedText(text);
          }},
         {"Keep mine", [this, text] { mEditor.setSavedText(text); }}});
}

void Window::checkFile(const std::string& name) {
    mFileErrors.erase(name);
    std::ifstream stream(name, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream)
        return;
    try {
        xml::XmlParser().parse(text);
    } catch (const std::exception& exception) {
        mFileErrors[name] = exception.what();
    }
}

int Window::onQuit() {
    mPanel->leaveKeys();
    if (mEditor.isSaved() || mQuitting) {
        if (!mAskedRecovery)
            mFile.dropUnsaved();
        return WHATEVER;
    }
    mOverlay->openDialog("Save " + mFile.getName() + " before you leave?",
                         {"It has changes that are not saved."},
                         {{"Save",
                           [this] {
                               if (write(false))
                                   quit();
                           }},
                          {"Don't save",
                           [this] {
                               mQuitting = true;
                               quit();
                           }},
                          {"Cancel", nullptr}});
    return BLOCK;
}

// Input. Positions are of the interface's pixels from here on.

template <class EventType>
EventType Window::scaled(EventType event) const {
    event.mousePos = event.mousePos * (1 / mScale);
    if constexpr (requires { event.mouseDelta; })
        event.mouseDelta = event.mouseDelta * (1 / mScale);
    return event;
}

namespace {

panorama::Event makeEvent(const display::Event& source, const char* type) {
    panorama::Event event;
    static_cast<display::Event&>(event) = source;
    event.type = type;
    return event;
}

// Keys that a field for text leaves to the program.
bool isForEveryone(const display::KeyEvent& event) {
    using namespace display;
    if (event.key >= KEY_F1 && event.key <= KEY_F12)
        return true;
    return event.ctrl() &&
           (event.key == KEY_s || event.key == KEY_q || event.key == KEY_z || event.key == KEY_y);
}

} // namespace

int Window::onMouseDown(const display::MouseButtonEvent& source) {
    const display::MouseButtonEvent here = scaled(source);
    panorama::Event event = makeEvent(here, "mousedown");
    event.button = here.button;
    event.doubleClick = here.doubleClick;
    if (mOverlay->isOpen())
        return mOverlay->handleEvent(event) ? BLOCK : WHATEVER;
    if (!contains(mPanel->getAreaWorld(), here.mousePos))
        mPanel->leaveKeys();
    return Panorama::onMouseDown(here);
}

int Window::onMouseUp(const display::MouseButtonEvent& source) {
    const display::MouseButtonEvent here = scaled(source);
    panorama::Event event = makeEvent(here, "mouseup");
    event.button = here.button;
    if (mOverlay->isOpen())
        return mOverlay->handleEvent(event) ? BLOCK : WHATEVER;
    return Panorama::onMouseUp(here);
}

int Window::onMouseMove(const display::MouseMoveEvent& source) {
    const display::MouseMoveEvent here = scaled(source);
    panorama::Event event = makeEvent(here, "mousemove");
    if (mOverlay->isOpen())
        mOverlay->handleEvent(event);
    else
        Panorama::onMouseMove(here);
    return WHATEVER;
}

int Window::onMouseWheel(const display::MouseMoveEvent& source) {
    const display::MouseMoveEvent here = scaled(source);
    if (!mOverlay->isOpen())
        return Panorama::onMouseWheel(here);
    panorama::Event event = makeEvent(here, "mousewheel");
    event.wheelDelta = here.mouseDeltaWheel;
    return mOverlay->handleEvent(event) ? BLOCK : WHATEVER;
}

int Window::onKeyUp(const display::KeyEvent& source) {
    mKeyWasCommand = false;
    return mPanel->hasKeys() ? Panorama::onKeyUp(source) : int(WHATEVER);
}

int Window::onCharDown(const display::CharEvent& source) {
    if (mKeyWasCommand)
        return BLOCK;
    if (!mOverlay->isOpen())
        return mPanel->hasKeys() ? Panorama::onCharDown(source) : int(WHATEVER);
    panorama::Event event = makeEvent(scaled(source), "keychardown");
    event.character = source.key;
    return mOverlay->handleEvent(event) ? BLOCK : WHATEVER;
}

int Window::onKeyDown(const display::KeyEvent& source) {
    mKeyWasCommand = false;
    if (mOverlay->isOpen()) {
        panorama::Event event = makeEvent(scaled(source), "keydown");
        event.key = source.key;
        return mOverlay->handleEvent(event) ? BLOCK : WHATEVER;
    }
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
            if (contains(getSwitchBox(i), event.mousePos))
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
