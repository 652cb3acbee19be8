#include "view/viewer.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "dis_key.h"
#include "pan_button.h"
#include "pan_label.h"
#include "pan_slider.h"
#include "pan_treeview.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <sys/stat.h>

namespace zentrak::view {

using mathbase::Box2;
using mathbase::Quatf;
using mathbase::Vector4f;
using panorama::Control;

namespace {

constexpr float PANEL = 290; // width, pixels
constexpr float BAR = 44;    // height
constexpr float GAP = 12;
constexpr int LEAST_WIDTH = 900; // of a window with controls
constexpr int LEAST_HEIGHT = 400;
constexpr float LINE = 18;   // height of a line of text
constexpr size_t COUNTS = 4; // lines
constexpr size_t DETAILS = 6;
constexpr float ANGLE = 0.7853982f; // of the orbit's camera, vertical, radians
constexpr double LOOK_EVERY = 0.2;  // seconds between checks of the file
constexpr float STEP = 0.1f;        // seconds; with Shift ten times that

const Vector4f PANEL_COLOR(0.115f, 0.12f, 0.14f, 1);
const Vector4f BAR_COLOR(0.095f, 0.1f, 0.118f, 1);
const Vector4f QUIET(0.55f, 0.57f, 0.62f, 1);
const Vector4f INK(0.85f, 0.86f, 0.9f, 1);
const Vector4f WARM(1.0f, 0.76f, 0.36f, 1);
const Vector4f ALARM(1.0f, 0.45f, 0.4f, 1);
const Vector3f ONE(1, 1, 1);

template <class... T>
std::string text(const char* pattern, T... values) {
    char buffer[256];
    snprintf(buffer, sizeof buffer, pattern, values...);
    return buffer;
}

std::string count(size_t number, const char* what) {
    const std::string word = what;
    if (number == 1)
        return "1 " + word;
    return std::to_string(number) + " " +
           (word == "vertex" ? "vertices"
            : word == "mesh" ? "meshes"
                             : word + "s");
}

std::string vectorText(const char* name, const Vector3f& v) {
    return text("%s: %.3f, %.3f, %.3f", name, double(v.x), double(v.y), double(v.z));
}

void setInk(Control& control, const Vector4f& color) {
    for (panorama::ColorPair* pair : {&control.mText.color, &control.mText.highlight, &control.mText.pushed})
        pair->first = pair->second = color;
}

} // namespace

// Before the controls, so that Space and the arrows control time whatever has the focus.
class Viewer::Keys : public display::Listener {
public:
    Keys(display::DisplayGL* window, Viewer& viewer) : Listener(window), mViewer(viewer) {}
    int onKeyDown(const display::KeyEvent& event) override { return mViewer.handleKey(event); }

private:
    Viewer& mViewer;
};

Viewer::Viewer(display::DisplayGL* window, std::string path) : Listener(window), mPath(std::move(path)) {
    mStamp = mSeen = stampOf();
    mLoaded = std::make_unique<LoadedScene>(mPath);
    mPanorama = std::make_unique<panorama::Panorama>(window);
    mKeys = std::make_unique<Keys>(window, *this);
    buildControls();
    fillTree();
    layOut();
    frameAll(0);
    if (!mLoaded->mCameras.empty() && !(mLoaded->mCounts.triangles + mLoaded->mCounts.vertices))
        mCamera = 0;
}

Viewer::~Viewer() = default;

Viewer::Stamp Viewer::stampOf() const {
    struct stat status {};
    Stamp stamp;
    if (stat(mPath.c_str(), &status) == 0)
        stamp = {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_size,
                 static_cast<long long>(status.st_ino)};
    return stamp;
}

void Viewer::checkFile() {
    const double now = display->getTime();
    if (now - mLooked < LOOK_EVERY)
        return;
    mLooked = now;
    const Stamp stamp = stampOf();
    const bool settled = stamp == mSeen; // it isn't being written
    mSeen = stamp;
    if (!settled || stamp == mStamp)
        return;
    mStamp = stamp;
    try {
        mLoaded = std::make_unique<LoadedScene>(mPath);
        mProblem.clear();
    } catch (const std::exception& exception) {
        mProblem = exception.what();
        return;
    }
    mSelected = -1;
    if (mCamera >= int(mLoaded->mCameras.size()))
        mCamera = -1;
    mTime = std::min(mTime, mLoaded->mLength);
    fillTree();
}

std::string Viewer::getStatus() const {
    if (!mProblem.empty())
        return "The file can't be read, this is what it was: " + mProblem;
    if (!mLoaded->mFaults.empty())
        return "The show can't draw it: " + mLoaded->mFaults.front();
    return "";
}

bool Viewer::chooseCamera(const std::string& name) {
    for (size_t i = 0; i < mLoaded->mCameras.size(); ++i)
        if (mLoaded->mRows[mLoaded->mCameras[i]].node->mName == name) {
            mCamera = int(i);
            return true;
        }
    return false;
}

void Viewer::setTime(float time) {
    mTime = std::isfinite(time) ? time : 0;
}

void Viewer::showPanel(bool on) {
    mPanel = on;
    layOut();
}

void Viewer::buildControls() {
    const auto add = [this](Control* control) {
        control->setCallback(this);
        mPanorama->addControl(control);
    };
    const auto label = [&](const Vector4f& color) {
        auto* const made = new panorama::Label;
        made->mVAlign = panorama::TextLine::MIDDLE;
        setInk(*made, color);
        add(made);
        return made;
    };
    const auto button = [&](const char* caption, bool toggle) {
        auto* const made = new panorama::Button;
        made->setCaption(caption);
        made->toggleMode = toggle;
        add(made);
        return made;
    };
    mTitle = label(Vector4f(1, 1, 1, 1));
    mTree = new panorama::TreeView;
    add(mTree);
    for (size_t i = 0; i < COUNTS; ++i)
        mCounts.push_back(label(QUIET));
    for (size_t i = 0; i < DETAILS; ++i)
        mDetails.push_back(label(i == 0 ? WARM : INK));
    mStatus = label(ALARM);
    mPlay = button("Play", true);
    mSlider = new panorama::Slider;
    mSlider->mDirection = 0;
    mSlider->mSize = 5;
    add(mSlider);
    mClock = label(INK);
    mClock->mAlign = panorama::TextLine::END;
    mView = button("Camera", false);
    mFillButton = button("Edges", true);
    mNormalsButton = button("Normals", true);
    mGridButton = button("Grid", true);
}

// A window too small for the controls has none.
bool Viewer::hasPanel() const {
    return mPanel && display->mWindowMode.width >= LEAST_WIDTH && display->mWindowMode.height >= LEAST_HEIGHT;
}

Box2 Viewer::getPicture() const {
    const float width = float(display->mWindowMode.width), height = float(display->mWindowMode.height);
    return hasPanel() ? Box2(PANEL, 0, width, height - BAR) : Box2(0, 0, width, height);
}

void Viewer::layOut() {
    const float width = float(display->mWindowMode.width), height = float(display->mWindowMode.height);
    const float right = PANEL - GAP;
    mPanorama->mGround.clear();
    // Showing a control may change their order.
    const std::vector<Control*> controls = mPanorama->mWorkspace.mControls;
    for (Control* control : controls)
        control->setVisible(hasPanel());
    if (!hasPanel())
        return;
    mPanorama->mGround.push_back({Box2(0, 0, PANEL, height), PANEL_COLOR});
    mPanorama->mGround.push_back({Box2(PANEL, height - BAR, width, height), BAR_COLOR});
    mTitle->setArea(Box2(GAP, 8, right, 8 + LINE));
    float y = 30;
    for (panorama::Label* count : mCounts) {
        count->setArea(Box2(GAP, y, right, y + LINE));
        y += LINE;
    }
    const float below = height - GAP - float(DETAILS) * LINE - 6;
    mTree->setArea(Box2(GAP, y + 8, right, std::max(y + 40, below - 8)));
    y = below;
    for (panorama::Label* detail : mDetails) {
        detail->setArea(Box2(GAP, y, right, y + LINE));
        y += LINE;
    }
    const float top = height - BAR + 9, bottom = height - 9;
    float x = width - GAP;
    for (panorama::Button* button : {mGridButton, mNormalsButton, mFillButton}) {
        button->setArea(Box2(x - 74, top, x, bottom));
        x -= 80;
    }
    mView->setArea(Box2(x - 150, top, x, bottom));
    x -= 156;
    mClock->setArea(Box2(x - 118, top, x - 8, bottom));
    mPlay->setArea(Box2(PANEL + GAP, top, PANEL + GAP + 64, bottom));
    mSlider->setArea(Box2(PANEL + GAP + 78, top + 5, std::max(PANEL + 120, x - 126), bottom - 5));
    mStatus->setArea(Box2(PANEL + GAP, height - BAR - LINE - 8, width - GAP, height - BAR - 8));
}

void Viewer::onResize(int, int) {
    layOut();
}

void Viewer::fillTree() {
    mTree->deleteItems();
    std::vector<int> items;
    for (size_t i = 0; i < mLoaded->mRows.size(); ++i) {
        const LoadedScene::Row& row = mLoaded->mRows[i];
        const int parent = row.parent < 0 ? -1 : items[size_t(row.parent)];
        items.push_back(mTree->addItem(parent, std::to_string(i), labelOf(*row.node)));
    }
    // As far as it stays visible.
    mTree->setOpen(0, true);
    for (size_t i = 1; i < items.size() && mTree->getRowCount() < 24; ++i)
        if (mTree->getRow(items[i]) >= 0)
            mTree->setOpen(items[i], true);
    mSlider->mMin = 0;
    mSlider->mMax = std::max(mLoaded->mLength, 1e-6f);
    mSlider->setInactive(mLoaded->mLength <= 0);
    mPlay->setInactive(mLoaded->mLength <= 0);
    mView->setInactive(mLoaded->mCameras.empty());
}

void Viewer::updateTexts() {
    const Counts& counts = mLoaded->mCounts;
    mTitle->setText(std::filesystem::path(mPath).filename().string());
    mCounts[0]->setText(count(counts.nodes, "node") + ", " + count(mLoaded->mCameras.size(), "camera") +
                        ", " + count(counts.lights, "light"));
    mCounts[1]->setText(count(counts.meshes, "mesh") + ", " + count(counts.materials, "material"));
    mCounts[2]->setText(count(counts.triangles, "triangle") + ", " + count(counts.vertices, "vertex"));
    const Vector3f size = mLoaded->mHigh - mLoaded->mLow;
    mCounts[3]->setText(text("%.4g x %.4g x %.4g units", double(size.x), double(size.y), double(size.z)));
    mClock->setText(mLoaded->mLength > 0 ? text("%.2f / %.2f s", double(mTime), double(mLoaded->mLength))
                                         : "nothing moves");
    mStatus->setText(getStatus());
    if (mCamera < 0)
        mView->setCaption("Free view");
    else
        mView->setCaption(labelOf(*mLoaded->mRows[mLoaded->mCameras[size_t(mCamera)]].node));
    mPlay->toggled = mPlaying;
    mPlay->setCaption(mPlaying ? "Pause" : "Play");
    static const char* const fills[] = {"Edges", "Edges", "Wire"};
    mFillButton->setCaption(fills[mFill]);
    mFillButton->toggled = mFill != SHADED;
    mNormalsButton->toggled = mNormals;
    mGridButton->toggled = mGrid;
    if (!mSlider->mDragging)
        mSlider->setValue(mTime, true);
    updateDetails();
}

void Viewer::updateDetails() {
    std::vector<std::string> lines;
    if (mSelected < 0) {
        lines = {"Mouse",
                 "drag: turn     wheel: nearer",
                 "right drag: move",
                 "Space, arrows: time   Tab: panel",
                 "C: camera   F: all or selected",
                 "W: edges   N: normals   G: grid"};
    } else {
        const o3d::SceneNode& node = *mLoaded->mRows[size_t(mSelected)].node;
        lines.push_back(labelOf(node));
        lines.push_back(vectorText("position", node.mPosition.getValue(mTime)));
        lines.push_back(vectorText("turn", node.mRotation.getValue(mTime).angles));
        lines.push_back(vectorText("scale", node.mScale.getValue(mTime)));
        if (const auto* const camera = dynamic_cast<const o3d::Camera*>(&node))
            lines.push_back(
                text("angle: %.1f degrees", double(camera->mAngle.getValue(mTime)) * 180 / std::numbers::pi));
        if (const auto* const instance = dynamic_cast<const o3d::MeshInstance*>(&node))
            lines.push_back("mesh: " + instance->mMeshName);
        lines.push_back(node.isStatic() ? "stands still"
                                        : text("moves until %.2f s", double(node.getAnimationLength())));
    }
    lines.resize(DETAILS);
    for (size_t i = 0; i < DETAILS; ++i)
        mDetails[i]->setText(lines[i]);
}

void Viewer::controlAction(Control* control, panorama::Action action) {
    if (control == mTree && action == panorama::ACTION_CHANGE) {
        mSelected = mTree->getSelected();
    } else if (control == mSlider && action == panorama::ACTION_CHANGE) {
        mTime = mSlider->getValue();
        mPlaying = false;
    } else if (control == mPlay) {
        mPlaying = mPlay->toggled;
    } else if (control == mView && action == panorama::ACTION_RELEASE) {
        nextCamera();
    } else if (control == mFillButton) {
        mFill = Fill((mFill + 1) % 3);
    } else if (control == mNormalsButton) {
        mNormals = mNormalsButton->toggled;
    } else if (control == mGridButton) {
        mGrid = mGridButton->toggled;
    }
}

void Viewer::nextCamera() {
    if (++mCamera >= int(mLoaded->mCameras.size()))
        mCamera = -1;
}

int Viewer::handleKey(const display::KeyEvent& event) {
    const float step = event.shift() ? STEP * 10 : STEP;
    switch (event.key) {
    case display::KEY_ESC:
        return QUIT;
    case display::KEY_SPACE:
        mPlaying = !mPlaying && mLoaded->mLength > 0;
        return BLOCK;
    case display::KEY_LEFT:
        mPlaying = false;
        setTime(std::max(0.0f, mTime - step));
        return BLOCK;
    case display::KEY_RIGHT:
        mPlaying = false;
        setTime(std::min(mLoaded->mLength, mTime + step));
        return BLOCK;
    case display::KEY_HOME:
        setTime(0);
        return BLOCK;
    case display::KEY_END:
        setTime(mLoaded->mLength);
        return BLOCK;
    case display::KEY_TAB:
        showPanel(!mPanel);
        return BLOCK;
    case display::KEY_c:
        nextCamera();
        return BLOCK;
    case display::KEY_f:
        mCamera = -1;
        frameAll(std::max(mSelected, 0));
        return BLOCK;
    case display::KEY_w:
        mFill = Fill((mFill + 1) % 3);
        return BLOCK;
    case display::KEY_n:
        mNormals = !mNormals;
        return BLOCK;
    case display::KEY_g:
        mGrid = !mGrid;
        return BLOCK;
    default:
        return WHATEVER;
    }
}

int Viewer::onMouseDown(const display::MouseButtonEvent& event) {
    const Box2 picture = getPicture();
    const mathbase::Vector2f& at = event.mousePos;
    if (at.x >= picture.x1 && at.x < picture.x2 && at.y >= picture.y1 && at.y < picture.y2)
        mDrag = event.button;
    return WHATEVER;
}

int Viewer::onMouseUp(const display::MouseButtonEvent& event) {
    if (event.button == mDrag)
        mDrag = -1;
    return WHATEVER;
}

int Viewer::onMouseMove(const display::MouseMoveEvent& event) {
    const mathbase::Vector2f by(-event.mouseDelta.x,
                                -event.mouseDelta.y); // it is from the new place to the old
    if (mDrag < 0 || (by.x == 0 && by.y == 0))
        return WHATEVER;
    leaveCamera();
    if (mDrag == display::MOUSE_LEFT && !event.shift())
        mOrbit.turn(by.x, by.y);
    else
        mOrbit.pan(by.x, by.y,
                   2 * mOrbit.distance * tanf(ANGLE / 2) / std::max(1.0f, getPicture().getHeight()));
    return WHATEVER;
}

int Viewer::onMouseWheel(const display::MouseMoveEvent& event) {
    const Box2 picture = getPicture();
    const mathbase::Vector2f& at = event.mousePos;
    if (at.x < picture.x1 || at.y >= picture.y2)
        return WHATEVER;
    leaveCamera();
    mOrbit.zoom(event.mouseDeltaWheel);
    return WHATEVER;
}

// The orbit continues from the scene's camera.
void Viewer::leaveCamera() {
    if (mCamera < 0)
        return;
    const Matrix4x4Col world = mLoaded->getWorld(mLoaded->mCameras[size_t(mCamera)], mTime);
    const Vector3f eye(world.mData[12], world.mData[13], world.mData[14]);
    const Vector3f ahead = world.multiplyVector(Vector3f(0, -1, 0));
    const Vector3f centre = (mLoaded->mLow + mLoaded->mHigh) * 0.5f;
    mCamera = -1;
    if (ahead.length() > 0)
        mOrbit.standAt(eye, ahead.getNormalized(), std::max((centre - eye).length(), 1e-3f));
}

void Viewer::frameAll(int row) {
    Vector3f low(-1, -1, -1), high(1, 1, 1);
    mLoaded->getBox(size_t(row), mTime, low, high);
    const float radius = std::max((high - low).length() / 2, 1e-4f);
    const float aspect = getPicture().getWidth() / std::max(1.0f, getPicture().getHeight());
    const float half = atanf(tanf(ANGLE / 2) * std::min(1.0f, aspect));
    mOrbit.target = (low + high) * 0.5f;
    mOrbit.distance = radius / sinf(half);
}

void Viewer::moveTime() {
    const double now = display->getTime();
    if (mPlaying && mDrawn >= 0 && mLoaded->mLength > 0)
        mTime = fmodf(mTime + float(now - mDrawn), mLoaded->mLength);
    mDrawn = now;
}

void Viewer::setView() {
    const Box2 picture = getPicture();
    const int height = display->mWindowMode.height;
    GL_CALL(glViewport(int(picture.x1), height - int(picture.y2), int(picture.getWidth()), int(picture.getHeight())));
    const float aspect = picture.getWidth() / std::max(1.0f, picture.getHeight());
    const float size = std::max((mLoaded->mHigh - mLoaded->mLow).length(), 1e-3f);
    Vector3f eye = mOrbit.getEye();
    Matrix4x4Col view, project;
    mFieldOfView = ANGLE;
    if (mCamera >= 0) {
        const size_t row = mLoaded->mCameras[size_t(mCamera)];
        const auto& camera = static_cast<const o3d::Camera&>(*mLoaded->mRows[row].node);
        eye = camera.mPosition.getValue(mTime);
        view.buildBlenderCameraInverse(eye, Quatf(camera.mRotation.getValue(mTime)), ONE);
        mFieldOfView = std::clamp(camera.mAngle.getValue(mTime), 0.01f, 3.1f);
    } else {
        view.setCamera(eye, mOrbit.target, 0);
    }
    const float away = (eye - (mLoaded->mLow + mLoaded->mHigh) * 0.5f).length();
    const float farthest = away + size * 12;
    project.setProject(mFieldOfView, aspect,
                       std::max(farthest * 2e-4f, std::min(mOrbit.distance, size) * 0.01f), farthest);
    display->setProject(project);
    display->setCamera(view);
    display->setTransform(Matrix4x4Col());
}

// Three lights that move with the viewer.
void Viewer::setLights() {
    static const float directions[3][4] = {
        {0.35f, 0.65f, 0.8f, 0}, {-0.8f, 0.1f, 0.4f, 0}, {0.1f, -0.7f, -0.5f, 0}};
    static const float colors[3][4] = {
        {0.72f, 0.7f, 0.66f, 1}, {0.2f, 0.23f, 0.3f, 1}, {0.14f, 0.12f, 0.1f, 1}};
    static const float ambient[4] = {0.17f, 0.17f, 0.19f, 1}, black[4] = {0, 0, 0, 1};
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    for (int i = 0; i < 3; ++i) {
        const GLenum light = GLenum(GL_LIGHT0 + i);
        glEnable(light);
        glLightfv(light, GL_POSITION, directions[i]);
        glLightfv(light, GL_DIFFUSE, colors[i]);
        glLightfv(light, GL_AMBIENT, black);
        glLightfv(light, GL_SPECULAR, black);
    }
    glPopMatrix();
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_NORMALIZE);
}

void Viewer::drawBackground() {
    display->setProject(Matrix4x4Col());
    display->setCamera(Matrix4x4Col());
    display->setTransform(Matrix4x4Col());
    glDisable(GL_DEPTH_TEST);
    glBegin(GL_QUADS);
    glColor4f(0.075f, 0.08f, 0.1f, 1);
    glVertex2f(-1, -1);
    glVertex2f(1, -1);
    glColor4f(0.24f, 0.26f, 0.31f, 1);
    glVertex2f(1, 1);
    glVertex2f(-1, 1);
    glEnd();
}

// Squares of a power of ten on the floor, y = 0, fading outwards; the x axis red, the z axis blue.
void Viewer::drawGrid() {
    const float size = std::max((mLoaded->mHigh - mLoaded->mLow).length(), 1e-3f);
    const float cell = powf(10, floorf(log10f(size * 0.35f)));
    const int cells = 20;
    const float reach = cell * cells;
    glBegin(GL_LINES);
    for (int along = 0; along < 2; ++along)
        for (int i = -cells; i <= cells; ++i) {
            const float at = float(i) * cell;
            const float fade = 1 - fabsf(float(i)) / float(cells);
            const bool axis = i == 0;
            const float alpha = axis ? 0.8f : (i % 10 == 0 ? 0.34f : 0.16f) * fade;
            for (const float end : {-1.0f, 1.0f})
                for (const float share : {0.0f, 1.0f}) {
                    if (axis)
                        glColor4f(along ? 0.35f : 0.85f, 0.35f, along ? 0.9f : 0.35f, alpha * (1 - share));
                    else
                        glColor4f(0.8f, 0.84f, 0.92f, alpha * (1 - share));
                    const float far = end * share * reach;
                    glVertex3f(along ? at : far, 0, along ? far : at);
                }
        }
    glEnd();
}

// The frustum of each camera except the current one.
void Viewer::drawCameras() {
    const float size = std::max((mLoaded->mHigh - mLoaded->mLow).length(), 1e-3f) * 0.05f;
    for (size_t i = 0; i < mLoaded->mCameras.size(); ++i) {
        if (int(i) == mCamera)
            continue;
        const size_t row = mLoaded->mCameras[i];
        const auto& camera = static_cast<const o3d::Camera&>(*mLoaded->mRows[row].node);
        const float up = size * tanf(std::clamp(camera.mAngle.getValue(mTime), 0.1f, 2.5f) / 2),
                    across = up * 1.6f;
        glPushMatrix();
        glMultMatrixf(mLoaded->getWorld(row, mTime).mData);
        if (int(row) == mSelected)
            glColor4f(1, 0.76f, 0.36f, 1);
        else
            glColor4f(0.6f, 0.62f, 0.95f, 0.9f);
        // Along -y, with -z up.
        const float corners[4][2] = {{-across, -up}, {across, -up}, {across, up}, {-across, up}};
        glBegin(GL_LINES);
        for (int c = 0; c < 4; ++c) {
            const float *a = corners[c], *b = corners[(c + 1) % 4];
            glVertex3f(0, 0, 0);
            glVertex3f(a[0], -size, a[1]);
            glVertex3f(a[0], -size, a[1]);
            glVertex3f(b[0], -size, b[1]);
        }
        glVertex3f(-across * 0.3f, -size, -up);
        glVertex3f(0, -size, -up * 1.5f);
        glVertex3f(0, -size, -up * 1.5f);
        glVertex3f(across * 0.3f, -size, -up);
        glEnd();
        glPopMatrix();
    }
}

// The box of the selection, and the axes of its node.
void Viewer::drawSelection() {
    if (mSelected <= 0 || mSelected >= int(mLoaded->mRows.size()))
        return;
    Vector3f low, high;
    if (mLoaded->getBox(size_t(mSelected), mTime, low, high)) {
        glColor4f(1, 0.76f, 0.36f, 0.9f);
        glBegin(GL_LINES);
        for (int i = 0; i < 8; ++i)
            for (int bit = 1; bit < 8; bit <<= 1)
                if (!(i & bit))
                    for (const int c : {i, i | bit})
                        glVertex3f(c & 1 ? high.x : low.x, c & 2 ? high.y : low.y, c & 4 ? high.z : low.z);
        glEnd();
    }
    const Matrix4x4Col world = mLoaded->getWorld(size_t(mSelected), mTime);
    const Vector3f origin(world.mData[12], world.mData[13], world.mData[14]);
    const float away = (display->mCameraMatrix * origin).length();
    glDisable(GL_DEPTH_TEST);
    glBegin(GL_LINES);
    for (int i = 0; i < 3; ++i) {
        Vector3f axis(world.mData[i * 4], world.mData[i * 4 + 1], world.mData[i * 4 + 2]);
        if (!(axis.length() > 0))
            continue;
        const Vector3f end = origin + axis.getNormalized() * (away * 0.1f);
        glColor4f(i == 0 ? 1 : 0.3f, i == 1 ? 1 : 0.3f, i == 2 ? 1 : 0.35f, 1);
        glVertex3f(origin.x, origin.y, origin.z);
        glVertex3f(end.x, end.y, end.z);
    }
    glEnd();
    glEnable(GL_DEPTH_TEST);
}

void Viewer::onDraw() {
    checkFile();
    moveTime();
    if (hasPanel())
        updateTexts();
    const float size = std::max((mLoaded->mHigh - mLoaded->mLow).length(), 1e-3f);
    display->setVBO(nullptr);
    display->setIBO(nullptr);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    setView();
    drawBackground();
    setView();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_CULL_FACE);
    glLineWidth(1);
    if (mFill != EDGES) {
        setLights();
        glEnable(GL_LIGHTING);
        // Makes room for the edges. A larger offset would show at corners.
        if (mFill == SHADED_AND_EDGES)
            glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(0.5f, 1);
        glPointSize(2);
        mLoaded->draw(LoadedScene::FILLED, mTime, 0);
        glDisable(GL_POLYGON_OFFSET_FILL);
        glDisable(GL_LIGHTING);
        glDisable(GL_COLOR_MATERIAL);
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (mFill != SHADED) {
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        if (mFill == EDGES)
            glColor4f(0.75f, 0.8f, 0.9f, 0.75f);
        else
            glColor4f(0, 0, 0, 0.3f);
        mLoaded->draw(LoadedScene::EDGES, mTime, 0);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    }
    if (mNormals) {
        glColor4f(0.4f, 0.95f, 0.6f, 0.6f);
        mLoaded->draw(LoadedScene::NORMALS, mTime, size * 0.015f);
    }
    if (mGrid)
        drawGrid();
    drawCameras();
    drawSelection();
    glDisable(GL_BLEND);
    GL_CHECK_STATUS();
    GL_CALL(glViewport(0, 0, display->mWindowMode.width, display->mWindowMode.height));
}

} // namespace zentrak::view
