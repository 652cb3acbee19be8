// The player's own editor as its layout and style files make it, for the author of those.
#pragma once

#include "kin_gui.h"
#include "script_engine.h"
#include "studio_document.h"

namespace zentrak::studio {

// Drawn over the studio, with the picture in the upper right quarter of the window. It has a copy of the
// script: what is dragged in it changes nothing.
class Preview {
public:
    // Reads the layout. `length` of the show, seconds. Throws what kindler::Gui::setup throws.
    Preview(display::DisplayGL& display, const Document& document, double length);

    void setTime(double time) { mEngine.mPreviousTime = float(time); } // that its ruler shows
    bool isShown() const { return mGui.isVisible(); }                  // until Tab hides it

private:
    script::ScriptEngine mEngine; // first: the interface has its rows of it
    kindler::Gui mGui;
};

} // namespace zentrak::studio
