// The colours that windows, tab views and their pages start with.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// A colour, and a tenth of it at the same alpha.
inline ColorPair darkened(const mathbase::Vector4f& color) {
    mathbase::Vector4f second = color * 0.1f;
    second.w = color.w;
    return {color, second};
}

inline void setTabColors(Control& control) {
    using mathbase::Vector4f;
    const Vector4f grey(0.5f, 0.5f, 0.5f, 1), white(1, 1, 1, 1);
    control.mText.color = {grey, grey};
    control.mText.highlight = {white, white};
    control.mBack.color = darkened(Vector4f(0.323f, 0.323f, 0.54f, 0.91f));
    control.mCaption.color = {Vector4f(0, 0, 0, 0.9f), Vector4f(0.2f, 0.2f, 0.2f, 0.9f)};
    control.mCaption.highlight = {Vector4f(0.4f, 0.4f, 0.4f, 1), Vector4f(0.5f, 0.5f, 0.5f, 1)};
}

} // namespace zentrak::panorama
