// Text from one image of 256 glyphs.
#pragma once

#include "dis_resource.h"
#include "dis_texture.h"
#include "mb_box2.h"

#include <cstdint>
#include <string>

namespace zentrak::display {

// The image holds 16 by 16 cells, one for each byte value, row by row: the shape is in its red channel. Each
// glyph is at the left of its cell, and is as wide as its rightmost column with a value above 200. Bytes
// are glyphs: there is no encoding.
class Font : public Resource {
public:
    enum : int { ALIGN_LEFT = 0, ALIGN_RIGHT = 1, ALIGN_CENTER = 2 };

    explicit Font(DisplayGL* display);

    // Loads the image. `size` over the window's size is one pixel of the image in units of the screen: with
    // the window's own size, a unit is a pixel. Throws "Cannot load font motherfucker!" if it cannot load,
    // and what loading an image throws.
    void load(const std::string& filename, bool mipmaps, mathbase::Vector2f size);

    // Draws in the plane z = 0 under the current matrices: centred on y = 0, from x = 0 to the right, to the
    // left, or to both sides, by the alignment. Blends by the current blend function; leaves all state but
    // the texture binding, which is 0 afterwards.
    void draw(const std::string& text, mathbase::Vector2f scale, mathbase::Vector4f color);

    float getLength(const std::string& text) const;                     // the sum of the advances, at scale 1
    float getHeight() const { return float(mCharHeight) * mUnitSizeY; } // of a cell, at scale 1
    float getAdvance(unsigned char c) const { return mKerning[c]; }     // of one character, at scale 1
    float getWidth() const { return float(mCharWidth) * mUnitSizeX; }   // of a cell, at scale 1

    // For drawing glyphs together with other shapes: the position of a character's cell in the texture, t0 at
    // its top, and the texture.
    struct Cell {
        float s0, t0, s1, t1;
    };
    Cell getCell(unsigned char c) const;
    Texture& getTexture() { return mTexture; }
    // The visible part of a character's cell, from the cell's upper left corner, at scale 1.
    const mathbase::Box2& getInk(unsigned char c) const { return mInk[c]; }
    // A point where the texture is white and opaque, for shapes drawn along with text. In a picture without
    // an empty cell or two by two opaque pixels, the most opaque point.
    mathbase::Vector2f getSolid() const { return mSolid; }
    int getAlignment() const { return mAlign; }

    void setAlignment(int align) { mAlign = align; }
    void setSizeOfSpace(float size) { mKerning[32] = size; } // the advance of a space, in units of the screen

private:
    void measure(const uint8_t* pixels);
    void measureInk(const uint8_t* cell, mathbase::Box2& ink) const;
    void placeSolid(uint8_t* pixels);
    bool findSolid(const uint8_t* pixels);
    void findMostSolid(const uint8_t* pixels);
    void setSolid(int left, int top, int width, int height);

    uint32_t mWidth; // of the image, in pixels
    uint32_t mHeight;
    int mCharWidth; // of a cell, in pixels
    int mCharHeight;
    float mKerning[256]; // advances, in units of the screen
    int mAlign;
    float mUnitSizeX; // one pixel of the image, in units of the screen
    float mUnitSizeY;
    float mLetterWidth; // one cell, in texture coordinates
    float mLetterHeight;
    uint8_t* mData; // null after load
    int mSpot;      // the byte whose empty cell holds the solid spot; -1 for none
    mathbase::Box2 mInk[256];
    mathbase::Vector2f mSolid; // in texture coordinates
    Texture mTexture;
};

} // namespace zentrak::display
