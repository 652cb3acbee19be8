#include "pan_textline.h"

#include "pan_look.h"

namespace zentrak::panorama {

void TextLine::set(const std::string& text) {
    if (text == mText)
        return;
    mText = text;
    mWidth = -1;
}

const std::string& TextLine::fit(Render& render, float width) {
    if (!(width > 0))
        width = 0;
    if (width == mWidth)
        return mShown;
    mWidth = width;

    const float dots = 3 * render.getAdvance('.');
    float length = 0;
    float shortLength = 0; // of as much as leaves room for the dots
    size_t shortEnd = 0;
    for (size_t i = 0; i < mText.size(); ++i) {
        length += render.getAdvance(static_cast<unsigned char>(mText[i]));
        if (length > width) {
            mShown.assign(mText, 0, shortEnd);
            mLength = shortLength;
            if (dots <= width) {
                mShown += "...";
                mLength += dots;
            }
            return mShown;
        }
        if (length + dots <= width) {
            shortLength = length;
            shortEnd = i + 1;
        }
    }
    mShown = mText;
    mLength = length;
    return mShown;
}

void TextLine::draw(Render& render, const mathbase::Box2& box, Align horizontal, Align vertical) {
    if (fit(render, box.getWidth()).empty())
        return;
    const float half = render.getFontHeight() * 0.5f;
    float x = box.x1, y = box.y1 + half;
    if (horizontal == MIDDLE)
        x = (box.x1 + box.x2 - mLength) * 0.5f;
    else if (horizontal == END)
        x = box.x2 - mLength;
    if (vertical == MIDDLE)
        y = (box.y1 + box.y2) * 0.5f;
    else if (vertical == END)
        y = box.y2 - half;
    render.setFontMode(0);
    render.drawText(mShown, mathbase::Vector2f(toPixel(x), toPixel(y)));
}

} // namespace zentrak::panorama
