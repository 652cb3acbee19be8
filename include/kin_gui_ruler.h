// The time axis of the editor: a scale in seconds, and a line through the rows at the time of the show.
#pragma once

#include "pan_control.h"

#include <string>

namespace zentrak::script {
class ScriptEngine;
}

namespace zentrak::kindler {

// The control type "timeruler". It is above or below the rows and as wide as they are, and comes after them
// in the layout, so that its line is drawn on top. The mouse goes through it.
class Ruler : public panorama::Control {
public:
    script::ScriptEngine* mEngine = nullptr; // not owned; null has no time
    panorama::Control* mRows = nullptr;      // not owned; what the line goes through, or null
    float mScrollPos = 0;                    // pixels that the axis is moved to the left

    Ruler();

    panorama::Control* clone() override; // a plain new one, owned by the caller

    bool acceptEvents(panorama::Event& event) override; // none
    void draw() override;

private:
    std::string mNumber; // as drawn

    void drawScale(panorama::Render& render, float left);
    void drawTime(panorama::Render& render, float left);
};

} // namespace zentrak::kindler
