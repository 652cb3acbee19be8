#include "allocations.h"
#include "sparks_testing.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace zentrak;
using namespace zentrak::sparks;
using mathbase::Vector3f;
using test::CaptureStdout;
using test::countOf;
using test::longLived;

namespace {

class EngineTest : public ::testing::Test {
protected:
    test::Closed mClosed;
    test::QuietEngine mEngine{&mClosed.display};

    void load(const std::string& text, const std::string& name = "p.xml") {
        test::writeFile(mClosed.folder.file(name), text);
        CaptureStdout quiet;
        mEngine->load(name);
    }
    void add(int count, const Spark& spark = longLived()) {
        for (int i = 0; i < count; ++i)
            mEngine->addSpark(spark);
    }
    // The only live particle.
    const Spark& only() {
        EXPECT_EQ(countOf(mEngine->live), 1);
        return *mEngine->live;
    }
};

const char* const twoInstances =
    "<?xml version=\"1.0\"?>\n<!-- a file -->\n<spark>\n"
    "<instance name=\"moon\"><emitter name=\"m\" rate=\"5\" num=\"3\" texture=\"2\"/></instance>\n"
    "<instance name=\"sun\"><emitter name=\"a\" rate=\"100\" num=\"-1\"/>"
    "<emitter name=\"b\"><color v1=\"102030\" v2=\"a0b0c0\"/><size v1=\"5.5\" "
    "v2=\"0.1\"/></emitter></instance>\n"
    "<instance name=\"sun\"/>\n</spark>\n";

// powf, as in the definition of a particle's step.
float decayed(float value, float decay, float dt) {
    return value * powf(2.7182817f, -decay * dt);
}

int ulps(float a, float b) {
    int32_t i, j;
    std::memcpy(&i, &a, 4);
    std::memcpy(&j, &b, 4);
    return std::abs(i - j);
}

} // namespace

TEST_F(EngineTest, StartsEmpty) {
    EXPECT_EQ(mEngine->lastTime, -1.0f);
    EXPECT_FALSE(mEngine->isSetup);
    EXPECT_EQ(mEngine->live, nullptr);
    EXPECT_EQ(mEngine->free, nullptr);
    EXPECT_EQ(mEngine->allocated, 0);
    EXPECT_TRUE(mEngine->instances.empty());
    EXPECT_TRUE(mEngine->active.empty());
    EXPECT_EQ(mEngine->display, &mClosed.display);
}

TEST_F(EngineTest, LoadsEveryInstanceInOrder) {
    load(twoInstances);
    ASSERT_EQ(mEngine->instances.size(), 3u);
    EXPECT_EQ(mEngine->instances[0]->name, "moon");
    EXPECT_EQ(mEngine->instances[1]->emitters.size(), 2u);
    EXPECT_EQ(mEngine->getInstance("sun"), mEngine->instances[1]); // the first of that name
    EXPECT_TRUE(mEngine->active.empty());
    EXPECT_EQ(mEngine->instances[1]->engine, nullptr);
    load(twoInstances);
    EXPECT_EQ(mEngine->instances.size(), 6u);
}

TEST_F(EngineTest, PrintsWhatItLoadsAndAddsTheExtension) {
    test::writeFile(mClosed.folder.file("long.xml"), twoInstances);
    for (const char* name : {"long", "long.xml"}) {
        CaptureStdout out;
        mEngine->load(name);
        EXPECT_EQ(out.text(), "Sparks: Loading long.xml\n");
    }
    EXPECT_EQ(mEngine->instances.size(), 6u);
}

TEST_F(EngineTest, ANameShorterThanAnExtensionIsOutOfRange) {
    for (const char* name : {"", "a", "xml"}) {
        CaptureStdout out;
        EXPECT_THROW(mEngine->load(name), std::out_of_range);
        EXPECT_EQ(out.text(), "");
    }
    CaptureStdout out;
    mEngine->load(".xml");
    EXPECT_EQ(out.text(), "Sparks: Loading .xml\n");
}

TEST_F(EngineTest, AMissingFileIsPassedOver) {
    CaptureStdout out;
    mEngine->load("nowhere");
    EXPECT_EQ(out.text(), "Sparks: Loading nowhere.xml\n");
    EXPECT_TRUE(mEngine->instances.empty());
}

TEST_F(EngineTest, AnotherRootIsPassedOver) {
    load("<sparks><instance name=\"sun\"/></sparks>");
    EXPECT_TRUE(mEngine->instances.empty());
}

TEST_F(EngineTest, ADamagedFileThrowsAndAddsNothing) {
    const std::string whole = twoInstances;
    for (size_t length = 0; length < whole.size() - 9; length += 3) {
        try {
            load(whole.substr(0, length));
        } catch (const Exception&) {
        }
        ASSERT_TRUE(mEngine->instances.empty()) << length;
    }
}

TEST_F(EngineTest, AFileWithoutASunOrEmittersHasNoneToGive) {
    load("<spark><instance name=\"moon\"/></spark>");
    CaptureStdout out;
    EXPECT_EQ(mEngine->getInstance("sun"), nullptr);
    EXPECT_NE(out.text().find("Sparks: No instance 'sun'"), std::string::npos);
    EmitterInstance moon = *mEngine->getInstance("moon");
    moon.engine = mEngine.get();
    mEngine->active.push_back(&moon);
    mEngine->update(0);
    mEngine->update(1);
    EXPECT_EQ(mEngine->live, nullptr);
}

TEST_F(EngineTest, WithoutADisplayNothingIsLoaded) {
    CaptureStdout out;
    Engine alone(nullptr);
    alone.load("p.xml");
    EXPECT_FALSE(alone.save("p.xml"));
    EXPECT_TRUE(alone.instances.empty());
}

TEST_F(EngineTest, SavedFilesLoadTheSame) {
    load(twoInstances);
    EXPECT_TRUE(mEngine->save("first"));
    test::QuietEngine second(&mClosed.display);
    {
        CaptureStdout quiet;
        second->load("first");
    }
    EXPECT_TRUE(second->save("second.xml"));
    const std::string first = test::readFile(mClosed.folder.file("first.xml"));
    EXPECT_EQ(first, test::readFile(mClosed.folder.file("second.xml")));
    ASSERT_EQ(second->instances.size(), 3u);
    EXPECT_EQ(second->instances[0]->emitters[0]->num, 3);
    EXPECT_EQ(second->instances[0]->emitters[0]->texture, 2);
    EXPECT_EQ(second->instances[1]->emitters[1]->size.v2, 0.1f);
    EXPECT_EQ(second->instances[1]->emitters[1]->color.v2, hex2vec("a0b0c0"));
    EXPECT_EQ(first.rfind("<spark>\n\t<instance name=\"moon\">\n\t\t<emitter name=\"m\" texture=\"2\" "
                          "rate=\"5\" num=\"3\">\n\t\t\t<speed v1=\"1\" v2=\"2\"/>\n",
                          0),
              0u)
        << first.substr(0, 300);
    EXPECT_TRUE(mEngine->save("a")); // shorter than the extension
    EXPECT_TRUE(test::fileExists(mClosed.folder.file("a.xml")));
}

TEST_F(EngineTest, AddingPutsTheNewestFirstAtTheTimeOfTheDisplay) {
    mClosed.setTime(4.5f);
    Spark spark = longLived();
    spark.texture = 1;
    spark.time = 99;
    mEngine->addSpark(spark);
    spark.texture = 2;
    mEngine->addSpark(spark);
    EXPECT_EQ(mEngine->live->texture, 2);
    EXPECT_EQ(mEngine->live->next->texture, 1);
    EXPECT_EQ(mEngine->live->next->next, nullptr);
    EXPECT_EQ(mEngine->live->time, 4.5f);
    EXPECT_EQ(mEngine->allocated, 2);
}

TEST_F(EngineTest, ANewElementIsZeroAndAFreeOneComesFirst) {
    Spark* element = mEngine->getFreeElement();
    EXPECT_EQ(element->size, 0.0f);
    EXPECT_EQ(element->next, nullptr);
    EXPECT_EQ(mEngine->allocated, 1);
    mEngine->free = element;
    EXPECT_EQ(mEngine->getFreeElement(), element);
    EXPECT_EQ(mEngine->free, nullptr);
    EXPECT_EQ(mEngine->allocated, 1);
}

TEST_F(EngineTest, TheFirstUpdateTakesNoTime) {
    load(twoInstances);
    EmitterInstance* sun = mEngine->getInstance("sun");
    sun->engine = mEngine.get();
    mEngine->active.push_back(sun);
    Spark spark = longLived();
    spark.velocity = Vector3f(1, 1, 1);
    mEngine->addSpark(spark);
    mEngine->update(17);
    EXPECT_EQ(mEngine->dt, 0.0f);
    EXPECT_EQ(only().position, Vector3f(0, 0, 0)); // nothing moved, nothing was emitted
    EXPECT_TRUE(mEngine->isSetup);
    mEngine->update(17.1f);
    EXPECT_NEAR(mEngine->dt, 0.1f, 1e-5f);
    EXPECT_EQ(mEngine->lastTime, 17.1f);
    EXPECT_GT(countOf(mEngine->live), 1);
}

TEST_F(EngineTest, AParticleIsSteppedInOrder) {
    Spark spark = longLived();
    spark.position = Vector3f(1, 2, 3);
    spark.velocity = Vector3f(4, 5, 6);
    spark.mass = 0.5f;
    spark.energydecay = 0.3f;
    spark.sizedecay = -0.2f;
    mEngine->update(0);
    mEngine->addSpark(spark);
    mEngine->update(0.25f);
    const float fallen = 5 + -9.81f * 0.25f; // velocity first, then position
    EXPECT_EQ(only().velocity, Vector3f(4, fallen, 6));
    EXPECT_EQ(only().position, Vector3f(1 + 4 * 0.25f, 2 + fallen * 0.25f, 3 + 6 * 0.25f));
    EXPECT_LE(ulps(only().size, decayed(10, -0.2f, 0.25f)), 2);
    EXPECT_LE(ulps(only().energy, decayed(1, 0.3f, 0.25f)), 2);
}

TEST_F(EngineTest, MassIsAThreshold) {
    Spark spark = longLived();
    mEngine->update(0);
    for (const auto& [mass, falls] : {std::pair(0.0f, false), std::pair(0.01f, false),
                                      std::pair(0.0101f, true), std::pair(50.0f, true)}) {
        spark.mass = mass;
        mEngine->addSpark(spark);
    }
    mEngine->update(1);
    const Spark* s = mEngine->live;
    EXPECT_EQ(s->velocity.y, -9.81f);
    s = s->next;
    EXPECT_EQ(s->velocity.y, -9.81f);
    s = s->next;
    EXPECT_EQ(s->velocity.y, 0.0f);
    s = s->next;
    EXPECT_EQ(s->velocity.y, 0.0f);
}

TEST_F(EngineTest, DecaysAreThoseOfPowfOverManySteps) {
    mathbase::Random random(9);
    for (int round = 0; round < 50; ++round) {
        test::QuietEngine engine(&mClosed.display);
        Spark spark = longLived();
        spark.size = 1000;
        spark.energy = 5000;
        spark.sizedecay = 3 * random.uniform();
        spark.energydecay = 3 * random.uniform() - 0.5f;
        engine->addSpark(spark);
        engine->update(0);
        float size = 1000, energy = 5000, time = 0;
        for (int step = 0; step < 60; ++step) {
            const float next = time + 0.05f * random.uniform();
            engine->update(next);
            size = decayed(size, spark.sizedecay, next - time);
            energy = decayed(energy, spark.energydecay, next - time);
            time = next;
            ASSERT_NE(engine->live, nullptr);
            ASSERT_LE(ulps(engine->live->size, size), 2 + step);
            ASSERT_LE(ulps(engine->live->energy, energy), 2 + step);
        }
    }
}

TEST_F(EngineTest, OneStepIsWithinTwoUlpOfPowf) {
    Spark spark = longLived();
    mEngine->update(0);
    std::vector<float> decays;
    for (float decay = -20; decay < 4; decay += 0.37f)
        decays.push_back(decay);
    for (float decay : decays) {
        spark.size = 5000;
        spark.sizedecay = decay;
        mEngine->addSpark(spark);
    }
    mEngine->update(1);
    const Spark* s = mEngine->live;
    for (auto decay = decays.rbegin(); decay != decays.rend(); ++decay, s = s->next)
        EXPECT_LE(ulps(s->size, decayed(5000, *decay, 1)), 2) << *decay;
}

TEST_F(EngineTest, DiesBelowTheLeastSizeWhateverItsEnergy) {
    Spark spark = longLived();
    spark.energy = 1000;
    spark.size = 1;
    spark.sizedecay = 1;
    mEngine->addSpark(spark);
    float time = 0;
    mEngine->update(0);
    while (mEngine->live && time < 1)
        mEngine->update(time += 0.001f);
    EXPECT_NEAR(time, -std::log(0.8), 0.002); // about 0.22
}

TEST_F(EngineTest, DiesBelowTheLeastEnergy) {
    Spark spark = longLived();
    spark.energydecay = 1;
    mEngine->addSpark(spark);
    float time = 0;
    mEngine->update(0);
    while (mEngine->live && time < 5)
        mEngine->update(time += 0.001f);
    EXPECT_NEAR(time, std::log(10.0), 0.002);
}

TEST_F(EngineTest, TheThresholdsThemselvesLive) {
    Spark spark = longLived();
    spark.size = 0.8f;
    spark.energy = 0.1f;
    mEngine->addSpark(spark);
    mEngine->update(0);
    mEngine->update(1);
    EXPECT_EQ(countOf(mEngine->live), 1);
}

TEST_F(EngineTest, ASmallOneLivesForOneStep) {
    Spark spark = longLived();
    spark.size = 0.7f;
    mEngine->addSpark(spark);
    EXPECT_EQ(countOf(mEngine->live), 1);
    mEngine->update(0);
    EXPECT_EQ(mEngine->live, nullptr);
    EXPECT_EQ(countOf(mEngine->free), 1);
}

TEST_F(EngineTest, UnlinksAnywhereInTheListAndKeepsTheOrder) {
    Spark spark = longLived();
    for (int i = 0; i < 8; ++i) {
        spark.texture = i;
        spark.size = i % 3 == 1 ? 10.0f : 0.1f;
        mEngine->addSpark(spark);
    }
    mEngine->update(0);
    ASSERT_EQ(countOf(mEngine->live), 3);
    EXPECT_EQ(mEngine->live->texture, 7);
    EXPECT_EQ(mEngine->live->next->texture, 4);
    EXPECT_EQ(mEngine->live->next->next->texture, 1);
    EXPECT_EQ(countOf(mEngine->free), 5);
}

TEST_F(EngineTest, AHiddenParticleMovesAndAges) {
    Spark spark = longLived();
    spark.timeoffset = 100;
    spark.velocity = Vector3f(1, 0, 0);
    spark.energydecay = 0.5f;
    mEngine->addSpark(spark);
    mEngine->update(0);
    mEngine->update(2);
    EXPECT_EQ(only().position.x, 2.0f);
    EXPECT_LT(only().energy, 0.4f);
}

TEST_F(EngineTest, ClearStopsEmissionAndTheParticlesFlyOn) {
    load(twoInstances);
    EmitterInstance* sun = mEngine->getInstance("sun");
    sun->engine = mEngine.get();
    for (Emitter* e : sun->emitters)
        e->size = {10, 10};
    mEngine->active.push_back(sun);
    mEngine->update(0);
    mEngine->update(0.1f);
    const int alive = countOf(mEngine->live);
    EXPECT_EQ(alive, 10);
    mEngine->clear();
    EXPECT_TRUE(mEngine->active.empty());
    const Vector3f before = mEngine->live->position;
    mEngine->update(0.2f);
    EXPECT_EQ(countOf(mEngine->live), alive);
    EXPECT_NE(mEngine->live->position, before);
    mEngine->update(20);
    EXPECT_EQ(mEngine->live, nullptr);
}

TEST_F(EngineTest, AllocatedIsThePeakOfThoseAlive) {
    mEngine->update(0);
    float time = 0;
    for (int generation = 0; generation < 5; ++generation) {
        Spark spark = longLived();
        spark.energydecay = 10;
        add(1000, spark);
        mEngine->update(time += 1);
        EXPECT_EQ(mEngine->live, nullptr);
        EXPECT_EQ(countOf(mEngine->free), 1000);
        EXPECT_EQ(mEngine->allocated, 1000);
    }
    add(1001);
    EXPECT_EQ(mEngine->allocated, 1001);
}

TEST_F(EngineTest, PrintsThePeakAtItsEnd) {
    add(12);
    CaptureStdout out;
    mEngine.reset();
    EXPECT_EQ(out.text(), "Particles used (max): 12\n");
}

TEST_F(EngineTest, AllocatesNothingOnceWarm) {
    Emitter emitter;
    EmitterInstance instance;
    instance.engine = mEngine.get();
    instance.random.mState = emitter.random.mState = 3;
    emitter.size = {5, 10};
    instance.addEmitter(&emitter, "e", -1, 10000);
    mEngine->active.push_back(&instance);
    float time = 0;
    for (int i = 0; i < 100; ++i)
        mEngine->update(time += 0.05f);
    Spark spare = longLived();
    spare.size = 0;
    add(5000, spare);
    mEngine->update(time); // and these become free again
    const int peak = mEngine->allocated;
    const size_t before = test::allocationCount();
    for (int i = 0; i < 100; ++i)
        mEngine->update(time += 0.05f);
    EXPECT_EQ(test::allocationCount(), before);
    EXPECT_EQ(mEngine->allocated, peak);
    EXPECT_GT(countOf(mEngine->live), 1000);
}

TEST_F(EngineTest, ParticlesOfNanDie) {
    mEngine->update(0);
    Spark spark = longLived();
    spark.energy = NAN;
    mEngine->addSpark(spark);
    spark = longLived();
    spark.sizedecay = NAN;
    mEngine->addSpark(spark);
    spark = longLived();
    spark.energy = -1;
    mEngine->addSpark(spark);
    mEngine->update(0.1f);
    EXPECT_EQ(mEngine->live, nullptr);
}

TEST_F(EngineTest, ATimeOfNanOrRunningBackwardsIsHarmless) {
    add(10);
    for (float time : {1.0f, 0.5f, NAN, 2.0f, INFINITY, -5.0f, 3.0f})
        mEngine->update(time);
}

TEST_F(EngineTest, AbsurdFilesDoNotGrowWithoutEnd) {
    load("<spark><instance name=\"sun\"><emitter rate=\"1000000000\" num=\"-1\"><energy v1=\"nan\" "
         "v2=\"-5\"/></emitter>"
         "<emitter rate=\"0x7fffffffffffffff\" num=\"-1\"><energydecay v1=\"-9\" v2=\"0\"/><sizedecay "
         "v1=\"-inf\" v2=\"0\"/>"
         "<size v1=\"1e30\" v2=\"1e38\"/></emitter></instance></spark>");
    EmitterInstance sun = *mEngine->getInstance("sun");
    sun.engine = mEngine.get();
    mEngine->active.push_back(&sun);
    CaptureStdout out;
    for (int i = 0; i < 10; ++i) {
        mEngine->update(float(i) * 0.02f);
        std::swap(sun.emitters[0], sun.emitters[1]); // each gets its turn at what there is to emit
    }
    EXPECT_LE(mEngine->allocated, Engine::MAX_ALLOCATED);
    const std::string said = out.text();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST_F(EngineTest, AtMostAMillionAtATimeAndTheLogSaysSoOnce) {
    CaptureStdout out;
    add(Engine::MAX_ALLOCATED + 10);
    EXPECT_EQ(mEngine->allocated, Engine::MAX_ALLOCATED);
    EXPECT_EQ(countOf(mEngine->live), Engine::MAX_ALLOCATED);
    EXPECT_EQ(mEngine->getFreeElement(), nullptr);
    const std::string said = out.text();
    EXPECT_NE(said.find("Sparks: More particles than the engine can have (1000000)"), std::string::npos);
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    Spark* freed = mEngine->live; // one that goes makes room for another
    freed->size = 0;
    mEngine->update(0);
    add(1);
    EXPECT_EQ(countOf(mEngine->live), Engine::MAX_ALLOCATED);
}
