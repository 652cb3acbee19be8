// Reads any bytes as a script and plays it: forwards, to the far end, and back to the start.

#include "fuzz.h"
#include "script_loadxml.h"
#include "ztk_system.h"

#include <cmath>

using namespace zentrak;

namespace {

// Stands in for every effect that the script names.
class Counter : public script::Callback {
public:
    long firings = 0;

    void resetTriggers() override { ++mResets; }
    void executeTrigger(float, const std::string&, const std::string&) override { ++firings; }
    void updateSpline(float, const std::string&, float value) override { mSum += double(value); }
    void update(float, float, float) override { ++mDepth; }
    void postUpdate(float, float, float) override { fuzz::check(--mDepth >= 0); }

private:
    long mResets = 0;
    long mDepth = 0;
    double mSum = 0;
};

// Registers the counter for every name; returns the number of triggers.
long answerTo(script::ScriptEngine& engine, Counter& counter) {
    long triggers = 0;
    std::vector<script::Effect*> open = engine.mEffects;
    while (!open.empty()) {
        script::Effect* const effect = open.back();
        open.pop_back();
        open.insert(open.end(), effect->mChildren.begin(), effect->mChildren.end());
        triggers += long(effect->mTriggers.size());
        for (const script::Spline* spline : effect->mSplines)
            fuzz::check(!spline->mKeys.empty());
        engine.addCallback(effect->mName, &counter);
    }
    return triggers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    script::ScriptEngine engine;
    try {
        if (!script::LoadXML().loadMem(reinterpret_cast<const char*>(data), long(size), engine))
            return 0;
    } catch (const Exception&) {
        return 0;
    }
    Counter counter;
    const long triggers = answerTo(engine, counter);
    for (const float time : {0.0f, 0.5f, 4.0f, 100.0f, 1e9f, INFINITY, NAN, 0.25f, -1.0f}) {
        const long before = counter.firings;
        engine.update(time);
        fuzz::check(counter.firings - before <= triggers * script::Effect::MAX_FIRINGS);
    }
    return 0;
}
