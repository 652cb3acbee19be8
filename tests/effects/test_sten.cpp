#include "effect_test.h"
#include "scene/scene_file.h"
#include "scene/shape.h"
#include "sten.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <random>

using namespace zentrak;
using kindler::Sten;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

constexpr float PI = 3.14159265f;

const std::string SCENE = "sten/sten.o3d";

// A private image whose red bytes are `heights`.
am::Image heightPicture(int w, int h, const std::vector<int>& heights) {
    auto* object = new am::ImageObject;
    object->resize(w, h);
    am::Image image(object);
    for (size_t i = 0; i < heights.size(); ++i) {
        unsigned char* pixel = image->getWriteData() + 4 * i;
        pixel[0] = 1, pixel[1] = 2, pixel[2] = static_cast<unsigned char>(heights[i]), pixel[3] = 77;
    }
    return image;
}

class StenTest : public test::EffectTest {
protected:
    test::TempDir mOwn; // searched before the scene's own files

    void SetUp() override {
        EffectTest::SetUp();
        window().archives().addArchive(mOwn.path());
        window().archives().addArchive(test::sourcePath("tests/data"));
    }
    void writeScene(const o3d::Manager& manager) {
        std::filesystem::create_directories(mOwn.file("sten"));
        test::writeFile(mOwn.file(SCENE), scene::sceneFile(manager));
    }
    Picture at(Sten& sten, float time) {
        return frame([&] { sten.update(time, 0.02f, 0.5f); });
    }
    // The effect with a scene of one box.
    Picture box(const Vector3f& lowest, const Vector3f& highest, float time) {
        o3d::Manager manager;
        scene::Shape shape;
        shape.box(0, lowest, highest);
        scene::addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
        scene::addMesh(manager, shape.build("box", {"stone"}));
        manager.addScene(new o3d::Scene);
        writeScene(manager);
        Sten sten(&mCommon);
        test::prepare(sten, display(), "sten");
        return at(sten, time);
    }
};

// The ground at a row: white at the top, blue at the bottom.
float whiteAt(const Picture& picture, int y) {
    return 255.0f * (1.0f - (float(y) + 0.5f) / float(picture.height));
}

bool isGround(const Picture& picture, int x, int y) {
    const uint8_t* p = picture.at(x, y);
    return std::fabs(float(p[0]) - whiteAt(picture, y)) < 2 && std::abs(p[0] - p[1]) < 2 && p[2] == 255;
}

// The centre of everything that isn't ground, in pixels.
std::pair<float, float> middle(const Picture& picture) {
    float x0 = 1e9f, x1 = -1, y0 = 1e9f, y1 = -1;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            if (!isGround(picture, x, y)) {
                x0 = std::min(x0, float(x)), x1 = std::max(x1, float(x) + 1);
                y0 = std::min(y0, float(y)), y1 = std::max(y1, float(y) + 1);
            }
    return {(x0 + x1) / 2, (y0 + y1) / 2};
}

} // namespace

// Computed independently, row by row: red, green, blue, alpha.
TEST(StenFilter, NormalsOfAPictureWorkedOutByHand) {
    const int wanted[12][4] = {{222, 162, 203, 10}, {113, 220, 212, 20}, {94, 192, 231, 40},
                               {48, 48, 189, 90},   {28, 139, 205, 80},  {202, 202, 195, 10},
                               {90, 90, 243, 30},   {222, 162, 203, 0},  {96, 51, 224, 50},
                               {40, 112, 219, 60},  {38, 44, 164, 200},  {10, 94, 165, 255}};
    am::Image image = heightPicture(4, 3, {10, 20, 40, 90, 80, 10, 30, 0, 50, 60, 200, 255});
    Sten::filter(image);
    for (size_t i = 0; i < 12; ++i) {
        const unsigned char* pixel = image->getData() + 4 * i;
        EXPECT_EQ(pixel[2], wanted[i][0]) << i;
        EXPECT_EQ(pixel[1], wanted[i][1]) << i;
        EXPECT_EQ(pixel[0], wanted[i][2]) << i;
        EXPECT_EQ(pixel[3], wanted[i][3]) << i;
    }
}

TEST(StenFilter, InsideThePictureBothNeighboursAreTheOneToTheLeft) {
    std::mt19937 random(7);
    std::vector<int> heights(20 * 9);
    for (int& height : heights)
        height = int(random() % 256);
    am::Image image = heightPicture(20, 9, heights);
    Sten::filter(image);
    for (int y = 1; y < 8; ++y)
        for (int x = 1; x < 19; ++x) {
            const int i = y * 20 + x;
            const unsigned char* pixel = image->getData() + size_t(4 * i);
            const double d = heights[size_t(i - 1)] - heights[size_t(i)];
            EXPECT_EQ(pixel[2], pixel[1]);
            EXPECT_NEAR(pixel[1], 126.5 + 127 * d / std::sqrt(2 * d * d + 4096), 0.51);
            EXPECT_EQ(pixel[3], heights[size_t(i)]);
        }
}

TEST(StenFilter, AFlatPicturePointsStraightUpWhateverItsSize) {
    for (int w = 1; w < 6; ++w)
        for (int h = 1; h < 6; ++h) {
            am::Image image = heightPicture(w, h, std::vector<int>(size_t(w * h), 200));
            Sten::filter(image);
            for (int i = 0; i < w * h; ++i) {
                const unsigned char* pixel = image->getData() + 4 * i;
                EXPECT_EQ(pixel[2], 127);
                EXPECT_EQ(pixel[1], 127);
                EXPECT_EQ(pixel[0], 254);
                EXPECT_EQ(pixel[3], 200);
            }
        }
}

TEST(StenFilter, AnImageWithoutPixelsStaysAsItIs) {
    am::Image image(new am::ImageObject);
    Sten::filter(image);
    EXPECT_EQ(image->getData(), nullptr);
    am::Image none;
    EXPECT_THROW(Sten::filter(none), Exception);
}

TEST_F(StenTest, MatchesItsReferencePictures) {
    Sten sten(&mCommon);
    test::prepare(sten, display(), "sten");
    EXPECT_TRUE(matchesReference("sten_0", at(sten, 0)));
    EXPECT_TRUE(matchesReference("sten_4", at(sten, 4.2f)));
    EXPECT_TRUE(matchesReference("sten_11", at(sten, 11)));
}

TEST_F(StenTest, TheGroundFallsFromWhiteToBlue) {
    Sten sten(&mCommon);
    test::prepare(sten, display(), "sten");
    const Picture picture = at(sten, 0);
    for (int y = 0; y < picture.height; ++y)
        EXPECT_TRUE(isGround(picture, 2, y)) << y;
}

// The eye at (4, 3, 0) with the aspect 1, upside down: the point (0, 0.8, 0.5) comes to (0.1916, -0.24524),
// which is pixel (238.3, 155.7) of 400 by 250.
TEST_F(StenTest, TheCameraIsUpsideDown) {
    const auto [x, y] = middle(box(Vector3f(-0.03f, 0.77f, 0.47f), Vector3f(0.03f, 0.83f, 0.53f), 0));
    EXPECT_NEAR(x, 238.3f, 1.5f);
    EXPECT_NEAR(y, 155.7f, 1.5f);
}

TEST_F(StenTest, TheEyeSwingsWithTime) {
    const auto [x, y] = middle(box(Vector3f(-0.03f, -0.03f, -0.53f), Vector3f(0.03f, 0.03f, -0.47f), 1));
    const double ex = 4 * std::cos(0.2), ey = 3 + 2 * std::sin(2.0), distance = std::hypot(ex, ey);
    const double f = 1 / std::tan(double(PI) / 6);
    // The point (0, 0, -0.5) is to the right of the line of sight, and so to the left upside down.
    EXPECT_NEAR(x, (1 - f * 0.5 / distance) * 200, 1.5);
    EXPECT_NEAR(y, 125, 1.5);
}

TEST_F(StenTest, AllFragmentsWithAlphaAtOrBelowHalfAreDropped) {
    std::filesystem::create_directories(mOwn.file("sten"));
    for (const auto& [alpha, seen] : {std::pair(0, false), {127, false}, {130, true}, {255, true}}) {
        Picture flat(8, 8);
        for (size_t i = 0; i < flat.rgba.size(); ++i)
            flat.rgba[i] = uint8_t(i % 4 == 3 ? alpha : 30);
        ASSERT_TRUE(test::writePng(mOwn.file("sten/sten.png"), flat));
        Sten sten(&mCommon);
        test::prepare(sten, display(), "sten");
        const Picture picture = at(sten, 0);
        EXPECT_EQ(isGround(picture, 200, 125), !seen) << alpha;
    }
}

TEST_F(StenTest, AMissingFileRaises) {
    am::ArchiveManager nothing;
    nothing.addArchive(mOwn.path());
    display().setArchive(&nothing);
    Sten sten(&mCommon);
    try {
        test::prepare(sten, display(), "sten");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_STREQ("File 'sten/sten.o3d' not found", exception.what());
    }
    display().setArchive(nullptr);
    Sten without(&mCommon);
    EXPECT_THROW(test::prepare(without, display(), "sten"), Exception);
    display().setArchive(&window().archives());
}

TEST_F(StenTest, AFileWithoutASceneRaises) {
    o3d::Manager manager;
    scene::addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
    writeScene(manager);
    Sten sten(&mCommon);
    try {
        test::prepare(sten, display(), "sten");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_STREQ("No scene in 'sten/sten.o3d'", exception.what());
    }
}

TEST_F(StenTest, AFileOfHostileIndicesRaisesWithItsName) {
    std::string image = test::readFile(test::sourcePath("tests/data/" + SCENE));
    const size_t indices = image.find(std::string("\x60\xFF\x2C\x62\0\0", 6)); // 6283 of them
    ASSERT_NE(indices, std::string::npos);
    image.replace(indices + 6, 4, "\xFF\xFF\xFF\x7F");
    std::filesystem::create_directories(mOwn.file("sten"));
    test::writeFile(mOwn.file(SCENE), image);
    Sten sten(&mCommon);
    try {
        test::prepare(sten, display(), "sten");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_STREQ(
            "File 'sten/sten.o3d': Mesh 'sten', submesh 0: index 0 is 2147483647, but there are 6020 "
            "vertices",
            exception.what());
    }
}

TEST_F(StenTest, LeavesNothingBound) {
    Sten sten(&mCommon);
    test::prepare(sten, display(), "sten");
    frame([&] {
        sten.update(1, 0.02f, 0.5f);
        GLint program = -1, unit = -1, bound = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(unit, GL_TEXTURE0);
        for (GLenum each : {GL_TEXTURE1, GL_TEXTURE0}) {
            glActiveTexture(each);
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
            EXPECT_EQ(bound, 0);
        }
        EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_EQ(display().mCurrentIBO, nullptr);
    });
}
