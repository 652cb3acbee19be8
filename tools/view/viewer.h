// The window of the scene viewer.
#pragma once

#include "view/loaded_scene.h"
#include "view/orbit.h"

#include "dis_listener.h"
#include "pan_control.h"
#include "pan_panorama.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::panorama {
class Button;
class Label;
class Slider;
class TreeView;
} // namespace zentrak::panorama

namespace zentrak::view {

// Draws the scene, below the controls.
class Viewer : public display::Listener, public panorama::Callback {
public:
    // How the triangles are drawn, in the order of the key W.
    enum Fill { SHADED, SHADED_AND_EDGES, EDGES };

    // Loads the file: throws what LoadedScene throws. The display has to be open, with its archives set.
    Viewer(display::DisplayGL* window, std::string path);
    ~Viewer() override;

    // Looks through a camera of the scene; false if there is none of this name.
    bool chooseCamera(const std::string& name);
    void setTime(float time);
    void showPanel(bool on);

    // Loads the file again if it has changed. If that fails, says so and keeps the scene. Called every frame.
    void checkFile();

    const LoadedScene& getLoaded() const { return *mLoaded; }
    std::string getStatus() const;

    Orbit mOrbit;
    float mTime = 0;
    bool mPlaying = false;
    int mCamera = -1; // which of the scene's; -1 for the orbit
    Fill mFill = SHADED;
    bool mNormals = false;
    bool mGrid = true;
    bool mPanel = true; // the controls are shown
    int mSelected = -1; // row

    int onMouseDown(const display::MouseButtonEvent& event) override;
    int onMouseUp(const display::MouseButtonEvent& event) override;
    int onMouseMove(const display::MouseMoveEvent& event) override;
    int onMouseWheel(const display::MouseMoveEvent& event) override;
    void onDraw() override;
    void onResize(int oldWidth, int oldHeight) override;
    void controlAction(panorama::Control* control, panorama::Action action) override;

    // Keys come here before the controls.
    int handleKey(const display::KeyEvent& event);

private:
    class Keys;

    // The state of a file on disk.
    struct Stamp {
        long long seconds = 0, nanoseconds = 0, size = -1, number = 0;
        bool operator==(const Stamp&) const = default;
    };

    Stamp stampOf() const;
    void buildControls();
    void layOut();
    void fillTree();
    void updateTexts();
    void updateDetails();
    void moveTime();
    void frameAll(int row);
    void leaveCamera();
    void nextCamera();
    bool hasPanel() const;
    mathbase::Box2 getPicture() const;
    void setView();
    void setLights();
    void drawBackground();
    void drawGrid();
    void drawCameras();
    void drawSelection();

    std::string mPath;
    std::unique_ptr<LoadedScene> mLoaded;
    Stamp mStamp, mSeen; // of the last attempt to load; of the last check
    double mLooked = 0;  // time of the last check
    double mDrawn = -1;  // time of the last frame
    std::string mProblem;

    std::unique_ptr<panorama::Panorama> mPanorama;
    std::unique_ptr<Keys> mKeys;
    int mDrag = -1;         // the button that is down over the picture
    float mFieldOfView = 0; // of the frame, radians

    // The panorama's.
    panorama::Label* mTitle = nullptr;
    panorama::TreeView* mTree = nullptr;
    std::vector<panorama::Label*> mCounts, mDetails;
    panorama::Label* mStatus = nullptr;
    panorama::Label* mClock = nullptr;
    panorama::Button *mPlay = nullptr, *mView = nullptr, *mFillButton = nullptr, *mNormalsButton = nullptr,
                     *mGridButton = nullptr;
    panorama::Slider* mSlider = nullptr;
};

} // namespace zentrak::view
