#include "pan_frame.h"

#include "pan_look.h"

namespace zentrak::panorama {

using mathbase::Vector4f;

Frame::Frame() {
    mType = "frame";
    mBack.color = {Vector4f(0, 0, 0, 0.6f), Vector4f(0, 0, 0, 0.6f)};
}

Control* Frame::clone() {
    return new Frame;
}

void Frame::draw() {
    if (Render* render = getRender()) {
        look::fill(*render, mArea.clip, mBack.color);
        look::outline(*render, mArea.clip, mBack.border);
    }
    Control::draw();
}

} // namespace zentrak::panorama
