// Shapes drawn together give the same picture as shapes drawn one by one.
#include "pan_render.h"

#include "allocations.h"
#include "gl_fixture.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr int WIDTH = 400, HEIGHT = 300;

const Vector4f RED(0.9f, 0.1f, 0.2f, 1), BLUE(0.1f, 0.3f, 0.8f, 1), GREEN(0.2f, 0.7f, 0.3f, 1);
const Box2 NO_CLIP(0, 0, -1, -1);

using Draw = std::function<void(Render&)>;

void box(Render& render, const Box2& area, const Vector4f& color) {
    render.setColor(color, color);
    render.drawBox(area, 0);
}

// Draws each shape by itself.
class OneByOne : public Render {
public:
    void drawBox(const Box2& box, int direction) override {
        Render::drawBox(box, direction);
        flush();
    }
    void drawBorder(const Box2& box) override {
        Render::drawBorder(box);
        flush();
    }
    void drawCircle(const Box2& box, int segments, float start) override {
        Render::drawCircle(box, segments, start);
        flush();
    }
    void drawLine(const Vector2f& a, const Vector2f& b) override {
        Render::drawLine(a, b);
        flush();
    }
    void drawText(const std::string& text, Vector2f position) override {
        Render::drawText(text, position);
        flush();
    }
};

class ShapesTest : public GlTest {
protected:
    Render render;
    OneByOne single;

    ShapesTest() {
        window(WIDTH, HEIGHT);
        render.setup(&display());
        single.setup(&display());
    }

    Picture draw(Render& with, const Draw& shapes, Vector2f offset = Vector2f()) {
        return frame([&] {
            glClearColor(0.2f, 0.3f, 0.4f, 0);
            glClear(GL_COLOR_BUFFER_BIT);
            with.setupDraw(Vector2f(WIDTH, HEIGHT), offset, 0);
            shapes(with);
            with.flush();
        });
    }

    // `pixels` may differ: where an edge runs through a pixel centre, the rounding of Mesa's software
    // renderer depends on the triangles before it in the same call. With a call for each triangle nothing
    // differs.
    void expectSame(const Draw& shapes, Vector2f offset = Vector2f(), int pixels = 0) {
        const Picture one = draw(single, shapes, offset), all = draw(render, shapes, offset);
        int changed = 0;
        for (size_t i = 0; i < one.rgba.size(); i += 4)
            changed += !std::equal(&one.rgba[i], &one.rgba[i] + 3, &all.rgba[i]);
        EXPECT_LE(changed, pixels);
        if (changed > pixels) {
            writePng(binaryPath("pictures-failed/shapes_single.png"), one);
            writePng(binaryPath("pictures-failed/shapes.png"), all);
        }
    }
};

TEST_F(ShapesTest, ATextIsOverEarlierShapesAndUnderLaterOnes) {
    const Draw shapes = [](Render& r) {
        box(r, Box2(0, 0, 400, 100), RED);
        r.setColor(GREEN, NO_COLOR);
        r.drawText("a text of some length", Vector2f(200, 50));
        r.drawText("another", Vector2f(200, 80));
        box(r, Box2(0, 150, 400, 200), BLUE); // over neither
        box(r, Box2(190, 30, 210, 70), Vector4f(0, 0, 1, 0.5f));
        r.drawLine(Vector2f(150, 70), Vector2f(250, 90));
        r.drawText("on top", Vector2f(200, 50));
        r.drawCircle(Box2(190, 75, 205, 90), -1, 0);
    };
    expectSame(shapes);
}

TEST_F(ShapesTest, MoreTextsThanMayWaitKeepTheirOrder) {
    expectSame([](Render& r) {
        for (int i = 0; i < 700; ++i) {
            r.setColor(Vector4f(float(i % 7) / 7, float(i % 11) / 11, 1, 1), NO_COLOR);
            r.drawText("text", Vector2f(float(i % 17) * 24, 10 + float(i % 29) * 10));
            if (i % 5 == 0)
                box(r, Box2(float(i % 390), float(i % 290), float(i % 390) + 9, float(i % 290) + 9), RED);
        }
    });
}

TEST_F(ShapesTest, AFlushInBetweenChangesNothing) {
    expectSame([](Render& r) {
        r.setColor(GREEN, NO_COLOR);
        r.drawText("text", Vector2f(50, 50));
        r.flush();
        r.flush();
        box(r, Box2(10, 10, 100, 90), Vector4f(0, 0, 1, 0.5f));
    });
}

// Trees of nested boxes, like windows, with all kinds of shapes.
class RandomTree {
public:
    explicit RandomTree(unsigned seed) : mRandom(seed) {}

    void draw(Render& r) {
        r.setClipArea(NO_CLIP);
        fill(r, Box2(0, 0, WIDTH, HEIGHT), 0);
        r.setClipArea(NO_CLIP);
    }

private:
    std::mt19937 mRandom;

    float any(float from, float to) { return std::uniform_real_distribution<float>(from, to)(mRandom); }
    bool often(float share) { return any(0, 1) < share; }

    Vector4f color() {
        const float alpha = often(0.6f) ? 1.0f : any(0, 1);
        return Vector4f(any(0, 1), any(0, 1), any(0, 1), alpha);
    }
    Box2 part(const Box2& of) {
        const float x1 = any(of.x1 - 10, of.x2), y1 = any(of.y1 - 10, of.y2);
        const Box2 box(x1, y1, any(x1, of.x2 + 10), any(y1, of.y2 + 10));
        return Box2(std::floor(box.x1), std::floor(box.y1), std::floor(box.x2), std::floor(box.y2));
    }
    static Box2 common(const Box2& a, const Box2& b) {
        const Box2 box(std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2),
                       std::min(a.y2, b.y2));
        return box.x2 > box.x1 && box.y2 > box.y1 ? box : Box2();
    }

    void fill(Render& r, const Box2& area, int depth) {
        for (int i = 0, count = depth == 0 ? 8 : 5; i < count; ++i) {
            const Box2 inner = part(area);
            r.setClipArea(common(area, inner));
            r.setColor(color(), often(0.5f) ? NO_COLOR : color());
            switch (int(any(0, 8))) {
            case 0:
                r.drawBorder(inner);
                break;
            case 1:
                r.drawCircle(inner, -1, 0);
                break;
            case 2:
                r.drawLine(Vector2f(inner.x1, inner.y1), Vector2f(inner.x2, inner.y2));
                break;
            case 3:
                r.setFontMode(int(any(0, 3)));
                r.drawText("some text " + std::to_string(i),
                           Vector2f((inner.x1 + inner.x2) / 2, (inner.y1 + inner.y2) / 2));
                break;
            default:
                r.drawBox(inner, int(any(0, 2)));
                break;
            }
            if (depth < 3 && often(0.7f))
                fill(r, common(area, inner), depth + 1);
        }
    }
};

TEST_F(ShapesTest, RandomTreesLookAsDrawnOneByOne) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        expectSame([&](Render& r) { RandomTree(seed).draw(r); }, Vector2f(float(seed % 3) * 7, 0), 1);
        if (HasFailure())
            break;
    }
}

// Heaps of arbitrary shapes, on a grid or off it, some with positions and colours that are NaN or
// infinite.
class RandomHeap {
public:
    explicit RandomHeap(unsigned seed) : mRandom(seed) {
        mGrid = often(0.5f) ? 1.0f : often(0.5f) ? 8.0f : 16.0f;
        mLoose = often(0.5f) ? 0 : any(0, 0.5f);
        mOpaque = any(0, 1);
        mLarge = any(0, 1);
        mSpan = often(0.3f) ? 80.0f : 420.0f;
        mOdd = often(0.4f) ? 0.02f : 0.0f;
        mClips = often(0.4f) ? 0.1f : 0.0f;
        mCount = int(std::pow(10.0f, any(1, 3.2f)));
    }

    void draw(Render& r) {
        for (int i = 0; i < mCount; ++i) {
            if (often(mClips))
                r.setClipArea(often(0.3f) ? NO_CLIP : Box2(at(200), at(150), at(420), at(320)));
            const Vector4f first = color(), second = often(0.5f) ? NO_COLOR : color();
            const float x = at(mSpan), y = at(mSpan), width = size(), height = size();
            const Box2 area(x, y, x + width, y + height);
            r.setColor(first, second);
            switch (int(any(0, 12))) {
            case 0:
                r.drawBorder(area);
                break;
            case 1:
                r.drawCircle(area, -1, 0.1f);
                break;
            case 2:
                r.drawLine(Vector2f(x, y), Vector2f(area.x2, area.y2));
                break;
            case 3:
                r.drawLine(Vector2f(x, y), Vector2f(area.x2, y));
                break;
            case 4:
                r.setFontMode(int(any(0, 3)));
                r.drawText("some text", Vector2f(x, y));
                break;
            case 5:
                if (i % 50 == 0)
                    r.flush();
                break;
            default:
                r.drawBox(area, int(any(0, 2)));
                break;
            }
        }
        r.setClipArea(NO_CLIP);
    }

private:
    std::mt19937 mRandom;
    float mGrid, mLoose, mOpaque, mLarge, mSpan, mOdd, mClips;
    int mCount;

    float any(float from, float to) { return std::uniform_real_distribution<float>(from, to)(mRandom); }
    bool often(float share) { return any(0, 1) < share; }
    float odd() { // a position, a size or a channel
        const float values[] = {NAN, INFINITY, -INFINITY, -3e9f, 1e6f, 7, -3, 0};
        return values[int(any(0, 7.99f))];
    }
    float at(float most) {
        const float place = any(-20, most);
        return often(mOdd) ? odd() : often(mLoose) ? place : std::floor(place / mGrid) * mGrid;
    }
    float size() { return at(often(mLarge) ? 300.0f : 40.0f); }
    float channel() { return often(mOdd) ? odd() : any(0, 1); }
    Vector4f color() {
        const float alpha = often(mOpaque) ? 1.0f : channel();
        return Vector4f(channel(), channel(), channel(), alpha);
    }
};

TEST_F(ShapesTest, RandomHeapsLookAsDrawnOneByOne) {
    for (unsigned seed = 0; seed < 60 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const Vector2f offset = seed % 3 ? Vector2f(float(seed % 7) * 5, -3) : Vector2f();
        expectSame([&](Render& r) { RandomHeap(seed).draw(r); }, offset);
    }
}

// Once rounded, the corners of so flat a circle are no longer convex.
TEST_F(ShapesTest, AFlatCircleIsTheSameWhateverElseIsDrawn) {
    for (int i = 0; i < 100; ++i)
        expectSame([&](Render& r) {
            r.setColor(Vector4f(0.9f, 0.1f, 0.2f, 0.5f), NO_COLOR);
            r.drawCircle(Box2(26, 31, 212, 27), -1, 0.1f + 0.01f * float(i));
            box(r, Box2(-29, 5, 9, 251), GREEN);
        });
}

// For example the far ends of a curve's lines, whose values come from a file.
TEST_F(ShapesTest, ShapesFarBeyondTheClipAreaAreCutToIt) {
    const Box2 clip(100, 80, 300, 220);
    std::mt19937 random(5);
    const auto any = [&](float a, float b) { return std::uniform_real_distribution<float>(a, b)(random); };
    for (int exponent = 3; exponent <= 38; ++exponent) {
        SCOPED_TRACE(exponent);
        const float far = std::pow(10.0f, float(exponent));
        const auto place = [&] {
            const float scale = any(0, 1) < 0.5f ? 300.0f : far;
            return Vector2f(any(-1, 1) * scale, any(-1, 1) * (any(0, 1) < 0.5f ? 300.0f : far));
        };
        const Picture picture = draw(render, [&](Render& r) {
            r.setClipArea(clip);
            for (int i = 0; i < 40; ++i) {
                const Vector2f a = place(), b = place();
                r.setColor(RED, BLUE);
                r.drawLine(a, b);
                r.drawCircle(Box2(a.x, a.y, b.x, b.y), 7, any(0, 1));
                r.drawBox(Box2(a.x, a.y, b.x, b.y), i % 2);
                r.drawBorder(Box2(a.x, a.y, b.x, b.y));
            }
            r.setClipArea(NO_CLIP);
        });
        size_t inside = 0, outside = 0;
        for (int y = 0; y < HEIGHT; ++y)
            for (int x = 0; x < WIDTH; ++x) {
                const bool drawn = picture.at(x, y)[0] != picture.at(0, 0)[0];
                (float(x) >= clip.x1 && float(x) < clip.x2 && float(y) >= clip.y1 && float(y) < clip.y2
                     ? inside
                     : outside) += drawn;
            }
        EXPECT_EQ(outside, 0u);
        EXPECT_GT(inside, 0u);
    }
}

// A steep line through the centre of the clip area passes through it wherever its ends are.
TEST_F(ShapesTest, ALineGoesWhereItsEndsPointHoweverFarTheyAre) {
    const Box2 clip(100, 80, 300, 220);
    for (const float far : {1e3f, 1e6f, 1e9f, 1e15f, 1e30f, 3e38f}) {
        const Picture picture = draw(render, [&](Render& r) {
            r.setColor(RED, NO_COLOR);
            r.setClipArea(clip);
            r.drawLine(Vector2f(120, 150 + far), Vector2f(130, 150 - far)); // down to up
            r.drawLine(Vector2f(200, 150), Vector2f(200 + far, 150 + far)); // down to the right
            r.setClipArea(NO_CLIP);
        });
        const auto isRed = [&](int x, int y) { return picture.at(x, y)[0] > 200; };
        for (int y = 80; y < 220; ++y)
            EXPECT_TRUE(isRed(123, y) || isRed(124, y) || isRed(125, y)) << far << " " << y;
        for (int i = 1; i < 60; ++i)
            EXPECT_TRUE(isRed(200 + i, 150 + i) || isRed(200 + i, 149 + i)) << far << " " << i;
    }
}

TEST_F(ShapesTest, OnceWarmNothingIsAllocated) {
    size_t allocated = 1;
    frame([&] {
        for (int round = 0; round < 3; ++round) {
            const size_t before = allocationCount();
            for (unsigned seed = 0; seed < 4; ++seed) {
                render.setupDraw(Vector2f(WIDTH, HEIGHT), Vector2f(), 0);
                for (int i = 0; i < 300; ++i) {
                    const float x = float((i * 37 + int(seed) * 11) % 390), y = float(i * 53 % 290);
                    box(render, Box2(x, y, x + 30, y + 20), i % 3 ? RED : Vector4f(0, 0, 1, 0.5f));
                    render.drawText("short", Vector2f(x, y));
                }
                render.flush();
            }
            allocated = allocationCount() - before;
        }
    });
    EXPECT_EQ(allocated, 0u);
}

} // namespace
