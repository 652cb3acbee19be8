// The window and its OpenGL context: opening and closing, the frame step, input, matrices, a few drawing
// calls, and reading the picture back.
#pragma once

#include "dis_event.h"
#include "dis_listener.h"
#include "dis_windowmode.h"
#include "mb_matrix4x4col.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <cstddef>
#include <string>
#include <vector>

namespace zentrak::am {
class ArchiveManager;
class Image;
} // namespace zentrak::am

namespace zentrak::display {

class IBO;
class VBO;

// How closed shapes are drawn: filled, or their outline.
enum FillMode : int { SOLID = 0, WIRE = 1 };

// There is one at most. Everything here belongs to the main thread, and what draws or sets OpenGL state needs
// the window to be open. A pending OpenGL error throws the Exception of GL_REPORT_ERROR (dis_glcheck.h) from
// any of the calls that use OpenGL.
class DisplayGL {
public:
    // How frames are paced.
    enum FpsMode : int {
        FPS_VARIABLE = 0, // as fast as they come
        FPS_VSYNC = 1,    // at the monitor's rate
        FPS_FIXED = 2,    // at a rate of its own
        FPS_EVENT = 3,    // only after an event that has made the picture dirty
        FPS_DELTA = 4     // as fast as they come, on a time that rises by 1 / rate a frame
    };

    // Doesn't open the window. Throws "Could not open another GLFW-device" while another display exists.
    explicit DisplayGL(const WindowMode& mode);
    ~DisplayGL(); // closes the window; listeners are let go, not deleted
    DisplayGL(const DisplayGL&) = delete;
    DisplayGL& operator=(const DisplayGL&) = delete;

    // Opens a window by mWindowMode, at time 0, paced by FPS_VSYNC; if it is open, gives it the size and
    // title of mWindowMode. A width or height of 0 or less is taken from the other at 4:3 (both: 640 x 480),
    // and stored. Throws "Could not open window", also for a side above 32767 or more than 2^28 pixels, or
    // "DisplayGL: Could not initialize GLEW!".
    void open();
    void close(); // asserts "mOpened"; GL objects die with the context, and resources are not notified

    // One frame: events, drawing, pacing, swap. Returns whether to go on: false once the window is closed,
    // and once after a quit that was requested and not vetoed. Exceptions from listeners propagate.
    bool update();
    void updateBlocking(); // update until it returns false

    // Closes the window and opens it in the other kind, with the time kept. Textures and framebuffers rebuild
    // themselves; buffers, shaders and programs have to be set up again by their owner. Does nothing if it
    // already is.
    void setFullscreen(bool on);

    // Frames a second for FPS_FIXED and FPS_DELTA; ignored by the others. A rate that is not above 0
    // doesn't wait (FPS_FIXED) or stands still (FPS_DELTA). Asserts "mOpened".
    void setFps(FpsMode mode, float fps);

    // The modes of the primary monitor as full-screen window modes, smallest first, 2048 at most.
    void getModes(std::vector<WindowMode>& modes) const;

    // Seconds since the window was opened, or as set. In FPS_DELTA mFpsLastTime.
    double getTime() const;
    void setTime(double t);     // a time that is not finite is not set
    void sleep(double t) const; // seconds; nothing for 0, less, or what is not finite

    // Whether the context has an extension by name, or all of several with blanks between them.
    static bool hasExtension(const std::string& name);

    void setArchive(am::ArchiveManager* manager); // not owned; may be null

    // Joining twice is joining once. Both assert "listener!=0". See Listener for what may be done in a
    // callback.
    void addListener(Listener* listener);
    void removeListener(Listener* listener); // nothing if it has not joined

    void setDirty(bool dirty); // FPS_EVENT draws a frame only if dirty

    // Both load camera times transform into GL_MODELVIEW, and leave the matrix mode there.
    void setCamera(const mathbase::Matrix4x4Col& matrix);
    void setTransform(const mathbase::Matrix4x4Col& matrix);
    void setProject(const mathbase::Matrix4x4Col& matrix); // into GL_PROJECTION; leaves the matrix mode there
    void setModelView();                                   // loads the product of the two matrices
    const mathbase::Matrix4x4Col& getProject() const { return mProjectMatrix; } // the last one set

    // The buffers that draw() uses, not owned; null for none. The old one is unbound, the new one bound.
    void setVBO(VBO* vbo);
    void setIBO(IBO* ibo);

    // Draws from the current buffers, in this order of choice: `numIndices` indices from `firstIndex` on;
    // with firstIndex -1 all indices of the current IBO; without an IBO `numVertices` vertices from
    // `firstVertex` on; with firstVertex -1 all vertices of the current VBO. Nothing is drawn where the
    // buffer is missing or the range does not begin inside it; a range that runs past its end ends there.
    void draw(GLenum mode, int firstIndex, int numIndices, int firstVertex, int numVertices);

    void resetStates(); // the state that every frame begins with: see dis_display.cpp
    void
    resetAllStates(); // the same, and drops what was changed since the last one; viewport to the whole window

    void setColor(float r, float g, float b, float a); // 0 to 1

    // Shapes in the current colour under the current matrices. A flat box or circle lies in the plane z = 0.
    // Boxes are given by their centre and half their size, circles by their centre and radius, or radii along
    // x and y. Solid boxes with depth have outward normals and the whole texture upright on each face.
    void drawLine(float x1, float y1, float x2, float y2);
    void drawBox(float x, float y, float halfWidth, float halfHeight, FillMode fill = SOLID);
    void drawBox(float x, float y, float z, float halfWidth, float halfHeight, float halfDepth,
                 FillMode fill = SOLID);
    void drawBox(const mathbase::Vector3f& centre, const mathbase::Vector3f& halfSizes,
                 FillMode fill = SOLID);
    void drawCircle(float x, float y, float radius, FillMode fill = SOLID);
    void drawCircle(float x, float y, float radiusX, float radiusY, FillMode fill = SOLID);

    // A colour from "rrggbb" or "rrggbbaa", with or without a "#" before it, in digits and letters of either
    // case; each channel 0 to 1. Missing digits and characters that aren't digits are 0, a missing alpha is
    // 1, and what follows is ignored.
    static mathbase::Vector4f hex2vec(const std::string& text);

    mathbase::Vector2f getMousePosition() const; // pixels from the upper left corner

    // The whole window as drawn so far, rows from the top. The image is of the window's size and private, and
    // gets alpha 255; the buffer holds width * height * 3 bytes: red, green, blue. Asserts
    // "image.isNull()==false",
    // "(mWindowMode.height & 1) == 0", "image->getWidth()==mWindowMode.width" and
    // "image->getHeight()==mWindowMode.height", the second alone for RGB24. Throws
    // "ImageObbject::getWriteData, Access not allowed!" for an image that a manager holds.
    void getScreenShot(am::Image& image) const;
    void getScreenShotRGB24(unsigned char* buffer) const;

    int mContextCount; // openings of a window so far; resources compare against it
    VBO* mCurrentVBO;  // bound now, or null
    IBO* mCurrentIBO;  // bound now, or null
    mathbase::MatrixGL mCameraMatrix;
    mathbase::MatrixGL mTransformMatrix;
    bool mOpened;
    bool mDirty;
    bool mIconified;
    bool mFocused;
    WindowMode mWindowMode;
    float mMouseX; // pixels from the upper left corner
    float mMouseY;
    float mMouseWheel;                 // steps
    std::vector<Listener*> mListeners; // not owned, in order of registration
    bool mPressed[KEY_LAST];
    FpsMode mFpsType;
    float mFps;
    float mFpsLastTime;     // seconds; the time itself in FPS_DELTA
    float mLastClickTime;   // -1 without a pending first click
    bool mQuittingBlocking; // makes the next update give false
    bool mPushedStates;     // the frame's attribute push is active
    float mFpsCountFinal;   // the last measured frame rate
    float mFpsCountFinalTime;
    float mFpsCountFrames;
    am::ArchiveManager* mArchiveManager; // not owned; null until setArchive

    // Identifies the current opening of a window: a number that no other opening in this process has; 0 while
    // closed.
    int getContext() const { return mOpened ? mContext : 0; }

    static DisplayGL* currentDisplay; // the one instance, or null; what GLFW's callbacks reach

private:
    friend struct DisplayCallbacks; // for tests, with events that no real device sends

    // A walk over the listeners in progress. Walks nest, and live on the stack; joining or leaving during a
    // walk adjusts all of them.
    struct Walk {
        explicit Walk(DisplayGL& display, bool forward);
        ~Walk();
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;
        Listener* next(); // null at the end

        DisplayGL& mDisplay;
        bool mForward;
        size_t mNext; // forward: the next one's index; backward: one more than it
        size_t mEnd;  // forward: where to stop, so that new listeners wait for the next walk
        Walk* mOuter;
    };

    void openWindow();
    void fillEvent(Event& event) const;
    bool shallStop(int result);
    bool askQuit();
    void setLastTime(double t);
    void readWindowState();
    void tellChange(bool& state, bool now, void (Listener::*operation)(bool));
    void drawListeners();
    void paceFixed();
    void stepDelta();
    void countFrame();
    template <class EventType>
    void dispatch(int (Listener::*operation)(const EventType&), const EventType& event);

    void onResize(int width, int height);
    int onClose();
    void onKey(int key, int action);
    void onChar(int character, int action);
    void onMousePos(int x, int y);
    void onMouseButton(int button, int action);
    void onMouseWheel(int position);

    static void reshape(int width, int height);
    static void refreshFun();
    static int closeFun();
    static void keyFun(int key, int action);
    static void charFun(int character, int action);
    static void mousePosFun(int x, int y);
    static void mouseButtonFun(int button, int action);
    static void mouseWheelFun(int position);

    mathbase::MatrixGL mProjectMatrix;
    Walk* mWalks;      // the innermost walk in progress, or null
    double mDeltaTime; // FPS_DELTA: mFpsLastTime before rounding, so that rounded steps don't add up
    int mContext = 0;  // of the last opening
};

} // namespace zentrak::display
