// The timeline: the spans of the show in drawing order, and the callbacks that draw them.
#pragma once

#include "script_callback.h"
#include "script_effect.h"

#include <map>
#include <string>
#include <vector>

namespace zentrak::script {

class ScriptEngine {
public:
    float mPreviousTime = 0;                     // of the last update that was not refused
    float mScriptLength = 0;                     // seconds, the largest end of a top-level span
    std::map<std::string, Callback*> mCallbacks; // not owned
    std::vector<Effect*> mEffects;               // owned; file order is drawing order

    ScriptEngine() = default;
    ~ScriptEngine();
    ScriptEngine(const ScriptEngine&) = delete;
    ScriptEngine& operator=(const ScriptEngine&) = delete;

    // Registers `callback`, which stays the caller's, and replaces an earlier one of this name. Spans whose
    // callback is null only group, as those of unknown names do.
    void addCallback(const std::string& name, Callback* callback);
    // Runs all that is active at `time`, in seconds. A time below 0 changes nothing. Returns false only past
    // the end, where nothing is called.
    bool update(const float& time);
    // Sets mScriptLength. Nested spans don't count.
    void init();
};

} // namespace zentrak::script
