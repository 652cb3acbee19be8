#include "pan_label.h"

#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;

Label::Label() {
    mType = "label";
    setTextLook(mText);
    setPair(mBack.border, none);
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
    render->setColor(pick(mText, mInactive, false, false).first, none);
    mLine.draw(*render, box, mAlign, mVAlign);
    Control::draw();
}

} // namespace zentrak::panorama
