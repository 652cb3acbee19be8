#include "near.h"

#include <csignal>

using namespace zentrak::mathbase;

namespace {

const float halfPi = 1.5707964f;

const RotationOrder::Order orders[] = {RotationOrder::XYZ, RotationOrder::XZY, RotationOrder::YXZ,
                                       RotationOrder::ZXY, RotationOrder::YZX, RotationOrder::ZYX};

Quatf about(char axis, float angle) {
    Quatf q;
    axis == 'X' ? q.setRotX(angle) : axis == 'Y' ? q.setRotY(angle) : q.setRotZ(angle);
    return q;
}

} // namespace

TEST(RotationOrder, ValuesAreFixed) {
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(i, orders[i]);
    EXPECT_EQ(0, RotationOrder::XYZ);
    EXPECT_EQ(5, RotationOrder::ZYX);
}

TEST(Quat, DefaultIsIdentity) {
    EXPECT_EQ(Quatf(1, 0, 0, 0), Quatf());
}

TEST(Quat, SetEulerWithAllAnglesZeroGivesIdentityInEveryOrder) {
    for (const RotationOrder::Order order : orders) {
        Quatf q(9, 9, 9, 9);
        q.setEuler(Eulerf(0, 0, 0, order));
        EXPECT_EQ(Quatf(1, 0, 0, 0), q) << order;
    }
}

TEST(Quat, SetEulerAboutXInOrderXYZTurnsYToZ) {
    const Quatf q(Eulerf(halfPi, 0, 0, RotationOrder::XYZ));
    EXPECT_TRUE(near(Vector3f(0, 0, 1), q * Vector3f(0, 1, 0)));
    EXPECT_TRUE(near(Vector4f(0, 0, 1, 3), q * Vector4f(0, 1, 0, 3)));
}

TEST(Quat, SetEulerMultipliesLeftToRightAsTheOrderSpells) {
    const char* spelled[] = {"XYZ", "XZY", "YXZ", "ZXY", "YZX", "ZYX"};
    for (int i = 0; i < 6; ++i) {
        const float angles[] = {0.3f, -1.1f, 2.0f};
        Quatf expected;
        for (const char* axis = spelled[i]; *axis; ++axis)
            expected = expected * about(*axis, angles[*axis - 'X']);
        Quatf q;
        q = Eulerf(Vector3f(0.3f, -1.1f, 2.0f), orders[i]);
        EXPECT_TRUE(near(expected, q)) << spelled[i];
    }
}

TEST(Quat, RotationOrderValueOf6FailsTheAssertion) {
    Eulerf euler(1, 2, 3, RotationOrder::XYZ);
    Quatf q;
    for (const int value : {6, -1}) {
        euler.order.value = value;
        EXPECT_EXIT(q.setEuler(euler), testing::KilledBySignal(SIGABRT),
                    "mb_quat:48: .*Assertion `false' failed");
    }
}

TEST(Quat, HamiltonProduct) {
    const Quatf i(0, 1, 0, 0), j(0, 0, 1, 0), k(0, 0, 0, 1);
    EXPECT_EQ(k, i * j);
    EXPECT_EQ(i, j * k);
    EXPECT_EQ(j, k * i);
    EXPECT_EQ(k * -1.0f, j * i);
    EXPECT_EQ(Quatf(-60, 12, 30, 24), Quatf(1, 2, 3, 4) * Quatf(5, 6, 7, 8));
    Quatf q(1, 2, 3, 4);
    q *= Quatf(5, 6, 7, 8);
    EXPECT_EQ(Quatf(-60, 12, 30, 24), q);
}

TEST(Quat, FourVectorOperations) {
    Quatf q(1, 2, 3, 4);
    EXPECT_EQ(Quatf(2, 4, 6, 8), q + q);
    EXPECT_EQ(Quatf(0, 1, 2, 3), q - Quatf(1, 1, 1, 1));
    EXPECT_EQ(Quatf(2, 4, 6, 8), q * 2.0f);
    q += Quatf(1, 1, 1, 1);
    EXPECT_EQ(Quatf(2, 3, 4, 5), q);
    q -= Quatf(1, 1, 1, 1);
    q *= 2.0f;
    EXPECT_EQ(Quatf(2, 4, 6, 8), q);
    EXPECT_EQ(120.0f, q.length2());
    EXPECT_EQ(sqrtf(120.0f), q.length());
    q.normalize();
    EXPECT_NEAR(1.0f, q.length(), 1e-6f);
    Quatf zero(0, 0, 0, 0);
    EXPECT_EXIT(zero.normalize(), testing::KilledBySignal(SIGABRT), "Assertion `length!=0' failed");
}

TEST(Quat, AxisRotationsAreRightHanded) {
    EXPECT_TRUE(near(Vector3f(0, 0, 1), about('X', halfPi) * Vector3f(0, 1, 0)));
    EXPECT_TRUE(near(Vector3f(1, 0, 0), about('Y', halfPi) * Vector3f(0, 0, 1)));
    EXPECT_TRUE(near(Vector3f(0, 1, 0), about('Z', halfPi) * Vector3f(1, 0, 0)));
}

TEST(Quat, AngleAndAxisThereAndBack) {
    const Vector3f axis = Vector3f(1, -2, 3).getNormalized();
    const Quatf q(2.5f, axis);
    float angle = 0;
    Vector3f back;
    q.getAngleAxis(angle, back);
    EXPECT_NEAR(2.5f, angle, 1e-6f);
    EXPECT_TRUE(near(axis, back));
    EXPECT_TRUE(near(axis, q * axis));
    Quatf().getAngleAxis(angle, back);
    EXPECT_EQ(0.0f, angle);
    EXPECT_EQ(Vector3f(1, 0, 0), back);
}

TEST(Quat, OrientationTurnsOneDirectionIntoTheOther) {
    const Vector3f directions[] = {{1, 0, 0},    {0, 2, 0},      {0, 0, -3},  {1, 2, 3},
                                   {-1, -2, -3}, {-1, 1e-3f, 0}, {0.1f, 0, 0}};
    for (const Vector3f& from : directions) {
        for (const Vector3f& to : directions) {
            const Quatf q(from, to);
            EXPECT_NEAR(1.0f, q.length(), 1e-5f);
            EXPECT_TRUE(near(to.getNormalized(), q * from.getNormalized(), 1e-4f)) << from << to;
        }
    }
    Quatf q;
    EXPECT_EXIT(q.setOrientation(Vector3f(), Vector3f(1, 0, 0)), testing::KilledBySignal(SIGABRT),
                "Assertion `length!=0' failed");
}

TEST(Quat, InverseUndoes) {
    const Quatf q(1, 2, 3, 4);
    EXPECT_TRUE(near(Quatf(), q * q.getInverse()));
    Quatf r = q;
    r.invert();
    EXPECT_EQ(q.getInverse(), r);
}
