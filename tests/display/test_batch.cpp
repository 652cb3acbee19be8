// The batch against one OpenGL call per vertex: the same calls, and the two pictures compared.
#include "allocations.h"
#include "dis_batch.h"
#include "dis_ibo.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "dis_vbo.h"
#include "extensions.h"
#include "gl_fixture.h"
#include "mb_random.h"
#include "support.h"
#include "ztk_system.h"

#include <cmath>
#include <cstring>
#include <optional>
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

// The interface that both have in common, with one OpenGL call per vertex.
class Plain {
public:
    explicit Plain(display::DisplayGL& display) : mDisplay(display) {}

    void setTransform(const Matrix4x4Col& m) { mDisplay.setTransform(m); }
    void color(float r, float g, float b, float a = 1) { glColor4f(r, g, b, a); }
    void texCoord(float s, float t) { glTexCoord2f(s, t); }
    void normal(float x, float y, float z) { glNormal3f(x, y, z); }
    void begin(GLenum mode) { glBegin(mode); }
    void vertex(float x, float y, float z = 0) { glVertex3f(x, y, z); }
    void vertex(const Vector3f& v) { glVertex3f(v.x, v.y, v.z); }
    void end() { glEnd(); }

    void box(const Vector3f& c, const Vector3f& h) { mDisplay.drawBox(c, h); }

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

// The same random numbers for both.
class Random {
public:
    float operator()(float low, float high) {
        return low + (high - low) * float(mRandom.draw() >> 8) / float(1 << 24);
    }

private:
    mathbase::Random mRandom{12345};
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

// Counts the draw calls while it lives.
struct DrawCounter {
    DrawCounter() {
        draws = 0;
        real = __glewMultiDrawArrays;
        __glewMultiDrawArrays = [](GLenum mode, const GLint* firsts, const GLsizei* counts, GLsizei ranges) {
            ++draws;
            real(mode, firsts, counts, ranges);
        };
    }
    ~DrawCounter() { __glewMultiDrawArrays = real; }
    DrawCounter(const DrawCounter&) = delete;
    DrawCounter& operator=(const DrawCounter&) = delete;

    static inline size_t draws;
    static inline PFNGLMULTIDRAWARRAYSPROC real;
};

class BatchTest : public GlTest {
protected:
    // Draws the scene both ways under the same state, with at most `draws` draw calls of the batch. The
    // pictures may differ by rounding in channels and at edges, and must show something.
    template <class State, class Scene>
    void compare(State state, Scene scene, size_t draws = 1, double maxChanged = 0.0004,
                 double maxMean = 0.02) {
        const Picture plain = frame([&] {
            state();
            Plain painter(display());
            scene(painter);
            painter.flush();
        });
        const DrawCounter counter;
        const Picture batched = frame([&] {
            state();
            scene(batch);
            batch.flush();
        });
        EXPECT_LE(counter.draws, draws);
        const PictureDifference difference = comparePictures(plain, batched);
        EXPECT_LE(difference.mean, maxMean);
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
                    p.quad({0, 0, 0}, {2, 0, 1}, {2, 2, 1}, {0, 2, 0}, 0.25f, 0, 1, 0.5f);
                    p.rect(-2, -2, -1, 0, 0, 1, 1, 0, 0.5f);
                }
            });
}

TEST_F(BatchTest, ASpriteIsCounterClockwiseOnTheScreen) {
    const Picture shown = frame([&] {
        flat(display());
        glEnable(GL_CULL_FACE);
        batch.color(1, 0, 0);
        batch.sprite({-0.5f, 0, 0}, {0.4f, 0, 0}, {0, 0.4f, 0});
        batch.color(0, 1, 0);
        batch.rect(0.1f, -0.4f, 0.9f, 0.4f);
        batch.flush();
    });
    EXPECT_EQ(shown.at(160, 200)[0], 255);
    EXPECT_EQ(shown.at(480, 200)[1], 255);
}

TEST_F(BatchTest, AllModesOfSurfaces) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare(
        [&] {
            flat(display());
            glEnable(GL_BLEND);
        },
        [](auto& p) { drawModes(p, SURFACES); }, SURFACES.size());
    compare(
        [&] {
            flat(display());
            glEnable(GL_BLEND);
            glEnable(GL_TEXTURE_2D);
            texture.bind();
        },
        [](auto& p) { drawModes(p, SURFACES, 8); }, SURFACES.size());
}

TEST_F(BatchTest, AllModesWithFlatShading) {
    compare(
        [&] {
            flat(display());
            glShadeModel(GL_FLAT);
        },
        [](auto& p) { drawModes(p, SURFACES); }, SURFACES.size());
    compare(
        [&] {
            flat(display());
            glShadeModel(GL_FLAT);
            glLineWidth(3);
            glPointSize(5);
        },
        [](auto& p) { drawModes(p, ALL); }, ALL.size());
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
                    project.mData[0] = project.mData[5] = 2.5f; // into the centre of the picture
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
        18);
}

TEST_F(BatchTest, PolygonEdgesAndStippledLines) {
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

const char* const VERTEX = "varying vec3 shade;\n"
                           "void main() {\n"
                           "    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;\n"
                           "    gl_FrontColor = gl_Color;\n"
                           "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                           "    shade = normalize(gl_NormalMatrix * gl_Normal) * 0.5 + 0.5;\n"
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

TEST_F(BatchProgramTest, AProgramGetsPositionsColoursTextureCoordinatesAndNormals) {
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
            p.box(Vector3f(0, 0, 0), Vector3f(1, 2, 1));
        }
        p.flush();
        program.unbind();
    };
    compare(state, scene);
}

// A vertex program may put its vertices anywhere.
TEST_F(BatchProgramTest, UnderAProgramNothingIsLeftOut) {
    window();
    display::ShaderProgram program(&display());
    link(program);
    frame([&] {
        perspective(display());
        glEnable(GL_CULL_FACE);
        program.bind();
        batch.box({0, 0, -10}, {1, 1, 1});
        batch.box({0, 0, 50}, {1, 1, 1}); // behind the eye
        EXPECT_EQ(batch.getVertices(), 48u);
        batch.clear();
        program.unbind();
        batch.box({0, 0, -10}, {1, 1, 1}); // one face
        batch.box({0, 0, 50}, {1, 1, 1});
        EXPECT_EQ(batch.getVertices(), 4u);
        batch.clear();
    });
}

// Even if the state that could read them is on another texture unit.
TEST_F(BatchTest, TextureCoordinatesGoOutWhateverTheActiveUnit) {
    display::Texture texture(&window().display());
    loadTexture(texture);
    compare(
        [&] {
            blendTextured(display(), texture);
            glActiveTexture(GL_TEXTURE1);
        },
        [](auto& p) {
            p.color(1, 1, 1, 0.8f);
            p.box(Vector3f(0, 0, -4), Vector3f(1, 1, 1));
            glActiveTexture(GL_TEXTURE0);
        });
}

TEST_F(BatchTest, ABoxLeavesTheSameCurrentValuesWhetherItIsInViewOrNot) {
    for (const float z : {-10.0f, 50.0f})
        frame([&] {
            perspective(display());
            batch.color(0.25f, 0.5f, 0.75f);
            batch.texCoord(0.3f, 0.4f);
            batch.normal(1, 0, 0);
            batch.box({0, 0, z}, {1, 1, 1});
            batch.flush();
            float color[4], normal[3], texture[4];
            glGetFloatv(GL_CURRENT_COLOR, color);
            glGetFloatv(GL_CURRENT_NORMAL, normal);
            glGetFloatv(GL_CURRENT_TEXTURE_COORDS, texture);
            EXPECT_EQ(color[1], 0.5f) << z;
            EXPECT_EQ(normal[0], 0.0f) << z;
            EXPECT_EQ(normal[2], 1.0f) << z;
            EXPECT_EQ(texture[0], 0.0f) << z;
            EXPECT_EQ(texture[1], 0.0f) << z;
        });
}

// Blended: in reverse order the mean is 17. Software OpenGL cuts quads along the other diagonal in a draw
// that it clips, which changes a few pixels on edges.
TEST_F(BatchTest, ShapesInsideTheViewAndAcrossItsEdgeStayInOrder) {
    compare(
        [&] {
            perspective(display());
            glEnable(GL_BLEND);
        },
        [](auto& p) {
            Random random;
            for (int i = 0; i < 400; ++i) {
                const bool across = i % 97 < 5 || i > 390; // between long runs inside
                p.setTransform(randomPlace(random, 4, 20, 30));
                p.color(random(0.2f, 1), random(0.2f, 1), random(0.2f, 1), 0.5f);
                p.box(Vector3f(across ? 12.0f : 0.0f, 0, 0), across ? Vector3f(6, 1, 1) : Vector3f(1, 1, 1));
            }
        },
        1, 0.005, 0.2);
}

TEST_F(BatchTest, ShapesOutsideTheViewCostNoVertex) {
    frame([&] {
        perspective(display());
        const Vector3f half(1, 1, 1);
        for (const Vector3f& centre : {Vector3f(0, 0, 10), Vector3f(100, 0, -10), Vector3f(-100, 0, -10),
                                       Vector3f(0, 100, -10), Vector3f(0, -100, -10)}) {
            batch.box(centre, half);
            batch.sprite(centre, Vector3f(1, 0, 0), Vector3f(0, 1, 0));
            batch.begin(GL_TRIANGLE_STRIP);
            for (int i = 0; i < 5; ++i)
                batch.vertex(centre + Vector3f(float(i % 2), float(i), 0));
            batch.end();
        }
        EXPECT_EQ(batch.getVertices(), 0u);
        batch.clear();
    });
}

TEST_F(BatchTest, DepthClampKeepsWhatIsBeyondTheFarPlane) {
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

TEST_F(BatchTest, OmittedAttributesHaveTheCurrentValue) {
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
        const DrawCounter counter;
        batch.flush(); // nothing to draw
        EXPECT_EQ(counter.draws, 0u);
    });
}

TEST_F(BatchTest, PairsOfBeginAndEndAreAsserted) {
    window();
    EXPECT_DEATH(batch.end(), "mMode != NO_MODE");
    EXPECT_DEATH((batch.begin(GL_LINES), batch.begin(GL_LINES)), "mMode == NO_MODE");
    EXPECT_DEATH((batch.begin(GL_LINES), batch.flush()), "mMode == NO_MODE");
    EXPECT_DEATH(batch.begin(GL_POLYGON + 1), "mode <= GL_POLYGON");
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
        batch.begin(GL_QUADS); // turned away, and at given positions
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
        std::optional<WithoutExtensions> without;
        if (emulated)
            without.emplace({"GL_ARB_vertex_buffer_object"});
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
            batch.begin(GL_TRIANGLES);
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
    frame([&] {
        scene();
        glFinish(); // the driver's allocations are not ours
        perspective(display());
        const size_t before = allocationCount();
        drawBoxes(batch, 500, 12, 20, 60, 1);
        drawSprites(batch, 500);
        EXPECT_EQ(allocationCount(), before);
        batch.clear();
    });
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

} // namespace
