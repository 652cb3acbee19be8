// What stands in the table of names is what the effects answer to, and all of it: each effect is told every
// name that any of them knows.
#include "border.h"
#include "clear.h"
#include "cloud.h"
#include "credits.h"
#include "cubejox.h"
#include "effect_names.h"
#include "effect_test.h"
#include "face.h"
#include "grand.h"
#include "greet.h"
#include "grid.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "spark.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentrak;
using namespace zentrak::kindler;

// All variables of the program that are no locals lie between these two.
extern "C" char __data_start, _end;

namespace {

using Names = std::set<std::string>;

// Read by bytes: there are gaps between variables that the sanitizers guard.
__attribute__((no_sanitize("address"))) void copyBytes(const volatile char* from, size_t size, char* to) {
    for (size_t i = 0; i < size; ++i)
        to[i] = from[i];
}

struct Made {
    std::unique_ptr<Effect> effect;
    size_t size;

    // All that the effect can keep: its members, and the variables of its file.
    std::vector<char> state() const {
        const size_t variables = size_t(&_end - &__data_start);
        std::vector<char> bytes(size + variables);
        copyBytes(reinterpret_cast<const char*>(effect.get()), size, bytes.data());
        copyBytes(&__data_start, variables, bytes.data() + size);
        return bytes;
    }
};

template <class T, class... Arguments>
Made make(Arguments... arguments) {
    return {std::make_unique<T>(arguments...), sizeof(T)};
}

Made makeClear() {
    auto clear = std::make_unique<Clear>();
    clear->color1 = clear->color2 = mathbase::Vector4f(0.3f, 0.4f, 0.5f, 0.6f); // of no trigger
    return {std::move(clear), sizeof(Clear)};
}

// What a pattern with one group finds in a file of the source tree.
void find(const std::string& file, const char* pattern, Names& found) {
    const std::string text = test::readFile(file);
    const std::regex wanted(pattern);
    for (std::sregex_iterator it(text.begin(), text.end(), wanted), end; it != end; ++it)
        found.insert((*it)[1]);
}

// The sanitizer's own counts lie among the data that is compared, and a process costs it seconds.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool DATA_IS_OURS = false;
#else
constexpr bool DATA_IS_OURS = true;
#endif

class NamesTest : public test::EffectTest {
protected:
    std::map<std::string, Made> mEffects;
    Names mWords; // every text in the sources of the effects

    void SetUp() override {
        EffectTest::SetUp();
        mEffects["clear"] = makeClear();
        for (const char* who :
             {"code", "tracking", "graphics", "bitching", "moonpulse", "zaplin", "orvo", "qark"})
            mEffects[std::string("credits_") + who] = make<Credits>(&mCommon, who);
        mEffects["cubejox"] = make<Cubejox>(&mCommon);
        mEffects["border"] = make<Border>(&mCommon);
        mEffects["greet"] = make<Greet>(&mCommon);
        mEffects["grand"] = make<Grand>(&mCommon);
        mEffects["grid"] = make<Grid>(&mCommon);
        mEffects["face"] = make<Face>(&mCommon);
        mEffects["kub"] = make<Kub>(&mCommon);
        mEffects["rund"] = make<Rund>(&mCommon);
        mEffects["tunnel"] = make<Tunnel>(&mCommon);
        mEffects["cloud"] = make<Cloud>(&mCommon);
        mEffects["xor"] = make<Xor>(&mCommon);
        mEffects["vul"] = make<Vul>(&mCommon);
        mEffects["waxon"] = make<WaxOn>(&mCommon);
        mEffects["overlay"] = make<Overlay>(&mCommon);
        mEffects["spark"] = make<Spark>(&mCommon);
        for (auto& [name, made] : mEffects)
            test::prepare(*made.effect, display(), name);

        for (const auto& file : std::filesystem::directory_iterator(test::sourcePath("effects")))
            if (file.path().extension() == ".cpp")
                find(file.path().string(), "\"([^\"\\n]*)\"", mWords);
    }

    const EffectNames& namesOf(const std::string& effect) {
        for (const EffectNames& names : effectNames())
            if (effect == names.name)
                return names;
        ADD_FAILURE() << effect << " is not in the table";
        return effectNames().front();
    }

    // Those of `texts` that change anything in `effect` if it is told them, each on its own: in a
    // process of its own, since most effects can't forget.
    Names answered(const Made& made, const Names& texts,
                   const std::function<void(const std::string& text)>& tell) {
        Names result;
        for (auto from = texts.begin(); from != texts.end();) { // on from the last that changed something
            int pipes[2];
            if (pipe(pipes)) {
                ADD_FAILURE() << "no pipe";
                return result;
            }
            fflush(stdout); // or the child has it too
            const pid_t child = fork();
            if (!child) {
                if (!freopen("/dev/null", "w", stdout))
                    _exit(1);
                const std::vector<char> before = made.state();
                for (uint32_t place = 0; from != texts.end(); ++from, ++place) {
                    tell(*from);
                    if (made.state() != before)
                        _exit(write(pipes[1], &place, sizeof place) == sizeof place ? 0 : 1);
                }
                _exit(0);
            }
            close(pipes[1]);
            uint32_t place = 0;
            const bool changed = read(pipes[0], &place, sizeof place) == sizeof place;
            close(pipes[0]);
            int status = 0;
            waitpid(child, &status, 0);
            if (status) {
                ADD_FAILURE() << "a process that told names ended with " << status;
                return result;
            }
            if (!changed)
                return result;
            std::advance(from, place);
            result.insert(*from++);
        }
        return result;
    }
};

template <class List>
Names namesIn(const List& list) {
    return Names(list.begin(), list.end());
}

} // namespace

TEST_F(NamesTest, TheTableHoldsEveryEffectThatTheProgramRegisters) {
    Names registered, listed;
    find(test::sourcePath("app/main.cpp"), "addCallback\\(\"([^\"]+)\"", registered);
    for (const EffectNames& names : effectNames())
        listed.insert(names.name);
    EXPECT_EQ(registered.size(), mEffects.size());
    for (const std::string& name : registered) {
        EXPECT_TRUE(listed.count(name)) << name;
        EXPECT_TRUE(mEffects.count(name)) << name;
    }
}

TEST_F(NamesTest, EveryEffectAnswersToItsSplinesAndNoOthers) {
    if (!DATA_IS_OURS)
        GTEST_SKIP() << "the sanitizer's own data changes too";
    for (const auto& [name, made] : mEffects)
        EXPECT_EQ(answered(made, mWords,
                           [&, &it = made](const std::string& text) {
                               it.effect->updateSpline(1.25f, text, 0.625f);
                           }),
                  namesIn(namesOf(name).splines))
            << name;
}

TEST_F(NamesTest, EveryEffectAnswersToItsTriggersAndNoOthers) {
    if (!DATA_IS_OURS)
        GTEST_SKIP() << "the sanitizer's own data changes too";
    for (const auto& [name, made] : mEffects) {
        const EffectNames& names = namesOf(name);
        const Names some = {"", "alpha", "anything", "next"};
        Names expected;
        for (const TriggerNames& trigger : names.triggers)
            expected.insert(trigger.name);
        EXPECT_EQ(answered(made, names.anyTrigger ? some : mWords,
                           [&, &it = made](const std::string& text) {
                               it.effect->executeTrigger(1.25f, text, text == "color" ? "white" : "anything");
                           }),
                  names.anyTrigger ? some : expected)
            << name;
    }
}

TEST_F(NamesTest, ClearKnowsItsColoursAndNoOthers) {
    if (!DATA_IS_OURS)
        GTEST_SKIP() << "the sanitizer's own data changes too";
    const Made& clear = mEffects["clear"];
    EXPECT_EQ(answered(clear, mWords,
                       [&](const std::string& text) { clear.effect->executeTrigger(0, "color", text); }),
              namesIn(namesOf("clear").triggers[1].words));
    EXPECT_STREQ(namesOf("clear").triggers[1].name, "color");
}

// What "type" takes shows only in the picture: any other word gives that of none.
TEST_F(NamesTest, TheTypesOfClearAndOverlayAreThoseThatAreSeen) {
    for (const char* name : {"clear", "overlay"}) {
        Effect& effect = *mEffects[name].effect;
        effect.updateSpline(0, "alpha", 1);
        const auto draw = [&](const std::string& type) {
            test::CaptureStdout out;
            effect.executeTrigger(0, "type", type);
            return over(0.9f, 0.6f, 0.3f, [&] { effect.update(1, 0, 0.25f); });
        };
        const test::Picture none = draw("");
        Names seen;
        for (const std::string& word : mWords)
            if (test::comparePictures(draw(word), none).changed > 0)
                seen.insert(word);
        const TriggerNames& type = namesOf(name).triggers[0];
        EXPECT_STREQ(type.name, "type");
        Names words = namesIn(type.words);
        words.erase("flat"); // which is what no word gives
        EXPECT_EQ(seen, words) << name;
    }
}

TEST_F(NamesTest, TheTargetsAreThoseThatTheEffectsMake) {
    Names made;
    for (const auto& target : mCommon.mFbos)
        made.insert(target.first);
    EXPECT_EQ(made, namesIn(namesOf("waxon").triggers[0].words));
}
