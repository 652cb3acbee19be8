#include "dis_culling.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using display::Location;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

Matrix4x4Col perspective() {
    Matrix4x4Col m;
    m.setProject(1.5707963f, 1, 1, 100); // 90 degrees: the sides are x = z, y = z
    return m;
}

Location locate(std::initializer_list<Vector3f> points, const Matrix4x4Col& clip = perspective()) {
    display::Locator locator(clip);
    for (const Vector3f& point : points)
        locator.add(point);
    return locator.get();
}

unsigned faces(const Vector3f& centre, float side, const Matrix4x4Col& clip = perspective()) {
    return display::facesTowards(display::eyeOf(clip), centre,
                                 {Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(0, 0, 1)}, side);
}

constexpr unsigned mask(std::initializer_list<display::Face> faces) {
    unsigned result = 0;
    for (const display::Face face : faces)
        result |= 1u << face;
    return result;
}

TEST(Locator, PointsWithinAllPlanesAreInside) {
    EXPECT_EQ(locate({{0, 0, -2}, {4, -4, -5}, {0, 90, -99}}), Location::INSIDE);
}

TEST(Locator, PointsBeyondOneSideAreOutside) {
    EXPECT_EQ(locate({{-6, 0, -5}, {-60, 3, -50}}), Location::OUTSIDE);
    EXPECT_EQ(locate({{6, 0, -5}, {60, 3, -50}}), Location::OUTSIDE);
    EXPECT_EQ(locate({{0, -6, -5}, {3, -60, -50}}), Location::OUTSIDE);
    EXPECT_EQ(locate({{0, 6, -5}, {3, 60, -50}}), Location::OUTSIDE);
}

TEST(Locator, BehindTheEyeIsOutside) {
    EXPECT_EQ(locate({{1, 1, 5}, {-1, -1, 6}}), Location::OUTSIDE);
}

TEST(Locator, PointsBeyondDifferentSidesAreAcross) {
    EXPECT_EQ(locate({{-6, 0, -5}, {6, 0, -5}}), Location::ACROSS);
    EXPECT_EQ(locate({{0, 0, -5}, {6, 0, -5}}), Location::ACROSS);
}

TEST(Locator, BeyondTheNearOrFarPlaneIsAcross) {
    EXPECT_EQ(locate({{0, 0, -0.5f}}), Location::ACROSS);
    EXPECT_EQ(locate({{0, 0, -500}}), Location::ACROSS);
}

TEST(Locator, NotANumberIsAcross) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(locate({{nan, 0, -5}}), Location::ACROSS);
    EXPECT_EQ(locate({{-6, 0, -5}, {0, nan, -5}}), Location::ACROSS);
}

TEST(EyeOf, APerspectiveHasItsEyeInTheOrigin) {
    const Vector4f eye = display::eyeOf(perspective());
    EXPECT_NE(eye.w, 0);
    EXPECT_EQ(Vector3f(eye.x, eye.y, eye.z), Vector3f(0, 0, 0));
}

TEST(EyeOf, ACameraMovesTheEye) {
    Matrix4x4Col clip = perspective(), camera;
    camera.setCamera(Vector3f(3, 4, 5), Vector3f(-1, 2, 0), 0.5f);
    clip.multiplyFromRight(camera);
    const Vector4f eye = display::eyeOf(clip);
    EXPECT_NEAR(eye.x / eye.w, 3, 1e-4);
    EXPECT_NEAR(eye.y / eye.w, 4, 1e-4);
    EXPECT_NEAR(eye.z / eye.w, 5, 1e-4);
}

TEST(FacesTowards, AheadOfTheEyeOnlyTheFrontFacesIt) {
    EXPECT_EQ(faces(Vector3f(0, 0, -10), 1), mask({display::FACE_FRONT}));
    EXPECT_EQ(faces(Vector3f(0, 0, -10), -1),
              mask({display::FACE_BACK, display::FACE_LEFT, display::FACE_RIGHT, display::FACE_BOTTOM,
                    display::FACE_TOP}));
}

TEST(FacesTowards, FromAboveAndTheLeftThreeFacesShow) {
    EXPECT_EQ(faces(Vector3f(5, -5, -10), 1),
              mask({display::FACE_FRONT, display::FACE_LEFT, display::FACE_TOP}));
}

TEST(FacesTowards, AroundTheEyeNoneFacesItFromOutside) {
    EXPECT_EQ(faces(Vector3f(0, 0, 0), 1), 0u);
    EXPECT_EQ(faces(Vector3f(0, 0, 0), -1), 63u);
}

TEST(FacesTowards, EdgeOnFacesAreKeptBothWays) {
    const unsigned right = mask({display::FACE_RIGHT});
    EXPECT_EQ(faces(Vector3f(-1, 0, -10), 1) & right, right);
    EXPECT_EQ(faces(Vector3f(-1, 0, -10), -1) & right, right);
}

TEST(FacesTowards, AParallelProjectionLooksAlongADirection) {
    Matrix4x4Col clip;
    clip.mData[10] = -1; // towards -z, with clip space left-handed as OpenGL has it
    EXPECT_EQ(faces(Vector3f(50, 70, 9), 1, clip) & mask({display::FACE_FRONT, display::FACE_BACK}),
              mask({display::FACE_FRONT}));
}

} // namespace
