#include "near.h"

#include <csignal>

using namespace zentrak::mathbase;

namespace {

const float halfPi = 1.5707964f;

Matrix4x4Col identity() {
    return Matrix4x4Col();
}

Matrix4x4Col rows(std::initializer_list<float> values) {
    Matrix4x4Col m;
    int i = 0;
    for (const float value : values) {
        m.mData[i % 4 * 4 + i / 4] = value;
        ++i;
    }
    return m;
}

Matrix4x4Col numbered(float first) {
    Matrix4x4Col m;
    for (int i = 0; i < 16; ++i)
        m.mData[i] = first + float(i * i % 7);
    return m;
}

// A setter has to replace whatever was there.
Matrix4x4Col dirty() {
    return numbered(100);
}

Matrix4x4Col inverseOf(const Matrix4x4Col& view) { // of a rotation and a translation
    Matrix4x4Col result = view;
    result.mData[12] = result.mData[13] = result.mData[14] = 0;
    result.transponate();
    const Vector3f moved = result.multiplyVector(-Vector3f(view.mData[12], view.mData[13], view.mData[14]));
    result.mData[12] = moved.x;
    result.mData[13] = moved.y;
    result.mData[14] = moved.z;
    return result;
}

} // namespace

TEST(Matrix, IdentityAndZero) {
    Matrix4x4Col m = dirty();
    m.setIdentity();
    EXPECT_EQ(rows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), m);
    EXPECT_EQ(m, Matrix4x4Col());
    m.setZero();
    EXPECT_EQ(rows({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), m);
}

TEST(Matrix, RotationsAboutXAndZAreRightHandedAndAboutYIsNot) {
    const float c = cosf(0.7f), s = sinf(0.7f);
    Matrix4x4Col m = dirty();
    m.setRotX(0.7f);
    EXPECT_EQ(rows({1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1}), m);
    m = dirty();
    m.setRotY(0.7f);
    EXPECT_EQ(s, m.mData[2]);
    EXPECT_EQ(rows({c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1}), m);
    m = dirty();
    m.setRotZ(0.7f);
    EXPECT_EQ(rows({c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), m);
}

TEST(Matrix, TranslationScaleAndShear) {
    Matrix4x4Col m = dirty();
    m.setTranslation(Vector3f(2, 3, 4));
    EXPECT_EQ(rows({1, 0, 0, 2, 0, 1, 0, 3, 0, 0, 1, 4, 0, 0, 0, 1}), m);
    m = dirty();
    m.setTranslation(Vector4f(2, 3, 4, 5));
    EXPECT_EQ(rows({1, 0, 0, 2, 0, 1, 0, 3, 0, 0, 1, 4, 0, 0, 0, 5}), m);
    m = dirty();
    m.setScale(Vector3f(2, 3, 4));
    EXPECT_EQ(rows({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}), m);
    m = dirty();
    m.setScale(Vector3f(2, 3, 4), Vector3f(10, 20, 30));
    EXPECT_EQ(rows({2, 0, 0, -10, 0, 3, 0, -40, 0, 0, 4, -90, 0, 0, 0, 1}), m);
    EXPECT_EQ(Vector3f(10, 20, 30), m * Vector3f(10, 20, 30));
    m = dirty();
    m.setShear(Vector3f(2, 3, 5));
    EXPECT_EQ(rows({1, 6, 10, 0, 0, 1, 15, 0, 0, 0, 1, 0, 0, 0, 0, 1}), m);
}

TEST(Matrix, ScaleAndShearIsTheirProductAboutAPoint) {
    const Vector3f scale(2, 3, 4), centre(1, -2, 5), shear(2, 3, 5);
    Matrix4x4Col expected, part;
    expected.setTranslation(centre);
    part.setScale(scale);
    expected *= part;
    part.setShear(shear);
    expected *= part;
    part.setTranslation(-centre);
    expected *= part;
    Matrix4x4Col m = dirty();
    m.setScaleAndShear(scale, centre, shear);
    EXPECT_EQ(expected, m);
    EXPECT_EQ(centre, m * centre);
}

TEST(Matrix, SetRotIsTheQuaternionsRotation) {
    const float c = cosf(0.7f), s = sinf(0.7f);
    Quatf q;
    Matrix4x4Col m = dirty();
    q.setRotX(0.7f);
    m.setRot(q);
    EXPECT_TRUE(near(rows({1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1}), m));
    q.setRotY(0.7f);
    m.setRot(q);
    EXPECT_TRUE(near(rows({c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1}), m));
    q.setRotZ(0.7f);
    m.setRot(q);
    EXPECT_TRUE(near(rows({c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), m));
}

TEST(Matrix, BuildPRSIsTranslationTimesRotationTimesScale) {
    const Vector3f position(1, 2, 3), scale(2, -3, 4);
    const Quatf rotation(0.9f, Vector3f(1, 2, -2) * (1 / 3.0f));
    Matrix4x4Col expected, part;
    expected.setTranslation(position);
    part.setRot(rotation);
    expected.multiplyFromRight(part);
    part.setScale(scale);
    expected.multiplyFromRight(part);
    Matrix4x4Col m = dirty();
    m.buildPRS(position, rotation, scale);
    EXPECT_TRUE(near(expected, m));
}

TEST(Matrix, BuildPRSFollowedByBuildPRSinverseGivesIdentity) {
    const Vector3f position(1, 2, 3), scale(2, -3, 4);
    const Quatf rotation(0.9f, Vector3f(1, 2, -2) * (1 / 3.0f));
    Matrix4x4Col m = dirty(), inverse = dirty();
    m.buildPRS(position, rotation, scale);
    inverse.buildPRSinverse(position, rotation, scale);
    Matrix4x4Col product = m;
    product.multiplyFromRight(inverse);
    EXPECT_TRUE(near(identity(), product, 1e-5f));
    product = m;
    product.multiplyFromLeft(inverse);
    EXPECT_TRUE(near(identity(), product, 1e-5f));
}

TEST(Matrix, BuildBlenderCameraOfNothingEqualsSetRotXOfMinusHalfPi) {
    Matrix4x4Col m = dirty(), expected;
    m.buildBlenderCamera(Vector3f(0, 0, 0), Quatf(), Vector3f(1, 1, 1));
    expected.setRotX(-halfPi);
    EXPECT_EQ(expected, m);
}

TEST(Matrix, BuildBlenderCameraInverseIsItsInverse) {
    const Vector3f position(1, 2, 3), scale(2, 0.5f, 4);
    const Quatf rotation(0.9f, Vector3f(1, 2, -2) * (1 / 3.0f));
    Matrix4x4Col m, inverse;
    m.buildBlenderCamera(position, rotation, scale);
    inverse.buildBlenderCameraInverse(position, rotation, scale);
    m *= inverse;
    EXPECT_TRUE(near(identity(), m, 1e-5f));
    Matrix4x4Col rotX;
    rotX.setRotX(halfPi);
    inverse.buildBlenderCameraInverse(Vector3f(), Quatf(), Vector3f(1, 1, 1));
    EXPECT_EQ(rotX, inverse);
}

TEST(Matrix, SetProject) {
    Matrix4x4Col m = dirty();
    m.setProject(1.0f, 1.5f, 0.5f, 100.0f);
    const float h = 0.5f * tanf(0.5f), w = 1.5f * h;
    EXPECT_EQ(rows({0.5f / w, 0, 0, 0, 0, 0.5f / h, 0, 0, 0, 0, -100.5f / 99.5f,
                    -2.0f * 100.0f * 0.5f / 99.5f, 0, 0, -1, 0}),
              m);
    const Vector4f nearest = m * Vector4f(0, 0, -0.5f, 1), farthest = m * Vector4f(0, 0, -100, 1);
    EXPECT_NEAR(-1.0f, nearest.z / nearest.w, 1e-5f);
    EXPECT_NEAR(1.0f, farthest.z / farthest.w, 1e-5f);
}

TEST(Matrix, SetProjectInfHasNoFarPlane) {
    Matrix4x4Col m = dirty();
    m.setProjectInf(1.0f, 1.5f, 0.5f);
    const float h = float(0.5 * tan(0.5)), w = 1.5f * h;
    EXPECT_EQ(rows({0.5f / w, 0, 0, 0, 0, 0.5f / h, 0, 0, 0, 0, -1, -1, 0, 0, -1, 0}), m);
    const Vector4f distant = m * Vector4f(0, 0, -1e9f, 1);
    EXPECT_NEAR(1.0f, distant.z / distant.w, 1e-5f);
}

TEST(Matrix, SetProjectInfTakesTheTangentInDoublePrecision) {
    int differing = 0;
    for (float fov = 0.3f; fov < 2.5f; fov += 0.1f) {
        Matrix4x4Col m;
        m.setProjectInf(fov, 1, 0.7f);
        const float h = float(0.7f * tan(double(fov) / 2.0));
        EXPECT_EQ(0.7f / h, m.mData[5]) << fov;
        differing += 0.7f / h != 0.7f / (0.7f * tanf(fov / 2.0f));
    }
    EXPECT_GT(differing, 0);
}

TEST(Matrix, SetProjectOrthoKeepsTheSignOfDepth) {
    Matrix4x4Col m = dirty();
    m.setProjectOrtho(-1, 1, -1, 1, 0, 1);
    EXPECT_EQ(2.0f, m.mData[10]);
    EXPECT_EQ(-1.0f, m.mData[14]);
    EXPECT_EQ(rows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2, -1, 0, 0, 0, 1}), m);
    m.setProjectOrtho(10, 30, 40, 20, 5, 15);
    EXPECT_EQ(Vector3f(-1, -1, -1), m * Vector3f(10, 40, 5));
    EXPECT_EQ(Vector3f(1, 1, 1), m * Vector3f(30, 20, 15));
    Matrix4x4Col flat = dirty();
    flat.setProjectOrtho2D(0, 640, 480, 0);
    m.setProjectOrtho(0, 640, 480, 0, -1, 1);
    EXPECT_EQ(m, flat);
}

TEST(Matrix, SetCameraViewsAlongMinusZ) {
    Matrix4x4Col m = dirty();
    m.setCamera(Vector3f(3, 4, 5), Vector3f(3, 4, -10), 0);
    EXPECT_TRUE(near(Vector3f(0, 0, 0), m * Vector3f(3, 4, 5)));
    EXPECT_TRUE(near(Vector3f(0, 0, -15), m * Vector3f(3, 4, -10)));
    EXPECT_TRUE(near(Vector3f(1, 2, 0), m * Vector3f(4, 6, 5)));
    m.setCamera(Vector3f(1, 2, 3), Vector3f(-4, 7, 1), 0);
    EXPECT_TRUE(near(Vector3f(0, 0, -sqrtf(25 + 25 + 4)), m * Vector3f(-4, 7, 1), 1e-5f));
    EXPECT_EQ(Vector4f(0, 0, 0, 1), m.getRow(3));
}

TEST(Matrix, SetCameraRollTurnsThePictureByMinusRoll) {
    Matrix4x4Col m = dirty();
    m.setCamera(Vector3f(0, 0, 0), Vector3f(0, 0, -1), halfPi);
    EXPECT_TRUE(near(Vector3f(0, -1, 0), m * Vector3f(1, 0, 0)));
    EXPECT_TRUE(near(Vector3f(1, 0, 0), m * Vector3f(0, 1, 0)));
}

TEST(Matrix, SetCameraLookingStraightDownTakesXForUp) {
    Matrix4x4Col m = dirty();
    m.setCamera(Vector3f(0, 10, 0), Vector3f(0, 9, 0), 0);
    EXPECT_EQ(rows({0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, -10, 0, 0, 0, 1}), m);
    m.setCamera(Vector3f(0, 10, 0), Vector3f(0, 11, 0), 0);
    EXPECT_EQ(rows({0, 0, 1, 0, -1, 0, 0, 0, 0, -1, 0, 10, 0, 0, 0, 1}), m);
}

TEST(Matrix, SetCameraWithEyeAtTargetAborts) {
    Matrix4x4Col m;
    EXPECT_EXIT(m.setCamera(Vector3f(1, 2, 3), Vector3f(1, 2, 3), 0), testing::KilledBySignal(SIGABRT),
                "Assertion `length!=0' failed");
    EXPECT_EXIT(m.setCameraInv(Vector3f(1, 2, 3), Vector3f(1, 2, 3), 0), testing::KilledBySignal(SIGABRT),
                "Assertion `length!=0' failed");
}

TEST(Matrix, SetCameraInvIsTheInverseOfSetCamera) {
    for (const Vector3f& target : {Vector3f(-4, 7, 1), Vector3f(1, -5, 3), Vector3f(1, 5, 3)}) {
        Matrix4x4Col view = dirty(), frame = dirty();
        view.setCamera(Vector3f(1, 2, 3), target, 0.4f);
        frame.setCameraInv(Vector3f(1, 2, 3), target, 0.4f);
        EXPECT_TRUE(near(inverseOf(view), frame, 1e-5f));
        EXPECT_TRUE(near(Vector4f(1, 2, 3, 1), frame.getColumn(3)));
        view *= frame;
        EXPECT_TRUE(near(identity(), view, 1e-5f));
    }
}

TEST(Matrix, ProductsFromBothSidesAndWithItself) {
    const Matrix4x4Col a = numbered(1), b = numbered(-3);
    Matrix4x4Col expected;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            expected.mData[c * 4 + r] = a.getRow(r).dot(b.getColumn(c));
    Matrix4x4Col m = a;
    m.multiplyFromRight(b);
    EXPECT_EQ(expected, m);
    m = a;
    m *= b;
    EXPECT_EQ(expected, m);
    m = b;
    m.multiplyFromLeft(a);
    EXPECT_EQ(expected, m);

    Matrix4x4Col square = a, other = a;
    square.multiplyFromRight(square);
    other.multiplyFromRight(a);
    EXPECT_EQ(other, square);
    square = a;
    square.multiplyFromLeft(square);
    EXPECT_EQ(other, square);
}

TEST(Matrix, MultiplyAddsTheTranslationAndMultiplyVectorDoesNot) {
    const Matrix4x4Col m = rows({1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30, 11, 12, 13, 14});
    const Vector3f v(1, 10, 100);
    EXPECT_EQ(Vector3f(331, 674, 1017), m.multiply(v));
    EXPECT_EQ(Vector3f(331, 674, 1017), m * v);
    EXPECT_EQ(Vector3f(321, 654, 987), m.multiplyVector(v));
    EXPECT_EQ(Vector3f(741, 852, 963), m.multiplyVectorWithTransponate(v));
    EXPECT_EQ(Vector4f(341, 694, 1047, 1459), m.multiply(Vector4f(1, 10, 100, 2)));
    EXPECT_EQ(Vector4f(341, 694, 1047, 1459), m * Vector4f(1, 10, 100, 2));
}

TEST(Matrix, TransposeColumnsAndRows) {
    Matrix4x4Col m = rows({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    EXPECT_EQ(2.0f, m.mData[4]);
    EXPECT_EQ(Vector4f(2, 6, 10, 14), m.getColumn(1));
    EXPECT_EQ(Vector4f(5, 6, 7, 8), m.getRow(1));
    EXPECT_EQ(m.getColumn(3), m.getColumn(-1));
    EXPECT_EQ(m.getRow(0), m.getRow(4));
    m.transponate();
    EXPECT_EQ(rows({1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16}), m);
}

TEST(Matrix, UnprojectedPointIsSentBackByTheProjection) {
    Matrix4x4Col m;
    m.setProject(1.0f, 1.5f, 0.5f, 100.0f);
    m.mData[8] = 0.25f;
    m.mData[9] = -0.5f;
    const Vector3f p = m.getUnprojectedPoint(Vector3f(0.3f, -0.6f, -7));
    const Vector4f back = m * Vector4f(p, 1);
    EXPECT_EQ(-7.0f, p.z);
    EXPECT_NEAR(0.3f, back.x / back.w, 1e-5f);
    EXPECT_NEAR(-0.6f, back.y / back.w, 1e-5f);
}

TEST(Matrix, UnprojectedDirectionIsFromTheFirstDepthToTheSecond) {
    Matrix4x4Col m;
    m.setProject(1.0f, 1.5f, 0.5f, 100.0f);
    const Vector3f direction = m.getUnprojectedDirection(Vector2f(0.3f, -0.6f), 1, 5);
    EXPECT_EQ(m.getUnprojectedPoint(Vector3f(0.3f, -0.6f, -5)) -
                  m.getUnprojectedPoint(Vector3f(0.3f, -0.6f, -1)),
              direction);
    EXPECT_EQ(-4.0f, direction.z);
}
