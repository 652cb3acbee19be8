#include "dis_font.h"

#include "dis_display.h"
#include "ztk_system.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace zentrak::display {

namespace {

constexpr int GRID = 16;    // cells a side
constexpr int SHAPE = 200;  // above this a pixel belongs to the glyph
constexpr int SPOT = 4;     // pixels a side of the white spot
constexpr float GAP = 2.0f; // pixels between glyphs

} // namespace

Font::Font(DisplayGL* display)
    : Resource(display, STATIC),
      mWidth(0),
      mHeight(0),
      mCharWidth(0),
      mCharHeight(0),
      mKerning{},
      mAlign(ALIGN_LEFT),
      mUnitSizeX(0),
      mUnitSizeY(0),
      mLetterWidth(1.0f / GRID),
      mLetterHeight(1.0f / GRID),
      mData(nullptr),
      mSpot(-1),
      mTexture(display) {}

void Font::load(const std::string& filename, bool mipmaps, mathbase::Vector2f size) {
    if (!canLoad())
        throw Exception("Cannot load font motherfucker!");
    am::Image image = loadImage(filename, true);
    mWidth = uint32_t(image->getWidth());
    mHeight = uint32_t(image->getHeight());
    mLetterWidth = mLetterHeight = 0.0625f;
    mCharWidth = int(mWidth >> 4);
    mCharHeight = int(mHeight >> 4);
    mUnitSizeX = size.x / float(mDisplay->mWindowMode.width);
    mUnitSizeY = size.y / float(mDisplay->mWindowMode.height);

    mData = image->getWriteData();
    for (size_t i = 0; i < size_t(mWidth) * mHeight; ++i) {
        uint32_t pixel;
        std::memcpy(&pixel, mData + i * 4, 4);
        pixel = (pixel << 8) | 0xFFFFFF; // white, with the red channel as its alpha
        std::memcpy(mData + i * 4, &pixel, 4);
    }
    measure(mData);
    placeSolid(mData);
    mData = nullptr;
    mTexture.setDisplay(mDisplay);
    mTexture.load(image, mipmaps);
}

// The bounds of a cell's pixels that aren't fully transparent.
void Font::measureInk(const uint8_t* cell, mathbase::Box2& ink) const {
    int left = mCharWidth, top = mCharHeight, right = 0, bottom = 0;
    for (int y = 0; y < mCharHeight; ++y)
        for (int x = 0; x < mCharWidth; ++x)
            if (cell[(size_t(y) * mWidth + size_t(x)) * 4 + 3]) {
                left = std::min(left, x), right = std::max(right, x + 1);
                top = std::min(top, y), bottom = std::max(bottom, y + 1);
            }
    ink = mathbase::Box2();
    if (right > left)
        ink = mathbase::Box2(float(left) * mUnitSizeX, float(top) * mUnitSizeY, float(right) * mUnitSizeX,
                             float(bottom) * mUnitSizeY);
}

// Finds a spot that is opaque, or makes one in an empty cell, which is not drawn then. Byte 0, which texts
// don't hold, comes first.
void Font::placeSolid(uint8_t* pixels) {
    const auto isEmpty = [](const mathbase::Box2& ink) { return ink.x1 == ink.x2; };
    mSpot = -1;
    if (!isEmpty(mInk[0]) && findSolid(pixels))
        return;
    const auto* const empty = std::find_if(std::begin(mInk), std::end(mInk), isEmpty);
    if (empty == std::end(mInk))
        return findMostSolid(pixels);
    const int width = std::min(SPOT, mCharWidth), height = std::min(SPOT, mCharHeight);
    if (width == 0 || height == 0)
        return;
    mSpot = int(empty - mInk);
    const int left = mSpot % GRID * mCharWidth + (mCharWidth - width) / 2;
    const int top = mSpot / GRID * mCharHeight + (mCharHeight - height) / 2;
    for (int y = top; y < top + height; ++y)
        std::memset(pixels + (size_t(y) * mWidth + size_t(left)) * 4, 0xFF, size_t(width) * 4);
    setSolid(left, top, width, height);
}

// The pixel with the most alpha, so that no glyph is lost to the spot.
void Font::findMostSolid(const uint8_t* pixels) {
    size_t best = 0;
    for (size_t i = 0; i < size_t(mWidth) * mHeight; ++i)
        if (pixels[i * 4 + 3] > pixels[best * 4 + 3])
            best = i;
    setSolid(int(best % mWidth), int(best / mWidth), 1, 1);
}

// The centre of two by two pixels: a lookup there reads no others.
bool Font::findSolid(const uint8_t* pixels) {
    const auto isSolid = [&](uint32_t x, uint32_t y) {
        return pixels[(size_t(y) * mWidth + x) * 4 + 3] == 255;
    };
    for (uint32_t y = 0; y + 1 < mHeight; ++y)
        for (uint32_t x = 0; x + 1 < mWidth; ++x)
            if (isSolid(x, y) && isSolid(x + 1, y) && isSolid(x, y + 1) && isSolid(x + 1, y + 1)) {
                setSolid(int(x), int(y), 2, 2);
                return true;
            }
    return false;
}

void Font::setSolid(int left, int top, int width, int height) {
    mSolid = mathbase::Vector2f((float(left) + 0.5f * float(width)) / float(mWidth),
                                (float(top) + 0.5f * float(height)) / float(mHeight));
}

// The advance of each character: up to the right edge of the last column that belongs to it, and a gap.
void Font::measure(const uint8_t* pixels) {
    for (int c = 0; c < GRID * GRID; ++c) {
        const uint8_t* cell =
            pixels + (size_t(c / GRID) * size_t(mCharHeight) * mWidth + size_t(c % GRID * mCharWidth)) * 4;
        int width = 0;
        for (int x = mCharWidth; x > 0 && !width; --x)
            for (int y = 0; y < mCharHeight; ++y)
                if (cell[(size_t(y) * mWidth + size_t(x - 1)) * 4 + 3] > SHAPE) {
                    width = x;
                    break;
                }
        measureInk(cell, mInk[c]);
        const float columns = c == ' ' ? float(mCharWidth) * 0.3f : float(width);
        mKerning[c] = (columns + GAP) * mUnitSizeX;
    }
}

float Font::getLength(const std::string& text) const {
    float length = 0;
    for (const char c : text)
        length += mKerning[uint8_t(c)];
    return length;
}

Font::Cell Font::getCell(unsigned char c) const {
    const float s = float(c & 15) * mLetterWidth, t = float(c >> 4) * mLetterHeight;
    return {s, t, s + mLetterWidth, t + mLetterHeight};
}

void Font::draw(const std::string& text, mathbase::Vector2f scale, mathbase::Vector4f color) {
    GL_CALL(glPushAttrib(0xFFFFF));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    GL_CALL(glEnable(GL_BLEND));
    mTexture.bind();

    float x = 0;
    if (mAlign == ALIGN_RIGHT || mAlign == ALIGN_CENTER) {
        for (const char c : text)
            x -= scale.x * mKerning[uint8_t(c)];
        if (mAlign == ALIGN_CENTER)
            x *= 0.5f;
    }
    const float h = float(mCharHeight) * mUnitSizeY * scale.y;
    const float width = scale.x * float(mCharWidth) * mUnitSizeX;
    glBegin(GL_QUADS);
    glColor4f(color.x, color.y, color.z, color.w);
    const auto corner = [](float s, float t, float left, float bottom) {
        glTexCoord2f(s, t);
        glVertex2f(left, bottom);
    };
    for (const char character : text) {
        const uint8_t c = uint8_t(character);
        const Cell cell = getCell(c);
        if (c != mSpot) {
            corner(cell.s0, cell.t1, x, -0.5f * h);
            corner(cell.s1, cell.t1, x + width, -0.5f * h);
            corner(cell.s1, cell.t0, x + width, 0.5f * h);
            corner(cell.s0, cell.t0, x, 0.5f * h);
        }
        x += scale.x * mKerning[c];
    }
    GL_CALL(glEnd());
    mTexture.unbind();
    GL_CALL(glPopAttrib());
}

} // namespace zentrak::display
