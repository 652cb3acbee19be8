// Loads any bytes as the picture of a font, which is measured in main memory: no window is needed.

#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_font.h"
#include "fuzz.h"
#include "image_fuzz.h"

#include <cmath>

using namespace zentrak;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static display::DisplayGL display(display::WindowMode("", 640, 480, false));
    const fuzz::InFolder folder;
    std::vector<uint8_t> picture(data, data + size);
    am::repairChecksums(picture);
    fuzz::write("font.png", picture.data(), picture.size());

    am::ArchiveManager archives;
    archives.addArchive("./");
    display.mArchiveManager = &archives;
    display::Font font(&display);
    try {
        font.load("font.png", false, mathbase::Vector2f(640, 480));
    } catch (const Exception&) {
        return 0;
    }
    for (int c = 0; c < 256; ++c) {
        const auto character = static_cast<unsigned char>(c);
        const display::Font::Cell cell = font.getCell(character);
        const mathbase::Box2& ink = font.getInk(character);
        fuzz::check(font.getAdvance(character) >= 0 && font.getAdvance(character) <= font.getWidth() + 2);
        fuzz::check(cell.s0 >= 0 && cell.s1 <= 1 && cell.t0 >= 0 && cell.t1 <= 1);
        fuzz::check(ink.x1 >= 0 && ink.x2 <= font.getWidth() && ink.y1 >= 0 && ink.y2 <= font.getHeight());
    }
    const mathbase::Vector2f solid = font.getSolid();
    fuzz::check(solid.x >= 0 && solid.x <= 1 && solid.y >= 0 && solid.y <= 1);
    return 0;
}
