// A column of options, each of which is on or off.
#pragma once

#include "pan_radiobutton.h"

namespace zentrak::panorama {

// As RadioButton, but a choice turns an option on or off and leaves the others. With the keys, Up and Down go
// to the next option and Space chooses it.
class Checkbox : public RadioButton {
public:
    Checkbox();

    Control* clone() override; // a plain new one without options, owned by the caller
    void setChecked(int index, bool checked) override;

protected:
    void choose(int index) override;
    bool moveCursor(int index) override;
    void drawMark(Render& render, const mathbase::Box2& box, const BoxData& data, bool hover,
                  bool pushed) override;
};

} // namespace zentrak::panorama
