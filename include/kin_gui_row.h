// One line of the editor: a label, followed by a strip of the time axis.
#pragma once

#include "pan_control.h"

namespace zentrak::script {
class Effect;
class Spline;
} // namespace zentrak::script

namespace zentrak::kindler {

class Effector;

// A row shows the bar of a span, or the curve of one of its splines; rows are built once, and hold pointers
// into the script. With the focus inside it all keys but Tab end here; Esc gives them back.
class Row : public panorama::Control {
public:
    static constexpr float LABEL_WIDTH = 200.0f; // pixels before the strip
    static constexpr float SPAN_HEIGHT = 30.0f;  // pixels of a row with a bar
    static constexpr float CURVE_HEIGHT = 70.0f; // pixels of a row with a curve

    int mLevel = 0; // nesting depth: indents the label

    Row();

    panorama::Control* clone() override; // a plain new one, owned by the caller

    // Fills the row with the bar of `effect`, and appends rows for its splines and, recursively, its nested
    // spans. The row must already be in the control "effects"; without one it gets no others. The script's
    // records are not owned.
    void loadEffect(script::Effect* effect, int level);
    // Fills the row with the curve of `spline`, from the left to the right edge of `area`.
    void loadSpline(mathbase::Box2 area, script::Spline* spline, int level);

    // Adds a row to the control "effects", which owns it from then on. A stack is to be placed by its
    // recalculate once all rows are there.
    static void append(panorama::Control& rows, Row* row);

    void setScrollPos(float position); // pixels that the strip is moved to the left

    void buildChildArea() override;
    int handleEvent(panorama::Event& event) override;
    void draw() override;

private:
    Row* addRow(panorama::Control& rows, float height);
    bool takesKey(const panorama::Event& event);
};

} // namespace zentrak::kindler
