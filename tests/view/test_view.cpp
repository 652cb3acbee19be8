// The viewer of scene files, in a real window with real keys and a real mouse.

#include "gl_fixture.h"
#include "input.h"
#include "picture.h"
#include "scene/scene_file.h"
#include "support.h"
#include "view/viewer.h"

#include "pan_slider.h"
#include "pan_treeview.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace zentrak;
using view::Viewer;

namespace {

constexpr const char* TITLE = "zentrak-view under test";
constexpr const char* SCENE = "tests/data/ssao/scene.o3d"; // 24 seconds, with a camera
constexpr int WIDTH = 1000, HEIGHT = 700;

class Grabber : public display::Listener {
public:
    explicit Grabber(display::DisplayGL* window) : Listener(window) {}
    void onDraw() override {
        if (mWanted)
            mPicture = test::grabPicture(*display);
        mWanted = false;
    }
    bool mWanted = false;
    test::Picture mPicture;
};

class View : public ::testing::Test {
protected:
    void open(const std::string& file) {
        mArchives.addArchive(test::sourcePath("data"));
        display::WindowMode mode(TITLE, WIDTH, HEIGHT, false);
        mode.canResize = true;
        mDisplay = std::make_unique<display::DisplayGL>(mode);
        mDisplay->setArchive(&mArchives);
        mDisplay->open();
        mDisplay->setFps(display::DisplayGL::FPS_VARIABLE, 0);
        mViewer = std::make_unique<Viewer>(mDisplay.get(), file);
        mGrabber = std::make_unique<Grabber>(mDisplay.get());
        mUser = std::make_unique<test::Viewer>(TITLE, [this] { mRunning = mDisplay->update() && mRunning; });
        mUser->focus();
    }
    void TearDown() override {
        mUser.reset();
        mGrabber.reset();
        mViewer.reset();
        mDisplay.reset();
    }

    test::Picture grab() {
        mGrabber->mWanted = true;
        mUser->until("a picture", [this] { return !mGrabber->mWanted; });
        return mGrabber->mPicture;
    }
    // Presses the key, and waits for what it does.
    template <class Done>
    void press(const std::string& key, Done done) {
        mUser->key(key);
        EXPECT_TRUE(mUser->until(key, done));
    }
    // Drags over the picture.
    template <class Done>
    void drag(int button, int dx, int dy, Done done) {
        mUser->moveTo(600, 300);
        mUser->until("the mouse", [this] { return mDisplay->mMouseX == 600 && mDisplay->mMouseY == 300; });
        mUser->buttonDown(button);
        mUser->moveTo(600 + dx, 300 + dy);
        EXPECT_TRUE(mUser->until("a drag", done));
        mUser->buttonUp(button);
        mUser->moveTo(600, 300);
        mUser->until("its end", [this] { return mDisplay->mMouseX == 600 && mDisplay->mMouseY == 300; });
    }
    bool differs(const test::Picture& before, double mean = 0.5) {
        return test::comparePictures(before, grab()).mean > mean;
    }

    am::ArchiveManager mArchives;
    std::unique_ptr<display::DisplayGL> mDisplay;
    std::unique_ptr<Viewer> mViewer;
    std::unique_ptr<Grabber> mGrabber;
    std::unique_ptr<test::Viewer> mUser;
    bool mRunning = true;
};

} // namespace

TEST_F(View, ShowsTheSceneTheTreeAndTheCounts) {
    open(test::sourcePath(SCENE));
    mViewer->setTime(3);
    const view::Counts& counts = mViewer->getLoaded().mCounts;
    EXPECT_EQ(85u, counts.nodes);
    EXPECT_EQ(7648u, counts.triangles);
    EXPECT_EQ("", mViewer->getStatus());
    EXPECT_TRUE(test::matchesReference("zentrak-view", grab(), 2.0, 0.03));
}

TEST_F(View, TheMouseTurnsMovesAndGoesNearer) {
    open(test::sourcePath(SCENE));
    const view::Orbit first = mViewer->mOrbit;
    const test::Picture before = grab();
    drag(1, 120, 40, [&] { return mViewer->mOrbit.yaw != first.yaw; });
    EXPECT_LT(mViewer->mOrbit.yaw, first.yaw);
    EXPECT_GT(mViewer->mOrbit.pitch, first.pitch);
    EXPECT_EQ(first.distance, mViewer->mOrbit.distance);
    EXPECT_TRUE(differs(before));

    // What was under the mouse goes with it: the target goes the other way.
    const view::Orbit turned = mViewer->mOrbit;
    drag(3, 0, 60, [&] { return mViewer->mOrbit.target.y != turned.target.y; });
    EXPECT_GT(mViewer->mOrbit.target.y, turned.target.y);
    EXPECT_EQ(turned.yaw, mViewer->mOrbit.yaw);

    mUser->wheel(2);
    EXPECT_TRUE(mUser->until("the wheel", [&] { return mViewer->mOrbit.distance < turned.distance * 0.8f; }));
}

TEST_F(View, ADragOnThePanelDoesNotTurnTheScene) {
    open(test::sourcePath(SCENE));
    const float yaw = mViewer->mOrbit.yaw;
    mUser->moveTo(100, 300);
    mUser->buttonDown(1);
    mUser->moveTo(700, 320);
    mUser->buttonUp(1);
    press("n", [&] { return mViewer->mNormals; });
    EXPECT_EQ(yaw, mViewer->mOrbit.yaw);
}

TEST_F(View, SpaceAndTheArrowsMoveTheTime) {
    open(test::sourcePath(SCENE));
    press("Right", [&] { return fabsf(mViewer->mTime - 0.1f) < 1e-4f; });
    press("shift+Right", [&] { return fabsf(mViewer->mTime - 1.1f) < 1e-4f; });
    press("Left", [&] { return fabsf(mViewer->mTime - 1.0f) < 1e-4f; });
    press("End", [&] { return mViewer->mTime == 24; });
    press("Right", [&] { return mViewer->mTime == 24; });
    press("Home", [&] { return mViewer->mTime == 0; });
    const test::Picture before = grab();
    press("space", [&] { return mViewer->mPlaying; });
    EXPECT_TRUE(mUser->until("it plays", [&] { return mViewer->mTime > 0.4f; }));
    press("space", [&] { return !mViewer->mPlaying; });
    const float stopped = mViewer->mTime;
    EXPECT_TRUE(differs(before, 0.05));
    EXPECT_EQ(stopped, mViewer->mTime);
}

TEST_F(View, TheSliderSetsTheTime) {
    open(test::sourcePath(SCENE));
    mUser->moveTo(420, HEIGHT - 22);
    mUser->click(1);
    EXPECT_TRUE(mUser->until("the slider", [&] { return mViewer->mTime > 1; }));
}

TEST_F(View, CGoesThroughTheCamerasAndADragLeavesThem) {
    open(test::sourcePath(SCENE));
    const test::Picture before = grab();
    press("c", [&] { return mViewer->mCamera == 0; });
    EXPECT_TRUE(differs(before));
    const auto world = mViewer->getLoaded().getWorld(mViewer->getLoaded().mCameras[0], mViewer->mTime);
    drag(1, 1, 0, [&] { return mViewer->mCamera == -1; });
    // On from where the camera stood, but for the pixels of the drag.
    const float away = mViewer->mOrbit.distance;
    EXPECT_NEAR(world.mData[12], mViewer->mOrbit.getEye().x, away * 0.05f);
    EXPECT_NEAR(world.mData[13], mViewer->mOrbit.getEye().y, away * 0.05f);
    EXPECT_NEAR(world.mData[14], mViewer->mOrbit.getEye().z, away * 0.05f);
    press("c", [&] { return mViewer->mCamera == 0; });
    press("c", [&] { return mViewer->mCamera == -1; });
}

TEST_F(View, EdgesNormalsGridAndPanelComeAndGo) {
    open(test::sourcePath(SCENE));
    test::Picture before = grab();
    press("w", [&] { return mViewer->mFill == Viewer::SHADED_AND_EDGES; });
    EXPECT_TRUE(differs(before));
    before = grab();
    press("w", [&] { return mViewer->mFill == Viewer::EDGES; });
    EXPECT_TRUE(differs(before));
    press("w", [&] { return mViewer->mFill == Viewer::SHADED; });
    before = grab();
    press("n", [&] { return mViewer->mNormals; });
    EXPECT_TRUE(differs(before));
    press("n", [&] { return !mViewer->mNormals; });
    press("g", [&] { return !mViewer->mGrid; });
    EXPECT_LT(grab().at(20, 400)[0], 25); // the tree's ground
    press("Tab", [&] { return !mViewer->mPanel; });
    EXPECT_GT(grab().at(20, 400)[0], 25); // the picture's
    press("Tab", [&] { return mViewer->mPanel; });
    press("g", [&] { return mViewer->mGrid; });
    EXPECT_LT(test::comparePictures(before, grab()).mean, 0.1);
}

TEST_F(View, AClickInTheTreeSelectsAndFGoesThere) {
    open(test::sourcePath(SCENE));
    const float distance = mViewer->mOrbit.distance;
    mUser->moveTo(70, 110 + 18 * 5 + 9);
    mUser->click(1);
    EXPECT_TRUE(mUser->until("a selection", [&] { return mViewer->mSelected > 0; }));
    press("f", [&] { return mViewer->mOrbit.distance < distance * 0.8f; });
}

TEST_F(View, TheButtonsOfTheBarDoWhatTheirKeysDo) {
    open(test::sourcePath(SCENE));
    const auto click = [&](int x, const std::function<bool()>& done) {
        mUser->moveTo(x, HEIGHT - 22);
        mUser->click(1);
        EXPECT_TRUE(mUser->until("the button at " + std::to_string(x), done));
    };
    enum { PLAY = 330, CAMERA = WIDTH - 320, FILL = WIDTH - 200, NORMALS = WIDTH - 125, GRID = WIDTH - 45 };
    click(PLAY, [&] { return mViewer->mPlaying; });
    click(PLAY, [&] { return !mViewer->mPlaying; });
    click(CAMERA, [&] { return mViewer->mCamera == 0; });
    click(CAMERA, [&] { return mViewer->mCamera == -1; });
    for (const Viewer::Fill fill : {Viewer::SHADED_AND_EDGES, Viewer::EDGES, Viewer::SHADED})
        click(FILL, [&] { return mViewer->mFill == fill; });
    click(NORMALS, [&] { return mViewer->mNormals; });
    click(NORMALS, [&] { return !mViewer->mNormals; });
    click(GRID, [&] { return !mViewer->mGrid; });
    click(GRID, [&] { return mViewer->mGrid; });
}

TEST_F(View, TheBarFollowsTheWindowsEdge) {
    open(test::sourcePath(SCENE));
    test::runCommand("xdotool windowsize " + mUser->window() + " 1200 600");
    EXPECT_TRUE(mUser->until("the size", [&] { return mDisplay->mWindowMode.width == 1200; }));
    mUser->moveTo(1200 - 45, 600 - 22);
    mUser->click(1);
    EXPECT_TRUE(mUser->until("the grid's button", [&] { return !mViewer->mGrid; }));
}

TEST_F(View, PointsLightsAndNamesInOtherAlphabetsAreShown) {
    const test::TempDir folder;
    o3d::Manager manager;
    auto* const root = new o3d::Scene;
    manager.addScene(root);
    auto cloud = std::make_unique<o3d::Mesh>();
    cloud->mName = "cloud";
    for (int i = 0; i < 3000; ++i)
        cloud->mVertices.push_back({float(i % 30), float(i / 30 % 10), float(i / 300)});
    const o3d::Mesh* const made = scene::addMesh(manager, std::move(cloud));
    scene::addInstance(*root, "Wölkchen", *made, {0, 0, 0});
    scene::addDummy(*root, "雲", {0, 0, 0});
    scene::addDummy(*root, "", {0, 0, 0});
    root->addChild(new o3d::Light);
    test::writeFile(folder.file("a.o3d"), scene::sceneFile(manager));
    open(folder.file("a.o3d"));
    EXPECT_EQ(1u, mViewer->getLoaded().mCounts.lights);
    std::vector<std::string> labels;
    for (const auto& row : mViewer->getLoaded().mRows)
        labels.push_back(view::labelOf(*row.node));
    EXPECT_EQ(labels, (std::vector<std::string>{"(scene)", "W\xF6lkchen  (mesh)", "?", "(node)", "(light)"}));
    press("g", [&] { return !mViewer->mGrid; });
    const test::Picture picture = grab();
    int yellow = 0;
    for (int y = 0; y < HEIGHT - 50; ++y)
        for (int x = 300; x < WIDTH; ++x)
            yellow += picture.at(x, y)[0] > 200 && picture.at(x, y)[2] < 150;
    EXPECT_GT(yellow, 1000);
}

TEST_F(View, AMeshThatTheShowCannotDrawIsNamed) {
    const test::TempDir folder;
    o3d::Manager manager;
    auto* const root = new o3d::Scene;
    manager.addScene(root);
    auto mesh = std::make_unique<o3d::Mesh>();
    mesh->mName = "torn";
    mesh->mVertices = {{0, 0, 0}, {NAN, 0, 0}, {0, INFINITY, 0}};
    auto* const submesh = new o3d::Submesh;
    submesh->mTriangles.resize(1);
    submesh->mIndices.resize(3);
    for (int i = 0; i < 3; ++i) {
        submesh->mIndices[size_t(i)].mValue = i;
        submesh->mTriangles[0].mIndex[i] = i;
    }
    mesh->mSubmeshes.push_back(submesh);
    mesh->mMaterials.push_back("none");
    scene::addMaterial(manager, "none", {1, 1, 1, 1});
    const o3d::Mesh* const made = scene::addMesh(manager, std::move(mesh));
    scene::addInstance(*root, "leaf", *made, {0, 0, 0});
    test::writeFile(folder.file("a.o3d"), scene::sceneFile(manager));
    open(folder.file("a.o3d"));
    grab();
    EXPECT_NE(std::string::npos, mViewer->getStatus().find("The show can't draw it: mesh 'torn': "))
        << mViewer->getStatus();
}

TEST_F(View, EscapeEndsIt) {
    open(test::sourcePath(SCENE));
    press("Escape", [&] { return !mRunning; });
}

TEST_F(View, AFileThatChangesIsLoadedAgainAndABrokenOneIsReported) {
    const test::TempDir folder;
    const std::string file = folder.file("a.o3d");
    std::filesystem::copy_file(test::sourcePath("data/face/face.o3d"), file);
    open(file);
    EXPECT_EQ(44480u, mViewer->getLoaded().mCounts.triangles);
    const std::string courtyard = test::readFile(test::sourcePath(SCENE));
    test::writeFile(file, courtyard);
    EXPECT_TRUE(mUser->until("the new file", [&] { return mViewer->getLoaded().mCounts.triangles == 7648; }));
    test::writeFile(file, "no scene");
    EXPECT_TRUE(mUser->until("the problem", [&] { return !mViewer->getStatus().empty(); }));
    EXPECT_EQ(7648u, mViewer->getLoaded().mCounts.triangles);
    std::filesystem::remove(file);
    test::writeFile(file, courtyard);
    EXPECT_TRUE(mUser->until("the end of the problem", [&] { return mViewer->getStatus().empty(); }));
}

TEST(ViewProgram, WritesAPictureWithoutADisplay) {
    const test::TempDir folder;
    const std::string out = folder.file("out.png");
    const auto [status, text] =
        test::runCommand("env -u DISPLAY " + std::string(ZENTRAK_VIEW) +
                         " --size=640x480 --no-panel --time=2 --camera=camera --picture=" + out + " " +
                         test::sourcePath(SCENE));
    EXPECT_EQ(0, status) << text;
    test::Picture picture;
    ASSERT_TRUE(test::readPng(out, picture));
    EXPECT_EQ(640, picture.width);
    EXPECT_EQ(480, picture.height);
    int bright = 0;
    for (size_t i = 0; i < picture.rgba.size(); i += 4)
        bright += picture.rgba[i] > 100;
    EXPECT_GT(bright, 10000);
}

TEST(ViewProgram, DrawsTrianglesEdgesAndNormals) {
    const test::TempDir folder;
    std::vector<test::Picture> pictures;
    for (const std::string option : {"", "--edges", "--wire", "--normals"}) {
        const std::string out = folder.file("out.png");
        const auto [status, text] =
            test::runCommand("env -u DISPLAY " ZENTRAK_VIEW " --size=320x240 --picture=" + out + " " +
                             option + " " + test::sourcePath(SCENE));
        ASSERT_EQ(0, status) << text;
        test::Picture& picture = pictures.emplace_back();
        ASSERT_TRUE(test::readPng(out, picture));
        for (size_t i = 0; i + 1 < pictures.size(); ++i)
            EXPECT_GT(test::comparePictures(picture, pictures[i]).mean, 1) << option << " and " << i;
    }
}

TEST(ViewProgram, ReportsWhatItRefuses) {
    const test::TempDir folder;
    const std::string program = ZENTRAK_VIEW;
    EXPECT_EQ(2, test::runCommand(program).first);
    EXPECT_EQ(2, test::runCommand(program + " --what a.o3d").first);
    EXPECT_EQ(2, test::runCommand(program + " --size=10 a.o3d").first);
    EXPECT_EQ(0, test::runCommand(program + " --help").first);
    const auto missing = test::runCommand(program + " " + folder.file("none.o3d"));
    EXPECT_EQ(1, missing.first);
    EXPECT_NE(std::string::npos, missing.second.find("none.o3d: No such file or directory"));
    test::writeFile(folder.file("a.o3d"), "no scene");
    EXPECT_EQ(1, test::runCommand(program + " " + folder.file("a.o3d")).first);
    o3d::Manager none;
    scene::addMaterial(none, "wood", {1, 1, 1, 1});
    test::writeFile(folder.file("b.o3d"), scene::sceneFile(none));
    const auto empty = test::runCommand(program + " " + folder.file("b.o3d"));
    EXPECT_EQ(1, empty.first);
    EXPECT_NE(std::string::npos, empty.second.find("b.o3d: it contains no scene")) << empty.second;
    const auto nowhere =
        test::runCommand("env -u DISPLAY " + program + " --picture=" + folder.file("none/a.png") + " " +
                         test::sourcePath(SCENE));
    EXPECT_EQ(1, nowhere.first);
    EXPECT_NE(std::string::npos, nowhere.second.find("none/a.png: can't be written")) << nowhere.second;
    const auto camera =
        test::runCommand("env -u DISPLAY " + program + " --camera=none --picture=" + folder.file("a.png") +
                         " " + test::sourcePath(SCENE));
    EXPECT_EQ(1, camera.first);
    EXPECT_NE(std::string::npos, camera.second.find("there is no camera 'none'"));
    const auto dark = test::runCommand("env -u DISPLAY " + program + " " + test::sourcePath(SCENE));
    EXPECT_EQ(1, dark.first);
    EXPECT_NE(std::string::npos, dark.second.find("there is no display"));
}
