// A line of text.
#pragma once

#include "pan_control.h"
#include "pan_textline.h"

namespace zentrak::panorama {

class Label : public Control {
public:
    TextLine::Align mAlign = TextLine::START;  // across
    TextLine::Align mVAlign = TextLine::START; // and down

    Label();

    Control* clone() override; // a plain new one, owned by the caller

    const std::string& getText() const { return mLine.get(); }
    void setText(const std::string& text) { mLine.set(text); }

    // "text"; "align" with "left", "center" or "right"; "valign" with "top", "middle" or "bottom".
    void load(xml::IteratorConst& it) override;
    void draw() override;

private:
    TextLine mLine;
};

} // namespace zentrak::panorama
