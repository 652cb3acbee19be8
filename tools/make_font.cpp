// Renders the font of the screen: 16 by 16 cells, one for each byte of Latin-1, the shape in red (and green
// and blue, so that it can be looked at), no transparency. Every glyph stands at the left of its cell on one
// baseline.
//   zentrak-make-font FONT.ttf OUT.png [CELL]      CELL: the cell's side in pixels, 16 if it is not given

#include "canvas.h"
#include "command/command.h"

#include <algorithm>
#include <cstdio>
#include <ft2build.h>
#include FT_FREETYPE_H

using namespace zentrak::art;

namespace {

constexpr int GRID = 16;

// Hints stems to whole columns: a thin one keeps a pixel bright enough to be measured.
constexpr FT_Int32 LOADING = FT_LOAD_RENDER | FT_LOAD_FORCE_AUTOHINT | FT_LOAD_TARGET_NORMAL;

// An outline font, closed on destruction.
class Outline {
public:
    Outline() = default;
    ~Outline() {
        if (mLibrary)
            FT_Done_FreeType(mLibrary); // with its faces
    }
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    bool open(const char* path) {
        return !FT_Init_FreeType(&mLibrary) && !FT_New_Face(mLibrary, path, 0, &mFace);
    }
    FT_Face face() const { return mFace; }

private:
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

// Is the Latin-1 character visible? Not controls, spaces and the soft hyphen.
bool isPrinted(int c) {
    return (c > 32 && c < 127) || (c > 160 && c != 173);
}

// The highest and lowest ink of all characters, in pixels from the baseline.
struct Extent {
    int above = 0, below = 0, wide = 0;
};

Extent measure(FT_Face face) {
    Extent extent;
    for (int c = 0; c < GRID * GRID; ++c)
        if (isPrinted(c) && !FT_Load_Char(face, FT_ULong(c), LOADING)) {
            const FT_GlyphSlot glyph = face->glyph;
            extent.above = std::max(extent.above, glyph->bitmap_top);
            extent.below = std::max(extent.below, int(glyph->bitmap.rows) - glyph->bitmap_top);
            extent.wide = std::max(extent.wide, int(glyph->bitmap.width));
        }
    return extent;
}

// The screen takes a glyph to be as wide as its last column with a value above 200. Where more than one
// column of ink follows that one, the last of them is brightened enough to count.
void brightenEdge(Canvas& canvas, int left, int top, int cell) {
    const auto brightest = [&](int x) {
        float most = 0;
        for (int y = 0; y < cell; ++y)
            most = std::max(most, canvas.at(left + x, top + y).r);
        return most;
    };
    int ink = cell - 1, counted = cell - 1;
    while (ink >= 0 && brightest(ink) < 0.25f)
        --ink;
    while (counted >= 0 && brightest(counted) < 201.0f / 255.0f)
        --counted;
    if (ink - counted < 2)
        return;
    const float factor = 208.0f / 255.0f / brightest(ink);
    for (int y = 0; y < cell; ++y) {
        Colour& colour = canvas.at(left + ink, top + y);
        colour.r = colour.g = colour.b = colour.r * factor;
    }
}

// The largest size whose characters leave a row and a column of the cell free; 0 if there is none.
int chooseSize(FT_Face face, int cell) {
    int best = 0;
    for (int size = 4; size <= cell; ++size) {
        FT_Set_Pixel_Sizes(face, 0, FT_UInt(size));
        const Extent extent = measure(face);
        if (extent.above + extent.below > cell - 1 || extent.wide > cell - 1)
            break;
        best = size;
    }
    return best;
}

} // namespace

int main(int count, char** arguments) {
    int cell = 16;
    if (count < 3 || count > 4 || zentrak::command::hasOption(count, arguments, 1) ||
        (count == 4 && !zentrak::command::readNumber(arguments[3], 8, 256, cell))) {
        std::fprintf(
            stderr,
            "usage: zentrak-make-font FONT.ttf OUT.png [CELL]     the side of a cell, 8 to 256 pixels\n");
        return 2;
    }
    Outline outline;
    if (!outline.open(arguments[1])) {
        std::fprintf(stderr, "zentrak-make-font: %s is no font that can be read\n", arguments[1]);
        return 1;
    }

    const FT_Face face = outline.face();
    const int size = chooseSize(face, cell);
    if (!size) {
        std::fprintf(stderr, "zentrak-make-font: %s does not fit into cells of %d\n", arguments[1], cell);
        return 1;
    }
    FT_Set_Pixel_Sizes(face, 0, FT_UInt(size));
    const Extent extent = measure(face);
    const int baseline = (cell - extent.above - extent.below) / 2 + extent.above;

    Canvas canvas(cell * GRID, cell * GRID);
    canvas.paint([](float, float) { return Colour{0, 0, 0, 1}; });
    for (int c = 0; c < GRID * GRID; ++c) {
        if (!isPrinted(c) || FT_Load_Char(face, FT_ULong(c), LOADING))
            continue;
        const FT_Bitmap& bitmap = face->glyph->bitmap;
        const int top = c / GRID * cell + baseline - face->glyph->bitmap_top, left = c % GRID * cell;
        for (int y = 0; y < int(bitmap.rows); ++y)
            for (int x = 0; x < int(bitmap.width); ++x) {
                const float shape = float(bitmap.buffer[y * bitmap.pitch + x]) / 255.0f;
                canvas.at(left + x, top + y) = {shape, shape, shape, 1};
            }
        brightenEdge(canvas, left, c / GRID * cell, cell);
    }
    const bool written = canvas.write(arguments[2]);
    if (written)
        std::printf("%d pixels high letters in cells of %d, %d above the baseline, %d below, %d wide\n", size,
                    cell, extent.above, extent.below, extent.wide);
    return written ? 0 : 1;
}
