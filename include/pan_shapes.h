// The shapes of a frame, collected and drawn together.
#pragma once

#include "dis_batch.h"
#include "dis_font.h"
#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"

#include <cstdint>
#include <vector>

namespace zentrak::panorama {

// What is drawn is the picture of all shapes one after the other. On the way there
//   - shapes under a later opaque box are left out, and large boxes are cut where such boxes lie on them;
//   - a box of one translucent colour on a box of one opaque colour is made opaque: they are mixed here;
//   - shapes are sorted into layers of one kind, each drawn with one call. Two that overlap keep their order.
// On software OpenGL pixels are what costs, and one of text costs seven times as much as one of a solid box.
//
// The memory grows to what the largest frame needed and is kept.
class Shapes {
public:
    struct Corners { // of a box, clockwise
        mathbase::Vector4f upperLeft, upperRight, lowerRight, lowerLeft;

        bool isFlat() const;
        bool isOpaque() const;
    };
    struct Counts {     // since begin()
        int shapes = 0; // that were added and are in view; a text is one, a piece that is split off one more
        int hidden = 0; // of these, left out
        int mixed = 0;  // made opaque
        int cut = 0;    // times that a piece was cut out of one
        int draws = 0;  // calls
    };

    Shapes();

    // Begins a frame and drops what was not drawn. `view` is what of the coordinates can be seen; `pixels`:
    // whether whole numbers are edges of pixels. If they are not, nothing is left out, cut or mixed.
    void begin(const mathbase::Box2& view, bool pixels);

    // Off: everything is drawn in its order and with one call. On at the start.
    void setSorted(bool sorted) { mSorted = sorted; }

    // All boxes are cut by the clip area already; `corners` are the colours at the corners of `box`.
    void addBox(const mathbase::Box2& box, const Corners& corners);
    // A convex one, by the x and y of its corners. `bounds` is the box around it.
    void addPolygon(const mathbase::Vector2f* points, int count, const mathbase::Box2& bounds,
                    const mathbase::Vector4f& color);
    // A text is all glyphs in between. Texture coordinates are those of the corners.
    void beginText(const mathbase::Vector4f& color);
    void addGlyph(const mathbase::Box2& box, float s0, float t0, float s1, float t1);
    void endText();

    bool isEmpty() const { return mItems.empty(); }

    // Draws what was added and drops it. The texture of text is that of `font`; null if there is none.
    // Expects the state that Render::setupDraw sets, and leaves it.
    void draw(display::Font* font);

    const Counts& getCounts() const { return mCounts; }

private:
    // The kinds of layers, the cheapest first; they take turns. What comes to lie above the last layer is
    // drawn as text is, in its order.
    enum Kind : int {
        SOLID = 0,   // opaque, each of one colour
        SHADED = 1,  // opaque
        BLENDED = 2, // without a texture
        TEXT = 3,
        KINDS = 4
    };
    enum Shape : uint8_t { BOX, POLYGON, GLYPHS };

    struct Item {
        mathbase::Box2 box;            // bounds
        uint32_t first = 0, count = 0; // in mCorners, mPoints or mGlyphs
        int32_t cuts = -1;             // the last of its list in mLinks: the boxes that are cut out
        int cutCount = 0;
        int32_t next = -1; // of the same layer
        int16_t layer = 0;
        Shape shape = BOX;
        bool flat = true;    // of one colour, `color`
        bool opaque = false; // hides what is below
        bool covers = false; // the same, and all its edges are edges of pixels
        bool hidden = false;
        mathbase::Vector4f color;
    };
    struct Glyph {
        mathbase::Box2 box;
        float s0, t0, s1, t1;
    };
    struct Link {
        int32_t item, next;
    };
    struct Layer {
        int32_t first = -1, last = -1;
    };
    // What an item lies on; -1 where there is none.
    struct Below {
        int layer = -1;      // the highest
        int32_t last = -1;   // the latest item of all
        int32_t ground = -1; // the latest box of one opaque colour that is under all of it
    };
    // The items that touch a cell of the view: a list in mLinks, and, of those that were too many for one,
    // the highest layer and the latest.
    struct Cell {
        int32_t list = -1;
        int32_t last = -1;
        int16_t layer = -1;
        int16_t count = 0; // of the list
    };
    struct Cells { // a range of the grid, both ends included
        int x1, y1, x2, y2;
    };

    static constexpr int LAYERS = 60;

    void clear();
    void add(Item& item);
    bool isBoxOfPixels(const Item& item) const;
    Below lookBelow(const Item& item, const Cells& cells) const;
    bool split(const Item& item, const Below& below);
    void hideBelow(const Item& cover, const Cells& cells);
    void addCut(Item& item, const Item& cover);
    void enter(const Item& item, const Cells& cells);
    void shorten(Cell& cell) const;
    Cells cellsOf(const mathbase::Box2& box) const;
    void cutPieces(const Item& item);
    void drawLayer(int layer, display::Font* font);
    void emit(const Item& item, display::Batch& batch);
    void emitBox(const Item& item, display::Batch& batch);
    void emitGradient(const Item& item, display::Batch& batch) const;
    void emitPolygon(const Item& item, display::Batch& batch) const;

    bool mSorted = true;
    bool mPixels = false; // whole numbers are edges of pixels
    int mSplits = 0;      // of the box that is being added
    mathbase::Box2 mView;
    Counts mCounts;

    std::vector<Item> mItems;
    std::vector<Corners> mCorners;
    std::vector<mathbase::Vector2f> mPoints;
    std::vector<Glyph> mGlyphs;
    std::vector<Link> mLinks;
    std::vector<Layer> mLayers;
    std::vector<mathbase::Box2> mPieces; // while a box is cut

    std::vector<Cell> mCells; // what lies where in the view
    int mColumns = 1, mRows = 1;
    float mCellWidth = 1, mCellHeight = 1;

    Item mText;                // that glyphs are added to
    mathbase::Vector2f mWhite; // where the font's texture is
    display::Batch mPlain;     // without a texture
    display::Batch mTextured;
};

} // namespace zentrak::panorama
