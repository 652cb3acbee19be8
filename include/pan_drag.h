// A press that is held: follows the mouse wherever it goes, and hears of a release wherever it happens.
#pragma once

#include "mb_vector2.h"
#include "pan_event.h"

namespace zentrak::panorama {

class Control;

// An event goes to one control of several: while something is dragged the mouse may be over another one,
// which then gets its moves and its release. But each move goes before as "reset" to all that accept events,
// and the root counts the releases.
class Drag {
public:
    // The left button, or whichever the control takes, went down on `control`.
    void start(Control& control, const Event& event);
    // To be asked with each event while something is held: whether the button was released over another
    // control in the meantime.
    bool isLost(Control& control, const Event& event) const;
    // Whether the event brings a new place of the mouse: once for each move, however often it is told.
    bool movesOn(const Event& event);

private:
    unsigned mReleases = 0; // of the left button in the window, at the start
    bool mTold = false;     // mPlace came by "reset": its "mousemove" brings nothing new
    mathbase::Vector2f mPlace{0, 0};
};

} // namespace zentrak::panorama
