#include "am_archivemanager.h"
#include "dis_display.h"
#include "effect_test.h"
#include "kub.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

using namespace zentrak;
using kindler::Kub;
using test::matchesReference;
using test::Picture;

namespace {

class KubTest : public test::EffectTest {
protected:
    Kub mKub{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        // Its own picture: the numbers below belong to its cubes.
        test::OwnFiles files(display());
        files.write("kub/kub.png", test::readFile(test::sourcePath("tests/effects/assets/kub/kub.png")));
        srand(1);
        test::prepare(mKub, display(), "kub");
    }
    Picture at(float time, float delta, float progress) {
        return over(0.1f, 0.1f, 0.1f, [&] { mKub.update(time, delta, progress); });
    }
    void trigger(float time, const char* name) { mKub.executeTrigger(time, name, ""); }
};

} // namespace

// Replays the moves from the picture's cells: each cube moves at most once per step, by one cell, to an empty
// one.
TEST_F(KubTest, NoMoveEntersATakenCell) {
    std::vector<Kub::Poxel> cubes = Kub::poxels();
    ASSERT_GT(cubes.size(), 500u);
    EXPECT_EQ(Kub::currentFrame(), 120);
    std::set<std::pair<float, float>> taken;
    for (Kub::Poxel& cube : cubes) {
        ASSERT_EQ(cube.count, int(cube.mods.size()));
        for (const Kub::Mod& mod : cube.mods) {
            ASSERT_EQ(std::fabs(mod.dx) + std::fabs(mod.dy), 1);
            cube.x -= mod.dx;
            cube.y -= mod.dy;
        }
        taken.insert({cube.x, cube.y});
    }
    ASSERT_EQ(taken.size(), cubes.size());
    for (int step = 0; step < 120; ++step) {
        std::vector<std::pair<size_t, Kub::Mod>> moves;
        for (size_t i = 0; i < cubes.size(); ++i)
            for (const Kub::Mod& mod : cubes[i].mods)
                if (mod.step == step)
                    moves.emplace_back(i, mod);
        // Moves within a step are unordered: one may wait for the cell that another leaves.
        for (size_t left = moves.size(); !moves.empty(); left = moves.size()) {
            std::erase_if(moves, [&](const auto& move) {
                Kub::Poxel& cube = cubes[move.first];
                const std::pair<float, float> to(cube.x + move.second.dx, cube.y + move.second.dy);
                if (taken.count(to))
                    return false;
                taken.erase({cube.x, cube.y});
                taken.insert(to);
                cube.x = to.first;
                cube.y = to.second;
                return true;
            });
            ASSERT_LT(moves.size(), left) << "in step " << step;
        }
    }
}

TEST_F(KubTest, ItsLifeMatchesTheReferencePictures) {
    // Before second 9.8 nothing rolls, however long it has run.
    EXPECT_TRUE(matchesReference("kub_scattered", at(5, 0.02f, 0.2f)));
    at(9.7f, 4.0f, 0.2f);
    EXPECT_EQ(Kub::currentFrame(), 120);

    EXPECT_TRUE(matchesReference("kub_rolling", at(12, 2.1f, 0.25f)));
    EXPECT_EQ(Kub::currentFrame(), 111);
    at(12.1f, 0.1f, 0.25f);
    // A negative delta goes back in time but undoes nothing.
    const int frame = Kub::currentFrame();
    at(12.0f, -0.05f, 0.25f);
    EXPECT_EQ(Kub::currentFrame(), frame);
    at(11.0f, -1.0f, 0.25f);
    at(12.0f, 1.0f, 0.25f);
    EXPECT_EQ(Kub::currentFrame(), frame);

    at(25, 13, 0.5f);
    EXPECT_TRUE(matchesReference("kub_whole", at(40, 15, 0.8f)));
    EXPECT_LT(Kub::currentFrame(), 0);
    for (const Kub::Poxel& cube : Kub::poxels())
        ASSERT_EQ(cube.count, 0);
}

TEST_F(KubTest, ItsTriggersLookAsTheyShould) {
    at(0, 74.17f, 0); // lifts the camera
    mKub.executeTrigger(1, "unknown", "");
    mKub.updateSpline(0, "ilvo marsten", 0.02f);
    trigger(10, "expand");
    EXPECT_TRUE(matchesReference("kub_expanded", at(14, 0.02f, 0.5f)));
    trigger(15, "turn");
    EXPECT_TRUE(matchesReference("kub_turned", at(70, 0.02f, 0.6f)));
    trigger(17, "turn2");
    EXPECT_TRUE(matchesReference("kub_turned_twice", at(110, 0.02f, 0.6f)));
}

// Computed independently: the moves from the C library's random numbers with seed 1, and the growth of each
// cube that moves for the first time from the effect's own.
TEST_F(KubTest, TheFirstCubesAndMovesAreThoseOfTheSeed) {
    struct Wanted {
        size_t cube;
        float x, y; // where it is after all steps
        size_t moves;
        int dx, dy, step; // the first move
        int last;         // the step of the last one
        float expand;
        float red;
    };
    const Wanted wanted[] = {
        {0, -11, -52, 52, 0, -1, 17, 118, 13.0955194f, 0.6171875f},
        {1, -3, -43, 36, 0, -1, 0, 117, 4.8011259f, 0.6171875f},
        {2, -7, -55, 49, 0, -1, 12, 119, 2.0845906f, 0.6171875f},
        {495, 31, -3, 11, 1, 0, 64, 116, 8.5128894f, 0.6875f},
        {989, 7, 42, 42, 0, 1, 9, 118, 5.9340411f, 0.828125f},
    };
    const std::vector<Kub::Poxel>& cubes = Kub::poxels();
    ASSERT_EQ(cubes.size(), 990u);
    for (const Wanted& w : wanted) {
        const Kub::Poxel& cube = cubes[w.cube];
        EXPECT_EQ(cube.x, w.x) << w.cube;
        EXPECT_EQ(cube.y, w.y) << w.cube;
        EXPECT_EQ(cube.draw, mathbase::Vector3f(w.x, w.y, 0)) << w.cube;
        ASSERT_EQ(cube.mods.size(), w.moves) << w.cube;
        EXPECT_EQ(cube.count, int(w.moves)) << w.cube;
        EXPECT_EQ(cube.mods.front().dx, float(w.dx)) << w.cube;
        EXPECT_EQ(cube.mods.front().dy, float(w.dy)) << w.cube;
        EXPECT_EQ(cube.mods.front().step, w.step) << w.cube;
        EXPECT_EQ(cube.mods.back().step, w.last) << w.cube;
        EXPECT_FLOAT_EQ(cube.expand, w.expand) << w.cube;
        EXPECT_EQ(cube.col.x, w.red) << w.cube;
        EXPECT_EQ(cube.amp, 0.15f) << w.cube;
    }
    std::map<int, int> moves; // of each step
    for (const Kub::Poxel& cube : cubes)
        for (const Kub::Mod& mod : cube.mods)
            ++moves[mod.step];
    EXPECT_EQ(moves[0], 4);
    EXPECT_EQ(moves[1], 2);
    EXPECT_EQ(moves[2], 2);
    EXPECT_EQ(moves[60], 222);
    EXPECT_EQ(moves[119], 484);
}

// Step 119 is the first to be undone once 9.8 is past, at 4.5 steps a second: 120 steps take 27 seconds.
TEST_F(KubTest, ACubeRollsOverItsEdgeAndLiftsInTheMiddleOfItsStep) {
    const size_t cube = 2; // its last move is (0, -1) in step 119
    const Kub::Poxel& rolling = Kub::poxels()[cube];
    at(9.8f, 1.1f / 4.5f, 0.3f);
    ASSERT_EQ(Kub::currentFrame(), 119); // none was made in step 120
    at(9.9f, 0.4f / 4.5f, 0.3f);         // half of the step is done
    EXPECT_NEAR(rolling.draw.x, -7, 1e-6);
    EXPECT_NEAR(rolling.draw.y, -54.5f, 1e-4);
    EXPECT_NEAR(rolling.draw.z, 0.15f, 1e-6);
    EXPECT_NEAR(rolling.rot.x, 0.25f * 3.14159265f, 1e-4);
    EXPECT_EQ(rolling.rot.z, 0);
    at(10, 0.6f / 4.5f, 0.3f);
    EXPECT_EQ(Kub::currentFrame(), 118);
    EXPECT_EQ(rolling.y, -54);
    EXPECT_EQ(rolling.count, 48);
}

// A picture with so many cubes that some are never chosen.
TEST_F(KubTest, ACubeThatNeverMovedIsDrawnInItsPosition) {
    test::OwnFiles files(display());
    files.write("kub/kub.png", test::whitePicture(140, 140));
    Kub kub(&mCommon);
    test::prepare(kub, display(), "kub");

    const std::vector<Kub::Poxel>& cubes = Kub::poxels();
    ASSERT_EQ(cubes.size(), 140u * 140u);
    size_t still = 0;
    while (still < cubes.size() && !cubes[still].mods.empty())
        ++still;
    ASSERT_LT(still, cubes.size());
    const mathbase::Vector3f place(float(still % 140) - 32, float(still / 140) - 16, 0);
    EXPECT_EQ(cubes[still].count, 0);
    for (float delta : {0.0f, 10.3f, 30.0f}) { // scattered, in the middle of a step, and whole
        over(0.1f, 0.1f, 0.1f, [&] { kub.update(40, delta, 0.3f); });
        EXPECT_EQ(cubes[still].draw, place);
        EXPECT_EQ(cubes[still].rot, mathbase::Vector3f(0, 0, 0));
    }
    EXPECT_LT(Kub::currentFrame(), 0);
    for (size_t i = 0; i < cubes.size(); ++i)
        ASSERT_EQ(cubes[i].draw,
                  mathbase::Vector3f(float(i % 140) - 32, float(i / 140) - 16, cubes[i].draw.z));
}

TEST_F(KubTest, StepsOfAnyLengthEnd) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    at(41, 1e9f, 0.8f);
    EXPECT_LT(Kub::currentFrame(), 0);
    trigger(nan, "expand");
    for (float time : {41.0f, infinity, -infinity, nan, -1e30f})
        for (float delta : {0.02f, -1e30f, infinity, -infinity, nan})
            for (float progress : {0.5f, infinity, nan})
                at(time, delta, progress);
}

// The cubes are seen from above and in front: without normals they would all have one colour.
TEST_F(KubTest, AProgramGetsTheNormalsOfTheCubes) {
    test::OwnFiles files(display());
    files.write("kub/kub.vert", test::SHOW_NORMALS);
    files.write("kub/kub.frag", test::NORMAL_COLORS);
    Kub kub(&mCommon);
    test::prepare(kub, display(), "kub");
    kub.update(0, 40, 0); // lifts the camera
    const Picture drawn = over(0, 0, 0, [&] { kub.update(0, 0, 0); });
    int up = 0, ahead = 0;
    for (size_t i = 0; i < drawn.rgba.size(); i += 4) {
        const uint8_t *p = &drawn.rgba[i], rest = 10;
        up += p[0] - 127 < rest && p[1] > 250 && p[2] - 127 < rest;
        ahead += p[0] - 127 < rest && p[1] < 140 && p[2] > 250;
    }
    EXPECT_GT(up, 500);
    EXPECT_GT(ahead, 100);
}

TEST_F(KubTest, AProgramThatMovesVerticesGetsAllFaces) {
    test::OwnFiles files(display());
    files.write("kub/kub.vert", test::MIRROR);
    files.write("kub/kub.frag", test::WHITE);
    Kub kub(&mCommon);
    test::prepare(kub, display(), "kub");
    kub.updateSpline(0, "alpha", 0); // of the floor
    const Picture drawn = over(0, 0, 0, [&] { kub.update(0, 0, 0); });
    EXPECT_GT(test::covered(drawn, over(0, 0, 0, [] {})), 0.05);
}

TEST_F(KubTest, APictureOfTooManyCubesIsRefusedByName) {
    test::OwnFiles files(display());
    files.write("kub/kub.png", test::whitePicture(257, 256));
    Kub kub(&mCommon);
    EXPECT_EQ(test::thrown([&] { test::prepare(kub, display(), "kub"); }),
              "Too many pixels in 'kub/kub.png': an effect draws at most 65536 of them as boxes");
}

TEST_F(KubTest, WithoutArchivesItsImageIsNull) {
    am::ArchiveManager* const before = display().mArchiveManager;
    display().setArchive(nullptr);
    Kub kub(&mCommon);
    EXPECT_EQ(test::thrown([&] { test::prepare(kub, display(), "kub"); }), test::NULL_IMAGE);
    display().setArchive(before);
}
