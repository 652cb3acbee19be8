#include "sparks_testing.h"
#include "xml_parser.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::sparks;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::countOf;

namespace {

class InstanceTest : public ::testing::Test {
protected:
    test::Closed mClosed;
    test::QuietEngine mEngine{&mClosed.display};
    Emitter mEmitter;
    EmitterInstance mInstance;

    void SetUp() override {
        mInstance.engine = mEngine.get();
        mInstance.random.mState = 1;
        mInstance.addEmitter(&mEmitter, "e", -1, 50);
    }
    int update(float dt) {
        const int before = countOf(mEngine->live);
        mInstance.update(0, dt);
        return countOf(mEngine->live) - before;
    }
};

} // namespace

TEST_F(InstanceTest, StartsAsTheDefaultOne) {
    const EmitterInstance fresh;
    EXPECT_EQ(fresh.matrix, Matrix4x4Col());
    EXPECT_EQ(fresh.engine, nullptr);
    EXPECT_TRUE(fresh.emitters.empty());
    EXPECT_EQ(fresh.name, "default");
}

TEST_F(InstanceTest, AWholeNumberOfParticlesIsEmittedExactly) {
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(update(0.1f), 5);
}

TEST_F(InstanceTest, AFractionIsEmittedOnAverage) {
    int total = 0;
    for (int i = 0; i < 10000; ++i) {
        const int count = update(0.01f);
        ASSERT_LE(count, 1);
        total += count;
    }
    EXPECT_NEAR(total, 5000, 150);
}

TEST_F(InstanceTest, TheFractionIsDrawnFromTheInstance) {
    // The states 69074, 475904815, 884950952, 997714317, 2674863854, 2153294491 as fractions of 2^32:
    // 0.00002, 0.111, 0.206, 0.232, 0.623, 0.501.
    const int expected[] = {1, 1, 1, 1, 0, 0};
    for (int count : expected)
        EXPECT_EQ(update(0.01f), count); // 0.5 due
    EXPECT_EQ(mInstance.random.mState, 2153294491u);
}

TEST_F(InstanceTest, ACountOfThreeEmitsThreeAndIsThenSkipped) {
    mEmitter.num = 3;
    EXPECT_EQ(update(10), 3);
    EXPECT_EQ(mEmitter.num, 0);
    const uint32_t state = mInstance.random.mState;
    EXPECT_EQ(update(10), 0);
    EXPECT_EQ(mInstance.random.mState, state);
}

TEST_F(InstanceTest, ANegativeCountIsNeverDecreased) {
    EXPECT_EQ(update(10), 500);
    EXPECT_EQ(mEmitter.num, -1);
    mEmitter.num = -7;
    EXPECT_EQ(update(1), 50);
    EXPECT_EQ(mEmitter.num, -7);
}

TEST_F(InstanceTest, AnEmitterThatIsNotActiveDrawsNothing) {
    mEmitter.active = false;
    EXPECT_EQ(update(10), 0);
    EXPECT_EQ(mInstance.random.mState, 1u);
    mEmitter.active = true;
    mEmitter.second = false; // is ignored
    EXPECT_EQ(update(0.1f), 5);
}

TEST_F(InstanceTest, NoTimeEmitsNothingAndStillDraws) {
    EXPECT_EQ(update(0), 0);
    EXPECT_EQ(mInstance.random.mState, 69074u);
}

TEST_F(InstanceTest, NegativeTimesAndNanEmitNothing) {
    for (float dt : {-1.0f, -0.001f, -INFINITY, NAN})
        EXPECT_EQ(update(dt), 0);
    for (float rate : {-50.0f, NAN, -INFINITY}) {
        mEmitter.rate = rate;
        EXPECT_EQ(update(1), 0);
    }
}

TEST_F(InstanceTest, ParticlesArePlacedByTheMatrix) {
    mEmitter.angle = {0, 0};
    mEmitter.speed = {2, 2};
    mInstance.matrix.buildPRS(Vector3f(10, 20, 30), mathbase::Quatf(1, 0, 0, 0), Vector3f(1, 3, 1));
    EXPECT_EQ(update(0.02f), 1);
    EXPECT_EQ(mEngine->live->position, Vector3f(10, 20, 30));
    EXPECT_EQ(mEngine->live->velocity, Vector3f(0, 6, 0)); // longer: it is not normalised
}

TEST_F(InstanceTest, OnlyParticlesBornLaterFeelAnotherMatrix) {
    update(0.02f);
    mInstance.matrix.setTranslation(Vector3f(1, 2, 3));
    update(0.02f);
    EXPECT_EQ(mEngine->live->position, Vector3f(1, 2, 3));
    EXPECT_EQ(mEngine->live->next->position, Vector3f(0, 0, 0));
}

TEST_F(InstanceTest, EmittersGoInTheirOrder) {
    Emitter second;
    second.texture = 2;
    mEmitter.texture = 1;
    mInstance.addEmitter(&second, "two", -1, 100);
    EXPECT_EQ(second.name, "two");
    EXPECT_EQ(second.num, -1);
    EXPECT_EQ(second.rate, 100.0f);
    EXPECT_EQ(update(0.02f), 3);
    EXPECT_EQ(mEngine->live->texture, 2); // the newest
    EXPECT_EQ(mEngine->live->next->texture, 2);
    EXPECT_EQ(mEngine->live->next->next->texture, 1);
}

TEST_F(InstanceTest, RemovingTakesEveryEntryAndKeepsTheOrder) {
    Emitter a, b;
    mInstance.addEmitter(&a, "a", 1, 1);
    mInstance.addEmitter(&mEmitter, "again", 1, 1);
    mInstance.addEmitter(&b, "b", 1, 1);
    mInstance.removeEmitter(&mEmitter);
    EXPECT_EQ(mInstance.emitters, (std::vector<Emitter*>{&a, &b}));
    EXPECT_EQ(mEmitter.name, "again"); // still there
    mInstance.removeEmitter(&mEmitter);
    mInstance.removeEmitter(nullptr);
    EXPECT_EQ(mInstance.emitters.size(), 2u);
}

TEST_F(InstanceTest, ACopySharesItsEmittersAndWhatIsLeftOfThem) {
    mEmitter.num = 5;
    mInstance.matrix.setTranslation(Vector3f(1, 2, 3));
    mInstance.name = "n";
    EmitterInstance copy = mInstance;
    EXPECT_EQ(copy.matrix, mInstance.matrix);
    EXPECT_EQ(copy.engine, mInstance.engine);
    EXPECT_EQ(copy.name, "n");
    EXPECT_EQ(copy.random.mState, mInstance.random.mState);
    EXPECT_EQ(copy.emitters, mInstance.emitters);
    EXPECT_EQ(update(0.06f), 3);
    copy.update(0, 10);
    EXPECT_EQ(countOf(mEngine->live), 5);
    EXPECT_EQ(mEmitter.num, 0);
}

TEST_F(InstanceTest, WithoutAnEngineTheFirstEmissionFails) {
    mInstance.engine = nullptr;
    mInstance.name = "lost";
    mInstance.update(0, 0); // emits nothing, so doesn't need one
    try {
        mInstance.update(0, 1);
        FAIL();
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "EmitterInstance::update; 'lost' has no engine");
    }
}

TEST_F(InstanceTest, AnAbsurdRateIsBoundedAndLoggedOnce) {
    mEmitter.rate = 1e9f;
    test::CaptureStdout out;
    EXPECT_EQ(update(1), EmitterInstance::MAX_EMISSION);
    EXPECT_EQ(update(1), EmitterInstance::MAX_EMISSION);
    const std::string said = out.text();
    EXPECT_EQ(said.rfind("[warning][", 0), 0u) << said;
    EXPECT_NE(said.find("Sparks: More particles than default can have (200000); the others are left out"),
              std::string::npos)
        << said;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST_F(InstanceTest, TheBoundHoldsForAllEmittersTogether) {
    std::vector<Emitter> many(50);
    for (Emitter& e : many)
        mInstance.addEmitter(&e, "", -1, INFINITY);
    test::CaptureStdout quiet;
    EXPECT_EQ(update(1), EmitterInstance::MAX_EMISSION);
}

TEST_F(InstanceTest, ACountThatIsUsedUpIsNoExcess) {
    mEmitter.num = 10;
    mEmitter.rate = 1e12f;
    test::CaptureStdout out;
    EXPECT_EQ(update(1), 10);
    EXPECT_EQ(out.text(), "");
}

TEST(InstanceLoad, ReadsItsEmitters) {
    xml::XmlParser document;
    document.parse(std::string(
        "<spark><instance name=\"x\"><emitter name=\"a\" num=\"4\"/><other/><emitter/></instance></spark>"));
    xml::IteratorConst it(&document, "instance");
    ASSERT_TRUE(++it);
    EmitterInstance instance;
    instance.load(it);
    EXPECT_EQ(instance.name, "x");
    ASSERT_EQ(instance.emitters.size(), 2u);
    EXPECT_EQ(instance.emitters[0]->name, "a");
    EXPECT_EQ(instance.emitters[0]->num, 4);
    EXPECT_EQ(instance.emitters[1]->name, "");
    EXPECT_EQ(instance.emitters[1]->num, 0);
    EXPECT_EQ(instance.engine, nullptr);
}

TEST(InstanceLoad, TheEmittersLiveAsLongAsACopy) {
    EmitterInstance copy;
    {
        xml::XmlParser document;
        document.parse(std::string("<spark><instance><emitter name=\"a\"/></instance></spark>"));
        xml::IteratorConst it(&document, "instance");
        ASSERT_TRUE(++it);
        EmitterInstance instance;
        instance.load(it);
        copy = instance;
        instance.removeEmitter(instance.emitters[0]);
    }
    EXPECT_EQ(copy.emitters[0]->name, "a");
}
