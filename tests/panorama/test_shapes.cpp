// What the toolkit leaves out, mixes and sorts on its way to OpenGL: the picture stays that of all shapes one
// after the other.
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

const Vector4f NO_COLOR(0, 0, 0, -1), RED(0.9f, 0.1f, 0.2f, 1), BLUE(0.1f, 0.3f, 0.8f, 1),
    GREEN(0.2f, 0.7f, 0.3f, 1);
const Box2 NO_CLIP(0, 0, -1, -1);

using Draw = std::function<void(Render&)>;

void box(Render& render, const Box2& area, const Vector4f& color) {
    render.setColor(color, color);
    render.drawBox(area, 0);
}

void shaded(Render& render, const Box2& area, const Vector4f& first, const Vector4f& second,
            int direction = 0) {
    render.setColor(first, second);
    render.drawBox(area, direction);
}

class ShapesTest : public GlTest {
protected:
    Render render;
    Shapes::Counts counts; // of the last picture

    ShapesTest() {
        window(WIDTH, HEIGHT);
        render.setup(&display());
    }

    Picture draw(const Draw& shapes, bool sorted, Vector2f offset = Vector2f(), float margin = 0) {
        return frame([&] {
            glClearColor(0.2f, 0.3f, 0.4f, 0);
            glClear(GL_COLOR_BUFFER_BIT);
            render.setSorted(sorted);
            render.setupDraw(Vector2f(WIDTH, HEIGHT), offset, margin);
            shapes(render);
            render.flush();
            counts = render.getCounts();
        });
    }

    // The greatest difference of two pictures in a channel of a pixel.
    static int differenceOf(const Picture& a, const Picture& b) {
        int most = 0;
        for (size_t i = 0; i < a.rgba.size(); ++i)
            if (i % 4 != 3)
                most = std::max(most, std::abs(int(a.rgba[i]) - int(b.rgba[i])));
        return most;
    }

    // Draws both ways, and leaves the counts of the one that sorts.
    void expectSame(const Draw& shapes, Vector2f offset = Vector2f(), float margin = 0, int shades = 0) {
        const Picture plain = draw(shapes, false, offset, margin);
        EXPECT_LE(counts.draws, 1);
        EXPECT_EQ(counts.hidden + counts.mixed + counts.cut, 0);
        const Picture sorted = draw(shapes, true, offset, margin);
        const int difference = differenceOf(plain, sorted);
        EXPECT_LE(difference, shades);
        if (difference > shades) {
            writePng(binaryPath("pictures-failed/shapes_plain.png"), plain);
            writePng(binaryPath("pictures-failed/shapes_sorted.png"), sorted);
        }
    }
};

TEST_F(ShapesTest, WhatLiesUnderAnOpaqueBoxIsLeftOut) {
    expectSame([](Render& r) {
        box(r, Box2(50, 50, 100, 80), RED);
        shaded(r, Box2(60, 60, 90, 90), BLUE, GREEN);
        r.setColor(GREEN, NO_COLOR);
        r.drawText("hidden", Vector2f(80, 75));
        r.drawLine(Vector2f(52, 60), Vector2f(90, 95));
        r.drawCircle(Box2(60, 60, 80, 80), -1, 0);
        box(r, Box2(40, 40, 120, 120), BLUE);
    });
    EXPECT_EQ(counts.shapes, 6);
    EXPECT_EQ(counts.hidden, 5);
    EXPECT_EQ(counts.draws, 1);
}

TEST_F(ShapesTest, AnOpaqueGradientHidesToo) {
    expectSame([](Render& r) {
        box(r, Box2(50, 50, 100, 80), RED);
        shaded(r, Box2(40, 40, 120, 120), BLUE, GREEN, 1);
    });
    EXPECT_EQ(counts.hidden, 1);
}

TEST_F(ShapesTest, ABoxUnderOneOfTheSameSizeIsLeftOut) {
    expectSame([](Render& r) {
        box(r, Box2(50, 50, 100, 80), RED);
        box(r, Box2(50, 50, 100, 80), BLUE);
    });
    EXPECT_EQ(counts.hidden, 1);
}

TEST_F(ShapesTest, ATranslucentCoverHidesNothing) {
    expectSame([](Render& r) {
        shaded(r, Box2(50, 50, 100, 80), RED, GREEN);
        box(r, Box2(40, 40, 120, 120), Vector4f(0.1f, 0.3f, 0.8f, 0.9f));
        shaded(r, Box2(140, 50, 200, 80), RED, GREEN);
        shaded(r, Box2(140, 40, 220, 120), BLUE, Vector4f(0.1f, 0.3f, 0.8f, 0.9f)); // in one half alone
    });
    EXPECT_EQ(counts.shapes, 4);
    EXPECT_EQ(counts.hidden, 0);
}

TEST_F(ShapesTest, ACoverWithinPixelsHidesNothing) {
    expectSame([](Render& r) {
        box(r, Box2(50, 50, 100, 80), RED);
        box(r, Box2(49.5f, 40, 120, 120), BLUE);
    });
    EXPECT_EQ(counts.hidden, 0);
}

TEST_F(ShapesTest, NeitherACircleNorATextHidesAnything) {
    expectSame([](Render& r) {
        box(r, Box2(95, 95, 105, 105), RED);
        r.setColor(BLUE, NO_COLOR);
        r.drawCircle(Box2(50, 50, 150, 150), -1, 0);
        r.drawText("MMMMMMMMM", Vector2f(100, 100));
    });
    EXPECT_EQ(counts.hidden, 0);
}

TEST_F(ShapesTest, WhatIsHiddenInPartIsDrawn) {
    expectSame([](Render& r) {
        r.setColor(GREEN, NO_COLOR);
        r.drawText("hidden in part", Vector2f(80, 60));
        shaded(r, Box2(50, 50, 130, 80), BLUE, GREEN);
        box(r, Box2(70, 40, 120, 120), RED);
    });
    EXPECT_EQ(counts.hidden, 0);
    EXPECT_EQ(counts.cut, 0) << "a gradient is drawn whole";
}

TEST_F(ShapesTest, ALargeBoxIsCutWhereOthersCoverIt) {
    expectSame([](Render& r) {
        box(r, Box2(0, 0, 400, 300), RED);
        box(r, Box2(0, 0, 400, 100), BLUE);               // a band
        box(r, Box2(100, 120, 200, 180), GREEN);          // a hole
        shaded(r, Box2(300, 150, 400, 300), BLUE, GREEN); // a corner
        box(r, Box2(150, 150, 320, 200), BLUE);           // across both
        box(r, Box2(20, 200, 30, 210), GREEN);            // not worth it
        box(r, Box2(-100, -100, 60, 180), GREEN);         // beyond the window
    });
    EXPECT_EQ(counts.hidden, 0);
    EXPECT_GE(counts.cut, 5);
}

TEST_F(ShapesTest, ATranslucentBoxIsCutToo) {
    expectSame([](Render& r) {
        shaded(r, Box2(0, 0, 400, 150), RED, GREEN);
        box(r, Box2(0, 0, 400, 300), Vector4f(0.1f, 0.3f, 0.8f, 0.4f));
        box(r, Box2(100, 100, 200, 180), GREEN);
    });
    EXPECT_EQ(counts.cut, 1);
}

TEST_F(ShapesTest, AStackOfWindowsCostsTheUppermost) {
    expectSame([](Render& r) {
        for (int i = 0; i < 40; ++i) {
            box(r, Box2(50, 50, 350, 250), i % 2 ? RED : BLUE);
            r.setColor(GREEN, NO_COLOR);
            r.drawBorder(Box2(50, 50, 350, 250));
            r.drawText("window " + std::to_string(i), Vector2f(200, 150));
        }
    });
    EXPECT_EQ(counts.shapes, 40 * 6);
    EXPECT_EQ(counts.hidden, 39 * 6);
    EXPECT_LE(counts.draws, 3);
}

TEST_F(ShapesTest, TheClipAreaCutsACover) {
    expectSame([](Render& r) {
        box(r, Box2(50, 50, 100, 80), RED);
        box(r, Box2(200, 50, 250, 80), RED);
        r.setClipArea(Box2(60, 40, 300, 120));
        box(r, Box2(40, 40, 120, 120), BLUE);  // the left edge of the first shows
        box(r, Box2(150, 40, 350, 120), BLUE); // this one covers what it needs to
        r.setClipArea(NO_CLIP);
    });
    EXPECT_EQ(counts.hidden, 1);
}

TEST_F(ShapesTest, WhatIsOutOfViewIsNotTaken) {
    expectSame([](Render& r) {
        box(r, Box2(10, 10, 20, 20), RED);
        box(r, Box2(-50, 10, 0, 20), RED);
        box(r, Box2(400, 10, 450, 20), RED);
        box(r, Box2(10, 300, 20, 400), RED);
        r.setColor(GREEN, NO_COLOR);
        r.drawText("below", Vector2f(100, 320));
    });
    EXPECT_EQ(counts.shapes, 1);
}

TEST_F(ShapesTest, OneColourOnAnotherIsMixed) {
    expectSame([](Render& r) {
        std::mt19937 random(3);
        std::uniform_real_distribution<float> any(0, 1);
        for (int i = 0; i < 400; ++i) {
            const float x = 20 * float(i % 20), y = 15 * float(i / 20);
            const auto color = [&](float alpha) {
                return Vector4f(any(random), any(random), any(random), alpha);
            };
            box(r, Box2(x, y, x + 20, y + 15), color(1));
            box(r, Box2(x + 2, y + 2, x + 18, y + 13), color(any(random)));
            box(r, Box2(x + 4, y + 4, x + 16, y + 11), color(any(random))); // on what is mixed
        }
    });
    EXPECT_EQ(counts.mixed, 800);
    EXPECT_EQ(counts.draws, 1);
}

TEST_F(ShapesTest, ColoursOutOfRangeAreMixedAsIfInRange) {
    expectSame([](Render& r) {
        box(r, Box2(0, 0, 200, 100), Vector4f(3, -2, 0.5f, 5));
        box(r, Box2(10, 10, 100, 90), Vector4f(-1, 2, 9, 0.5f));
        box(r, Box2(110, 10, 190, 90), Vector4f(1, 1, 1, -4));
    });
    EXPECT_EQ(counts.mixed, 2);
}

TEST_F(ShapesTest, ABoxThatReachesPastItsGroundIsBlended) {
    expectSame([](Render& r) {
        box(r, Box2(0, 0, 200, 100), RED);
        box(r, Box2(150, 50, 250, 90), Vector4f(0.1f, 0.3f, 0.8f, 0.4f));
    });
    EXPECT_EQ(counts.mixed, 0);
    EXPECT_EQ(counts.draws, 2);
}

TEST_F(ShapesTest, ALargeBoxOnTheLinesOfAFrameIsMixedInPieces) {
    const Vector4f shade(0, 0, 0, 0.3f);
    expectSame([&](Render& r) {
        box(r, Box2(20, 20, 380, 280), RED);
        r.setColor(GREEN, BLUE); // gradients left and right
        r.drawBorder(Box2(20, 20, 380, 280));
        box(r, Box2(20, 20, 380, 100), shade);
        box(r, Box2(20, 100, 380, 200), shade);
        r.setColor(GREEN, NO_COLOR);
        r.drawText("no box at all", Vector2f(200, 240));
        box(r, Box2(20, 200, 380, 280), shade); // stays whole
    });
    EXPECT_GE(counts.mixed, 3);
    EXPECT_GT(counts.draws, 1);
}

TEST_F(ShapesTest, ABoxOnALatticeIsSplitAFewTimesAtMost) {
    expectSame([](Render& r) {
        box(r, Box2(0, 0, 400, 300), RED);
        for (int i = 0; i < 60; ++i) {
            box(r, Box2(5.0f * float(i), 0, 5.0f * float(i) + 1, 300), GREEN);
            box(r, Box2(0, 4.0f * float(i), 400, 4.0f * float(i) + 1), BLUE);
        }
        box(r, Box2(0, 0, 400, 300), Vector4f(1, 1, 1, 0.3f));
    });
    EXPECT_LT(counts.shapes, 200);
}

TEST_F(ShapesTest, ControlsSideBySideTakeACallForEachKind) {
    expectSame([](Render& r) {
        for (int i = 0; i < 100; ++i) {
            const Box2 area(2 + 39.0f * float(i % 10), 2 + 17.0f * float(i / 10), 38 + 39.0f * float(i % 10),
                            17 + 17.0f * float(i / 10));
            shaded(r, area, Vector4f(0.2f, 0.2f, 0.3f, 0.9f), Vector4f(0.1f, 0.1f, 0.2f, 0.9f));
            r.setColor(GREEN, NO_COLOR);
            r.drawBorder(area);
            r.drawText(std::to_string(i), Vector2f(area.x1 + 18, area.y1 + 8));
        }
    });
    EXPECT_LE(counts.draws, 4);
}

TEST_F(ShapesTest, MoreLayersThanThereAreKeepTheirOrder) {
    expectSame([](Render& r) {
        for (int i = 0; i < 100; ++i) {
            shaded(r, Box2(float(i), float(i), float(i) + 60, float(i) + 30),
                   Vector4f(0.02f * float(i % 50), 0, 0.5f, 0.8f), BLUE);
            r.setColor(GREEN, NO_COLOR);
            r.drawText(std::to_string(i), Vector2f(float(i) + 30, float(i) + 15));
            box(r, Box2(float(i) + 20, float(i) + 5, float(i) + 30, float(i) + 10), Vector4f(1, 1, 1, 0.4f));
        }
    });
    EXPECT_LE(counts.draws, 61);
}

TEST_F(ShapesTest, PilesOfShapesKeepTheirOrder) {
    const auto color = [](int i, float alpha) {
        return Vector4f(float(i % 7) / 7, float(i % 11) / 11, float(i % 13) / 13, alpha);
    };
    expectSame([&](Render& r) {
        for (int i = 0; i < 450; ++i) { // small ones within one cell, of two kinds
            const float x = 66 + float(i % 9), y = 65 + float(i % 5);
            shaded(r, Box2(x, y, x + 10, y + 8), color(i, 0.7f), color(i + 1, 0.9f));
            shaded(r, Box2(x + 1, y + 1, x + 4, y + 4), color(i + 2, 1), color(i + 3, 1));
        }
        for (int i = 0; i < 1000; ++i) { // and on the edges of several
            const float x = 30 + float(i % 9), y = 120 + float(i % 5);
            shaded(r, Box2(x, y, x + 10, y + 10), color(i, 0.7f), color(i + 1, 0.9f));
            r.setColor(color(i + 2, 1), NO_COLOR);
            r.drawText("a", Vector2f(x, y));
        }
        for (int i = 0; i < 400; ++i) // large ones that hide nothing
            shaded(r, Box2(100, 0, 400, 300), color(i, 0.1f), color(i + 1, 0.2f));
        for (int i = 0; i < 300; ++i) {
            box(r, Box2(90 + float(i), 100, 100 + float(i), 110), color(i, 0.9f));
            r.drawText("b", Vector2f(95 + float(i), 110));
        }
    });
}

// A cell lists 128 shapes: the 129th, beside the others, takes their place there.
TEST_F(ShapesTest, ShapesThatACellNoLongerListsStayBelow) {
    expectSame([](Render& r) {
        for (int i = 0; i < 128; ++i)
            shaded(r, Box2(66, 66, 74, 74), Vector4f(1, float(i) / 128, 0, 0.5f), BLUE);
        box(r, Box2(84, 66, 92, 74), GREEN);
        box(r, Box2(68, 68, 72, 72), GREEN);
    });
}

// The same, over a ground that another cell still lists: it is no ground for what lies on both.
TEST_F(ShapesTest, WhatACellNoLongerListsIsNotMixedAway) {
    expectSame([](Render& r) {
        box(r, Box2(0, 64, 96, 80), RED);
        for (int i = 0; i < 127; ++i)
            shaded(r, Box2(66, 66, 74, 74), Vector4f(1, float(i) / 127, 0, 0.5f), BLUE);
        box(r, Box2(84, 66, 92, 74), GREEN); // the 129th
        box(r, Box2(2, 66, 80, 78), Vector4f(0, 1, 0, 0.5f));
    });
    EXPECT_EQ(counts.mixed, 0);
    EXPECT_EQ(counts.shapes, 130);
}

// 5,000 lines across all 247 cells of the view are more entries than are kept.
TEST_F(ShapesTest, WhatIsTooMuchToSortIsDrawnInItsOrder) {
    expectSame([](Render& r) {
        for (int i = 0; i < 5000; ++i) {
            r.setColor(Vector4f(float(i % 7) / 7, float(i % 11) / 11, 1, i % 2 ? 1.0f : 0.5f), NO_COLOR);
            r.drawLine(Vector2f(0, float(i % 20)), Vector2f(400, 280 + float(i % 20)));
            if (i % 100 == 0)
                r.drawText("text between", Vector2f(float(i) / 12, 20 + float(i) / 20));
        }
    });
    EXPECT_GT(counts.draws, 1);
    EXPECT_LE(counts.draws, 61);
}

// Pixels of the view that are none of the window's: neither edges nor colours are known.
TEST_F(ShapesTest, InAViewThatIsMovedByAPartOfAPixelNothingIsLeftOut) {
    const Draw shapes = [](Render& r) {
        box(r, Box2(50, 50, 200, 150), RED);
        box(r, Box2(60, 60, 100, 90), Vector4f(0, 0, 1, 0.5f));
        box(r, Box2(50, 50, 200, 150), BLUE);
    };
    expectSame(shapes, Vector2f(0.5f, 0));
    EXPECT_EQ(counts.hidden + counts.mixed + counts.cut, 0);
    expectSame(shapes, Vector2f(), 3);
    EXPECT_EQ(counts.hidden + counts.mixed + counts.cut, 0);
    expectSame(shapes, Vector2f(-30, 20));
    EXPECT_EQ(counts.hidden, 2);
}

TEST_F(ShapesTest, AFlushInBetweenStartsAnew) {
    const Draw shapes = [](Render& r) {
        box(r, Box2(0, 0, 200, 100), RED);
        r.flush();
        box(r, Box2(10, 10, 100, 90), Vector4f(0, 0, 1, 0.5f)); // on what, is not known
        r.flush();
        box(r, Box2(0, 0, 200, 100), Vector4f(0, 1, 0, 0.5f));
    };
    EXPECT_EQ(differenceOf(draw(shapes, false), draw(shapes, true)), 0);
    EXPECT_EQ(counts.mixed, 0);
    EXPECT_EQ(counts.draws, 3);
}

// Trees of boxes in boxes, as windows are, with all kinds of shapes.
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
        Box2 box(x1, y1, any(x1, of.x2 + 10), any(y1, of.y2 + 10));
        if (often(0.85f))
            box = Box2(std::floor(box.x1), std::floor(box.y1), std::floor(box.x2), std::floor(box.y2));
        return box;
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

TEST_F(ShapesTest, RandomTreesAreDrawnAsWithoutSorting) {
    int hidden = 0, mixed = 0, cut = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        expectSame([&](Render& r) { RandomTree(seed).draw(r); }, Vector2f(float(seed % 3) * 7, 0));
        hidden += counts.hidden, mixed += counts.mixed, cut += counts.cut;
        if (HasFailure())
            break;
    }
    EXPECT_GT(hidden, 100);
    EXPECT_GT(mixed, 30);
    EXPECT_GT(cut, 50);
}

// Heaps of shapes without any plan, on a grid or off it, some with places and colours that are no numbers.
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
    float odd() { // a place, a size or a channel
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

// A gradient may be a shade off where its quad is cut along the other diagonal.
TEST_F(ShapesTest, RandomHeapsAreDrawnAsWithoutSorting) {
    int hidden = 0, mixed = 0, cut = 0;
    for (unsigned seed = 0; seed < 120 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const Vector2f offset = seed % 3 ? Vector2f(float(seed % 7) * 5, -3) : Vector2f();
        const Draw heap = [&](Render& r) { RandomHeap(seed).draw(r); };
        const Picture plain = draw(heap, false, offset);
        EXPECT_LE(differenceOf(plain, draw(heap, true, offset)), 1);
        hidden += counts.hidden, mixed += counts.mixed, cut += counts.cut;
    }
    EXPECT_GT(hidden, 1000);
    EXPECT_GT(mixed, 50);
    EXPECT_GT(cut, 1000);
}

// The corners of so flat a circle are not convex any more once they are rounded, and Mesa cuts a quad along
// another diagonal when something else of the draw is out of view.
TEST_F(ShapesTest, AFlatCircleIsTheSameWhateverElseIsDrawn) {
    for (int i = 0; i < 100; ++i)
        expectSame([&](Render& r) {
            r.setColor(Vector4f(0.9f, 0.1f, 0.2f, 0.5f), NO_COLOR);
            r.drawCircle(Box2(26, 31, 212, 27), -1, 0.1f + 0.01f * float(i));
            box(r, Box2(-29, 5, 9, 251), GREEN);
        });
}

// The far ends of a curve's lines, say, whose values a file gives.
TEST_F(ShapesTest, WhatReachesFarBeyondTheClipAreaIsCutToIt) {
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
        const Picture picture = draw(
            [&](Render& r) {
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
            },
            true);
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

// A steep line through the middle of the clip area goes through it wherever its ends are.
TEST_F(ShapesTest, ALineGoesWhereItsEndsPointHoweverFarTheyAre) {
    const Box2 clip(100, 80, 300, 220);
    for (const float far : {1e3f, 1e6f, 1e9f, 1e15f, 1e30f, 3e38f}) {
        const Picture picture = draw(
            [&](Render& r) {
                r.setColor(RED, NO_COLOR);
                r.setClipArea(clip);
                r.drawLine(Vector2f(120, 150 + far), Vector2f(130, 150 - far)); // down to up
                r.drawLine(Vector2f(200, 150), Vector2f(200 + far, 150 + far)); // down to the right
                r.setClipArea(NO_CLIP);
            },
            true);
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
