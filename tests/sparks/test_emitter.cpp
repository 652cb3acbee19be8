#include "mb_vector3.h"
#include "sparks_emitter.h"
#include "xml_parser.h"

#include <climits>
#include <cmath>
#include <ctime>
#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::sparks;
using mathbase::Vector3f;

namespace {

// The emitter in a text with one "emitter" tag under its root.
Emitter loaded(const std::string& tag) {
    xml::XmlParser document;
    document.parse("<spark>" + tag + "</spark>");
    xml::IteratorConst it(&document, "emitter");
    EXPECT_TRUE(++it);
    Emitter emitter;
    emitter.load(it);
    return emitter;
}

template <class T>
void expectRange(const Range<T>& range, T v1, T v2) {
    EXPECT_EQ(range.v1, v1);
    EXPECT_EQ(range.v2, v2);
}

void expectSame(const Emitter& a, const Emitter& b) {
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.num, b.num);
    EXPECT_EQ(a.rate, b.rate);
    EXPECT_EQ(a.texture, b.texture);
    expectRange(a.speed, b.speed.v1, b.speed.v2);
    expectRange(a.angle, b.angle.v1, b.angle.v2);
    expectRange(a.color, b.color.v1, b.color.v2);
    expectRange(a.energy, b.energy.v1, b.energy.v2);
    expectRange(a.energydecay, b.energydecay.v1, b.energydecay.v2);
    expectRange(a.size, b.size.v1, b.size.v2);
    expectRange(a.sizedecay, b.sizedecay.v1, b.sizedecay.v2);
    expectRange(a.noise, b.noise.v1, b.noise.v2);
    expectRange(a.mass, b.mass.v1, b.mass.v2);
    expectRange(a.intensity, b.intensity.v1, b.intensity.v2);
    expectRange(a.rotation, b.rotation.v1, b.rotation.v2);
    expectRange(a.timeoffset, b.timeoffset.v1, b.timeoffset.v2);
}

const char* const everything =
    "<emitter name=\"all of it\" texture=\"7\" rate=\"120\" num=\"-1\">"
    "<speed v1=\"3.25\" v2=\"-4\"/><angle v1=\"3.1415927\" v2=\"0.1\"/><color v1=\"0180ff\" v2=\"FEdc0a\"/>"
    "<energy v1=\"1e6\" v2=\"2\"/><energydecay v1=\".3\" v2=\"0.7\"/><size v1=\"40\" v2=\"30.1\"/>"
    "<sizedecay v1=\"-0.1\" v2=\"0.1\"/><intensity v1=\"0.9\" v2=\"0.6\"/><rotation v1=\"1\" v2=\"6.28\"/>"
    "<noise v1=\"0.15\" v2=\"0.25\"/><mass v1=\"0.5\" v2=\"2\"/><timeoffset v1=\"1.5\" "
    "v2=\"2.5\"/></emitter>";

} // namespace

TEST(Hex, LowerCaseDigits) {
    const Vector3f color = hex2vec("ff8000");
    EXPECT_EQ(color, Vector3f(1, 128.0f / 255.0f, 0));
}
TEST(Hex, UpperCaseDigitsAreTheSame) {
    EXPECT_EQ(hex2vec("FF8000"), hex2vec("ff8000"));
    EXPECT_EQ(hex2vec("AbCdEf"), hex2vec("aBcDeF"));
}
TEST(Hex, AShortTextLeavesTheRestAtZero) {
    EXPECT_EQ(hex2vec("ff"), Vector3f(1, 0, 0));
    EXPECT_EQ(hex2vec(""), Vector3f(0, 0, 0));
    EXPECT_EQ(hex2vec("00ff"), Vector3f(0, 1, 0));
    EXPECT_EQ(hex2vec("f"), Vector3f(240.0f / 255.0f, 0, 0));
}
TEST(Hex, NonDigitsAreZero) {
    EXPECT_EQ(hex2vec("zz0000"), Vector3f(0, 0, 0));
    EXPECT_EQ(hex2vec("#f-f\xffz"), Vector3f(15.0f / 255.0f, 15.0f / 255.0f, 0));
}
TEST(Hex, TextAfterTheSixthDigitIsIgnored) {
    EXPECT_EQ(hex2vec("102030405060"), hex2vec("102030"));
}
TEST(Hex, AHalfIsCutToSevenF) {
    EXPECT_EQ(vec2hex(Vector3f(1, 0.5f, 0)), "ff7f00");
}
TEST(Hex, OnlyTheLowEightBitsCount) {
    EXPECT_EQ(f2hex(2), "fe"); // 510
    EXPECT_EQ(f2hex(257.0f / 255.0f), "01");
    EXPECT_EQ(f2hex(-1.0f / 255.0f), "ff");
}
TEST(Hex, TooLargeOrNotANumberIsZero) {
    for (float value : {NAN, INFINITY, -INFINITY, 1e30f, -1e30f})
        EXPECT_EQ(f2hex(value), "00");
}
TEST(Hex, EveryByteSurvives) {
    const char digits[] = "0123456789abcdef";
    for (int i = 0; i < 256; ++i) {
        const std::string text = {digits[i / 16], digits[i % 16]};
        EXPECT_EQ(f2hex(hex2vec(text).x), text);
    }
}

TEST(EmitterDefaults, AreThoseOfTheFormat) {
    const Emitter e;
    expectRange(e.speed, 1.0f, 2.0f);
    expectRange(e.angle, 0.0f, 0.1f);
    expectRange(e.color, Vector3f(1.0f, 0.51f, 0.01f), Vector3f(1.0f, 0.51f, 0.11f));
    expectRange(e.energy, 1.0f, 2.0f);
    expectRange(e.energydecay, 1.0f, 2.0f);
    expectRange(e.size, 1.4f, 1.3f);
    expectRange(e.sizedecay, 1.1f, 1.2f);
    expectRange(e.noise, 0.2f, 0.4f);
    expectRange(e.mass, 0.0f, 0.0f);
    expectRange(e.intensity, 0.2f, 0.2f);
    expectRange(e.rotation, 0.0f, 1.0f);
    expectRange(e.timeoffset, 0.0f, 0.1f);
    EXPECT_EQ(e.name, "");
    EXPECT_EQ(e.num, -1);
    EXPECT_EQ(e.rate, 50.0f);
    EXPECT_EQ(e.texture, 0);
    EXPECT_TRUE(e.active);
    EXPECT_TRUE(e.second);
}

TEST(EmitterDefaults, TheRandomNumbersStartFromTheProcessorTime) {
    const uint32_t before = uint32_t(clock());
    const Emitter e;
    const uint32_t after = uint32_t(clock());
    bool found = false;
    for (uint32_t t = before; t <= after; ++t)
        found = found || t * 475559465u + 345350u == e.random.mState;
    EXPECT_TRUE(found);
}

TEST(EmitterLoad, ReadsEveryRange) {
    const Emitter e = loaded(everything);
    EXPECT_EQ(e.name, "all of it");
    EXPECT_EQ(e.texture, 7);
    EXPECT_EQ(e.rate, 120.0f);
    EXPECT_EQ(e.num, -1);
    expectRange(e.speed, 3.25f, -4.0f);
    expectRange(e.angle, 3.1415927f, 0.1f);
    expectRange(e.color, Vector3f(1.0f / 255.0f, 128.0f / 255.0f, 1),
                Vector3f(254.0f / 255.0f, 220.0f / 255.0f, 10.0f / 255.0f));
    expectRange(e.energy, 1e6f, 2.0f);
    expectRange(e.energydecay, 0.3f, 0.7f);
    expectRange(e.size, 40.0f, 30.1f);
    expectRange(e.sizedecay, -0.1f, 0.1f);
    expectRange(e.intensity, 0.9f, 0.6f);
    expectRange(e.rotation, 1.0f, 6.28f);
    expectRange(e.noise, 0.15f, 0.25f);
    expectRange(e.mass, 0.5f, 2.0f);
    expectRange(e.timeoffset, 1.5f, 2.5f);
}

TEST(EmitterLoad, WithoutASpeedItIsOneToTwo) {
    expectRange(loaded("<emitter num=\"-1\"/>").speed, 1.0f, 2.0f);
}
TEST(EmitterLoad, WithoutANumItEmitsNothing) {
    const Emitter e = loaded("<emitter/>");
    EXPECT_EQ(e.num, 0);
    EXPECT_EQ(e.rate, 0.0f);
    EXPECT_EQ(e.texture, 0);
    EXPECT_EQ(e.name, "");
}
TEST(EmitterLoad, ARateIsAnIntegerInAnyBase) {
    EXPECT_EQ(loaded("<emitter rate=\"0x10\"/>").rate, 16.0f);
    EXPECT_EQ(loaded("<emitter rate=\"12.5\"/>").rate, 12.0f);
    EXPECT_EQ(loaded("<emitter rate=\"010\"/>").rate, 8.0f);
    EXPECT_EQ(loaded("<emitter rate=\"1e9\"/>").rate, 1.0f);
    EXPECT_EQ(loaded("<emitter rate=\"fast\"/>").rate, 0.0f);
    EXPECT_EQ(loaded("<emitter rate=\"99999999999999999999\"/>").rate, float(LONG_MAX));
}
TEST(EmitterLoad, ACountBeyondAnIntStaysAtItsEnd) {
    EXPECT_EQ(loaded("<emitter num=\"99999999999\"/>").num, INT_MAX);
    EXPECT_EQ(loaded("<emitter num=\"-99999999999\" texture=\"-0x7fffffffff\"/>").num, INT_MIN);
}
TEST(EmitterLoad, AMissingBoundIsZero) {
    expectRange(loaded("<emitter><speed v2=\"5\"/></emitter>").speed, 0.0f, 5.0f);
    expectRange(loaded("<emitter><energy/></emitter>").energy, 0.0f, 0.0f);
    expectRange(loaded("<emitter><color v1=\"ffffff\"/></emitter>").color, Vector3f(1, 1, 1),
                Vector3f(0, 0, 0));
}
TEST(EmitterLoad, OnlyTheFirstChildOfANameCounts) {
    expectRange(loaded("<emitter><mass v1=\"1\" v2=\"2\"/><mass v1=\"3\" v2=\"4\"/></emitter>").mass, 1.0f,
                2.0f);
}
TEST(EmitterLoad, AnUnknownChildIsPassedOver) {
    expectSame(loaded("<emitter><spede v1=\"1\" v2=\"2\"/>text<!-- and more --></emitter>"),
               loaded("<emitter/>"));
}

TEST(EmitterSave, WritesArgumentsAndChildrenInTheOrderOfTheFormat) {
    xml::XmlParser document;
    document.setName("spark");
    xml::Iterator it(&document, "");
    loaded("<emitter name=\"e\" texture=\"3\" rate=\"20\" num=\"5\"/>").save(it);
    const xml::XmlNode& tag = *document.getChildren(0);
    EXPECT_EQ(tag.getName(), "emitter");
    ASSERT_EQ(tag.arguments.size(), 4u);
    EXPECT_EQ(tag.getValue("name"), "e");
    EXPECT_EQ(tag.getValue("texture"), "3");
    EXPECT_EQ(tag.getValue("rate"), "20");
    EXPECT_EQ(tag.getValue("num"), "5");
    const char* const names[] = {"speed",     "angle",     "color",    "energy", "energydecay", "size",
                                 "sizedecay", "intensity", "rotation", "noise",  "mass",        "timeoffset"};
    ASSERT_EQ(tag.getNumChildren(), 12);
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(tag.getChildren(i)->getName(), names[i]);
    EXPECT_EQ(tag.getChildren(2)->getValue("v1"), "ff8202");
    EXPECT_EQ(tag.getChildren(0)->getValue("v2"), "2");
}

TEST(EmitterSave, LoadsAsTheSameAgain) {
    for (const std::string& text :
         {std::string(everything), std::string("<emitter num=\"-1\" rate=\"9\"/>")}) {
        const Emitter before = loaded(text);
        // The default colours are not whole bytes, and are rounded down when saved.
        xml::XmlParser document;
        document.setName("spark");
        xml::Iterator it(&document, "");
        before.save(it);
        std::string written;
        document.write(written, "\t");
        Emitter after;
        {
            xml::XmlParser read;
            read.parse(written);
            xml::IteratorConst tag(&read, "emitter");
            ASSERT_TRUE(++tag);
            after.load(tag);
        }
        Emitter expected = before;
        expected.color = {hex2vec(vec2hex(before.color.v1)), hex2vec(vec2hex(before.color.v2))};
        expectSame(after, expected);
        if (text == everything)
            expectSame(after, before);
    }
}

TEST(FillSpark, TakesItsNumbersInOrder) {
    Emitter e;
    e.random.mState = 1;
    e.texture = 5;
    Spark spark;
    spark.position = Vector3f(7, 8, 9);
    spark.time = 3;
    e.fillSpark(spark);
    // Worked out by hand in single precision from the states 69074, 475904815, 884950952, 997714317 ...
    EXPECT_NEAR(spark.velocity.x, 0.021312659606337547f, 2e-8);
    EXPECT_NEAR(spark.velocity.y, 1.6209070682525635f, 2e-7);
    EXPECT_NEAR(spark.velocity.z, 0.0751957967877388f, 2e-8);
    EXPECT_EQ(spark.colour, Vector3f(1.0f, 0.51f, 0.06013529747724533f));
    EXPECT_EQ(spark.intensity, 0.2f);
    EXPECT_EQ(spark.energy, 1.0239874124526978f);
    EXPECT_EQ(spark.energydecay, 1.785963535308838f);
    EXPECT_EQ(spark.size, 1.3285447359085083f);
    EXPECT_EQ(spark.sizedecay, 1.138192057609558f);
    EXPECT_EQ(spark.noise, 0.3648824393749237f);
    EXPECT_EQ(spark.mass, 0.0f);
    EXPECT_EQ(spark.timeoffset, 0.01229021418839693f);
    EXPECT_EQ(spark.rotation, 0.7277000546455383f);
    EXPECT_EQ(spark.texture, 5);
    EXPECT_EQ(spark.position, Vector3f(7, 8, 9));
    EXPECT_EQ(spark.time, 3.0f);
    EXPECT_EQ(e.random.mState, 3125448028u); // fifteen draws
}

TEST(FillSpark, AnglesOfZeroGoStraightUp) {
    Emitter e;
    e.angle = {0, 0};
    e.speed = {3, 3};
    for (int i = 0; i < 1000; ++i) {
        Spark spark;
        e.fillSpark(spark);
        ASSERT_EQ(spark.velocity, Vector3f(0, 3, 0));
    }
}

TEST(FillSpark, AnglesFromPiToZeroCoverTheSphereEvenly) {
    Emitter e;
    e.random.mState = 5;
    e.angle = {3.14159265f, 0};
    e.speed = {1, 1};
    constexpr int N = 100000;
    int octants[8] = {}, high = 0;
    float lowest = 1, highest = -1;
    for (int i = 0; i < N; ++i) {
        Spark spark;
        e.fillSpark(spark);
        const Vector3f v = spark.velocity;
        ASSERT_NEAR(v.length(), 1, 1e-5);
        ++octants[(v.x > 0) + 2 * (v.y > 0) + 4 * (v.z > 0)];
        high += v.y > 0.5f; // a quarter of the sphere's area
        lowest = std::min(lowest, v.y);
        highest = std::max(highest, v.y);
    }
    for (int count : octants)
        EXPECT_NEAR(count, N / 8, N / 100);
    EXPECT_NEAR(high, N / 4, N / 100);
    EXPECT_LT(lowest, -0.999f);
    EXPECT_GT(highest, 0.999f);
}

TEST(FillSpark, ValuesStayBetweenTheirBounds) {
    Emitter e;
    e.size = {30, 10}; // in either order
    for (int i = 0; i < 10000; ++i) {
        Spark spark;
        e.fillSpark(spark);
        ASSERT_GE(spark.size, 10);
        ASSERT_LE(spark.size, 30);
        ASSERT_GE(spark.energy, 1);
        ASSERT_LE(spark.energy, 2);
        const float share = (spark.colour.z - 0.01f) / 0.1f; // the same for all components
        ASSERT_GE(share, -1e-5f);
        ASSERT_LE(share, 1 + 1e-5f);
    }
}

TEST(FillSpark, BoundsOfNanAreHarmless) {
    Emitter e;
    e.angle = {NAN, INFINITY};
    e.speed = {INFINITY, -INFINITY};
    e.energy = {NAN, 1};
    Spark spark;
    e.fillSpark(spark);
    EXPECT_TRUE(std::isnan(spark.energy));
}

TEST(GetRandom, OneDrawForAllComponents) {
    Emitter e;
    e.random.mState = 1;
    Vector3f a(0, 1, -1), b(1, 3, -5);
    const float r = 1.608254387974739e-05f;
    EXPECT_EQ(e.getRandom(a, b), a + (b - a) * r);
    EXPECT_EQ(e.random.mState, 69074u);
}
