#include "pan_image.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "pan_look.h"
#include "ztk_system.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

Image::Image() {
    mType = "image";
    setSunkLook(mBack);
    setPair(mBack.color, NO_COLOR);
    setPair(mBack.border, NO_COLOR);
    setPair(mCaption.color, white); // what the picture is multiplied by
    setPair(mCaption.inactive, Vector4f(0.5f, 0.5f, 0.5f, 0.5f));
    setPair(mText.inactive, faint); // the box drawn for a missing picture
}

Image::~Image() = default;

Control* Image::clone() {
    return new Image;
}

void Image::load(xml::IteratorConst& it) {
    Control::load(it);
    if (!it->getValue("filename").empty())
        setFilename(it->getValue("filename"));
}

bool Image::setFilename(const std::string& filename) {
    mFilename = filename;
    mTexture.reset();
    if (filename.empty() || !getDisplay())
        return false;
    try {
        auto texture = std::make_unique<display::Texture>(getDisplay());
        texture->load(filename, false);
        texture->bind(); // here, and not in the first frame
        texture->unbind();
        mTexture = std::move(texture);
    } catch (const Exception&) { // already logged
    }
    return mTexture != nullptr;
}

Box2 Image::getPlace() const {
    const Box2 box = toPixels(mArea.world);
    const float width = float(mTexture->getWidth()), height = float(mTexture->getHeight());
    const float scale = std::min(box.getWidth() / width, box.getHeight() / height);
    const float w = toPixel(width * scale), h = toPixel(height * scale);
    const float x = toPixel((box.x1 + box.x2 - w) * 0.5f), y = toPixel((box.y1 + box.y2 - h) * 0.5f);
    return Box2(x, y, x + w, y + h);
}

void Image::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, mBack.color);
    if (mTexture) {
        try {
            render->setColor((mInactive ? mCaption.inactive : mCaption.color).first, NO_COLOR);
            render->drawTexture(*mTexture, getPlace());
        } catch (const Exception&) { // a new context, and the file has gone
            mTexture.reset();
        }
    } else {
        render->setColor(mText.inactive.first, NO_COLOR);
        render->drawLine(Vector2f(box.x1 + 0.5f, box.y1 + 0.5f), Vector2f(box.x2 - 0.5f, box.y2 - 0.5f));
        render->drawLine(Vector2f(box.x1 + 0.5f, box.y2 - 0.5f), Vector2f(box.x2 - 0.5f, box.y1 + 0.5f));
        outline(*render, box, mText.inactive);
    }
    outline(*render, box, mBack.border);
    Control::draw();
}

} // namespace zentrak::panorama
