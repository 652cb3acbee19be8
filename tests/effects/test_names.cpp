// The triggers and splines that effects list are those that they handle, and those in the catalogue and the
// docs.
#include "clear.h"
#include "effect_names.h"
#include "effect_test.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <vector>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

using Names = std::set<std::string>;

template <class List>
Names namesIn(const List& list) {
    return Names(list.begin(), list.end());
}

class Probe : public ScriptedEffect {
public:
    float value = 0, doubled = 0;
    std::string said;

    Probe() {
        bindSpline("value", value);
        bindSpline("twice", doubled, [](float v) { return 2 * v; });
        bindTrigger("say", [this](float, const std::string& what) { said = what; });
        bindTrigger("target", TriggerNames::TARGET, {"vaddr"},
                    [this](float, const std::string&) { said = "target"; });
    }
    void update(float, float, float) override {}
};

class CatalogueTest : public test::EffectTest {
protected:
    // An effect of the catalogue, ready to draw.
    std::unique_ptr<ScriptedEffect> make(const std::string& name) {
        const auto& catalogue = effectCatalogue();
        const auto entry = std::find_if(catalogue.begin(), catalogue.end(),
                                        [&](const CatalogueEntry& each) { return name == each.name; });
        std::unique_ptr<ScriptedEffect> effect = entry->make(mCommon);
        test::prepare(*effect, display(), name);
        return effect;
    }
};

const EffectNames& namesOf(const std::string& effect) {
    const auto found = std::find_if(effectNames().begin(), effectNames().end(),
                                    [&](const EffectNames& names) { return effect == names.name; });
    EXPECT_NE(found, effectNames().end()) << effect;
    return *found;
}

} // namespace

TEST(ScriptedEffect, ABoundSplineSetsItsVariableAndNoOther) {
    Probe probe;
    probe.updateSpline(0, "value", 3);
    probe.updateSpline(0, "twice", 4);
    probe.updateSpline(0, "Value", 5);
    EXPECT_EQ(probe.value, 3);
    EXPECT_EQ(probe.doubled, 8);
}

TEST(ScriptedEffect, ABoundTriggerGetsItsValueAndOtherNamesAreIgnored) {
    Probe probe;
    probe.executeTrigger(0, "Say", "nothing");
    EXPECT_EQ(probe.said, "");
    probe.executeTrigger(0, "say", "hello");
    EXPECT_EQ(probe.said, "hello");
}

TEST(ScriptedEffect, ItsNamesAreThoseThatItBinds) {
    const Probe probe;
    EXPECT_EQ(namesIn(probe.getNames().splines), (Names{"value", "twice"}));
    ASSERT_EQ(probe.getNames().triggers.size(), 2u);
    EXPECT_STREQ(probe.getNames().triggers[1].name, "target");
    EXPECT_EQ(probe.getNames().triggers[1].use, TriggerNames::TARGET);
    EXPECT_FALSE(probe.getNames().anyTrigger);
}

TEST(EffectNames, AreThoseOfTheShow) {
    const auto splines = [](const char* effect) { return namesIn(namesOf(effect).splines); };
    const auto triggers = [](const char* effect) {
        Names names;
        for (const TriggerNames& trigger : namesOf(effect).triggers)
            names.insert(trigger.name);
        return names;
    };
    EXPECT_EQ(effectNames().size(), 24u);
    for (const char* effect : {"clear", "cloud", "face", "grand", "grid", "overlay", "rund", "xor"})
        EXPECT_EQ(splines(effect), Names{"alpha"}) << effect;
    EXPECT_EQ(splines("border"), (Names{"alpha", "border"}));
    EXPECT_EQ(splines("cubejox"), (Names{"alpha", "bw", "zoom"}));
    EXPECT_EQ(splines("kub"), (Names{"ilvo marsten", "alpha"}));
    EXPECT_EQ(splines("vul"), Names{"intensity"});
    for (const char* effect : {"greet", "spark", "tunnel", "waxon"})
        EXPECT_EQ(splines(effect), Names()) << effect;
    EXPECT_EQ(triggers("clear"), (Names{"type", "color"}));
    EXPECT_EQ(triggers("cubejox"), (Names{"drum1", "drum2", "drum3", "drum4"}));
    EXPECT_EQ(triggers("kub"), (Names{"turn2", "turn", "expand"}));
    EXPECT_EQ(triggers("overlay"), Names{"type"});
    EXPECT_EQ(triggers("waxon"), Names{"which"});
    for (const char* effect : {"rund", "xor"})
        EXPECT_EQ(triggers(effect), Names{"shot"}) << effect;
    for (const char* effect : {"border", "cloud", "face", "grand", "grid", "spark", "tunnel", "vul"})
        EXPECT_EQ(triggers(effect), Names()) << effect;
    for (const char* key :
         {"code", "tracking", "graphics", "bitching", "moonpulse", "zaplin", "orvo", "qark"}) {
        const EffectNames& credits = namesOf(std::string("credits_") + key);
        EXPECT_EQ(namesIn(credits.splines), Names{"zoom"}) << key;
        EXPECT_TRUE(credits.anyTrigger) << key;
    }
    EXPECT_TRUE(namesOf("greet").anyTrigger);
    EXPECT_EQ(namesIn(namesOf("clear").triggers[1].words),
              (Names{"white", "black", "cubejox_black", "cubejox_orange", "dark_blue", "dark_gray"}));
}

TEST(EffectNames, AreSorted) {
    EXPECT_TRUE(std::is_sorted(
        effectNames().begin(), effectNames().end(),
        [](const EffectNames& a, const EffectNames& b) { return std::string(a.name) < b.name; }));
}

TEST_F(CatalogueTest, ClearFadesUntilATriggerSaysOtherwise) {
    EXPECT_EQ(dynamic_cast<Clear&>(*make("clear")).type, "gradient");
}

TEST_F(CatalogueTest, EachTypeOfClearAndOverlayHasAPictureOfItsOwn) {
    for (const char* name : {"clear", "overlay"}) {
        const auto waxon = make("waxon"); // makes the target that "shader" shows
        const auto effect = make(name);
        effect->updateSpline(0, "alpha", 1);
        const auto draw = [&](const std::string& type) {
            test::CaptureStdout out;
            effect->executeTrigger(0, "type", type);
            return over(0.9f, 0.6f, 0.3f, [&] { effect->update(1, 0, 0.25f); });
        };
        const test::Picture unknown = draw("unknown");
        for (const std::string word : namesOf(name).triggers[0].words) {
            if (word == "flat") // what an unknown type gives
                continue;
            EXPECT_GT(test::comparePictures(draw(word), unknown).changed, 0) << word;
        }
    }
}

TEST_F(CatalogueTest, TheTargetsOfWaxOnExist) {
    const auto waxon = make("waxon");
    Names made;
    for (const auto& target : mCommon.mFbos)
        made.insert(target.first);
    EXPECT_EQ(made, namesIn(namesOf("waxon").triggers[0].words));
}

// A second object starts in the same state as the first, whatever happened to the first.
TEST_F(CatalogueTest, AnEffectThatIsMadeAgainStartsOver) {
    for (const char* name : {"border", "grid", "rund", "xor", "overlay", "kub", "vul", "cloud", "face"}) {
        const auto draw = [&](ScriptedEffect& effect) {
            return over(0.5f, 0.6f, 0.7f, [&] { effect.update(3, 0, 0.3f); });
        };
        make("waxon");
        const auto waxon = make("waxon");
        srand(1);
        auto effect = make(name);
        const test::Picture fresh = draw(*effect);
        for (const char* spline : namesOf(name).splines)
            effect->updateSpline(1, spline, 0.3f);
        for (const TriggerNames& trigger : namesOf(name).triggers)
            effect->executeTrigger(1, trigger.name, "solid");
        effect.reset();
        srand(1);
        effect = make(name);
        EXPECT_EQ(test::comparePictures(draw(*effect), fresh).mean, 0) << name;
    }
}

TEST_F(CatalogueTest, EveryEffectTakesASecondSetup) {
    test::CaptureStdout out;
    std::vector<std::unique_ptr<ScriptedEffect>> effects;
    for (const CatalogueEntry& entry : effectCatalogue()) {
        effects.push_back(make(entry.name));
        EXPECT_NO_THROW(effects.back()->setup()) << entry.name;
    }
    for (const auto& effect : effects)
        EXPECT_NO_THROW(over(0, 0, 0, [&] { effect->update(1, 0.02f, 0.5f); })) << effect->mName;
}
