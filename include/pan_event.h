// An event for a control: an input event of the display, or one of the toolkit's own.
#pragma once

#include "dis_event.h"

#include <string>

namespace zentrak::panorama {

// `type` is the word that controls dispatch on: "mousedown", "mouseup", "mousemove", "mousewheel", "keydown",
// "keyup", "keychardown", "keycharup"; "reset", which clears the hover state before every move; and
// "context", which brings the path of the menu's row that was chosen.
struct Event : display::Event {
    int button = 0;                // of "mousedown" and "mouseup": a display::MouseButton
    int key = 0;                   // of "keydown" and "keyup": a display::Key
    int character = 0;             // of "keychardown" and "keycharup": its code
    mathbase::Vector2f mouseDelta; // old position minus new, pixels: a move to the right is negative
    float wheelDelta = 0;          // steps; upward is positive
    std::string type;              // see above
    bool doubleClick = false;      // of "mousedown"
    std::string text;              // of "context": captions with dots between, as in "spline.type.linear"
    bool hoverCleared = false;     // of "mousemove": "reset" has already been sent to all controls below

    virtual ~Event() = default;

    bool isKey() const { // one of the four that go to the focus
        return type == "keydown" || type == "keyup" || type == "keychardown" || type == "keycharup";
    }
};

} // namespace zentrak::panorama
