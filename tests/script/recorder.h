// A callback that records its calls.
#pragma once

#include "script_callback.h"

#include <cstdio>
#include <string>
#include <vector>

namespace zentrak::test {

// Each call is one line, such as "clear update 2 0.5 0.25"; several recorders may share a list.
class Recorder : public script::Callback {
public:
    Recorder(std::string name, std::vector<std::string>& calls) : mName(std::move(name)), mCalls(calls) {}

    void resetTriggers() override { mCalls.push_back(mName + " reset"); }
    void executeTrigger(float time, const std::string& name, const std::string& value) override {
        mCalls.push_back(mName + " trigger " + number(time) + " " + name + "=" + value);
    }
    void updateSpline(float time, const std::string& name, float value) override {
        mCalls.push_back(mName + " spline " + number(time) + " " + name + "=" + number(value));
    }
    void update(float time, float delta, float progress) override {
        mCalls.push_back(mName + " update " + number(time) + " " + number(delta) + " " + number(progress));
    }
    void postUpdate(float time, float delta, float progress) override {
        mCalls.push_back(mName + " post " + number(time) + " " + number(delta) + " " + number(progress));
    }

    static std::string number(float value) {
        char text[32];
        snprintf(text, sizeof(text), "%g", double(value));
        return text;
    }

private:
    std::string mName;
    std::vector<std::string>& mCalls;
};

} // namespace zentrak::test
