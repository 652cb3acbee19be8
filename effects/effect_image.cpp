#include "effect_image.h"

#include "am_archivemanager.h"
#include "dis_display.h"
#include "ztk_system.h"

namespace zentrak::kindler {

am::Image loadPixels(display::DisplayGL& display, const std::string& name) {
    am::Image image;
    if (display.mArchiveManager)
        image = display.mArchiveManager->loadImage(name, -1, false);
    image.operator->(); // throws for a null image
    return image;
}

void checkBoxes(size_t made, const std::string& file) {
    if (made >= MAX_BOXES)
        throw Exception("Too many pixels in '%s': an effect draws at most %d of them as boxes", file.c_str(),
                        int(MAX_BOXES));
}

mathbase::Vector4f pixelAt(const am::ImageObject& image, int x, int y) {
    const unsigned char* p = image.getData() + (size_t(y) * size_t(image.getWidth()) + size_t(x)) * 4;
    return mathbase::Vector4f(float(p[2]) / 255.0f, float(p[1]) / 255.0f, float(p[0]) / 255.0f,
                              float(p[3]) / 255.0f);
}

} // namespace zentrak::kindler
