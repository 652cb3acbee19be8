// Loads any bytes under the name of a TGA file, of which there is no reader: it must say so.

#include "am_imagemanager.h"
#include "fuzz.h"
#include "ztk_system.h"

using namespace zentrak;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    am::ImageManager images;
    bool refused = false;
    try {
        images.loadImage(
            "a.tga",
            am::File(new am::FileStructure("a.tga", reinterpret_cast<const char*>(data), long(size))), false);
    } catch (const Exception&) {
        refused = true;
    }
    fuzz::check(refused && images.getImage("a.tga").isNull());
    return 0;
}
