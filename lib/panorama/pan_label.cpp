#include "pan_label.h"

#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;

namespace {

constexpr float MARGIN = 4.0f; // pixels left and right of the text

} // namespace

Label::Label() {
    mType = "label";
    setTextLook(mText);
    setPair(mBack.border, NO_COLOR);
}

Control* Label::clone() {
    return new Label;
}

void Label::load(xml::IteratorConst& it) {
    Control::load(it);
    if (!it->getValue("text").empty())
        setText(it->getValue("text"));
    const std::string& align = it->getValue("align");
    if (!align.empty())
        mAlign = align == "center" ? TextLine::MIDDLE : align == "right" ? TextLine::END : TextLine::START;
    const std::string& valign = it->getValue("valign");
    if (!valign.empty())
        mVAlign = valign == "middle"   ? TextLine::MIDDLE
                  : valign == "bottom" ? TextLine::END
                                       : TextLine::START;
}

void Label::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, mBack.color);
    outline(*render, box, mBack.border);
    render->setColor(pick(mText, mInactive, false, false).first, NO_COLOR);
    // Away from the edge of a visible box.
    const bool plain = mBack.color.first.w <= 0 && mBack.border.first.w <= 0;
    const float margin = plain ? 0.0f : MARGIN;
    mLine.draw(*render, Box2(box.x1 + margin, box.y1, box.x2 - margin, box.y2), mAlign, mVAlign);
    Control::draw();
}

} // namespace zentrak::panorama
