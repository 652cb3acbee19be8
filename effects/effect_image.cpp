#include "effect_image.h"

#include "am_archivemanager.h"
#include "dis_display.h"

namespace zentrak::kindler {

am::Image loadPixels(display::DisplayGL& display, const std::string& name) {
    if (display.mArchiveManager == nullptr)
        return am::Image();
    return display.mArchiveManager->loadImage(name, -1, false);
}

mathbase::Vector4f pixelAt(const am::ImageObject& image, int x, int y) {
    const unsigned char* p = image.getData() + (size_t(y) * size_t(image.getWidth()) + size_t(x)) * 4;
    return mathbase::Vector4f(float(p[2]) / 255.0f, float(p[1]) / 255.0f, float(p[0]) / 255.0f,
                              float(p[3]) / 255.0f);
}

} // namespace zentrak::kindler
