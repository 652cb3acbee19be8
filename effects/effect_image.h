// Pictures whose pixels an effect reads.
#pragma once

#include "am_image.h"
#include "mb_vector4.h"

#include <cstddef>
#include <string>

namespace zentrak::display {
class DisplayGL;
}

namespace zentrak::kindler {

// The shared, read-only image of this name from the display's archives, never null. Throws what
// ArchiveManager::loadImage and, without archives, a null image throw.
am::Image loadPixels(display::DisplayGL& display, const std::string& name);

// The pixel in column x and row y from the top, both inside the image: red, green, blue and alpha from 0
// to 1.
mathbase::Vector4f pixelAt(const am::ImageObject& image, int x, int y);

// The boxes that an effect makes of the pixels of its pictures, at most.
constexpr size_t MAX_BOXES = 65536;

// Called before another box is made of a pixel of `file`, with the number of those made so far. Throws "Too
// many pixels in '%s': an effect draws at most %d of them as boxes".
void checkBoxes(size_t made, const std::string& file);

} // namespace zentrak::kindler
