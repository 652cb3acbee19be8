#include "mb_box2.h"
#include "near.h"

#include <csignal>

using namespace zentrak::mathbase;

TEST(Vector2, ComponentsAndScalars) {
    Vector2f v(3, 4);
    EXPECT_EQ(Vector2f(0, 0), Vector2f());
    EXPECT_EQ(Vector2f(4, 6), v + Vector2f(1, 2));
    EXPECT_EQ(Vector2f(2, 2), v - Vector2f(1, 2));
    EXPECT_EQ(Vector2f(6, 8), v * 2.0f);
    v += Vector2f(1, 1);
    EXPECT_EQ(Vector2f(4, 5), v);
    v -= Vector2f(1, 1);
    EXPECT_EQ(Vector2f(3, 4), v);
    EXPECT_EQ(5.0f, v.length());
    EXPECT_EQ(25.0f, v.length2());
    EXPECT_EQ(12.0f, v.product());
    EXPECT_EQ(Vector2f(3.0f / 5.0f, 4.0f / 5.0f), v.getNormalized());
    v.normalize();
    EXPECT_EQ(Vector2f(3.0f / 5.0f, 4.0f / 5.0f), v);
}

TEST(Vector2, MaxAndMinWorkInPlaceByComponent) {
    Vector2f v(1, 5);
    v.max(Vector2f(2, 4));
    EXPECT_EQ(Vector2f(2, 5), v);
    v.min(Vector2f(3, 4));
    EXPECT_EQ(Vector2f(2, 4), v);
    v.maxi(Vector2f(9, 0));
    EXPECT_EQ(Vector2f(9, 4), v);
    v.mini(Vector2f(0, 9));
    EXPECT_EQ(Vector2f(0, 4), v);
}

TEST(Vector2, NormalizeOfNoLengthAborts) {
    Vector2f v;
    EXPECT_EXIT(v.normalize(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
    EXPECT_EXIT(v.getNormalized(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
}

TEST(Vector3, ComponentsAndScalars) {
    const float three[] = {1, 2, 3};
    Vector3f v(three);
    EXPECT_EQ(Vector3f(0, 0, 0), Vector3f());
    EXPECT_EQ(3, v.size());
    EXPECT_EQ(Vector3f(2, 4, 6), v + v);
    EXPECT_EQ(Vector3f(0, 1, 1), v - Vector3f(1, 1, 2));
    EXPECT_EQ(Vector3f(-1, -2, -3), -v);
    EXPECT_EQ(Vector3f(2, 4, 6), v * 2.0f);
    EXPECT_EQ(Vector3f(2, 6, 12), v * Vector3f(2, 3, 4));
    EXPECT_EQ(Vector3f(2, 6, 12), v.multiply(Vector3f(2, 3, 4)));
    v += Vector3f(1, 0, 0);
    EXPECT_EQ(Vector3f(2, 2, 3), v);
    v -= Vector3f(1, 0, 0);
    EXPECT_EQ(Vector3f(1, 2, 3), v);
    v *= 3.0f;
    EXPECT_EQ(Vector3f(3, 6, 9), v);
    v /= 3.0f;
    EXPECT_EQ(Vector3f(1, 2, 3), v);
    v *= Vector3f(1, 2, 3);
    EXPECT_EQ(Vector3f(1, 4, 9), v);
    EXPECT_EQ(36.0f, v.product());
}

TEST(Vector3, DivisionIsByEachComponentAndNotByAReciprocal) {
    Vector3f v(5, 7, 9);
    v /= 49.0f;
    EXPECT_EQ(Vector3f(5.0f / 49.0f, 7.0f / 49.0f, 9.0f / 49.0f), v);
}

TEST(Vector3, CrossIsRightHanded) {
    const Vector3f x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    EXPECT_EQ(z, x.cross(y));
    EXPECT_EQ(x, y.cross(z));
    EXPECT_EQ(y, z.crossRHS(x));
    EXPECT_EQ(-z, x.crossLHS(y));
    EXPECT_EQ(Vector3f(2 * 6 - 3 * 5, 3 * 4 - 1 * 6, 1 * 5 - 2 * 4),
              Vector3f(1, 2, 3).cross(Vector3f(4, 5, 6)));
}

TEST(Vector3, LengthsAndDot) {
    Vector3f v(2, 3, 6);
    EXPECT_EQ(7.0f, v.length());
    EXPECT_EQ(49.0f, v.length2());
    EXPECT_EQ(2.0f * 4 + 3.0f * 5 + 6.0f * 6, v.dot(Vector3f(4, 5, 6)));
    EXPECT_EQ(Vector3f(2.0f / 7.0f, 3.0f / 7.0f, 6.0f / 7.0f), v.getNormalized());
    EXPECT_EQ(Vector3f(2, 3, 6), v);
    v.normalize();
    EXPECT_EQ(Vector3f(2.0f / 7.0f, 3.0f / 7.0f, 6.0f / 7.0f), v);
}

TEST(Vector3, NormalizeOfNoLengthAborts) {
    Vector3f v;
    EXPECT_EXIT(v.normalize(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
    EXPECT_EXIT(v.getNormalized(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
}

TEST(Vector3, ComponentByIndexNeverLeavesTheVector) {
    Vector3f v(1, 2, 3);
    const Vector3f c(4, 5, 6);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(1.0f + float(i), v[i]);
        EXPECT_EQ(4.0f + float(i), c(i));
    }
    v[1] = 7;
    v(2) = 8;
    EXPECT_EQ(Vector3f(1, 7, 8), v);
    EXPECT_EQ(6.0f, c[3]);
    EXPECT_EQ(6.0f, c[-1]);
    EXPECT_EQ(6.0f, c[size_t(2)]);
}

TEST(Vector3, MaxAndMinWorkInPlaceByComponent) {
    Vector3f v(1, 5, 3);
    v.max(Vector3f(2, 4, 6));
    EXPECT_EQ(Vector3f(2, 5, 6), v);
    v.min(Vector3f(3, 4, 5));
    EXPECT_EQ(Vector3f(2, 4, 5), v);
    v.maxi(Vector3f(0, 9, 0));
    EXPECT_EQ(Vector3f(2, 9, 5), v);
    v.mini(Vector3f(9, 0, 9));
    EXPECT_EQ(Vector3f(2, 0, 5), v);
}

TEST(Vector3, ExtremesMeanAndIntensity) {
    for (const Vector3f& v : {Vector3f(1, 2, 6), Vector3f(2, 6, 1), Vector3f(6, 1, 2), Vector3f(6, 2, 1)}) {
        EXPECT_EQ(1.0f, v.getMin());
        EXPECT_EQ(6.0f, v.getMax());
        EXPECT_EQ(3.0f, v.getMean());
    }
    EXPECT_FLOAT_EQ(1.0f, Vector3f(1, 1, 1).getIntensity());
    EXPECT_GT(Vector3f(0, 1, 0).getIntensity(), Vector3f(1, 0, 0).getIntensity());
    EXPECT_GT(Vector3f(1, 0, 0).getIntensity(), Vector3f(0, 0, 1).getIntensity());
}

TEST(Vector3, AxesReflectionAndReciprocal) {
    EXPECT_EQ(0, Vector3f(1, -2, 3).getMinorAxis());
    EXPECT_EQ(1, Vector3f(-3, 1, 2).getMinorAxis());
    EXPECT_EQ(2, Vector3f(3, 2, -1).getMinorAxis());
    EXPECT_EQ(0, Vector3f(-3, 1, 2).getMajorAxis());
    EXPECT_EQ(1, Vector3f(1, -3, 2).getMajorAxis());
    EXPECT_EQ(2, Vector3f(1, 2, -3).getMajorAxis());
    EXPECT_EQ(Vector3f(1, 1, 0), Vector3f(1, -1, 0).reflection(Vector3f(0, 1, 0)));
    EXPECT_EQ(Vector3f(1, 0.5f, 0.25f), Vector3f(1, 2, 4).byOne());
}

TEST(Vector3, ConvertsToThreeFloatsInARow) {
    const Vector3f v(1, 2, 3);
    const float* f = v;
    EXPECT_EQ(Vector3f(1, 2, 3), Vector3f(f));
}

TEST(Vector4, ComponentsAndScalars) {
    const float four[] = {1, 2, 3, 4};
    Vector4f v(four);
    EXPECT_EQ(Vector4f(0, 0, 0, 0), Vector4f());
    EXPECT_EQ(4, v.size());
    EXPECT_EQ(Vector4f(2, 4, 6, 8), v + v);
    EXPECT_EQ(Vector4f(0, 1, 1, 2), v - Vector4f(1, 1, 2, 2));
    EXPECT_EQ(Vector4f(-1, -2, -3, -4), -v);
    EXPECT_EQ(Vector4f(2, 4, 6, 8), v * 2.0f);
    EXPECT_EQ(Vector4f(2, 6, 12, 20), v * Vector4f(2, 3, 4, 5));
    EXPECT_EQ(Vector4f(2, 6, 12, 20), v.multiply(Vector4f(2, 3, 4, 5)));
    v += Vector4f(1, 0, 0, 1);
    EXPECT_EQ(Vector4f(2, 2, 3, 5), v);
    v -= Vector4f(1, 0, 0, 1);
    EXPECT_EQ(Vector4f(1, 2, 3, 4), v);
    v *= 3.0f;
    EXPECT_EQ(Vector4f(3, 6, 9, 12), v);
    v /= 3.0f;
    EXPECT_EQ(Vector4f(1, 2, 3, 4), v);
    v *= Vector4f(1, 2, 3, 4);
    EXPECT_EQ(Vector4f(1, 4, 9, 16), v);
    EXPECT_EQ(576.0f, v.product());
    EXPECT_EQ(Vector4f(1, 2, 3, 9), Vector4f(Vector3f(1, 2, 3), 9));
}

TEST(Vector4, ColourNamesAreTheSameFields) {
    Vector4f v(1, 2, 3, 4);
    v.r = 5;
    v.a = 6;
    EXPECT_EQ(Vector4f(5, 2, 3, 6), v);
    EXPECT_EQ(2.0f, v.g);
    EXPECT_EQ(3.0f, v.b);
}

TEST(Vector4, WithAVector3TheFourthComponentHasNoPart) {
    Vector4f v(1, 2, 3, 4);
    EXPECT_EQ(1.0f * 5 + 2.0f * 6 + 3.0f * 7, v.dot(Vector3f(5, 6, 7)));
    EXPECT_EQ(1.0f * 5 + 2.0f * 6 + 3.0f * 7 + 4.0f * 8, v.dot(Vector4f(5, 6, 7, 8)));
    v -= Vector3f(1, 1, 1);
    EXPECT_EQ(Vector4f(0, 1, 2, 4), v);
    v = Vector3f(7, 8, 9);
    EXPECT_EQ(Vector4f(7, 8, 9, 4), v);
}

TEST(Vector4, SetMinMaxBringsEveryComponentBetween) {
    Vector4f v(-1, 0.5f, 2, 1);
    v.setMinMax(0, 1);
    EXPECT_EQ(Vector4f(0, 0.5f, 1, 1), v);
}

TEST(Vector4, LengthExtremesAndIndex) {
    Vector4f v(1, -4, 2, 2);
    EXPECT_EQ(5.0f, v.length());
    EXPECT_EQ(25.0f, v.length2());
    EXPECT_EQ(Vector4f(1 / 5.0f, -4 / 5.0f, 2 / 5.0f, 2 / 5.0f), v.getNormalized());
    EXPECT_EQ(-4.0f, v.getMin());
    EXPECT_EQ(2.0f, v.getMax());
    EXPECT_EQ(0.25f, v.getMean());
    EXPECT_EQ(0, v.getMinorAxis());
    EXPECT_EQ(1, v.getMajorAxis());
    EXPECT_EQ(3, Vector4f(1, 2, 3, -4).getMajorAxis());
    EXPECT_EQ(3, Vector4f(1, 2, 3, 0).getMinorAxis());
    EXPECT_EQ(2.0f, v[3]);
    EXPECT_EQ(2.0f, v[99]);
    v[0] = 8;
    v(3) = 9;
    v.max(Vector4f(0, 0, 5, 0));
    EXPECT_EQ(Vector4f(8, 0, 5, 9), v);
    v.min(Vector4f(7, 7, 7, 7));
    EXPECT_EQ(Vector4f(7, 0, 5, 7), v);
    v.maxi(Vector4f(0, 1, 0, 0));
    v.mini(Vector4f(6, 6, 6, 6));
    EXPECT_EQ(Vector4f(6, 1, 5, 6), v);
    EXPECT_EQ(Vector4f(1, 0.5f, 0.25f, 2), Vector4f(1, 2, 4, 0.5f).byOne());
    EXPECT_EQ(Vector4f(1, 1, 0, 2), Vector4f(1, -1, 0, 2).reflection(Vector4f(0, 1, 0, 0)));
    EXPECT_EQ(Vector3f(1, 2, 3).getIntensity(), Vector4f(1, 2, 3, 4).getIntensity());
    const float* row = v;
    EXPECT_EQ(6.0f, row[3]);
}

TEST(Vector4, NormalizeOfNoLengthAborts) {
    Vector4f v;
    EXPECT_EXIT(v.normalize(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
}

TEST(Box2, IsEmptyOnlyWhenTurnedInsideOut) {
    EXPECT_FALSE(Box2().isEmpty());
    EXPECT_FALSE(Box2(1, 1, 1, 1).isEmpty());
    EXPECT_TRUE(Box2(1, 0, 0, 5).isEmpty());
    EXPECT_TRUE(Box2(0, 1, 5, 0).isEmpty());
    EXPECT_EQ(4.0f, Box2(1, 2, 5, 9).getWidth());
    EXPECT_EQ(7.0f, Box2(1, 2, 5, 9).getHeight());
}
