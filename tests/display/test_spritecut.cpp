// Sprites cut to their visible part, against whole ones drawn with one call per vertex.
#include "allocations.h"
#include "am_image.h"
#include "dis_spritecut.h"
#include "dis_texture.h"
#include "gl_fixture.h"
#include "mb_random.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

using namespace zentrak;
using namespace zentrak::test;
using display::Batch;
using display::SpriteCut;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int CELLS = 8;
constexpr int CELL = 32; // texels
constexpr float NONE = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

// A soft glow, a hot point, nothing, a ring that touches the cell's edge, light all over, nothing, and the
// first two again.
float alphaOf(int cell, float x, float y) {
    const float r = std::hypot(x, y);
    switch (cell) {
    case 0:
    case 6:
        return 1 - 1.1f * r;
    case 1:
    case 7:
        return expf(-40 * r * r);
    case 3:
        return 1 - fabsf(0.9f - r) * 8;
    case 4:
        return 0.8f;
    default:
        return 0;
    }
}

am::Image picture() {
    auto* object = new am::ImageObject;
    object->resize(CELLS * CELL, CELL);
    unsigned char* texel = object->getWriteData();
    for (int y = 0; y < CELL; ++y)
        for (int x = 0; x < CELLS * CELL; ++x, texel += 4) {
            const auto place = [](int i) { return (2 * float(i % CELL) + 1) / CELL - 1; };
            texel[0] = 255, texel[1] = 240, texel[2] = 220;
            texel[3] = static_cast<unsigned char>(
                255 * std::min(1.0f, std::max(0.0f, alphaOf(x / CELL, place(x), place(y)))));
        }
    return am::Image(object);
}

struct Sprite {
    Vector3f place;
    float size;
    Vector4f color;
    int cell;
};

class SpriteCutTest : public GlTest {
protected:
    std::unique_ptr<display::Texture> mTexture;
    SpriteCut mCut;
    Batch mBatch;
    Vector3f mRight, mUp;
    bool mMagnified = false;

    void SetUp() override {
        window(320, 200);
        mTexture = std::make_unique<display::Texture>(&display());
        mTexture->load(picture(), true);
        mTexture->bind();
        mCut.readTexture(CELLS);
        mTexture->unbind();
    }
    void TearDown() override { mTexture.reset(); }

    // Everywhere in the view and outside it, and at all strengths.
    std::vector<Sprite> sprites(int count) {
        mathbase::Random random(11);
        const auto between = [&](float a, float b) { return a + (b - a) * random.uniform(); };
        std::vector<Sprite> made;
        for (int i = 0; i < count; ++i) {
            const float depth = i % 5 == 0 ? between(-2, 0.5f) : between(0.5f, 30);
            const float edge = 1.2f * fabsf(depth);
            const float strength = i % 3 == 0 ? between(0, 0.05f) : between(0, 0.5f);
            made.push_back({Vector3f(between(-edge, edge), between(-edge, edge), 4 - depth), between(0.1f, 4),
                            Vector4f(strength * between(-0.1f, 2), strength * between(0, 1), strength,
                                     i % 7 == 0 ? 0 : between(0, i % 2 ? 0.1f : 1)),
                            i % CELLS});
        }
        return made;
    }

    void begin(const std::function<void()>& state) {
        display().resetStates();
        glClearColor(0.2f, 0.1f, 0.3f, 0.5f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        Matrix4x4Col matrix;
        const Vector3f eye(0, 0, 4), target(0.3f, 0.2f, 0);
        matrix.setProject(0.7853982f, 1.6f, 0.05f, 100);
        display().setProject(matrix);
        matrix.setCamera(eye, target, 0.4f);
        display().setCamera(matrix);
        matrix.setCameraInv(eye, target, 0.4f);
        mRight = matrix.multiplyVector(Vector3f(1, 0, 0)).getNormalized() * 0.5f;
        mUp = matrix.multiplyVector(Vector3f(0, 1, 0)).getNormalized() * 0.5f;
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        mTexture->bind();
        state();
        mCut.look(mRight, mUp);
    }
    void end() {
        mTexture->unbind();
        glBlendEquation(GL_FUNC_ADD);
        glDisable(GL_STENCIL_TEST);
        glDisable(GL_FOG);
        glDisable(GL_COLOR_LOGIC_OP);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        display().resetStates();
    }

    Picture cut(const std::vector<Sprite>& all, const std::function<void()>& state) {
        return frame([&] {
            begin(state);
            mCut.setMagnified(mMagnified);
            for (const Sprite& s : all) {
                mBatch.color(s.color);
                mCut.draw(mBatch, s.place, s.size, s.color, s.cell, 0.125f * float(s.cell), 0,
                          0.125f * float(s.cell + 1), 1);
            }
            mBatch.flush();
            mCut.setMagnified(false);
            end();
        });
    }
    Picture whole(const std::vector<Sprite>& all, const std::function<void()>& state) {
        return frame([&] {
            begin(state);
            glBegin(GL_QUADS);
            for (const Sprite& s : all) {
                const float s0 = 0.125f * float(s.cell), s1 = s0 + 0.125f;
                glColor4f(s.color.x, s.color.y, s.color.z, s.color.w);
                glTexCoord2f(s0, 0);
                glVertex3fv(s.place + (mUp - mRight) * s.size);
                glTexCoord2f(s0, 1);
                glVertex3fv(s.place + (-mUp - mRight) * s.size);
                glTexCoord2f(s1, 1);
                glVertex3fv(s.place + (-mUp + mRight) * s.size);
                glTexCoord2f(s1, 0);
                glVertex3fv(s.place + (mUp + mRight) * s.size);
            }
            glEnd();
            end();
        });
    }

    // Except for the rounding of texture coordinates, sometimes one step of a channel.
    void expectSame(const std::vector<Sprite>& all, const std::function<void()>& state) {
        const Picture a = cut(all, state), b = whole(all, state);
        ASSERT_EQ(a.rgba.size(), b.rgba.size());
        int most = 0;
        size_t apart = 0, lit = 0;
        for (size_t i = 0; i < a.rgba.size(); ++i) {
            const int difference = std::abs(int(a.rgba[i]) - int(b.rgba[i]));
            most = std::max(most, difference);
            apart += difference > 0;
            lit += b.rgba[i] != b.rgba[i % 4];
        }
        EXPECT_LE(most, 1);
        EXPECT_LT(double(apart), 0.005 * double(a.rgba.size()));
        EXPECT_GT(double(lit), 0.2 * double(a.rgba.size()));
    }

    float reach(const Vector4f& color, int cell = 0, float size = 3,
                const std::function<void()>& state = {}) {
        float found = -1;
        frame([&] {
            begin(state ? state : [] {});
            found = mCut.reachOf(Vector3f(0, 0, 0), size, color, cell);
            end();
        });
        return found;
    }
};

const std::function<void()> adding = [] {};
const std::function<void()> covering = [] { glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA); };

} // namespace

TEST_F(SpriteCutTest, LightThatIsAddedIsThatOfWholeSprites) {
    expectSame(sprites(300), adding);
}

TEST_F(SpriteCutTest, SpritesThatCoverAreWholeOnesToo) {
    expectSame(sprites(300), covering);
}

// What is cut from one layer must not show in forty: a rim would change a pixel by a step in each.
TEST_F(SpriteCutTest, LayersOfFaintSpritesAddUpAsWholeOnesDo) {
    for (const auto& state : {adding, covering})
        for (const Vector4f& color : {Vector4f(1, 1, 1, 0.03f), Vector4f(0.9f, 0.1f, 0.4f, 0.008f)}) {
            const std::vector<Sprite> layers(40, Sprite{Vector3f(0, 0, 0), 3, color, 0});
            const Picture a = cut(layers, state), b = whole(layers, state);
            int apart = 0, lit = 0;
            for (size_t i = 0; i < a.rgba.size(); i += 4) {
                apart += std::abs(int(a.rgba[i]) - int(b.rgba[i])) > 4;
                lit += b.rgba[i] != b.rgba[0];
            }
            EXPECT_LE(apart, lit / 100) << color.w; // the rounding of texture coordinates, in every layer
            EXPECT_GT(lit, 2000) << color.w;
        }
}

TEST_F(SpriteCutTest, TheFainterTheLessIsDrawn) {
    EXPECT_EQ(reach(Vector4f(1, 1, 1, 0)), 0);
    EXPECT_EQ(reach(Vector4f(0, 0, 0, 0.5f)), 0);
    EXPECT_EQ(reach(Vector4f(-1, 0, 0, 0.5f)), 0);
    const float faint = reach(Vector4f(0.05f, 0.05f, 0.05f, 0.2f)),
                bright = reach(Vector4f(0.2f, 0, 0, 0.5f));
    EXPECT_GT(faint, 0.1f);
    EXPECT_LT(faint, 0.8f);
    EXPECT_GT(bright, faint);
    EXPECT_GE(reach(Vector4f(1, 1, 1, 1)), bright);
    EXPECT_LT(reach(Vector4f(1, 1, 1, 1), 1), 0.6f); // the hot point has no rim
}

// The next cell is lit up to the shared edge, and a point on the edge gets light from both.
TEST_F(SpriteCutTest, ACellWithALitNeighbourIsDrawnToItsEdge) {
    for (int cell : {2, 3, 4, 5})
        EXPECT_EQ(reach(Vector4f(1, 1, 1, 1), cell), 1) << cell;
    EXPECT_LT(reach(Vector4f(1, 1, 1, 1), 7), 0.6f);
}

TEST_F(SpriteCutTest, AMissingCellIsDrawnWhole) {
    EXPECT_EQ(reach(Vector4f(0.1f, 0.1f, 0.1f, 0.1f), -1), 1);
    EXPECT_EQ(reach(Vector4f(0.1f, 0.1f, 0.1f, 0.1f), CELLS), 1);
}

TEST_F(SpriteCutTest, MinifiedSpritesAreDrawnWhole) {
    const Vector4f dim(0.1f, 0.1f, 0.1f, 0.3f);
    EXPECT_LT(reach(dim, 0, 3), 1);
    EXPECT_EQ(reach(dim, 0, 0.1f), 1);
    EXPECT_EQ(reach(dim, 0, 0), 1);
    EXPECT_EQ(reach(dim, 0, -3), 1);
}

TEST_F(SpriteCutTest, WhereFaintPixelsMatterSpritesAreWhole) {
    const Vector4f dim(0.1f, 0.1f, 0.1f, 0.3f);
    const std::vector<std::function<void()>> states = {
        [] { glDisable(GL_BLEND); },
        [] { glBlendFunc(GL_ONE, GL_ONE); },
        [] { glBlendFunc(GL_SRC_ALPHA, GL_ZERO); },
        [] { glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE, GL_ONE, GL_ZERO); },
        [] { glBlendEquation(GL_MAX); },
        [] { glEnable(GL_DEPTH_TEST); },
        [] { glEnable(GL_STENCIL_TEST); },
        [] { glEnable(GL_FOG); },
        [] { glEnable(GL_LIGHTING); },
        [] { glEnable(GL_COLOR_LOGIC_OP); },
        [] { glPolygonMode(GL_FRONT_AND_BACK, GL_LINE); },
        [] { glDisable(GL_TEXTURE_2D); },
        [] { glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE); },
        [] {
            glMatrixMode(GL_TEXTURE);
            glScalef(2, 2, 2);
        },
    };
    for (size_t i = 0; i < states.size(); ++i)
        EXPECT_EQ(reach(dim, 0, 3, states[i]), 1) << i;
    EXPECT_LT(reach(dim), 1);
    EXPECT_LT(reach(dim, 0, 3,
                    [] {
                        glEnable(GL_DEPTH_TEST);
                        glDepthMask(false);
                    }),
              1);
    glDepthMask(true);
}

TEST_F(SpriteCutTest, SpritesAcrossTheDepthAreWhole) {
    const Vector4f dim(0.1f, 0.1f, 0.1f, 0.3f);
    frame([&] {
        begin([] {});
        mCut.look(Vector3f(0, 0, 1), mUp);
        EXPECT_EQ(mCut.reachOf(Vector3f(0, 0, 0), 3, dim), 1);
        mCut.look(mRight, mRight + mUp);
        EXPECT_EQ(mCut.reachOf(Vector3f(0, 0, 0), 3, dim), 1);
        mCut.look(Vector3f(0, 0, 0), mUp);
        EXPECT_EQ(mCut.reachOf(Vector3f(0, 0, 0), 3, dim), 1);
        end();
    });
}

TEST_F(SpriteCutTest, WithoutATextureSpritesAreWhole) {
    mCut = SpriteCut();
    EXPECT_EQ(reach(Vector4f(0.1f, 0.1f, 0.1f, 0.3f)), 1);
    expectSame(sprites(60), adding);
    mTexture->bind();
    mCut.readTexture(7); // cells that don't divide the texture evenly
    mTexture->unbind();
    EXPECT_EQ(reach(Vector4f(0.1f, 0.1f, 0.1f, 0.3f)), 1);
}

TEST_F(SpriteCutTest, MagnifiedSpritesNeedNoMipmaps) {
    std::vector<Sprite> near;
    frame([&] {
        begin(adding);
        for (const Sprite& s : sprites(600))
            if (mCut.isMagnified(s.place, s.size))
                near.push_back(s);
        end();
    });
    ASSERT_GT(near.size(), 50u);
    mMagnified = true;
    expectSame(near, adding);
    mTexture->bind();
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(filter, GL_LINEAR_MIPMAP_LINEAR); // as it was
    mTexture->unbind();
}

TEST_F(SpriteCutTest, NanAndInfinityAreDrawnSafely) {
    const Vector4f dim(0.1f, 0.1f, 0.1f, 0.3f);
    EXPECT_EQ(reach(Vector4f(0.1f, NONE, 0.1f, 0.3f)), 1);
    EXPECT_EQ(reach(Vector4f(NONE, 0.1f, 0.1f, 0.3f)), 1);
    EXPECT_EQ(reach(Vector4f(0.1f, 0.1f, 0.1f, NONE)), 1);
    EXPECT_EQ(reach(dim, 0, NONE), 1);
    std::vector<Sprite> all;
    for (float odd : {NONE, ENDLESS, -ENDLESS, 1e30f, -1e30f}) {
        all.push_back({Vector3f(odd, 0, 0), 1, dim, 0});
        all.push_back({Vector3f(0, 0, odd), 1, dim, 0});
        all.push_back({Vector3f(0, 0, 0), odd, dim, 0});
        all.push_back({Vector3f(0, 0, 0), 1, Vector4f(odd, odd, odd, odd), 1});
    }
    cut(all, adding);
}

TEST_F(SpriteCutTest, NothingIsAllocatedOnceWarm) {
    const std::vector<Sprite> all = sprites(300);
    size_t allocated = 1;
    for (int i = 0; i < 2; ++i)
        frame([&] {
            begin(adding);
            const size_t before = allocationCount();
            mCut.look(mRight, mUp);
            for (const Sprite& s : all) {
                mBatch.color(s.color);
                mCut.draw(mBatch, s.place, s.size, s.color, s.cell);
            }
            allocated = allocationCount() - before;
            mBatch.clear();
            end();
        });
    EXPECT_EQ(allocated, 0u);
}
