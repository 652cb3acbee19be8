// Pictures whose pixels an effect reads.
#pragma once

#include "am_image.h"
#include "mb_vector4.h"

#include <string>

namespace zentrak::display {
class DisplayGL;
}

namespace zentrak::kindler {

// The shared, read-only image of this name from the display's archives. Throws what ArchiveManager::loadImage
// throws; without archives the image is null, and throws on use.
am::Image loadPixels(display::DisplayGL& display, const std::string& name);

// The pixel in column x and row y from the top, both inside the image: red, green, blue and alpha from 0
// to 1.
mathbase::Vector4f pixelAt(const am::ImageObject& image, int x, int y);

} // namespace zentrak::kindler
