// A listener that records its calls.
#pragma once

#include "dis_display.h"

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace zentrak::test {

class Recorder : public display::Listener {
public:
    Recorder(std::string name, std::vector<std::string>& log) : mName(std::move(name)), mLog(log) {}

    int onMouseUp(const display::MouseButtonEvent& event) override {
        note("up %d", event.button);
        buttons.push_back(event);
        return answer;
    }
    int onMouseDown(const display::MouseButtonEvent& event) override {
        note("down %d%s", event.button, event.doubleClick ? " double" : "");
        buttons.push_back(event);
        return answer;
    }
    int onMouseMove(const display::MouseMoveEvent& event) override {
        note("move");
        moves.push_back(event);
        return answer;
    }
    int onMouseWheel(const display::MouseMoveEvent& event) override {
        note("wheel");
        wheels.push_back(event);
        return answer;
    }
    int onKeyDown(const display::KeyEvent& event) override {
        note("key %d", event.key);
        keys.push_back(event);
        const int result = answer; // the calls below may delete it
        run(onKey);
        return result;
    }
    int onKeyUp(const display::KeyEvent& event) override {
        note("keyup %d", event.key);
        keys.push_back(event);
        return answer;
    }
    int onCharDown(const display::CharEvent& event) override {
        note("char %d", event.key);
        return answer;
    }
    int onCharUp(const display::CharEvent& event) override {
        note("charup %d", event.key);
        return answer;
    }
    int onQuit() override {
        note("quit");
        return quitAnswer;
    }
    void onResize(int oldWidth, int oldHeight) override {
        note("resize %dx%d to %dx%d", oldWidth, oldHeight, display->mWindowMode.width,
             display->mWindowMode.height);
    }
    void onMove() override { note("moved"); }
    void onDraw() override {
        ++draws;
        if (noteDraws)
            note("draw");
        run(draw);
    }
    void onIconify(bool iconified) override { note("iconify %d", iconified); }
    void onChangeFocus(bool focused) override { note("focus %d", focused); }

    int answer = WHATEVER;     // to input
    int quitAnswer = WHATEVER; // to onQuit
    bool noteDraws = false;
    int draws = 0;
    std::function<void()> draw;  // what to do in onDraw
    std::function<void()> onKey; // what to do in onKeyDown

    std::vector<display::MouseButtonEvent> buttons;
    std::vector<display::MouseMoveEvent> moves;
    std::vector<display::MouseMoveEvent> wheels;
    std::vector<display::KeyEvent> keys;

private:
    // A copy, because the call may delete the recorder.
    static void run(std::function<void()> action) {
        if (action)
            action();
    }

    __attribute__((format(printf, 2, 3))) void note(const char* format, ...) {
        char text[200];
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        mLog.push_back(mName + " " + text);
    }

    std::string mName;
    std::vector<std::string>& mLog;
};

} // namespace zentrak::test
