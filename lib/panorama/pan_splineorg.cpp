#include "pan_splineorg.h"

namespace zentrak::panorama {

using mathbase::Vector4f;

SplineOrg::SplineOrg() {
    mType = mName = mCaptionText = "splineorg";
    mBack.color = {Vector4f(0, 0.1f, 0.2f, 1), Vector4f(0, 0.06f, 0.13f, 1)};
    mBack.highlight.first = Vector4f(1, 0.7f, 0.2f, 1);
    mText.color.first = Vector4f(0.7f, 0.75f, 0.85f, 1);
    setSpline(new SplineBase, true);
}

Control* SplineOrg::clone() {
    return new SplineOrg;
}

int SplineOrg::addNode(const SplineNodeOrg& node) {
    Key key;
    key.time = node.x;
    key.value = node.y;
    if (!mSpline)
        setSpline(new SplineBase, true);
    mDirty = true;
    return mSpline->addKey(key);
}

} // namespace zentrak::panorama
