#include "trc_primitive.h"

#include "mb_random.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using mathbase::Vector3f;
using trace::Intersection;
using trace::PreIntersection;
using trace::PrimScene;
using trace::PrimSphere;

namespace {

const Vector3f origin(0, 0, 0);
const Vector3f ahead(0, 0, -1);

// Reports a hit at the given distance, whatever the bounds.
class Liar : public trace::Primitive {
public:
    float at = 0;
    bool trace(PreIntersection& pi, const Vector3f&, const Vector3f&, float, float) const override {
        pi.t = at;
        pi.nor = Vector3f(0, 0, 1);
        return true;
    }
};

} // namespace

TEST(PrimSphere, IsHitAtItsNearerSide) {
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    PreIntersection pi;
    ASSERT_TRUE(sphere.trace(pi, origin, ahead, 0, 100));
    EXPECT_FLOAT_EQ(pi.t, 8);
    EXPECT_FALSE(pi.inside);
    EXPECT_FLOAT_EQ(pi.nor.z, 2); // as long as the radius
    EXPECT_EQ(pi.uvw[0], 0);
    EXPECT_EQ(pi.uvw[1], 0);
}

TEST(PrimSphere, ARayFromInsideHitsTheFurtherRootWithInsideTrue) {
    PrimSphere sphere(origin, 3, nullptr);
    PreIntersection pi;
    ASSERT_TRUE(sphere.trace(pi, Vector3f(0, 0, 1), ahead, 0, 100));
    EXPECT_FLOAT_EQ(pi.t, 4);
    EXPECT_TRUE(pi.inside);
}

TEST(PrimSphere, ARayFromOutsidePointingAwayMisses) {
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    PreIntersection pi;
    pi.t = 77;
    EXPECT_FALSE(sphere.trace(pi, origin, Vector3f(0, 0, 1), -1000, 1000));
    EXPECT_EQ(pi.t, 77) << "a miss leaves the result alone";
}

TEST(PrimSphere, ATangentRayHitsOnce) {
    PrimSphere sphere(Vector3f(2, 0, -10), 2, nullptr);
    PreIntersection pi;
    ASSERT_TRUE(sphere.trace(pi, origin, ahead, 0, 100));
    EXPECT_FLOAT_EQ(pi.t, 10);
    EXPECT_FALSE(sphere.trace(pi, origin, ahead, 10.5f, 100));
}

TEST(PrimSphere, WithTminBetweenTheRootsTheFurtherOneIsHit) {
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    PreIntersection pi;
    ASSERT_TRUE(sphere.trace(pi, origin, ahead, 9, 100));
    EXPECT_FLOAT_EQ(pi.t, 12);
    EXPECT_TRUE(pi.inside);
}

TEST(PrimSphere, BothBoundsAreIncluded) {
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    PreIntersection pi;
    EXPECT_TRUE(sphere.trace(pi, origin, ahead, 8, 8));
    EXPECT_TRUE(sphere.trace(pi, origin, ahead, 12, 12));
    EXPECT_FALSE(sphere.trace(pi, origin, ahead, 8.001f, 11.999f));
}

TEST(PrimSphere, ConversionGivesAUnitNormalAndTheMaterial) {
    trace::Material material;
    PrimSphere sphere(Vector3f(0, 0, -10), 2, &material);
    PreIntersection pi;
    Intersection i;
    ASSERT_TRUE(sphere.trace(pi, Vector3f(1, 0, 0), ahead, 0, 100));
    sphere.convertIntersection(pi, i, Vector3f(1, 0, 0), ahead);
    EXPECT_EQ(i.material, &material);
    EXPECT_NEAR(i.nor.length(), 1, 1e-6);
    EXPECT_NEAR((i.position - sphere.centre).length(), 2, 1e-5);
    EXPECT_EQ(i.t, pi.t);
    EXPECT_FALSE(i.inside);
}

TEST(PrimSphereDeathTest, RadiusZeroHasNoNormal) {
    PrimSphere sphere(Vector3f(0, 0, -10), 0, nullptr);
    PreIntersection pi;
    Intersection i;
    ASSERT_TRUE(sphere.trace(pi, origin, ahead, 0, 100));
    EXPECT_DEATH(sphere.convertIntersection(pi, i, origin, ahead), "length!=0");
}

TEST(PrimSphere, NanMisses) {
    PrimSphere sphere(Vector3f(NAN, 0, -10), 2, nullptr);
    PreIntersection pi;
    EXPECT_FALSE(sphere.trace(pi, origin, ahead, 0, 100));
    sphere.centre = Vector3f(0, 0, -10);
    EXPECT_FALSE(sphere.trace(pi, origin, ahead, NAN, NAN));
}

TEST(Primitive, TheBaseConversionLeavesTheMaterialAlone) {
    Liar liar;
    PreIntersection pi;
    Intersection i;
    trace::Material material;
    i.material = &material;
    pi.nor = Vector3f(0, 5, 0);
    pi.uvw[0] = 0.25f;
    pi.uvw[1] = 0.5f;
    pi.inside = true;
    liar.convertIntersection(pi, i, origin, ahead);
    EXPECT_EQ(i.material, &material);
    EXPECT_FLOAT_EQ(i.nor.y, 1);
    EXPECT_FLOAT_EQ(i.u, 0.25f);
    EXPECT_FLOAT_EQ(i.v, 0.5f);
    EXPECT_TRUE(i.inside);
}

TEST(Primitive, TraceShadowStopsAtTmax) {
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    EXPECT_FALSE(sphere.traceShadow(origin, ahead, 0, 7.9f));
    EXPECT_TRUE(sphere.traceShadow(origin, ahead, 0, 8.1f));
}

TEST(PrimScene, WithoutInstancesNothingIsHitOrTouched) {
    PrimScene scene;
    Intersection i;
    i.t = 42;
    EXPECT_FALSE(scene.trace(i, origin, ahead, 0, 100));
    EXPECT_EQ(i.t, 42);
    PreIntersection pi;
    EXPECT_FALSE(scene.trace(pi, origin, ahead, 0, 100));
    EXPECT_FALSE(scene.traceShadow(origin, ahead, 0, 100));
}

TEST(PrimScene, TheNearerOfTwoIsReportedWhateverTheirOrder) {
    trace::Material near, far;
    PrimSphere first(Vector3f(0, 0, -10), 2, &near);
    PrimSphere second(Vector3f(0, 0, -20), 2, &far);
    for (bool swapped : {false, true}) {
        PrimScene scene;
        scene.instances = swapped ? std::vector<PrimScene::Instance>{{&second}, {&first}}
                                  : std::vector<PrimScene::Instance>{{&first}, {&second}};
        Intersection i;
        ASSERT_TRUE(scene.trace(i, origin, ahead, 0.0001f, 1e20f));
        EXPECT_EQ(i.material, &near);
        EXPECT_FLOAT_EQ(i.t, 8);
        PreIntersection pi;
        ASSERT_TRUE(scene.trace(pi, origin, ahead, 0.0001f, 1e20f));
        EXPECT_FLOAT_EQ(pi.t, 8);
    }
}

TEST(PrimScene, AtTheSameDistanceTheLaterReplacesTheEarlier) {
    trace::Material earlier, later;
    PrimSphere a(Vector3f(0, 0, -10), 2, &earlier);
    PrimSphere b(Vector3f(0, 0, -10), 2, &later);
    PrimScene scene;
    scene.instances = {{&a}, {&b}};
    Intersection i;
    ASSERT_TRUE(scene.trace(i, origin, ahead, 0, 100));
    EXPECT_EQ(i.material, &later);
}

TEST(PrimSceneDeathTest, APrimitiveThatBreaksItsBoundsIsCaught) {
    Liar liar;
    PrimScene scene;
    scene.instances = {{&liar}};
    Intersection i;
    liar.at = -1;
    EXPECT_DEATH(scene.trace(i, origin, ahead, 0, 100), "pi.t>=tmin");
    liar.at = 101;
    EXPECT_DEATH(scene.trace(i, origin, ahead, 0, 100), "pi.t<=tmax");
    PrimSphere sphere(Vector3f(0, 0, -10), 2, nullptr);
    scene.instances = {{&sphere}, {&liar}};
    liar.at = 50;
    EXPECT_DEATH(scene.trace(i, origin, ahead, 0, 100), "pi.t<=tm");
}

// Compared with the slowest method: small steps along the ray until the distance to the centre falls below
// the radius.
TEST(PrimScene, AgreesWithAMarchAlongTheRay) {
    PrimSphere a(Vector3f(-3, 2.1f, 0), 2.3f, nullptr);
    PrimSphere b(Vector3f(3, 2.1f, 0), 2.3f, nullptr);
    PrimScene scene;
    scene.instances = {{&a}, {&b}};
    mathbase::Random random(12345);
    const Vector3f from(5, 8, 0);
    int hits = 0;
    for (int ray = 0; ray < 2000; ++ray) {
        const Vector3f direction = random.unitSphere();
        float marched = -1;
        for (int step = 0; step < 3000 && marched < 0; ++step) {
            const Vector3f p = from + direction * (float(step) * 0.01f);
            if ((p - a.centre).length() < a.radius || (p - b.centre).length() < b.radius)
                marched = float(step) * 0.01f;
        }
        Intersection i;
        const bool hit = scene.trace(i, from, direction, 0.0001f, 30);
        if (marched >= 0) {
            ASSERT_TRUE(hit);
            EXPECT_NEAR(i.t, marched, 0.011);
            ++hits;
        } else if (hit) { // a glancing hit can fall between two steps
            EXPECT_GT(fabsf(i.nor.dot(direction)), -1.0f);
            EXPECT_LT(fabsf(i.nor.dot(direction)), 0.05f);
        }
    }
    EXPECT_GT(hits, 80);
}
