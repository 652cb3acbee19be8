#include "pan_shapes.h"

#include "dis_glcheck.h"
#include "pan_box.h"
#include "pan_number.h"

#include <algorithm>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float CELL_WIDTH = 32; // pixels of the grid, at least
constexpr float CELL_HEIGHT = 16;
constexpr float MOST_CELLS = 128;              // along a side
constexpr float LEAST_COVER = 8;               // pixels of a side of what may hide others
constexpr float LEAST_CUT = 2048;              // pixels in all that are worth it
constexpr int MOST_LISTED = 128;               // items of a cell,
constexpr int MOST_BELOW_FILLED = 8;           // and below one that fills it
constexpr size_t MOST_LINKS = size_t(1) << 20; // in all; what comes then is drawn in its order
constexpr int MOST_SPLITS = 8;                 // of one box
constexpr int MOST_CUTS = 64;                  // of one box

bool touch(const Box2& a, const Box2& b) {
    return a.x1 < b.x2 && b.x1 < a.x2 && a.y1 < b.y2 && b.y1 < a.y2;
}

float areaOf(const Box2& box) {
    return box.getWidth() * box.getHeight();
}

// As a frame buffer of 8 bits keeps it.
int toShade(float value) {
    return value > 0 ? int(std::nearbyint(std::min(value, 1.0f) * 255)) : 0;
}

// What blending makes of one colour on another there: each product is rounded for itself, as software OpenGL
// does it. Elsewhere it may be a shade off.
Vector4f blend(const Vector4f& above, const Vector4f& below) {
    const int alpha = toShade(above.w);
    const auto times = [](int a, int b) {
        const int product = a * b;
        return (product + (product >> 8) + 128) >> 8;
    };
    const auto mixed = [&](float a, float b) {
        return float(std::min(255, times(toShade(a), alpha) + times(toShade(b), 255 - alpha))) / 255;
    };
    return Vector4f(mixed(above.x, below.x), mixed(above.y, below.y), mixed(above.z, below.z),
                    mixed(above.w, below.w));
}

// What is left of a box when a part of it is cut out.
template <class Take>
void forEachPiece(const Box2& box, const Box2& hole, const Take& take) {
    const float top = std::max(box.y1, hole.y1), bottom = std::min(box.y2, hole.y2);
    if (box.y1 < top)
        take(Box2(box.x1, box.y1, box.x2, top));
    if (bottom < box.y2)
        take(Box2(box.x1, bottom, box.x2, box.y2));
    if (box.x1 < hole.x1)
        take(Box2(box.x1, top, hole.x1, bottom));
    if (hole.x2 < box.x2)
        take(Box2(hole.x2, top, box.x2, bottom));
}

void setFilter(GLint filter) {
    GL_CALL(glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter));
    GL_CALL(glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter));
}

// The part of 0 to `count` cells that a position lies in.
int cellAt(float position, float start, float size, int count) {
    const float cell = std::floor((position - start) / size);
    return cell > 0 ? int(std::min(cell, float(count - 1))) : 0;
}

} // namespace

bool Shapes::Corners::isFlat() const {
    return upperLeft == lowerRight && upperRight == lowerLeft && upperLeft == upperRight;
}

bool Shapes::Corners::isOpaque() const {
    return upperLeft.w >= 1 && upperRight.w >= 1 && lowerRight.w >= 1 && lowerLeft.w >= 1;
}

Shapes::Shapes() {
    begin(Box2(), false);
}

void Shapes::begin(const Box2& view, bool pixels) {
    mView = view;
    mPixels = pixels;
    mCounts = Counts();
    const auto cells = [](float length, float cell) {
        return std::clamp(std::ceil(length / cell), 1.0f, MOST_CELLS);
    };
    const float width = std::max(1.0f, view.getWidth()), height = std::max(1.0f, view.getHeight());
    const float columns = cells(width, CELL_WIDTH), rows = cells(height, CELL_HEIGHT);
    mColumns = int(columns);
    mRows = int(rows);
    mCellWidth = std::max(CELL_WIDTH, std::ceil(width / columns));
    mCellHeight = std::max(CELL_HEIGHT, std::ceil(height / rows));
    clear();
}

void Shapes::clear() {
    mItems.clear();
    mCorners.clear();
    mPoints.clear();
    mGlyphs.clear();
    mLinks.clear();
    mLayers.clear();
    mCells.assign(size_t(mColumns * mRows), Cell());
}

// Adding

void Shapes::addBox(const Box2& box, const Corners& corners) {
    Item item;
    item.box = box;
    item.color = corners.upperLeft;
    item.flat = corners.isFlat();
    item.opaque = corners.isOpaque();
    if (!item.flat) {
        item.first = uint32_t(mCorners.size());
        mCorners.push_back(corners);
    }
    mSplits = 0;
    add(item);
}

void Shapes::addPolygon(const Vector2f* points, int count, const Box2& bounds, const Vector4f& color) {
    Item item;
    item.box = bounds;
    item.shape = POLYGON;
    item.color = color;
    item.opaque = color.w >= 1;
    item.first = uint32_t(mPoints.size());
    item.count = uint32_t(count);
    mPoints.insert(mPoints.end(), points, points + count);
    add(item);
}

void Shapes::beginText(const Vector4f& color) {
    mText = Item();
    mText.shape = GLYPHS;
    mText.color = color;
    mText.first = uint32_t(mGlyphs.size());
}

void Shapes::addGlyph(const Box2& box, float s0, float t0, float s1, float t1) {
    mText.box = mText.count++ == 0 ? box
                                   : Box2(std::min(mText.box.x1, box.x1), std::min(mText.box.y1, box.y1),
                                          std::max(mText.box.x2, box.x2), std::max(mText.box.y2, box.y2));
    mGlyphs.push_back({box, s0, t0, s1, t1});
}

void Shapes::endText() {
    if (mText.count)
        add(mText);
}

// Takes a shape into the lowest layer of its kind that is above all that it overlaps.
void Shapes::add(Item& item) {
    if (!touch(item.box, mView))
        return;
    ++mCounts.shapes;
    int layer = LAYERS;
    if (mSorted && mLinks.size() < MOST_LINKS) {
        const Cells cells = cellsOf(item.box);
        const Below below = lookBelow(item, cells);
        if (below.ground >= 0 && below.ground != below.last && split(item, below))
            return;
        const bool mixes = below.ground >= 0 && below.ground == below.last;
        const bool opaque = item.opaque || mixes;
        const Kind kind = item.shape == GLYPHS ? TEXT : !opaque ? BLENDED : item.flat ? SOLID : SHADED;
        layer = below.layer < 0 ? kind : below.layer + (kind - below.layer % KINDS + KINDS) % KINDS;
        if (layer >= LAYERS) {
            layer = LAYERS;
        } else if (mixes) {
            item.color = blend(item.color, mItems[size_t(below.ground)].color);
            item.opaque = true;
            ++mCounts.mixed;
        }
        const Box2& box = item.box;
        item.covers = item.opaque && isBoxOfPixels(item);
        if (item.covers && box.getWidth() >= LEAST_COVER && box.getHeight() >= LEAST_COVER)
            hideBelow(item, cells);
        enter(item, cells);
    }
    item.layer = int16_t(layer);
    const int32_t index = int32_t(mItems.size());
    mItems.push_back(item);
    if (mLayers.size() <= size_t(layer))
        mLayers.resize(size_t(layer) + 1);
    Layer& list = mLayers[size_t(layer)];
    (list.last < 0 ? list.first : mItems[size_t(list.last)].next) = index;
    list.last = index;
}

// Whether all edges are edges of pixels.
bool Shapes::isBoxOfPixels(const Item& item) const {
    const Box2& box = item.box;
    return mPixels && item.shape == BOX && isWhole(box.x1) && isWhole(box.y1) && isWhole(box.x2) &&
           isWhole(box.y2);
}

// The ground is told of what can be mixed with it.
Shapes::Below Shapes::lookBelow(const Item& item, const Cells& cells) const {
    const bool mixes = mPixels && item.shape == BOX && item.flat && !item.opaque;
    Below below;
    for (int y = cells.y1; y <= cells.y2; ++y)
        for (int x = cells.x1; x <= cells.x2; ++x) {
            const Cell& cell = mCells[size_t(y * mColumns + x)];
            below.layer = std::max(below.layer, int(cell.layer));
            below.last = std::max(below.last, cell.last);
            for (int32_t i = cell.list; i >= 0; i = mLinks[size_t(i)].next) {
                const int32_t index = mLinks[size_t(i)].item;
                const Item& other = mItems[size_t(index)];
                if (other.hidden || !touch(item.box, other.box))
                    continue;
                below.layer = std::max(below.layer, int(other.layer));
                below.last = std::max(below.last, index);
                if (mixes && index > below.ground && other.shape == BOX && other.flat && other.opaque &&
                    holds(other.box, item.box))
                    below.ground = index;
            }
        }
    return below;
}

// A large box on a ground with something else on it, such as the lines of a frame: what lies on that goes by
// itself, so that the rest can be mixed with the ground. False if it stays whole.
bool Shapes::split(const Item& item, const Below& below) {
    const Item other = mItems[size_t(below.last)]; // adding moves the list
    if (areaOf(item.box) < LEAST_CUT || mSplits >= MOST_SPLITS || !isBoxOfPixels(other) ||
        !touch(item.box, other.box))
        return false;
    ++mSplits;
    Item piece = item;
    const Box2 inner = cut(item.box, other.box);
    forEachPiece(item.box, other.box, [&](const Box2& box) {
        piece.box = box;
        add(piece);
        piece = item;
    });
    piece.box = inner;
    add(piece);
    return true;
}

void Shapes::hideBelow(const Item& cover, const Cells& cells) {
    for (int y = cells.y1; y <= cells.y2; ++y)
        for (int x = cells.x1; x <= cells.x2; ++x)
            for (int32_t i = mCells[size_t(y * mColumns + x)].list; i >= 0; i = mLinks[size_t(i)].next) {
                Item& other = mItems[size_t(mLinks[size_t(i)].item)];
                if (other.hidden || !touch(cover.box, other.box))
                    continue;
                if (holds(cover.box, other.box)) {
                    other.hidden = true;
                    ++mCounts.hidden;
                } else {
                    addCut(other, cover);
                }
            }
}

// The cover is the next item to come.
void Shapes::addCut(Item& item, const Item& cover) {
    const int32_t index = int32_t(mItems.size());
    if (item.shape != BOX || !item.flat || item.cutCount >= MOST_CUTS ||
        areaOf(cut(item.box, cover.box)) < LEAST_CUT ||
        (item.cuts >= 0 && mLinks[size_t(item.cuts)].item == index))
        return;
    mLinks.push_back({index, item.cuts});
    item.cuts = int32_t(mLinks.size()) - 1;
    ++item.cutCount;
    ++mCounts.cut;
}

// What fills a cell lies above all that was in it, in its layer too: one that hides them stands for them all.
void Shapes::enter(const Item& item, const Cells& cells) {
    const int32_t index = int32_t(mItems.size());
    for (int y = cells.y1; y <= cells.y2; ++y)
        for (int x = cells.x1; x <= cells.x2; ++x) {
            Cell& cell = mCells[size_t(y * mColumns + x)];
            const Box2 box(mView.x1 + float(x) * mCellWidth, mView.y1 + float(y) * mCellHeight,
                           mView.x1 + float(x + 1) * mCellWidth, mView.y1 + float(y + 1) * mCellHeight);
            const bool fills = item.shape == BOX && holds(item.box, box);
            if (fills && item.covers)
                cell = Cell();
            else if (cell.count >= (fills ? MOST_BELOW_FILLED : MOST_LISTED))
                shorten(cell);
            mLinks.push_back({index, cell.list});
            cell.list = int32_t(mLinks.size()) - 1;
            ++cell.count;
        }
}

// Forgets what exactly lies in a cell.
void Shapes::shorten(Cell& cell) const {
    for (int32_t i = cell.list; i >= 0; i = mLinks[size_t(i)].next) {
        const int32_t index = mLinks[size_t(i)].item;
        cell.layer = std::max(cell.layer, mItems[size_t(index)].layer);
        cell.last = std::max(cell.last, index);
    }
    cell.list = -1;
    cell.count = 0;
}

Shapes::Cells Shapes::cellsOf(const Box2& box) const {
    return {cellAt(box.x1, mView.x1, mCellWidth, mColumns), cellAt(box.y1, mView.y1, mCellHeight, mRows),
            cellAt(box.x2, mView.x1, mCellWidth, mColumns), cellAt(box.y2, mView.y1, mCellHeight, mRows)};
}

// Drawing

void Shapes::draw(display::Font* font) {
    mWhite = font ? font->getSolid() : Vector2f();
    for (size_t layer = 0; layer < mLayers.size(); ++layer)
        drawLayer(int(layer), font);
    clear();
}

void Shapes::drawLayer(int layer, display::Font* font) {
    const bool last = layer == LAYERS;
    const bool textured = (last || layer % KINDS == TEXT) && font;
    const bool opaque = !last && layer % KINDS <= SHADED;
    const bool flat = !last && (layer % KINDS == SOLID || layer % KINDS == TEXT);
    display::Batch& batch = textured ? mTextured : mPlain;
    for (int32_t i = mLayers[size_t(layer)].first; i >= 0; i = mItems[size_t(i)].next)
        if (!mItems[size_t(i)].hidden)
            emit(mItems[size_t(i)], batch);
    if (batch.getVertices() == 0)
        return;
    ++mCounts.draws;
    if (textured) {
        font->getTexture().bind();
        GL_CALL(glEnable(GL_TEXTURE_2D));
        setFilter(mPixels ? GL_NEAREST : GL_LINEAR); // the same where a texel is a pixel
    }
    if (opaque)
        GL_CALL(glDisable(GL_BLEND));
    if (flat)
        GL_CALL(glShadeModel(GL_FLAT));
    batch.flush();
    if (flat)
        GL_CALL(glShadeModel(GL_SMOOTH));
    if (opaque)
        GL_CALL(glEnable(GL_BLEND));
    if (textured) {
        setFilter(GL_LINEAR);
        GL_CALL(glDisable(GL_TEXTURE_2D));
        font->getTexture().unbind();
    }
}

void Shapes::emit(const Item& item, display::Batch& batch) {
    batch.color(item.color);
    if (item.shape == POLYGON) {
        emitPolygon(item, batch);
    } else if (item.shape == BOX) {
        emitBox(item, batch);
    } else {
        for (const Glyph *glyph = &mGlyphs[item.first], *end = glyph + item.count; glyph != end; ++glyph) {
            const Box2& box = glyph->box;
            batch.rect(box.x1, box.y1, box.x2, box.y2, glyph->s0, glyph->t0, glyph->s1, glyph->t1);
        }
    }
}

void Shapes::emitBox(const Item& item, display::Batch& batch) {
    if (!item.flat) {
        emitGradient(item, batch);
        return;
    }
    cutPieces(item);
    for (const Box2& box : mPieces)
        batch.rect(box.x1, box.y1, box.x2, box.y2, mWhite.x, mWhite.y, mWhite.x, mWhite.y);
}

// What is left of a box, in pieces.
void Shapes::cutPieces(const Item& item) {
    mPieces.assign(1, item.box);
    for (int32_t i = item.cuts; i >= 0; i = mLinks[size_t(i)].next) {
        const Box2& hole = mItems[size_t(mLinks[size_t(i)].item)].box;
        const size_t count = mPieces.size();
        for (size_t piece = 0; piece < count; ++piece) {
            const Box2 box = mPieces[piece];
            if (!touch(box, hole)) {
                mPieces.push_back(box);
                continue;
            }
            forEachPiece(box, hole, [&](const Box2& rest) { mPieces.push_back(rest); });
        }
        mPieces.erase(mPieces.begin(), mPieces.begin() + ptrdiff_t(count));
    }
}

// As quads, like all else, but of a triangle each, with its last corner twice: OpenGL may cut a quad along
// either diagonal, from one draw to the next. The colours between the corners differ by that, and where
// rounded corners are not convex any more the shape.
void Shapes::emitGradient(const Item& item, display::Batch& batch) const {
    const Corners& corners = mCorners[item.first];
    const Box2& box = item.box;
    const auto corner = [&](const Vector4f& color, float x, float y) {
        batch.color(color);
        batch.vertex(x, y);
    };
    batch.texCoord(mWhite.x, mWhite.y);
    batch.begin(GL_QUADS);
    corner(corners.upperLeft, box.x1, box.y1);
    corner(corners.upperRight, box.x2, box.y1);
    corner(corners.lowerRight, box.x2, box.y2);
    corner(corners.lowerRight, box.x2, box.y2);
    corner(corners.upperLeft, box.x1, box.y1);
    corner(corners.lowerRight, box.x2, box.y2);
    corner(corners.lowerLeft, box.x1, box.y2);
    corner(corners.lowerLeft, box.x1, box.y2);
    batch.end();
}

// The triangles of a fan. A line is one quad.
void Shapes::emitPolygon(const Item& item, display::Batch& batch) const {
    const Vector2f* const points = &mPoints[item.first];
    const bool line = item.count == 4;
    batch.texCoord(mWhite.x, mWhite.y);
    batch.begin(GL_QUADS);
    for (uint32_t i = 1; i + 1 < item.count; i += line ? 2 : 1) {
        batch.vertex(points[0]);
        batch.vertex(points[i]);
        batch.vertex(points[i + 1]);
        batch.vertex(points[line ? i + 2 : i + 1]);
    }
    batch.end();
}

} // namespace zentrak::panorama
