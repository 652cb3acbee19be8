#include "pan_tabframe.h"

#include "pan_tabcolors.h"
#include "xml_iterator.h"

namespace zentrak::panorama {

using mathbase::Vector4f;

TabFrame::TabFrame() {
    mType = mCaptionText = "tabframe";
    setTabColors(*this);
    mBack.color = darkened(Vector4f(0, 0, 0, 0));
}

Control* TabFrame::clone() {
    return new TabFrame;
}

void TabFrame::load(xml::IteratorConst& it) {
    Control::load(it);
    setMaximized(true);
    setVisible(false);
    const std::string caption = it->getValue("caption");
    if (!caption.empty())
        setCaption(caption);
}

} // namespace zentrak::panorama
