#include "editor.h"

#include "dis_display.h"
#include "gl_fixture.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace zentrak::test {

using mathbase::Box2;
using mathbase::Vector2f;

void Grey::updateSpline(float, const std::string& name, float value) {
    if (name == "grey")
        grey = value;
}

// Within the driver's viewport, which glClear would ignore.
void Grey::update(float, float, float) {
    GLint part[4];
    glGetIntegerv(GL_VIEWPORT, part);
    glEnable(GL_SCISSOR_TEST);
    glScissor(part[0], part[1], part[2], part[3]);
    glClearColor(grey, grey, grey, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

// Draws last, and runs the other thread's tasks.
class EditedShow::Hook : public display::Listener {
public:
    void onDraw() override {
        std::unique_lock lock(mMutex);
        ++mFrames;
        if (mTask) {
            (*mTask)();
            mTask = nullptr;
        }
        mDone.notify_all();
    }

    // Runs `task` in the frame after the next: the events before it have been handled by then.
    void run(const std::function<void()>& task) {
        std::unique_lock lock(mMutex);
        wait(lock, 2);
        mTask = &task;
        mDone.wait(lock, [&] { return !mTask || mEnded; });
    }
    void waitForFrames(int count) {
        std::unique_lock lock(mMutex);
        wait(lock, count);
    }
    void end() {
        std::unique_lock lock(mMutex);
        mEnded = true;
        mDone.notify_all();
    }
    bool hasEnded() {
        std::unique_lock lock(mMutex);
        return mEnded;
    }

private:
    void wait(std::unique_lock<std::mutex>& lock, int count) {
        const long goal = mFrames + count;
        mDone.wait(lock, [&] { return mFrames >= goal || mEnded; });
    }

    std::mutex mMutex;
    std::condition_variable mDone;
    const std::function<void()>* mTask = nullptr;
    long mFrames = 0;
    bool mEnded = false;
};

namespace {

// Adds the hook after the editor: by the first frame all other listeners are there.
struct Opening : kindler::Effect {
    display::Listener* hook = nullptr;

    void update(float, float, float) override {
        if (!hook->display)
            hook->attachToDisplay(mDisplay);
    }
};

} // namespace

EditedShow::EditedShow(const std::string& script) : mHook(new Hook) {
    static int count = 0;
    mTitle = "Editor " + std::to_string(++count) + " of " + std::to_string(getpid());
    writeFile(mDir.file("script.xml"), script);
    writeFile(mDir.file("setup.xml"),
              "<demo><archive path=\"" + sourcePath("data") + "/\"/><display title=\"" + mTitle +
                  "\" width=\"" + std::to_string(WIDTH) + "\" height=\"" + std::to_string(HEIGHT) +
                  "\"/><osd show=\"off\"/><script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    const WorkingDir working(mDir.path());
    mKindler.setup();
    mKindler.mDemoLength = 200;
    mKindler.addCallback("grey", mGrey);
}

EditedShow::~EditedShow() {
    mHook->attachToDisplay(nullptr);
}

void EditedShow::play(const std::function<void()>& use) {
    const WorkingDir working(mDir.path());
    Opening opening;
    opening.hook = mHook.get();
    mKindler.addCallback("opening", opening);
    auto* const span = new script::Effect;
    span->mName = "opening";
    span->mEnabled = true;
    span->mEnd = 10000;
    mKindler.mScript.mEffects.push_back(span); // after all others
    mKindler.mScript.init();
    mKindler.mPaused = true;
    mViewer.reset(new Viewer(mTitle, [this] { mHook->waitForFrames(1); }));
    std::thread viewer([&] {
        mHook->waitForFrames(1);
        mViewer->focus();
        moveTo(Vector2f(1, 1)); // moving to where the last show left the pointer sends no event
        if (!::testing::Test::HasFatalFailure())
            use();
        mViewer.reset(); // releases all keys and buttons
        frame([this] { mKindler.mDisplay->mQuittingBlocking = true; });
    });
    try {
        mKindler.run();
    } catch (const std::exception& e) {
        ADD_FAILURE() << e.what();
    }
    mHook->end();
    viewer.join();
}

void EditedShow::frame(const std::function<void()>& what) {
    mHook->run(what);
    mHook->waitForFrames(1);
}

Picture EditedShow::picture() {
    Picture picture;
    mHook->run([&] { picture = grabPicture(*mKindler.mDisplay); });
    return picture;
}

void EditedShow::setTime(float t) {
    frame([&] { mKindler.setTime(t); });
}

bool EditedShow::until(const std::string& what, const std::function<bool()>& done) {
    return mViewer->until(
        what,
        [&] {
            bool result = false;
            mHook->run([&] { result = done(); });
            return result;
        },
        150); // a frame of the real show may take a second under sanitizers
}

void EditedShow::settle() {
    mHook->waitForFrames(3);
}

bool EditedShow::ends() {
    return mViewer->until("the end of the show", [&] { return mHook->hasEnded(); });
}

void EditedShow::open() {
    mViewer->key("Tab");
    until("the editor", [this] { return gui().isVisible(); });
    settle();
}

void EditedShow::close() {
    mViewer->key("Tab");
    until("the end of the editor", [this] { return !gui().isVisible(); });
    settle();
}

panorama::Control* EditedShow::control(const std::string& name) {
    return gui().mPanorama.mWorkspace.findControl(name);
}

// The focus moves a row to the end of the list, but not in the window.
kindler::Row* EditedShow::row(int index) {
    panorama::Control* rows = control("effects");
    std::vector<kindler::Row*> list;
    for (unsigned int i = 0; i < rows->getControlSize(); ++i)
        list.push_back(dynamic_cast<kindler::Row*>(rows->getControl(i)));
    std::sort(list.begin(), list.end(),
              [](kindler::Row* a, kindler::Row* b) { return a->getArea().y1 < b->getArea().y1; });
    return index >= 0 && size_t(index) < list.size() ? list[size_t(index)] : nullptr;
}

kindler::Effector* EditedShow::bar(int index) {
    return dynamic_cast<kindler::Effector*>(row(index)->getControl(0));
}

panorama::Spline* EditedShow::curve(int index) {
    return dynamic_cast<panorama::Spline*>(row(index)->getControl(0));
}

Box2 EditedShow::box(panorama::Control* shown) {
    Box2 result;
    mHook->run([&] { result = shown->mArea.clip; });
    return result;
}

Vector2f EditedShow::keyPlace(int index, int key) {
    Vector2f place(0, 0);
    mHook->run([&] {
        panorama::Spline* const widget = curve(index);
        const auto& at = widget->mSpline->mKeys[size_t(key)];
        const Box2& world = widget->mArea.world;
        place = Vector2f(world.x1 + world.getWidth() * at.time,
                         world.y1 + 0.5f * world.getHeight() * (1 + at.value));
    });
    return place;
}

void EditedShow::moveTo(Vector2f place) {
    mViewer->moveTo(int(std::lround(place.x)), int(std::lround(place.y)));
    settle();
}

void EditedShow::press(Vector2f place, int button) {
    moveTo(place);
    mViewer->buttonDown(button);
    settle();
}

void EditedShow::release(int button) {
    mViewer->buttonUp(button);
    settle();
}

void EditedShow::click(Vector2f place, int button) {
    press(place, button);
    release(button);
}

void EditedShow::drag(Vector2f from, float dx, float dy) {
    press(from);
    for (int step = 1; step <= 5; ++step)
        moveTo(Vector2f(from.x + dx * float(step) / 5, from.y + dy * float(step) / 5));
    release();
}

} // namespace zentrak::test
