// The batch against one OpenGL call per vertex: the same words, two pictures, compared.
#include "allocations.h"
#include "dis_batch.h"
#include "dis_ibo.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "dis_vbo.h"
#include "gl_fixture.h"
#include "plain_box.h"
#include "support.h"
#include "ztk_system.h"

#include <cmath>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

using namespace zentrak;
using namespace zentrak::test;
using display::Batch;
using mathbase::Matrix4x4Col;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

// The words that both ways understand, one OpenGL call for each vertex.
class Plain {
public:
    explicit Plain(display::DisplayGL& display) : mDisplay(display) {}

    void setTransform(const Matrix4x4Col& m) { mDisplay.setTransform(m); }
    void color(float r, float g, float b, float a = 1) { glColor4f(r, g, b, a); }
    void texCoord(float s, float t) { glTexCoord2f(s, t); }
    void normal(float x, float y, float z) { glNormal3f(x, y, z); }
    void attrib(int slot, const Vector4f& v) { glVertexAttrib4f(GLuint(slot), v.x, v.y, v.z, v.w); }
    void begin(GLenum mode) { glBegin(mode); }
    void vertex(float x, float y, float z = 0) { glVertex3f(x, y, z); }
    void vertex(const Vector3f& v) { glVertex3f(v.x, v.y, v.z); }
    void end() { glEnd(); }

    void box(const Vector3f& c, const Vector3f& h) { plainBox(c, h); }

    void sprite(const Vector3f& p, const Vector3f& r, const Vector3f& u, float s0 = 0, float t0 = 0,
                float s1 = 1, float t1 = 1) {
        glBegin(GL_QUADS);
        texCoord(s0, t0);
        vertex(p + u - r);
        texCoord(s0, t1);
        vertex(p - u - r);
        texCoord(s1, t1);
        vertex(p - u + r);
        texCoord(s1, t0);
        vertex(p + u + r);
        glEnd();
    }

    void octagon(const Vector3f& p, const Vector3f& r, const Vector3f& u, float s0 = 0, float t0 = 0,
                 float s1 = 1, float t1 = 1) {
        constexpr float side = 0.41421356f;
        const auto corner = [&](float x, float y) {
            texCoord(0.5f * (s0 + s1) + 0.5f * (s1 - s0) * x, 0.5f * (t0 + t1) + 0.5f * (t0 - t1) * y);
            vertex(p + (r * x + u * y));
        };
        glBegin(GL_QUADS);
        corner(-side, 1), corner(-1, side), corner(-1, -side), corner(-side, -1);
        corner(-side, 1), corner(-side, -1), corner(side, -1), corner(side, 1);
        corner(side, 1), corner(side, -1), corner(1, -side), corner(1, side);
        glEnd();
    }

    void quad(const Vector3f& a, const Vector3f& b, const Vector3f& c, const Vector3f& d, float s0 = 0,
              float t0 = 0, float s1 = 1, float t1 = 1) {
        glBegin(GL_QUADS);
        texCoord(s0, t0);
        vertex(a);
        texCoord(s1, t0);
        vertex(b);
        texCoord(s1, t1);
        vertex(c);
        texCoord(s0, t1);
        vertex(d);
        glEnd();
    }

    void rect(float x0, float y0, float x1, float y1, float s0 = 0, float t0 = 0, float s1 = 1, float t1 = 1,
              float z = 0) {
        quad({x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}, s0, t0, s1, t1);
    }

    void flush() { mDisplay.setTransform(identity()); }

    static Matrix4x4Col identity() {
        Matrix4x4Col m;
        m.setIdentity();
        return m;
    }

private:
    display::DisplayGL& mDisplay;
};

// The same sequence of numbers for both ways.
class Random {
public:
    float operator()(float low, float high) {
        mState = mState * 69069 + 5;
        return low + (high - low) * float(mState >> 8) / float(1 << 24);
    }

private:
    uint32_t mState = 12345;
};

Matrix4x4Col randomPlace(Random& random, float spread, float nearest, float farthest) {
    Matrix4x4Col place, x, y;
    x.setRotX(random(0, 6.28f));
    y.setRotZ(random(0, 6.28f));
    const float deep = random(nearest, farthest);
    place.setTranslation(Vector3f(random(-spread, spread), random(-spread, spread), -deep));
    place *= x;
    place *= y;
    return place;
}

class BatchTest : public GlTest {
protected:
    // Draws the scene both ways under the same state. A batch with no more than `draws` draw calls. The two
    // pictures may differ in the rounding of a channel and of an edge, and must show something.
    template <class State, class Scene>
    void compare(State state, Scene scene, size_t draws = 1, double maxChanged = 0.0004) {
        const Picture plain = frame([&] {
            state();
            Plain painter(display());
            scene(painter);
            painter.flush();
        });
        const size_t before = batch.getDraws();
        const Picture batched = frame([&] {
            state();
            scene(batch);
            batch.flush();
        });
        EXPECT_LE(batch.getDraws() - before, draws);
        const PictureDifference difference = comparePictures(plain, batched);
        EXPECT_LE(difference.mean, 0.02);
        EXPECT_LE(difference.changed, maxChanged);
        size_t lit = 0;
        for (size_t i = 0; i < plain.rgba.size(); i += 4)
            lit += plain.rgba[i] || plain.rgba[i + 1] || plain.rgba[i + 2];
        EXPECT_GT(lit, plain.rgba.size() / 4 / 100) << "the scene is nearly empty";
        if (HasFailure()) {
            const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
            writePng(binaryPath("pictures-failed/batch_" + name + "_plain.png"), plain);
            writePng(binaryPath("pictures-failed/batch_" + name + "_batch.png"), batched);
        }
    }

    // A checkered texture with a bright corner, whose alpha falls to the right.
    void loadTexture(display::Texture& texture) {
        am::Image image(new am::ImageObject);
        image->resize(64, 64);
        unsigned char* p = image->getWriteData();
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x, p += 4) {
                const bool on = ((x / 8) + (y / 8)) % 2;
                p[0] = on ? 255 : 40;
                p[1] = (unsigned char)(y * 4);
                p[2] = x < 16 && y < 16 ? 255 : 90;
                p[3] = (unsigned char)(255 - x * 3);
            }
        texture.load(image, false);
    }

    Batch batch;
};

template <class Painter>
void drawBoxes(Painter& painter, int count, float spread, float nearest, float farthest, float size) {
    Random random;
    for (int i = 0; i < count; ++i) {
        painter.setTransform(randomPlace(random, spread, nearest, farthest));
        painter.color(random(0, 1), random(0, 1), random(0, 1), random(0.2f, 1));
        painter.box(Vector3f(random(-1, 1), 0, 0), Vector3f(size, size * random(0.3f, 1), size));
    }
}

template <class Painter>
void drawSprites(Painter& painter, int count) {
    Random random;
    for (int i = 0; i < count; ++i) {
        painter.color(random(0, 1), random(0, 1), random(0, 1), random(0.1f, 0.5f));
        const float s = random(0.1f, 1.5f);
        const Vector3f p(random(-12, 12), random(-8, 8), random(-30, 3));
        painter.sprite(p, Vector3f(s, 0.1f * s, 0), Vector3f(0, s, 0.2f * s), 0, 0, 0.5f, 1);
    }
}

// Every mode of glBegin once, with a colour, a texture coordinate and a normal of its own at each vertex.
template <class Painter>
void drawModes(Painter& painter, const std::vector<GLenum>& modes, int vertices = 9) {
    Random random;
    int cell = 0;
    for (const GLenum mode : modes) {
        const float x0 = -0.95f + 0.48f * float(cell % 4), y0 = -0.9f + 0.62f * float(cell / 4);
        ++cell;
        painter.begin(mode);
        for (int i = 0; i < vertices; ++i) {
            painter.color(random(0.3f, 1), random(0.3f, 1), random(0.3f, 1), random(0.3f, 0.9f));
            painter.texCoord(random(0, 1), random(0, 1));
            painter.normal(random(-1, 1), random(-1, 1), 1);
            if (mode == GL_POLYGON || mode == GL_TRIANGLE_FAN) { // convex
                const float angle = 6.2831853f * float(i) / float(vertices);
                painter.vertex(x0 + 0.2f + 0.2f * std::cos(angle), y0 + 0.25f + 0.25f * std::sin(angle));
            } else if (mode == GL_QUADS) {
                static const float quad[4][2] = {{0, 0}, {0.18f, 0.02f}, {0.16f, 0.22f}, {-0.02f, 0.2f}};
                painter.vertex(x0 + quad[i % 4][0] + 0.21f * float(i / 4),
                               y0 + quad[i % 4][1] + 0.1f * float(i / 4));
            } else {
                painter.vertex(x0 + 0.05f * float(i), y0 + (i % 2 ? 0.3f : 0.0f) + random(0, 0.1f),
                               random(-0.5f, 0.5f));
            }
        }
        painter.end();
    }
}

const std::vector<GLenum> SURFACES = {GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN,
                                      GL_QUADS,     GL_QUAD_STRIP,     GL_POLYGON,
                                      GL_TRIANGLES, GL_QUADS,          GL_QUAD_STRIP};
const std::vector<GLenum> ALL = {GL_POINTS,     GL_LINES,          GL_LINE_STRIP,   GL_LINE_LOOP,
                                 GL_TRIANGLES,  GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS,
                                 GL_QUAD_STRIP, GL_POLYGON};

void perspective(display::DisplayGL& display) {
    Matrix4x4Col project;
    project.setProject(0.7853982f, 1.6f, 0.15f, 1000);
    display.setProject(project);
    display.setModelView();
}

void blendTextured(display::DisplayGL& display, display::Texture& texture) {
    perspective(display);
    glEnable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    texture.bind();
}

void flat(display::DisplayGL& display) {
    display.setProject(Plain::identity());
    display.setModelView();
}

TEST_F(BatchTest, BoxesWithATransformAndAColourEach) {
    compare([&] { perspective(display()), glEnable(GL_DEPTH_TEST); },
            [](auto& p) { drawBoxes(p, 300, 12, 20, 60, 1.2f); });
}

TEST_F(BatchTest, BoxesBlendInTheOrderGiven) {
    compare(
        [&] {
            perspective(display());
            glEnable(GL_BLEND);
        },
        [](auto& p) { drawBoxes(p, 200, 8, 20, 40, 2.5f); });
}

TEST_F(BatchTest, CulledFacesBothWays) {
    for (const GLenum culled : {GL_BACK, GL_FRONT})
        for (const GLenum front : {GL_CCW, GL_CW})
            compare(
                [&] {
                    perspective(display());
                    glEnable(GL_CULL_FACE);
                    glCullFace(culled);
                    glFrontFace(front);
                    glEnable(GL_BLEND);
                },
                [](auto& p) { drawBoxes(p, 150, 10, 15, 50, 1.5f); });
}

// The same shapes with and without what is left out and drawn apart: the same vertices, so the same picture.
// Blended, so that a shape out of order shows: with the runs in reverse the mean is 17. Pixels on the edges
// of faces may differ, since software OpenGL cuts quads the other way in a draw that it clips; how many, the
// scene decides, which is another with each compiler.
TEST_F(BatchTest, BoxesInsideTheViewAndAcrossItsEdgeStayInOrder) {
    const auto draw = [&](Batch::Culling culling) {
        return frame([&] {
            perspective(display());
            glEnable(GL_BLEND);
            batch.setCulling(culling);
            Random random;
            for (int i = 0; i < 400; ++i) {
                const bool across = i % 97 < 5 || i > 390; // between long runs inside
                batch.setTransform(randomPlace(random, 4, 20, 30));
                batch.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1), 0.5f);
                batch.box(Vector3f(across ? 12.0f : 0.0f, 0, 0),
                          across ? Vector3f(6, 1, 1) : Vector3f(1, 1, 1));
            }
            batch.flush();
        });
    };
    const Picture whole = draw(Batch::CULLING_OFF);
    EXPECT_LE(comparePictures(draw(Batch::CULLING_ON), whole).mean, 0.05);
    batch.setCulling(Batch::CULLING_AUTO);
}

// Turned every way, some of them around the eye.
TEST_F(BatchTest, SeparateQuadsLoseTheFacesThatAreCulled) {
    for (const GLenum culled : {GL_BACK, GL_FRONT}) {
        const auto draw = [&](Batch::Culling culling) {
            return frame([&] {
                perspective(display());
                glEnable(GL_CULL_FACE);
                glCullFace(culled);
                glEnable(GL_BLEND);
                batch.setCulling(culling);
                Random random;
                for (int i = 0; i < 200; ++i) {
                    batch.setTransform(randomPlace(random, 8, 0.5f, 30));
                    batch.begin(GL_QUADS);
                    for (int face = 0; face < 5; ++face) {
                        const float z = random(-1, 1), side = face % 2 ? 1.0f : -1.0f;
                        batch.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1), 0.6f);
                        for (const auto& [x, y] :
                             {std::pair(-1, -1), std::pair(1, -1), std::pair(1, 1), std::pair(-1, 1)})
                            batch.vertex(side * float(x), float(y), z);
                    }
                    batch.end();
                }
                EXPECT_EQ(batch.getVertices() < 3000, culling == Batch::CULLING_ON);
                batch.flush();
            });
        };
        const Picture whole = draw(Batch::CULLING_OFF);
        EXPECT_LE(comparePictures(draw(Batch::CULLING_ON), whole).mean, 0.02);
    }
    batch.setCulling(Batch::CULLING_AUTO);
}

TEST_F(BatchTest, QuadsThatAreTurnedAwayCostNoVertex) {
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        batch.begin(GL_QUADS);
        for (const float side : {1.0f, -1.0f, 1.0f}) {
            batch.vertex(-side, -1, -10);
            batch.vertex(side, -1, -10);
            batch.vertex(side, 1, -10);
            batch.vertex(-side, 1, -10);
        }
        batch.end();
        EXPECT_EQ(batch.getVertices(), 8u);
        batch.begin(GL_TRIANGLE_FAN); // beside the view
        for (int i = 0; i < 5; ++i)
            batch.vertex(100 + float(i), float(i * i), -10);
        batch.end();
        EXPECT_EQ(batch.getVertices(), 8u);
        batch.flush();
    });
}

TEST_F(BatchTest, EverythingCulledDrawsNothing) {
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT_AND_BACK);
        drawBoxes(batch, 50, 5, 20, 40, 1);
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.flush();
    });
}

TEST_F(BatchTest, MirroredTransformsTurnTheFacesAround) {
    compare(
        [&] {
            perspective(display());
            glEnable(GL_CULL_FACE);
            glEnable(GL_DEPTH_TEST);
        },
        [](auto& p) {
            Random random;
            for (int i = 0; i < 100; ++i) {
                Matrix4x4Col m = randomPlace(random, 10, 20, 40);
                if (i % 2)
                    for (int k = 0; k < 3; ++k)
                        m.mData[k] = -m.mData[k];
                p.setTransform(m);
                p.color(random(0, 1), random(0, 1), random(0, 1));
                p.box(Vector3f(0, 0, 0), Vector3f(1, 2, i % 3 ? 1.0f : -1.0f));
            }
        });
}

TEST_F(BatchTest, BoxesAroundTheEyeAreCutByTheNearPlane) {
    compare(
        [&] {
            perspective(display());
            glEnable(GL_CULL_FACE);
            glCullFace(GL_FRONT);
            glEnable(GL_DEPTH_TEST);
        },
        [](auto& p) { drawBoxes(p, 60, 3, -3, 6, 2); });
    compare(
        [&] {
            perspective(display());
            glEnable(GL_CULL_FACE);
            glEnable(GL_DEPTH_TEST);
        },
        [](auto& p) { drawBoxes(p, 60, 4, -6, 9, 1); });
}

TEST_F(BatchTest, BoxesUnderAnOrthographicProjectionWithTheDepthTurnedAround) {
    compare(
        [&] {
            Matrix4x4Col project;
            project.setProjectOrtho(-8, 8, -5, 5, -100, 100);
            display().setProject(project);
            display().setModelView();
            glEnable(GL_CULL_FACE);
            glEnable(GL_BLEND);
        },
        [](auto& p) { drawBoxes(p, 100, 9, -20, 20, 1); });
}

TEST_F(BatchTest, TexturedAndLitBoxes) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    for (const bool normalize : {false, true})
        compare(
            [&] {
                perspective(display());
                glEnable(GL_DEPTH_TEST);
                glEnable(GL_TEXTURE_2D);
                texture.bind();
                glEnable(GL_LIGHTING);
                glEnable(GL_LIGHT0);
                glEnable(GL_COLOR_MATERIAL);
                if (normalize)
                    glEnable(GL_NORMALIZE);
            },
            [](auto& p) {
                Random random;
                for (int i = 0; i < 60; ++i) {
                    Matrix4x4Col m = randomPlace(random, 8, 20, 30), scale;
                    scale.setScale(Vector3f(2, 0.5f, 3));
                    m *= scale;
                    p.setTransform(m);
                    p.color(random(0.4f, 1), random(0.4f, 1), random(0.4f, 1));
                    p.box(Vector3f(0, 0, 0), Vector3f(1, 1, 1));
                }
            });
}

TEST_F(BatchTest, FlatBoxesKeepTheirTwoFacesAndEmptyOnesNone) {
    compare([&] { perspective(display()), glEnable(GL_CULL_FACE); },
            [](auto& p) {
                Random random;
                for (int i = 0; i < 80; ++i) {
                    p.setTransform(randomPlace(random, 9, 15, 30));
                    p.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1));
                    p.box(Vector3f(0, 0, 0), Vector3f(2, i % 2 ? 2.0f : 0.0f, i % 2 ? 0.0f : 1.5f));
                    p.box(Vector3f(0, 0, 0), Vector3f(0, 0, 0));
                }
            });
}

TEST_F(BatchTest, SpritesAddedUp) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare(
        [&] {
            blendTextured(display(), texture);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        },
        [](auto& p) { drawSprites(p, 800); });
}

TEST_F(BatchTest, SpritesQuadsAndRectsUnderATransform) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare([&] { blendTextured(display(), texture); },
            [](auto& p) {
                Random random;
                for (int i = 0; i < 60; ++i) {
                    p.setTransform(randomPlace(random, 6, 15, 30));
                    p.color(random(0.4f, 1), random(0.4f, 1), random(0.4f, 1), 0.7f);
                    p.sprite(Vector3f(1, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0));
                    p.octagon(Vector3f(-1, 1, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0), 0.5f, 0.25f, 1, 1);
                    p.quad({0, 0, 0}, {2, 0, 1}, {2, 2, 1}, {0, 2, 0}, 0.25f, 0, 1, 0.5f);
                    p.rect(-2, -2, -1, 0, 0, 1, 1, 0, 0.5f);
                }
            });
}

// As many again lie outside the view, or are smaller than a pixel.
TEST_F(BatchTest, OctagonsWithSpritesBetweenThem) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare([&] { blendTextured(display(), texture); },
            [](auto& p) {
                Random random;
                for (int i = 0; i < 200; ++i) {
                    const float z = i % 4 ? random(-30, -15) : random(-5, 20);
                    const Vector3f place(random(-9, 9), random(-9, 9), z);
                    const float size = i % 5 ? random(0.2f, 2) : 0.001f;
                    p.color(random(0.4f, 1), random(0.4f, 1), random(0.4f, 1), 0.7f);
                    if (i % 3)
                        p.octagon(place, Vector3f(size, 0, 0), Vector3f(0, size, 0));
                    else
                        p.sprite(place, Vector3f(size, 0, 0), Vector3f(0, size, 0));
                }
            });
}

TEST_F(BatchTest, AnOctagonOutsideTheViewCostsNoVertex) {
    frame([&] {
        perspective(display());
        batch.octagon({0, 0, 10}, {1, 0, 0}, {0, 1, 0}); // behind the eye
        batch.octagon({900, 0, -10}, {1, 0, 0}, {0, 1, 0});
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.octagon({0, 0, -10}, {1, 0, 0}, {0, 1, 0});
        EXPECT_EQ(batch.getVertices(), 12u);
        batch.clear();
    });
}

TEST_F(BatchTest, ASpriteIsCounterClockwiseAsSeen) {
    const Picture shown = frame([&] {
        flat(display());
        glEnable(GL_CULL_FACE);
        batch.color(1, 0, 0);
        batch.sprite({-0.5f, 0, 0}, {0.4f, 0, 0}, {0, 0.4f, 0});
        batch.color(0, 0, 1);
        batch.octagon({-0.5f, -0.7f, 0}, {0.2f, 0, 0}, {0, 0.2f, 0});
        batch.color(0, 1, 0);
        batch.rect(0.1f, -0.4f, 0.9f, 0.4f);
        batch.flush();
    });
    EXPECT_EQ(shown.at(160, 200)[0], 255);
    EXPECT_EQ(shown.at(480, 200)[1], 255);
    EXPECT_EQ(shown.at(160, 340)[2], 255);
}

TEST_F(BatchTest, AllModesOfSurfacesInOneDraw) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare(
        [&] {
            flat(display());
            glEnable(GL_BLEND);
        },
        [](auto& p) { drawModes(p, SURFACES); });
    compare(
        [&] {
            flat(display());
            glEnable(GL_BLEND);
            glEnable(GL_TEXTURE_2D);
            texture.bind();
        },
        [](auto& p) { drawModes(p, SURFACES, 8); });
}

TEST_F(BatchTest, AllModesWithFlatShading) {
    compare(
        [&] {
            flat(display());
            glShadeModel(GL_FLAT);
        },
        [](auto& p) { drawModes(p, SURFACES); });
    compare(
        [&] {
            flat(display());
            glShadeModel(GL_FLAT);
            glLineWidth(3);
            glPointSize(5);
        },
        [](auto& p) { drawModes(p, ALL); }, 3);
}

TEST_F(BatchTest, EachModeAlone) {
    for (const GLenum mode : ALL)
        for (const int vertices : {8, 9, 10, 11})
            compare(
                [&] {
                    flat(display());
                    glLineWidth(6);
                    glPointSize(30);
                    glEnable(GL_BLEND);
                    Matrix4x4Col project = Plain::identity();
                    project.mData[0] = project.mData[5] = 2.5f; // into the middle of the picture
                    project.mData[12] = project.mData[13] = 1.6f;
                    display().setProject(project);
                    display().setModelView();
                },
                [&](auto& p) { drawModes(p, {mode}, vertices); });
}

TEST_F(BatchTest, PointsLinesAndSurfacesInTheOrderGiven) {
    compare(
        [&] {
            flat(display());
            glEnable(GL_BLEND);
            glLineWidth(9);
            glPointSize(15);
        },
        [](auto& p) {
            for (int i = 0; i < 3; ++i)
                drawModes(p, {GL_TRIANGLE_STRIP, GL_LINE_STRIP, GL_QUADS, GL_POINTS, GL_LINE_LOOP,
                              GL_TRIANGLE_FAN});
        },
        16);
}

TEST_F(BatchTest, EdgesOfPolygonsAloneAndStippledLines) {
    compare(
        [&] {
            flat(display());
            glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
            glLineWidth(3);
        },
        [](auto& p) { drawModes(p, SURFACES); }, 9);
    compare(
        [&] {
            perspective(display());
            glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
            glEnable(GL_CULL_FACE);
            glLineWidth(2);
        },
        [](auto& p) { drawBoxes(p, 40, 8, 15, 30, 1.5f); });
    compare(
        [&] {
            flat(display());
            glEnable(GL_LINE_STIPPLE);
            glLineStipple(3, 0x5557);
            glLineWidth(5);
        },
        [](auto& p) {
            drawModes(p, {GL_LINE_STRIP, GL_LINE_LOOP, GL_LINES, GL_LINE_STRIP});
        },
        4);
}

TEST_F(BatchTest, ManyStripsUnderTransforms) {
    compare(
        [&] {
            perspective(display());
            glEnable(GL_BLEND);
        },
        [](auto& p) {
            Random random;
            for (int ring = 0; ring < 20; ++ring) {
                p.setTransform(randomPlace(random, 5, 15, 25));
                p.begin(GL_QUAD_STRIP);
                for (int k = 0; k <= 80; ++k) {
                    const float a = 6.2831853f * float(k) / 80;
                    p.color(1, 0.4f, 0.2f, 0);
                    p.vertex(std::sin(a), std::cos(a));
                    p.color(random(0, 1), 0.6f, 1, 0.8f);
                    p.vertex(2 * std::sin(a), 2 * std::cos(a));
                }
                p.end();
            }
        });
}

const char* const VERTEX =
    "attribute vec4 tangent0_vs;\n"
    "varying vec3 shade;\n"
    "void main() {\n"
    "    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;\n"
    "    gl_FrontColor = gl_Color;\n"
    "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
    "    shade = normalize(gl_NormalMatrix * gl_Normal) * 0.5 + 0.5 + tangent0_vs.xyz;\n"
    "}\n";
const char* const FRAGMENT =
    "varying vec3 shade;\n"
    "void main() { gl_FragColor = vec4(shade * gl_Color.rgb + 0.2 * gl_TexCoord[0].xyx, 1.0); }\n";

class BatchProgramTest : public BatchTest {
protected:
    void link(display::ShaderProgram& program) {
        display::VertexShader vertex(&display());
        display::FragmentShader fragment(&display());
        vertex.compile(reinterpret_cast<const unsigned char*>(VERTEX), int(strlen(VERTEX)), "vertex");
        fragment.compile(reinterpret_cast<const unsigned char*>(FRAGMENT), int(strlen(FRAGMENT)), "fragment");
        program.attach(vertex, fragment);
        program.link();
    }
};

TEST_F(BatchProgramTest, AProgramGetsPositionsColoursTexturesNormalsAndAttributes) {
    window();
    display::ShaderProgram program(&display());
    link(program);
    const auto state = [&] {
        perspective(display());
        glEnable(GL_DEPTH_TEST);
        program.bind();
    };
    const auto scene = [&](auto& p) {
        Random random;
        for (int i = 0; i < 60; ++i) {
            p.setTransform(randomPlace(random, 8, 20, 30));
            p.color(random(0.4f, 1), random(0.4f, 1), random(0.4f, 1));
            p.attrib(6, Vector4f(random(0, 0.4f), random(0, 0.4f), 0, 0));
            p.box(Vector3f(0, 0, 0), Vector3f(1, 2, 1));
        }
        p.flush();
        program.unbind();
    };
    compare(state, scene);
}

TEST_F(BatchProgramTest, UnderAProgramNothingIsLeftOutUnlessAskedFor) {
    window();
    display::ShaderProgram program(&display());
    link(program);
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        program.bind();
        const auto boxes = [&] {
            batch.box({0, 0, -10}, {1, 1, 1}); // one face, or two from the side
            batch.box({0, 0, 50}, {1, 1, 1});  // behind the eye
            batch.sprite({0, 0, 50}, {1, 0, 0}, {0, 1, 0});
            const size_t vertices = batch.getVertices();
            batch.clear();
            return vertices;
        };
        EXPECT_EQ(boxes(), 24u + 24u + 4u);
        batch.setCulling(Batch::CULLING_ON);
        EXPECT_EQ(boxes(), 4u);
        program.unbind();
        batch.setCulling(Batch::CULLING_AUTO);
        EXPECT_EQ(boxes(), 4u);
        batch.setCulling(Batch::CULLING_OFF);
        EXPECT_EQ(boxes(), 24u + 24u + 4u);
    });
}

TEST_F(BatchTest, BoxesOutsideTheViewCostNoVertex) {
    frame([&] {
        perspective(display());
        const Vector3f half(1, 1, 1);
        for (const Vector3f& centre : {Vector3f(0, 0, 10), Vector3f(100, 0, -10), Vector3f(-100, 0, -10),
                                       Vector3f(0, 100, -10), Vector3f(0, -100, -10), Vector3f(0, 0, -2000)})
            batch.box(centre, half);
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.clear();
    });
}

TEST_F(BatchTest, FacesBeyondTheEdgeOfTheViewCostNoVertex) {
    frame([&] {
        perspective(display());
        batch.box(Vector3f(0, 0, -970), Vector3f(100, 100, 50)); // its back is behind the far plane
        EXPECT_EQ(batch.getVertices(), 20u);
        batch.box(Vector3f(0, 0, -4), Vector3f(1, 1, 5)); // its front is behind the eye
        EXPECT_EQ(batch.getVertices(), 40u);
        batch.box(Vector3f(100, 0, -10), Vector3f(99, 1, 1)); // its right side is out to the right
        EXPECT_EQ(batch.getVertices(), 60u);
        batch.clear();
    });
}

// What covers the middle of no pixel is left out: the same vertices with and without, so the very same
// picture.
class BatchSampleTest : public BatchTest {
protected:
    // Draws the scene with and without what is left out; how many vertices each took, and the same picture.
    template <class State, class Scene>
    std::pair<size_t, size_t> same(State state, Scene scene) {
        size_t vertices[2] = {0, 0};
        const auto draw = [&](bool cull) {
            return frame([&] {
                state();
                batch.setCulling(cull ? Batch::CULLING_ON : Batch::CULLING_OFF);
                scene(batch);
                vertices[cull] = batch.getVertices();
                batch.flush();
            });
        };
        const Picture whole = draw(false), culled = draw(true);
        batch.setCulling(Batch::CULLING_AUTO);
        size_t apart = 0;
        for (size_t i = 0; i < whole.rgba.size(); i += 4)
            apart += std::memcmp(&whole.rgba[i], &culled.rgba[i], 4) != 0;
        EXPECT_EQ(apart, 0u) << "pixels differ";
        size_t lit = 0;
        for (size_t i = 0; i < whole.rgba.size(); i += 4)
            lit += whole.rgba[i] || whole.rgba[i + 1] || whole.rgba[i + 2];
        EXPECT_GT(lit, 20u) << "nothing is seen";
        return {vertices[true], vertices[false]};
    }

    // One unit a pixel, from the lower left of the viewport on.
    void pixels(float width = 640, float height = 400) {
        Matrix4x4Col project;
        project.setProjectOrtho(0, width, 0, height, -100, 100);
        display().setProject(project);
        display().setModelView();
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    }
};

// A prism along y on a base of six corners, of two colours.
Batch::Solid makePrism() {
    Batch::Solid prism;
    for (int k = 0; k < 6; ++k) {
        const float a = 6.2831853f * float(k) / 6;
        prism.addCorner(Vector3f(std::sin(a), -1, std::cos(a)), 0);
        prism.addCorner(Vector3f(std::sin(a), 1, std::cos(a)), 1);
    }
    for (int k = 0; k < 6; ++k)
        prism.addFace(2 * k, (2 * k + 2) % 12, (2 * k + 3) % 12, 2 * k + 1);
    for (int k = 0; k < 6; k += 3) {
        prism.addFace(2 * k + 1, 2 * k + 3, (2 * k + 5) % 12, (2 * k + 7) % 12);
        prism.addFace((2 * k + 6) % 12, (2 * k + 4) % 12, (2 * k + 2) % 12, 2 * k);
    }
    return prism;
}

template <class Painter>
void drawPrism(Painter& painter, const Vector4f (&colors)[2]) {
    const auto corner = [&](int i) {
        const float a = 6.2831853f * float(i / 2) / 6;
        painter.color(colors[i % 2].x, colors[i % 2].y, colors[i % 2].z, colors[i % 2].w);
        painter.vertex(std::sin(a), i % 2 ? 1.0f : -1.0f, std::cos(a));
    };
    painter.begin(GL_QUADS);
    const auto face = [&](int a, int b, int c, int d) { corner(a), corner(b), corner(c), corner(d); };
    for (int k = 0; k < 6; ++k)
        face(2 * k, (2 * k + 2) % 12, (2 * k + 3) % 12, 2 * k + 1);
    for (int k = 0; k < 6; k += 3) {
        face(2 * k + 1, 2 * k + 3, (2 * k + 5) % 12, (2 * k + 7) % 12);
        face((2 * k + 6) % 12, (2 * k + 4) % 12, (2 * k + 2) % 12, 2 * k);
    }
    painter.end();
}

template <class Painter>
void drawTinyShapes(Painter& painter, float spread, float nearest, float farthest, float size) {
    static Batch::Solid prism = makePrism();
    Random random;
    for (int i = 0; i < 3000; ++i) {
        painter.setTransform(randomPlace(random, spread, nearest, farthest));
        const Vector4f colors[2] = {Vector4f(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1), 0.5f),
                                    Vector4f(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1), 0.5f)};
        painter.color(colors[0].x, colors[0].y, colors[0].z, 0.5f);
        const float s = size * random(0.02f, 1);
        if (i % 3 == 0) {
            painter.box(Vector3f(0, 0, 0), Vector3f(s, s * random(0, 1), i % 2 ? s : 8 * s));
        } else if (i % 3 == 1) {
            painter.sprite(Vector3f(0, 0, 0), Vector3f(s, 0.3f * s, 0), Vector3f(0, i % 2 ? s : 9 * s, 0));
        } else {
            Matrix4x4Col place = randomPlace(random, spread, nearest, farthest), scale;
            scale.setScale(Vector3f(s, i % 2 ? s : 7 * s, s));
            place *= scale;
            painter.setTransform(place);
            painter.solid(prism, colors);
        }
    }
}

TEST_F(BatchTest, SolidsAreTheirFacesInTheColoursGiven) {
    static Batch::Solid prism = makePrism();
    for (const bool cull : {false, true})
        for (const GLenum front : {GL_CCW, GL_CW})
            compare(
                [&] {
                    perspective(display());
                    glEnable(GL_BLEND);
                    if (cull)
                        glEnable(GL_CULL_FACE);
                    glFrontFace(front);
                },
                [](auto& p) {
                    Random random;
                    for (int i = 0; i < 150; ++i) {
                        Matrix4x4Col m = randomPlace(random, 9, 1, 40);
                        for (int k = 0; i % 3 == 0 && k < 3; ++k)
                            m.mData[k] = -m.mData[k];
                        p.setTransform(m);
                        const Vector4f colors[2] = {
                            Vector4f(random(0, 1), random(0, 1), random(0, 1), random(0.2f, 1)),
                            Vector4f(random(0, 1), random(0, 1), random(0, 1), random(0.2f, 1))};
                        if constexpr (std::is_same_v<decltype(p), Batch&>)
                            p.solid(prism, colors);
                        else
                            drawPrism(p, colors);
                    }
                });
}

TEST_F(BatchTest, ASolidWithoutColoursHasTheCurrentOneAndLeavesTheLast) {
    Batch::Solid prism = makePrism();
    frame([&] {
        perspective(display());
        const auto current = [] {
            Vector4f color;
            glGetFloatv(GL_CURRENT_COLOR, &color.x);
            return color;
        };
        Matrix4x4Col place;
        place.setTranslation(Vector3f(0, 0, -10));
        const Vector4f colors[2] = {Vector4f(0, 0.25f, 0, 1), Vector4f(0.5f, 0, 0, 1)};
        batch.setTransform(place);
        batch.solid(prism, colors);
        batch.flush();
        EXPECT_EQ(current(), colors[0]); // of the bottom, which is drawn last
        batch.setTransform(place);
        batch.color(0, 0, 0.75f);
        batch.solid(prism);
        batch.flush();
        EXPECT_EQ(current(), Vector4f(0, 0, 0.75f, 1));
        Batch::Solid none;
        batch.solid(none, colors);
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.clear();
    });
}

TEST_F(BatchTest, ACornerOfASolidCanBeMoved) {
    Batch::Solid solid;
    for (int i = 0; i < 4; ++i)
        solid.addCorner(Vector3f(0, 0, 0));
    solid.addFace(0, 1, 2, 3);
    const float x[4] = {-1, 1, 1, -1}, y[4] = {-1, -1, 1, 1};
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        batch.solid(solid);
        EXPECT_EQ(batch.getVertices(), 0u); // all at the eye
        for (int i = 0; i < 4; ++i)
            solid.setCorner(i, Vector3f(x[i], y[i], -10));
        batch.solid(solid);
        EXPECT_EQ(batch.getVertices(), 4u);
        for (int i = 0; i < 4; ++i)
            solid.setCorner(i, Vector3f(-x[i], y[i], -10)); // its back
        batch.solid(solid);
        EXPECT_EQ(batch.getVertices(), 4u);
        batch.clear();
    });
}

TEST_F(BatchTest, MoreThanASolidHoldsIsAsserted) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    Batch::Solid solid;
    for (int i = 0; i < 32; ++i)
        solid.addCorner(Vector3f(0, 0, 0));
    for (int i = 0; i < 32; ++i)
        solid.addFace(0, 1, 2, 3);
    EXPECT_DEATH(solid.addCorner(Vector3f(0, 0, 0)), "mCorners < MOST");
    EXPECT_DEATH(solid.addFace(0, 1, 2, 3), "mFaces < MOST");
    EXPECT_DEATH(solid.setCorner(32, Vector3f(0, 0, 0)), "corner < mCorners");
    Batch::Solid empty;
    EXPECT_DEATH(empty.addFace(0, 1, 2, 3), "corners\\[i\\] < mCorners");
}

TEST_F(BatchTest, WhatLiesInABoxOutsideTheViewIsNotVisible) {
    frame([&] {
        perspective(display());
        const Vector3f half(1, 1, 1);
        EXPECT_TRUE(batch.isVisible(Vector3f(0, 0, -10), half));
        EXPECT_TRUE(batch.isVisible(Vector3f(0, 0, 0), half));
        EXPECT_FALSE(batch.isVisible(Vector3f(0, 0, 10), half));
        EXPECT_FALSE(batch.isVisible(Vector3f(30, 0, -10), half));
        EXPECT_TRUE(batch.isVisible(Vector3f(30, 0, -10), Vector3f(29, 1, 1)));
        EXPECT_TRUE(batch.isVisible(Vector3f(NAN, 0, 0), half));
        Matrix4x4Col place;
        place.setTranslation(Vector3f(0, 0, -20));
        batch.setTransform(place);
        EXPECT_TRUE(batch.isVisible(Vector3f(0, 0, 10), half));
        batch.clear();
        batch.setCulling(Batch::CULLING_OFF);
        EXPECT_TRUE(batch.isVisible(Vector3f(0, 0, 10), half));
        batch.setCulling(Batch::CULLING_AUTO);
        batch.clear();
    });
}

TEST_F(BatchSampleTest, TinyShapesCoverThePixelsThatTheyCover) {
    for (const bool cull : {false, true}) {
        const auto [few, all] = same(
            [&] {
                perspective(display());
                glEnable(GL_BLEND);
                if (cull)
                    glEnable(GL_CULL_FACE);
            },
            [](Batch& p) { drawTinyShapes(p, 30, 100, 400, 0.4f); });
        EXPECT_LT(few, all * (cull ? 2 : 4) / 5);
    }
}

TEST_F(BatchSampleTest, AViewportOfItsOwnAndAScissor) {
    for (const int left : {37, -20})
        same(
            [&] {
                perspective(display());
                glEnable(GL_BLEND);
                glViewport(left, 21, 101, 63);
                glEnable(GL_SCISSOR_TEST);
                glScissor(40, 30, 60, 50);
            },
            [](Batch& p) { drawTinyShapes(p, 30, 100, 400, 2); });
    glViewport(0, 0, 640, 400);
    glDisable(GL_SCISSOR_TEST);
}

TEST_F(BatchSampleTest, EdgesAndCornersAtTheVeryMiddlesOfPixels) {
    // A little to either side, too: less than OpenGL tells apart, as much as it does, and more.
    static const float off[] = {0,         1 / 1024.0f, -1 / 1024.0f, 1 / 256.0f, -1 / 256.0f,
                                1 / 64.0f, -1 / 64.0f,  1 / 16.0f,    -1 / 16.0f};
    for (const GLenum front : {GL_CCW, GL_CW})
        same(
            [&] {
                pixels();
                glEnable(GL_CULL_FACE);
                glFrontFace(front);
            },
            [](Batch& p) {
                int n = 0;
                for (const float sizeX : {0.25f, 0.5f, 1.0f, 0.001f})
                    for (const float sizeY : {0.25f, 0.5f, 1.0f})
                        for (const float dx : off)
                            for (const float dy : off) {
                                const float x = 4 * float(n % 150) + 2.5f, y = 4 * float(n / 150) + 2.5f;
                                ++n;
                                p.color(0.5f, 0.25f, 0.75f, 0.5f);
                                // Its right and top edge at the middle of a pixel, or else its left and lower
                                // one.
                                const float side = n % 2 ? 1.0f : -1.0f;
                                const Vector3f centre(x - side * sizeX + dx, y - side * sizeY + dy, 0);
                                p.sprite(centre, Vector3f(sizeX, 0, 0), Vector3f(0, sizeY, 0));
                                p.box(centre + Vector3f(0, 200, 0), Vector3f(sizeX, sizeY, 1));
                                // A corner there.
                                p.sprite(Vector3f(x + dx - side * 0.5f, y + dy + 100, 0),
                                         Vector3f(side * 0.25f, side * 0.25f, 0),
                                         Vector3f(side * 0.25f, side * -0.25f, 0));
                            }
            });
}

TEST_F(BatchSampleTest, WhatLiesBetweenTheMiddlesOfPixelsCostsNoVertex) {
    frame([&] {
        pixels();
        batch.box(Vector3f(100, 100, 0), Vector3f(0.4f, 0.4f, 0.4f));
        batch.box(Vector3f(100, 100, 0), Vector3f(0.4f, 5, 5)); // a wall seen from the side
        batch.sprite(Vector3f(100, 100, 0), Vector3f(0.4f, 0, 0), Vector3f(0, 0.4f, 0));
        batch.sprite(Vector3f(100.5f, 100, 0), Vector3f(1, 0, 0), Vector3f(0, 0.4f, 0));
        batch.sprite(Vector3f(101, 100.5f, 0), Vector3f(2, 2, 0), Vector3f(0.1f, -0.1f, 0)); // on the slant
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.sprite(Vector3f(100.5f, 100.5f, 0), Vector3f(0.1f, 0, 0), Vector3f(0, 0.1f, 0));
        EXPECT_EQ(batch.getVertices(), 4u);
        batch.clear();
    });
}

TEST_F(BatchSampleTest, LinesAndPointsOfPolygonsAreSeenWhereTheFaceIsNot) {
    for (const GLenum mode : {GL_LINE, GL_POINT}) {
        const auto [few, all] = same(
            [&] {
                perspective(display());
                glPolygonMode(GL_FRONT_AND_BACK, mode);
            },
            [](Batch& p) { drawTinyShapes(p, 25, 100, 400, 0.4f); });
        EXPECT_GT(few, all / 2);
        same(
            [&] {
                pixels();
                glPolygonMode(GL_FRONT_AND_BACK, mode);
            },
            [](Batch& p) { // edge-on
                for (int i = 0; i < 50; ++i)
                    p.box(Vector3f(10.5f + 4 * float(i), 100, 0), Vector3f(0, 5, 0));
            });
    }
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

TEST_F(BatchSampleTest, WithManySamplesAPixelNothingIsLeftOutForMissingItsMiddle) {
    window();
    ASSERT_TRUE(GLEW_VERSION_3_0);
    GLuint target = 0, color = 0;
    glGenFramebuffers(1, &target);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_RGBA8, 640, 400);
    const auto [few, all] = same(
        [&] {
            pixels();
            glBindFramebuffer(GL_FRAMEBUFFER, target);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
            ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
            glClear(GL_COLOR_BUFFER_BIT);
        },
        [&](Batch& p) {
            for (int i = 0; i < 400; ++i)
                p.sprite(Vector3f(20 + float(i % 40) * 3, 20 + float(i / 40) * 3, 0), Vector3f(0.45f, 0, 0),
                         Vector3f(0, 0.45f, 0));
            EXPECT_EQ(p.getVertices(), 1600u);
            p.flush();
            glBindFramebuffer(GL_READ_FRAMEBUFFER, target);
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
            glBlitFramebuffer(0, 0, 640, 400, 0, 0, 640, 400, GL_COLOR_BUFFER_BIT, GL_NEAREST);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
        });
    EXPECT_EQ(few, all);
    glDeleteFramebuffers(1, &target);
    glDeleteRenderbuffers(1, &color);
}

// Behind the eye, in its plane, no numbers, endless and enormous: harmless, and what is among them is drawn.
TEST_F(BatchSampleTest, PlacesOfAnyKind) {
    static Batch::Solid prism = makePrism();
    const float values[] = {0,     1e-30f, -1e-30f, 0.15f, -0.15f, 5,        -5,        1e6f,
                            -1e6f, 1e19f,  -1e19f,  3e38f, -3e38f, INFINITY, -INFINITY, NAN};
    for (const bool cull : {false, true}) {
        frame([&] {
            perspective(display());
            if (cull)
                glEnable(GL_CULL_FACE);
            for (const float x : values)
                for (const float z : values)
                    for (const float s : values) {
                        batch.box(Vector3f(x, 0, z), Vector3f(s, 1, s));
                        batch.sprite(Vector3f(x, 0, z), Vector3f(s, 0, 0), Vector3f(0, s, 0));
                        Matrix4x4Col place;
                        place.setTranslation(Vector3f(x, s, z));
                        place.mData[0] = s;
                        batch.setTransform(place);
                        batch.solid(prism);
                        batch.resetTransform();
                    }
            batch.clear();
        });
    }
    same([&] { perspective(display()), glEnable(GL_CULL_FACE), glEnable(GL_DEPTH_TEST); },
         [&](Batch& p) {
             Random random;
             for (const float x : {0.0f, 3.0f, 1e6f, -1e19f})
                 for (const float z : {0.0f, -0.15f, 5.0f, 1e6f, -1e6f}) {
                     p.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1));
                     p.sprite(Vector3f(x, 0, z), Vector3f(0.1f, 0, 0), Vector3f(0, 0.1f, 0));
                 }
             p.box(Vector3f(0, 0, -10), Vector3f(1, 1, 1));
         });
}

// Far from the middle, rounding moves what OpenGL makes of a corner by more than it tells apart.
TEST_F(BatchSampleTest, FarFromTheMiddleOfThings) {
    for (const float far : {1e3f, 1e4f, 1e5f}) {
        SCOPED_TRACE(far);
        same(
            [&] {
                Matrix4x4Col project;
                project.setProject(0.7853982f, 1.6f, 0.15f, 1000);
                display().setProject(project);
                display().mCameraMatrix.setCamera(Vector3f(far, 10, far), Vector3f(far - 60, 0, far - 80),
                                                  0.3f);
                display().setModelView();
            },
            [&](Batch& p) {
                Random random;
                for (int i = 0; i < 2000; ++i) {
                    const float s = random(0.01f, 0.2f);
                    p.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1));
                    p.box(Vector3f(far - random(20, 120), random(-30, 30), far - random(20, 120)),
                          Vector3f(s, s, s));
                }
            });
    }
    display().mCameraMatrix = Plain::identity();
}

TEST_F(BatchTest, DepthClampKeepsWhatIsBehindTheFarPlane) {
    if (!display::DisplayGL::hasExtension("GL_ARB_depth_clamp")) {
        window();
        if (!display::DisplayGL::hasExtension("GL_ARB_depth_clamp"))
            GTEST_SKIP();
    }
    compare(
        [&] {
            perspective(display());
            glEnable(GL_DEPTH_CLAMP);
        },
        [](auto& p) {
            p.color(1, 0.5f, 0.2f);
            p.box(Vector3f(0, 0, -2000), Vector3f(400, 400, 10));
        });
    glDisable(GL_DEPTH_CLAMP);
}

TEST_F(BatchTest, WhatWasNotGivenIsTheCurrentValue) {
    const Picture shown = frame([&] {
        flat(display());
        glColor4f(0, 1, 0, 1);
        batch.rect(-1, -1, 0, 1); // the current green
        batch.color(1, 0, 0);
        batch.rect(0, -1, 1, 1);
        batch.flush();
    });
    EXPECT_EQ(shown.at(100, 200)[0], 0);
    EXPECT_EQ(shown.at(100, 200)[1], 255);
    EXPECT_EQ(shown.at(500, 200)[0], 255);
    EXPECT_EQ(shown.at(500, 200)[1], 0);
}

TEST_F(BatchTest, LateTextureCoordinatesAndNormalsStartFromTheCurrentOnes) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare(
        [&] {
            flat(display());
            glEnable(GL_TEXTURE_2D);
            texture.bind();
            glEnable(GL_LIGHTING);
            glEnable(GL_LIGHT0);
            glTexCoord2f(0.1f, 0.1f);
            glNormal3f(0, 0.6f, 0.8f);
        },
        [](auto& p) {
            p.begin(GL_TRIANGLES);
            p.vertex(-1, -1);
            p.vertex(1, -1);
            p.texCoord(1, 1);
            p.normal(0, 0, 1);
            p.vertex(0, 1);
            p.end();
        });
}

TEST_F(BatchTest, TheLastValuesAreCurrentAfterTheFlush) {
    frame([&] {
        flat(display());
        glTexCoord2f(0.3f, 0.4f);
        batch.color(0.25f, 0.5f, 0.75f, 0.125f);
        batch.normal(0, 1, 0);
        batch.begin(GL_POINTS);
        batch.vertex(0, 0);
        batch.end();
        batch.flush();
        float color[4], normal[3], texture[4];
        glGetFloatv(GL_CURRENT_COLOR, color);
        glGetFloatv(GL_CURRENT_NORMAL, normal);
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, texture);
        EXPECT_EQ(color[0], 0.25f);
        EXPECT_EQ(color[3], 0.125f);
        EXPECT_EQ(normal[1], 1.0f);
        EXPECT_EQ(normal[2], 0.0f);
        EXPECT_EQ(texture[0], 0.3f); // not given
    });
}

TEST_F(BatchTest, VertexOutsideBeginAndEndIsIgnored) {
    frame([&] {
        batch.vertex(0, 0);
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.begin(GL_LINES);
        batch.vertex(0, 0);
        batch.vertex(0, 1);
        batch.vertex(1, 1); // completes no line
        batch.end();
        batch.vertex(0, 0);
        EXPECT_EQ(batch.getVertices(), 2u);
        batch.flush();
        EXPECT_EQ(batch.getVertices(), 0u);
        EXPECT_EQ(batch.getDraws(), 1u);
        batch.flush(); // nothing to draw
        EXPECT_EQ(batch.getDraws(), 1u);
    });
}

TEST_F(BatchTest, PairsOfBeginAndEndAreAsserted) {
    window();
    EXPECT_DEATH(batch.end(), "mMode != NOTHING");
    EXPECT_DEATH((batch.begin(GL_LINES), batch.begin(GL_LINES)), "mMode == NOTHING");
    EXPECT_DEATH((batch.begin(GL_LINES), batch.flush()), "mMode == NOTHING");
    EXPECT_DEATH(batch.begin(GL_POLYGON + 1), "mode <= GL_POLYGON");
    EXPECT_DEATH(batch.attrib(5, Vector4f(0, 0, 0, 0)), "i >= 0 && i < ATTRIBS");
}

TEST_F(BatchTest, AfterAFlushThatThrowsEverythingIsAsAfterOneThatDoesNot) {
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        Matrix4x4Col away;
        away.setTranslation(Vector3f(1000, 0, 0));
        batch.box(Vector3f(0, 0, -10), Vector3f(1, 1, 1));
        batch.setTransform(away);
        glEnable(0xFFFF); // an error is pending
        EXPECT_THROW(batch.flush(), Exception);
        glDisable(GL_CULL_FACE);
        batch.begin(GL_QUADS); // turned away, and where it is told to be
        for (const auto& [x, y] : {std::pair(-1, -1), std::pair(-1, 1), std::pair(1, 1), std::pair(1, -1)})
            batch.vertex(float(x), float(y), -10);
        batch.end();
        EXPECT_EQ(batch.getVertices(), 4u);
        batch.clear();
    });
}

TEST_F(BatchTest, TheTransformIsIdentityAfterTheFlush) {
    const Picture shown = frame([&] {
        flat(display());
        Matrix4x4Col away;
        away.setTranslation(Vector3f(5, 0, 0));
        batch.setTransform(away);
        batch.color(1, 1, 1);
        batch.rect(-1, -1, 1, 1);
        batch.flush();
        batch.rect(-1, -1, 0, 1);
        batch.flush();
    });
    EXPECT_EQ(shown.at(100, 200)[0], 255);
    EXPECT_EQ(shown.at(500, 200)[0], 0);
}

TEST_F(BatchTest, BoundBuffersStayAsTheyWere) {
    window();
    const bool emulations[] = {false, true};
    for (const bool emulated : emulations) {
        if (emulated)
            display::DisplayGL::denyExtensions({"GL_ARB_vertex_buffer_object"});
        display::VertexP3C4b corner[3] = {};
        display::VBO_wrap<display::VertexP3C4b> vbo(&display());
        display::IBO ibo(&display());
        uint16_t indices[3] = {0, 1, 2};
        const float at[3][2] = {{-1, -1}, {0, -1}, {-1, 1}};
        for (int i = 0; i < 3; ++i) {
            corner[i].p = Vector3f(at[i][0], at[i][1], 0);
            corner[i].r = corner[i].a = 255;
        }
        vbo.setup(3, corner);
        ibo.setup(display::IBO::FORMAT_UINT16, 3, indices);
        const Picture shown = frame([&] {
            flat(display());
            display().setVBO(&vbo);
            display().setIBO(&ibo);
            batch.color(0, 1, 0);
            batch.begin(GL_TRIANGLE_STRIP);
            batch.vertex(0, -1);
            batch.vertex(1, -1);
            batch.vertex(1, 1);
            batch.end();
            batch.begin(GL_TRIANGLES); // so that it goes by indices
            batch.vertex(0, 0.5f);
            batch.vertex(1, 0.5f);
            batch.vertex(1, 1);
            batch.end();
            batch.flush();
            display().draw(GL_TRIANGLES, 0, 3, 0, 3);
            display().setVBO(nullptr);
            display().setIBO(nullptr);
        });
        EXPECT_EQ(shown.at(40, 300)[0], 255) << emulated;
        EXPECT_EQ(shown.at(40, 300)[1], 0);
        EXPECT_EQ(shown.at(600, 300)[1], 255) << emulated;
        display::DisplayGL::denyExtensions({});
    }
}

TEST_F(BatchTest, NothingIsAllocatedOnceWarm) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    const auto scene = [&] {
        perspective(display());
        drawBoxes(batch, 500, 12, 20, 60, 1);
        drawSprites(batch, 500);
        batch.flush();
        flat(display());
        drawModes(batch, ALL);
        batch.flush();
    };
    size_t memory = 0;
    frame([&] {
        scene();
        memory = batch.getMemory();
        glFinish(); // what the driver allocates is not ours
        perspective(display());
        const size_t before = allocationCount();
        drawBoxes(batch, 500, 12, 20, 60, 1);
        drawSprites(batch, 500);
        EXPECT_EQ(allocationCount(), before);
        batch.flush();
        EXPECT_EQ(batch.getMemory(), memory);
    });
    EXPECT_GT(memory, 0u);
}

TEST_F(BatchTest, LivesThroughANewContext) {
    const auto show = [&] {
        return frame([&] {
            flat(display());
            batch.color(0, 0, 1);
            batch.rect(-1, -1, 1, 1);
            batch.flush();
        });
    };
    EXPECT_EQ(show().at(100, 100)[2], 255);
    display().close();
    display().open();
    EXPECT_EQ(show().at(100, 100)[2], 255);
}

TEST_F(BatchTest, AMillionVerticesAndMore) {
    frame([&] {
        flat(display());
        batch.color(1, 0, 0);
        const size_t before = batch.getDraws();
        for (int i = 0; i < 300000; ++i)
            batch.rect(-1, -1, -0.9f, -0.9f);
        batch.color(0, 1, 0);
        batch.rect(-1, -1, -0.9f, -0.9f);
        batch.flush();
        EXPECT_EQ(batch.getDraws() - before, 2u); // the memory has a bound
        EXPECT_EQ(grabPicture(display()).at(5, 395)[1], 255);
        EXPECT_LT(batch.getMemory(), size_t(80) << 20);
    });
}

TEST_F(BatchTest, ChannelsThatAreAskedFor) {
    window();
    frame([&] {
        perspective(display());
        batch.setChannels(Batch::CHANNEL_NONE);
        glTexCoord2f(0.7f, 0.7f);
        batch.box({0, 0, -10}, {1, 1, 1});
        batch.flush();
        float coordinates[4];
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coordinates);
        EXPECT_EQ(coordinates[0], 0.7f);
        batch.setChannels(Batch::CHANNEL_TEXCOORD);
        batch.box({0, 0, -10}, {1, 1, 1});
        batch.flush();
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coordinates);
        EXPECT_EQ(coordinates[0], 0.0f); // the last corner of a face
    });
}

} // namespace
