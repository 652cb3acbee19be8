#include "dis_display.h"

#include "dis_glcheck.h"
#include "dis_ibo.h"
#include "dis_vbo.h"
#include "glfw2.h"
#include "ztk_system.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace zentrak::display {

using namespace glfw2;

DisplayGL* DisplayGL::currentDisplay = nullptr;

static const int MAX_WINDOW_SIZE = 32767;   // what the window system can count, pixels a side
static const int MAX_WINDOW_AREA = 1 << 28; // pixels; a picture of more does not get through to it
static const double SPIN_TIME = 0.005;      // seconds at the end of a wait that sleeping would not hit
static const double ICONIFIED_FRAME = 1.0 / 60;

// Opening and closing

DisplayGL::DisplayGL(const WindowMode& mode) {
    if (currentDisplay)
        throw Exception("Could not open another GLFW-device");
    mWindowMode = mode;
    mFpsType = FPS_VARIABLE;
    mFps = 0;
    glfwInit();
    currentDisplay = this;
    std::fill(std::begin(mPressed), std::end(mPressed), false);
    mLastClickTime = -1;
    mOpened = false;
    mContextCount = 0;
    mCurrentVBO = nullptr;
    mCurrentIBO = nullptr;
    mFpsCountFinal = 0;
    mFpsCountFinalTime = 0;
    mFpsCountFrames = 0;
    mArchiveManager = nullptr;

    mCameraMatrix.setIdentity();
    mTransformMatrix.setIdentity();
    mDirty = false;
    mIconified = false;
    mFocused = false;
    mMouseX = 0;
    mMouseY = 0;
    mMouseWheel = 0;
    mQuittingBlocking = false;
    mPushedStates = false;
    mWalks = nullptr;
    setLastTime(0);
}

DisplayGL::~DisplayGL() {
    if (mOpened)
        close();
    while (!mListeners.empty())
        removeListener(mListeners.back());
    glfwTerminate();
    currentDisplay = nullptr;
}

// Gives a window without a width or height one that fits the other.
static void completeSize(WindowMode& mode) {
    if (mode.width <= 0 && mode.height <= 0) {
        mode.width = 640;
        mode.height = 480;
    } else if (mode.width <= 0) {
        mode.width = int(mode.height * 4LL / 3);
    } else if (mode.height <= 0) {
        mode.height = std::max(1, int(mode.width * 3LL / 4));
    }
    mode.width = std::max(1, mode.width);
}

void DisplayGL::open() {
    completeSize(mWindowMode);
    if (mWindowMode.width > MAX_WINDOW_SIZE || mWindowMode.height > MAX_WINDOW_SIZE ||
        mWindowMode.width > MAX_WINDOW_AREA / mWindowMode.height)
        throw Exception("Could not open window");

    glfwOpenWindowHint(GLFW_WINDOW_NO_RESIZE, mWindowMode.canResize ? 0 : 1);
    if (!mOpened)
        openWindow();
    else
        glfwSetWindowSize(mWindowMode.width, mWindowMode.height);
    GL_CHECK_STATUS();

    int major = 0, minor = 0, revision = 0;
    glfwGetVersion(&major, &minor, &revision);
    ZTK_LOG("info", "display", "Opened window of resolution %dx%d (glfw version: %d.%d.%d)\n",
            mWindowMode.width, mWindowMode.height, major, minor, revision);
    glfwSetWindowTitle(mWindowMode.title.c_str());
    glfwDisable(GLFW_AUTO_POLL_EVENTS);
    GL_CHECK_STATUS();

    if (mWindowMode.canResize) {
        glfwSetWindowSizeCallback(reshape);
    } else {
        glfwSetWindowSizeCallback(nullptr);
        Walk walk(*this, true);
        while (Listener* listener = walk.next())
            listener->onResize(mWindowMode.width, mWindowMode.height);
        mDirty = true;
    }

    glfwSetKeyCallback(keyFun);
    glfwSetCharCallback(charFun);
    glfwSetMousePosCallback(mousePosFun);
    glfwSetMouseButtonCallback(mouseButtonFun);
    glfwSetMouseWheelCallback(mouseWheelFun);
    glfwSetWindowCloseCallback(closeFun);

    mQuittingBlocking = false;
    if (!mOpened)
        return; // a listener has closed it again
    GL_CHECK_STATUS();
    resetStates();
    mIconified = glfwGetWindowParam(GLFW_ICONIFIED) == 1;
    mFocused = glfwGetWindowParam(GLFW_ACTIVE) == 1;
    GL_CHECK_STATUS();
}

// Opens a window that is not yet open, and readies its context.
void DisplayGL::openWindow() {
    if (!glfwOpenWindow(mWindowMode.width, mWindowMode.height, 0, 0, 0, 0, 16, 0,
                        mWindowMode.fullscreen ? GLFW_FULLSCREEN : GLFW_WINDOW))
        throw Exception("Could not open window");
    ++mContextCount;
    static int openings = 0;
    mContext = ++openings;

    // Without an X display, as under Wayland, only the extensions of GLX itself are missing, and none is
    // used.
    const GLenum glew = glewInit();
    const bool connected = glGetString(GL_VERSION); // not through GLEW
    if (!connected)
        ZTK_LOG("error", "display", "OpenGL has no version: its libraries don't fit together");
    if (!connected || (glew != GLEW_OK && glew != GLEW_ERROR_NO_GLX_DISPLAY)) {
        glfwCloseWindow();
        throw Exception("DisplayGL: Could not initialize GLEW!");
    }
    if (hasExtension("GL_ARB_shading_language_100")) {
        const char* version = reinterpret_cast<const char*>(glGetString(GL_SHADING_LANGUAGE_VERSION));
        ZTK_LOG("info", "display", "GL_SHADING_LANGUAGE_VERSION: '%s'\n", version ? version : "");
    }
    glfwEnable(GLFW_STICKY_KEYS);
    glfwSetTime(0);
    glfwEnable(GLFW_KEY_REPEAT);

    // No key is down and no wheel turned in a new window.
    std::fill(std::begin(mPressed), std::end(mPressed), false);
    mMouseWheel = 0;
    mLastClickTime = -1;

    mOpened = true;
    setFps(FPS_VSYNC, 30);
}

void DisplayGL::close() {
    assert(mOpened);
    ZTK_LOG("info", "display", "closing display");
    glfwCloseWindow();
    mPushedStates = false;
    mOpened = false;
}

void DisplayGL::setFullscreen(bool on) {
    if (on == mWindowMode.fullscreen)
        return;
    const double now = getTime();
    close();
    mWindowMode.fullscreen = on;
    open();
    setTime(now);
}

void DisplayGL::getModes(std::vector<WindowMode>& modes) const {
    GLFWvidmode list[2048];
    const int count = glfwGetVideoModes(list, 2048);
    modes.assign(size_t(std::max(0, count)), WindowMode());
    for (size_t i = 0; i < modes.size(); ++i) {
        modes[i].width = list[i].Width;
        modes[i].height = list[i].Height;
        modes[i].bitdepth = list[i].RedBits + list[i].GreenBits + list[i].BlueBits;
        modes[i].fullscreen = true;
    }
}

// Extensions

bool DisplayGL::hasExtension(const std::string& name) {
    return glewIsSupported(name.c_str()) == GL_TRUE;
}

void DisplayGL::setArchive(am::ArchiveManager* manager) {
    ZTK_LOG("info", "display", "Assigning archive %p to display %p", static_cast<void*>(manager),
            static_cast<void*>(this));
    mArchiveManager = manager;
}

// Time

double DisplayGL::getTime() const {
    return mFpsType == FPS_DELTA ? double(mFpsLastTime) : glfwGetTime();
}

void DisplayGL::setTime(double t) {
    if (!std::isfinite(t))
        return;
    mLastClickTime = -1;
    glfwSetTime(t);
    setLastTime(t);
    mFpsCountFinal = 0;
    mFpsCountFinalTime = float(t);
    mFpsCountFrames = 0;
}

void DisplayGL::sleep(double t) const {
    glfwSleep(t);
}

void DisplayGL::setFps(FpsMode mode, float fps) {
    assert(mOpened);
    mFpsType = mode;
    mFps = fps;
    setLastTime(0);
    glfwSetWindowRefreshCallback(mode == FPS_EVENT ? refreshFun : nullptr);
    mDirty = mode == FPS_EVENT;
    glfwSwapInterval(mode == FPS_VARIABLE ? 0 : 1);
}

void DisplayGL::setLastTime(double t) {
    mFpsLastTime = float(t);
    mDeltaTime = t;
}

// The frame step

bool DisplayGL::update() {
    if (mFpsType == FPS_EVENT)
        glfwWaitEvents();
    else
        glfwPollEvents();
    if (!mOpened)
        return false;
    if (mQuittingBlocking) {
        mQuittingBlocking = false;
        return false;
    }

    bool draw = true;
    if (mFpsType == FPS_EVENT) {
        draw = mDirty;
        mDirty = false;
    }
    readWindowState();
    if (mOpened && !mIconified && draw) {
        resetAllStates();
        drawListeners();
    }
    if (!mOpened)
        return false; // a listener has closed it

    if (mFpsType == FPS_FIXED)
        paceFixed();
    if (mFpsType == FPS_DELTA)
        stepDelta();
    if (mFpsType == FPS_VSYNC && mIconified)
        glfwSleep(ICONIFIED_FRAME); // there is no swap that would wait
    if (!mIconified && draw)
        glfwSwapBuffers();
    countFrame();
    return glfwGetWindowParam(GLFW_OPENED) == 1;
}

void DisplayGL::updateBlocking() {
    while (update()) {
    }
}

// Notifies the listeners when the window was iconified or restored, and when it got or lost the focus.
void DisplayGL::readWindowState() {
    const bool iconified = glfwGetWindowParam(GLFW_ICONIFIED) == 1;
    const bool focused = glfwGetWindowParam(GLFW_ACTIVE) == 1;
    tellChange(mIconified, iconified, &Listener::onIconify);
    tellChange(mFocused, focused, &Listener::onChangeFocus);
}

// The display keeps the old state until all listeners have been called. One of them may have reopened the
// window, with a state of its own.
void DisplayGL::tellChange(bool& state, bool now, void (Listener::*operation)(bool)) {
    if (now == state)
        return;
    const int context = mContextCount;
    Walk walk(*this, true);
    while (Listener* listener = walk.next())
        (listener->*operation)(now);
    if (mContextCount == context)
        state = now;
}

void DisplayGL::drawListeners() {
    Walk walk(*this, true);
    while (Listener* listener = walk.next()) {
        GL_CHECK_STATUS();
        listener->onDraw();
        if (!mOpened)
            return; // there is no context any more
        GL_CHECK_STATUS();
    }
}

// Waits until a frame's time has passed since the last one: sleeping first, then spinning.
void DisplayGL::paceFixed() {
    double now = glfwGetTime();
    const double due = mFps > 0 && std::isfinite(mFpsLastTime) ? mFpsLastTime + 1.0 / mFps : now;
    const double rest = due - now - SPIN_TIME;
    if (rest > SPIN_TIME)
        glfwSleep(rest);
    while (now < due)
        now = glfwGetTime();
    setLastTime(now);
}

// Adds to what the public field holds, but for its rounding: a sum of rounded steps would drift.
void DisplayGL::stepDelta() {
    if (!(mFps > 0))
        return;
    if (mFpsLastTime != float(mDeltaTime))
        mDeltaTime = mFpsLastTime;
    mDeltaTime += 1.0 / mFps;
    mFpsLastTime = float(mDeltaTime);
}

void DisplayGL::countFrame() {
    const double now = getTime();
    mFpsCountFrames += 1;
    if (now > mFpsCountFinalTime + 1.0) {
        mFpsCountFinal = float(mFpsCountFrames / (now - mFpsCountFinalTime));
        mFpsCountFinalTime = float(now);
        mFpsCountFrames = 0;
    }
}

void DisplayGL::setDirty(bool dirty) {
    mDirty = dirty;
}

// Matrices

void DisplayGL::setCamera(const mathbase::Matrix4x4Col& matrix) {
    mCameraMatrix = matrix;
    setModelView();
}

void DisplayGL::setTransform(const mathbase::Matrix4x4Col& matrix) {
    mTransformMatrix = matrix;
    setModelView();
}

void DisplayGL::setModelView() {
    mathbase::MatrixGL modelView = mCameraMatrix;
    modelView.multiplyFromRight(mTransformMatrix);
    GL_CALL(glMatrixMode(GL_MODELVIEW));
    GL_CALL(glLoadMatrixf(modelView.mData));
}

void DisplayGL::setProject(const mathbase::Matrix4x4Col& matrix) {
    mProjectMatrix = matrix;
    GL_CALL(glMatrixMode(GL_PROJECTION));
    GL_CALL(glLoadMatrixf(matrix.mData));
}

// States

void DisplayGL::resetStates() {
    mathbase::MatrixGL matrix;
    matrix.setIdentity();
    GL_CALL(glMatrixMode(GL_TEXTURE));
    GL_CALL(glLoadIdentity());
    setCamera(matrix);
    setTransform(matrix);
    const bool flat = mWindowMode.width <= 0 || mWindowMode.height <= 0;
    const float aspect = flat ? 1.0f : float(mWindowMode.width) / float(mWindowMode.height);
    matrix.setProject(0.7853982f, aspect, 0.1f, 5000.0f);
    setProject(matrix);

    GL_CALL(glShadeModel(GL_SMOOTH));
    GL_CALL(glClearDepth(1.0f));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDepthFunc(GL_LEQUAL));
    GL_CALL(glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glColor4f(1.0f,1.0f,1.0f,0.5f)); // half transparent, on purpose
    GL_CALL(glDisable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

void DisplayGL::resetAllStates() {
    if (mPushedStates) {
        mPushedStates = false;
        GL_CALL(glPopAttrib());
    }
    GL_CALL(glPushAttrib(0xFFFFF));
    mPushedStates = true;
    resetStates();
    GL_CALL(glViewport(0,0,mWindowMode.width, mWindowMode.height));
    setVBO(0);
    setIBO(0);
}

// Buffers

void DisplayGL::setVBO(VBO* vbo) {
    if (vbo == mCurrentVBO)
        return;
    if (mCurrentVBO)
        mCurrentVBO->unbind();
    mCurrentVBO = vbo;
    if (vbo)
        vbo->bind();
}

void DisplayGL::setIBO(IBO* ibo) {
    if (ibo == mCurrentIBO)
        return;
    if (mCurrentIBO)
        mCurrentIBO->unbind();
    mCurrentIBO = ibo;
    if (ibo)
        ibo->bind();
}

} // namespace zentrak::display
