// Shapes, matrices and states, checked in the picture.
#include "dis_display.h"
#include "dis_ibo.h"
#include "dis_vbo.h"
#include "extensions.h"
#include "gl_fixture.h"
#include "ztk_system.h"

#include <optional>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::mathbase::Matrix4x4Col;
using zentrak::mathbase::Vector3f;
using zentrak::test::GlTest;
using zentrak::test::Picture;
using zentrak::test::WithoutExtensions;

// A window of 200 by 100 pixels; in clip space (x, y) is the pixel (100 + 100 x, 50 - 50 y).
class Draw : public GlTest {
protected:
    Draw() { window(200, 100); }

    // Draws in white over clip space.
    Picture drawn(const std::function<void(DisplayGL&)>& draw) {
        return frame([&] {
            Matrix4x4Col identity;
            identity.setIdentity();
            display().setProject(identity);
            display().setColor(1, 1, 1, 1);
            draw(display());
        });
    }
};

// '#' for white, '.' for black, '?' for anything else.
static char pixel(const Picture& picture, int x, int y) {
    const uint8_t* rgba = picture.at(x, y);
    if (rgba[0] == 255 && rgba[1] == 255 && rgba[2] == 255)
        return '#';
    return rgba[0] == 0 && rgba[1] == 0 && rgba[2] == 0 ? '.' : '?';
}

static int countWhite(const Picture& picture) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            count += pixel(picture, x, y) == '#';
    return count;
}

TEST_F(Draw, ASolidBoxIsGivenByItsCentreAndHalfItsSize) {
    const Picture picture = drawn([](DisplayGL& d) { d.drawBox(0.5f, 0.5f, 0.25f, 0.5f); });
    EXPECT_EQ(50 * 50, countWhite(picture));
    EXPECT_EQ('#', pixel(picture, 125, 0));
    EXPECT_EQ('#', pixel(picture, 174, 49));
    EXPECT_EQ('.', pixel(picture, 124, 0));
    EXPECT_EQ('.', pixel(picture, 175, 49));
    EXPECT_EQ('.', pixel(picture, 174, 50));
}

TEST_F(Draw, AWireBoxIsItsOutline) {
    const Picture picture = drawn([](DisplayGL& d) { d.drawBox(0.005f, 0.01f, 0.5f, 0.5f, WIRE); });
    EXPECT_EQ('.', pixel(picture, 100, 50));
    EXPECT_NEAR(2 * 100 + 2 * 50, countWhite(picture), 4);
}

TEST_F(Draw, ABoxWithDepthIsTheSameFromNumbersAndVectors) {
    const Picture numbers = drawn([](DisplayGL& d) { d.drawBox(-0.5f, 0, 0, 0.25f, 0.5f, 0.125f, SOLID); });
    const Picture vectors =
        drawn([](DisplayGL& d) { d.drawBox(Vector3f(-0.5f, 0, 0), Vector3f(0.25f, 0.5f, 0.125f), SOLID); });
    EXPECT_EQ(numbers.rgba, vectors.rgba);
    EXPECT_EQ(50 * 50, countWhite(numbers));
    EXPECT_EQ('#', pixel(numbers, 25, 25));
    EXPECT_EQ('.', pixel(numbers, 75, 25));
}

TEST_F(Draw, AWireBoxWithDepthHasTwelveEdges) {
    // Seen along z, the four edges along z are points, and front and back coincide.
    const Picture picture = drawn([](DisplayGL& d) { d.drawBox(0.005f, 0.01f, 0, 0.5f, 0.5f, 0.5f, WIRE); });
    EXPECT_EQ('.', pixel(picture, 100, 50));
    EXPECT_NEAR(2 * 100 + 2 * 50, countWhite(picture), 8);
}

// The outward normal of the face that is seen after a quarter or half turn, read through lighting: a face
// whose normal points at the light is white, one that does not is black.
TEST_F(Draw, ASolidBoxBringsOutwardNormalsOnEachFace) {
    for (int turn = 0; turn < 6; ++turn) {
        const Picture picture = drawn([turn](DisplayGL& d) {
            Matrix4x4Col rotation;
            if (turn < 4)
                rotation.setRotY(float(turn) * 1.5707964f);
            else
                rotation.setRotX(turn == 4 ? 1.5707964f : -1.5707964f);
            const float towards[4] = {0, 0, -1, 0}, white[4] = {1, 1, 1, 1}, black[4] = {0, 0, 0, 1};
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glLightfv(GL_LIGHT0, GL_POSITION, towards); // clip space looks along +z
            glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
            glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
            glMaterialfv(GL_FRONT, GL_AMBIENT, black);
            glMaterialfv(GL_FRONT, GL_DIFFUSE, white);
            glEnable(GL_LIGHT0);
            glEnable(GL_LIGHTING);
            glEnable(GL_NORMALIZE);
            glEnable(GL_DEPTH_TEST);
            d.setTransform(rotation);
            d.drawBox(Vector3f(0, 0, 0), Vector3f(0.5f, 0.5f, 0.5f));
        });
        EXPECT_EQ('#', pixel(picture, 100, 50)) << turn;
    }
}

TEST_F(Draw, ASolidBoxShowsItsOutsideToBackFaceCulling) {
    const Picture picture = drawn([](DisplayGL& d) {
        Matrix4x4Col ortho;
        ortho.setIdentity();
        ortho.mData[10] = -1; // right-handed: looks along -z
        d.setProject(ortho);
        glEnable(GL_CULL_FACE);
        d.drawBox(Vector3f(0, 0, 0), Vector3f(0.5f, 0.5f, 0.5f));
    });
    EXPECT_EQ(100 * 50, countWhite(picture));
}

TEST_F(Draw, ALineGoesFromPointToPoint) {
    const Picture picture = drawn([](DisplayGL& d) { d.drawLine(-0.5f, 0.01f, 0.5f, 0.01f); });
    EXPECT_NEAR(100, countWhite(picture), 1);
    EXPECT_EQ('#', pixel(picture, 100, 49));
    EXPECT_EQ('.', pixel(picture, 45, 49));
    EXPECT_EQ('.', pixel(picture, 155, 49));
}

TEST_F(Draw, ASolidCircleFillsItsArea) {
    const Picture round = drawn([](DisplayGL& d) { d.drawCircle(0, 0, 0.8f); });
    EXPECT_NEAR(3.14159 * 80 * 40, countWhite(round), 120);
    EXPECT_EQ('#', pixel(round, 100, 50));
    const Picture oval = drawn([](DisplayGL& d) { d.drawCircle(0.5f, 0, 0.2f, 0.8f, SOLID); });
    EXPECT_NEAR(3.14159 * 20 * 40, countWhite(oval), 60);
    EXPECT_EQ('#', pixel(oval, 150, 15));
    EXPECT_EQ('.', pixel(oval, 125, 50));
}

TEST_F(Draw, AWireCircleIsItsOutline) {
    const Picture picture = drawn([](DisplayGL& d) { d.drawCircle(0, 0, 0.4f, 0.8f, WIRE); });
    EXPECT_EQ('.', pixel(picture, 100, 50));
    EXPECT_GT(countWhite(picture), 150);
    EXPECT_LT(countWhite(picture), 300);
}

TEST_F(Draw, SetColorIsTheColourOfWhatFollows) {
    const Picture picture = drawn([](DisplayGL& d) {
        d.setColor(1, 0.5f, 0, 1);
        d.drawBox(0, 0, 1, 1);
    });
    EXPECT_EQ(255, picture.at(100, 50)[0]);
    EXPECT_NEAR(128, picture.at(100, 50)[1], 1);
    EXPECT_EQ(0, picture.at(100, 50)[2]);
}

static std::vector<float> matrixNow(GLenum which) {
    std::vector<float> values(16);
    glGetFloatv(which, values.data());
    return values;
}

static std::vector<float> valuesOf(const Matrix4x4Col& matrix) {
    return std::vector<float>(matrix.mData, matrix.mData + 16);
}

static int matrixMode() {
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    return mode;
}

TEST_F(Draw, TheModelViewIsCameraTimesTransform) {
    frame([&] {
        DisplayGL& d = display();
        Matrix4x4Col camera, transform, product;
        camera.setCamera(Vector3f(1, 2, 3), Vector3f(0, 0, 0), 0.5f);
        transform.setTranslation(Vector3f(4, 5, 6));
        product = camera;
        product.multiplyFromRight(transform);

        d.setCamera(camera);
        EXPECT_EQ(valuesOf(camera), matrixNow(GL_MODELVIEW_MATRIX));
        EXPECT_EQ(GL_MODELVIEW, matrixMode());
        d.setTransform(transform);
        EXPECT_EQ(valuesOf(product), matrixNow(GL_MODELVIEW_MATRIX));
        EXPECT_EQ(valuesOf(camera), valuesOf(d.mCameraMatrix));
        EXPECT_EQ(valuesOf(transform), valuesOf(d.mTransformMatrix));

        d.mCameraMatrix.setIdentity();
        EXPECT_EQ(valuesOf(product), matrixNow(GL_MODELVIEW_MATRIX));
        d.setProject(camera);
        EXPECT_EQ(valuesOf(camera), matrixNow(GL_PROJECTION_MATRIX));
        EXPECT_EQ(GL_PROJECTION, matrixMode());
        d.setModelView();
        EXPECT_EQ(valuesOf(transform), matrixNow(GL_MODELVIEW_MATRIX));
        EXPECT_EQ(GL_MODELVIEW, matrixMode());
    });
}

TEST_F(Draw, ResetStatesDefinesTheStateOfAFrame) {
    frame([&] {
        DisplayGL& d = display();
        Matrix4x4Col other;
        other.setRotX(1);
        d.setCamera(other);
        d.setTransform(other);
        d.setProject(other);
        glMatrixMode(GL_TEXTURE);
        glLoadMatrixf(other.mData);
        for (GLenum state : {GL_DEPTH_TEST, GL_LIGHTING, GL_BLEND, GL_TEXTURE_2D})
            glEnable(state);
        glShadeModel(GL_FLAT);
        glClearDepth(0.25);
        glDepthFunc(GL_ALWAYS);
        glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
        glColor4f(0, 0, 0, 0);
        glBlendFunc(GL_ONE, GL_ONE);
        d.resetStates();

        Matrix4x4Col identity, project;
        identity.setIdentity();
        project.setProject(0.7853982f, 2.0f, 0.1f, 5000.0f);
        EXPECT_EQ(valuesOf(identity), matrixNow(GL_TEXTURE_MATRIX));
        EXPECT_EQ(valuesOf(identity), matrixNow(GL_MODELVIEW_MATRIX));
        EXPECT_EQ(valuesOf(project), matrixNow(GL_PROJECTION_MATRIX));
        EXPECT_EQ(valuesOf(identity), valuesOf(d.mCameraMatrix));
        EXPECT_EQ(valuesOf(identity), valuesOf(d.mTransformMatrix));
        for (GLenum state : {GL_DEPTH_TEST, GL_LIGHTING, GL_BLEND, GL_TEXTURE_2D})
            EXPECT_FALSE(glIsEnabled(state)) << state;
        GLint value = 0;
        glGetIntegerv(GL_SHADE_MODEL, &value);
        EXPECT_EQ(GL_SMOOTH, value);
        GLfloat depth = 0;
        glGetFloatv(GL_DEPTH_CLEAR_VALUE, &depth);
        EXPECT_EQ(1.0f, depth);
        glGetIntegerv(GL_DEPTH_FUNC, &value);
        EXPECT_EQ(GL_LEQUAL, value);
        glGetIntegerv(GL_PERSPECTIVE_CORRECTION_HINT, &value);
        EXPECT_EQ(GL_NICEST, value);
        std::vector<float> colour(4);
        glGetFloatv(GL_CURRENT_COLOR, colour.data());
        EXPECT_EQ((std::vector<float>{1.0f, 1.0f, 1.0f, 0.5f}), colour);
        glGetIntegerv(GL_BLEND_SRC, &value);
        EXPECT_EQ(GL_SRC_ALPHA, value);
        glGetIntegerv(GL_BLEND_DST, &value);
        EXPECT_EQ(GL_ONE_MINUS_SRC_ALPHA, value);
    });
}

TEST_F(Draw, AWindowWithoutHeightStillHasAProjection) {
    frame([&] {
        DisplayGL& d = display();
        for (const auto& [width, height] : {std::pair(200, 0), std::pair(0, 100), std::pair(200, -100)}) {
            d.mWindowMode.width = width;
            d.mWindowMode.height = height;
            d.resetStates();
            Matrix4x4Col project;
            project.setProject(0.7853982f, 1.0f, 0.1f, 5000.0f);
            EXPECT_EQ(valuesOf(project), matrixNow(GL_PROJECTION_MATRIX));
        }
        d.mWindowMode.width = 200;
        d.mWindowMode.height = 100;
    });
}

TEST_F(Draw, EachFrameStartsFromTheSameState) {
    GLint viewport[4] = {};
    frame(
        [&] {
            glViewport(1, 2, 3, 4);
            glEnable(GL_CULL_FACE);
            glLineWidth(3);
            glClearColor(0.25f, 0.5f, 0.75f, 1);
        },
        false);
    EXPECT_TRUE(display().mPushedStates);
    frame(
        [&] {
            glGetIntegerv(GL_VIEWPORT, viewport);
            EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
            GLfloat width = 0, colour[4] = {};
            glGetFloatv(GL_LINE_WIDTH, &width);
            EXPECT_EQ(1.0f, width);
            glGetFloatv(GL_COLOR_CLEAR_VALUE, colour);
            EXPECT_EQ(0.0f, colour[2]);
        },
        false);
    EXPECT_EQ(0, viewport[0]);
    EXPECT_EQ(0, viewport[1]);
    EXPECT_EQ(200, viewport[2]);
    EXPECT_EQ(100, viewport[3]);
}

TEST_F(Draw, DrawWithNothingSetDrawsNothing) {
    const Picture picture = drawn([](DisplayGL& d) {
        d.draw(GL_TRIANGLES, -1, 0, -1, 0);
        d.draw(GL_TRIANGLES, 0, 3, -1, 0);
        d.draw(GL_TRIANGLES, -5, 3, 0, 3);
        d.draw(GL_TRIANGLES, -1, 3, 0, 3);
        d.setVBO(nullptr);
        d.setIBO(nullptr);
    });
    EXPECT_EQ(0, countWhite(picture));
}

// Two triangles that fill the left half of the picture, four that fill all of it, and the indices for the
// latter.
class DrawBuffers : public Draw, public ::testing::WithParamInterface<bool> {
protected:
    DrawBuffers() : left(&display()), whole(&display()), indices(&display()) {
        if (GetParam()) // buffers in plain memory
            without.emplace({"GL_ARB_vertex_buffer_object"});
        left.setup(VertexP2::format, 6, const_cast<float*>(corners));
        whole.setup(VertexP2::format, 12, const_cast<float*>(corners));
        indices.setup(IBO::FORMAT_UINT16, 12, const_cast<uint16_t*>(order));
    }
    ~DrawBuffers() override {
        display().setVBO(nullptr);
        display().setIBO(nullptr);
    }

    // How many pixels a call of draw() fills: a triangle is 5000 of 20000.
    int filled(int firstIndex, int numIndices, int firstVertex, int numVertices) {
        return countWhite(drawn([&](DisplayGL& d) {
            d.setVBO(vbo);
            d.setIBO(ibo);
            d.draw(GL_TRIANGLES, firstIndex, numIndices, firstVertex, numVertices);
        }));
    }

    static const float corners[24];
    static const uint16_t order[12];

    std::optional<WithoutExtensions> without;
    VBO left, whole;
    IBO indices;
    VBO* vbo = nullptr;
    IBO* ibo = nullptr;
};

const float DrawBuffers::corners[24] = {-1, -1, 0, -1, 0, 1, 0, 1, -1, 1, -1, -1,
                                        0,  -1, 1, -1, 1, 1, 1, 1, 0,  1, 0,  -1};
const uint16_t DrawBuffers::order[12] = {11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};

INSTANTIATE_TEST_SUITE_P(, DrawBuffers, ::testing::Bool(),
                         [](const auto& emulated) { return emulated.param ? "Emulated" : "InTheDriver"; });

TEST_P(DrawBuffers, WithoutIndicesTheWholeOfTheCurrentBufferOrAPartOfIt) {
    vbo = &left;
    EXPECT_EQ(10000, filled(-1, 0, -1, 0));
    vbo = &whole;
    EXPECT_EQ(20000, filled(-1, 0, -1, 0));
    EXPECT_NEAR(5000, filled(-1, 0, 3, 3), 60); // pixels on the diagonal belong to either triangle
    EXPECT_EQ(10000, filled(-1, 0, 6, 6));
    EXPECT_EQ(0, filled(-1, 0, 6, 0));
}

TEST_P(DrawBuffers, WithIndicesAllOfThemOrAPart) {
    vbo = &whole;
    ibo = &indices;
    EXPECT_EQ(20000, filled(-1, 0, -1, 0));
    EXPECT_EQ(20000, filled(-1, 0, 3, 3));      // indices take precedence
    EXPECT_NEAR(5000, filled(0, 3, -1, 0), 60); // pixels on the diagonal belong to either triangle
    EXPECT_NEAR(15000, filled(3, 9, -1, 0), 60);
}

TEST_P(DrawBuffers, ARangeThatRunsPastTheEndEndsThere) {
    vbo = &whole;
    EXPECT_EQ(10000, filled(-1, 0, 6, 1000000));
    EXPECT_EQ(0, filled(-1, 0, 12, 3));
    EXPECT_EQ(0, filled(-1, 0, 2147483647, 2147483647));
    EXPECT_EQ(0, filled(-1, 0, -2, 3));
    ibo = &indices;
    EXPECT_EQ(10000, filled(6, 1000000, -1, 0));
    EXPECT_EQ(0, filled(12, 3, -1, 0));
    EXPECT_EQ(0, filled(2147483647, 2147483647, -1, 0));
    EXPECT_EQ(0, filled(-2, 3, -1, 0));
}

TEST_P(DrawBuffers, IndicesThatAreNotThereDrawNothing) {
    vbo = &whole;
    EXPECT_EQ(0, filled(0, 3, -1, 0));
    EXPECT_EQ(0, filled(0, 3, 0, 3));
}

TEST_P(DrawBuffers, EmptyBuffersDrawNothing) {
    VBO none(&display());
    IBO noIndices(&display());
    none.setup(VertexP2::format, 0, nullptr);
    noIndices.setup(IBO::FORMAT_UINT16, 0, nullptr);
    vbo = &none;
    EXPECT_EQ(0, filled(-1, 0, -1, 0));
    EXPECT_EQ(0, filled(-1, 0, 0, 3));
    ibo = &noIndices;
    EXPECT_EQ(0, filled(-1, 0, -1, 0));
    EXPECT_EQ(0, filled(0, 3, -1, 0));
    display().setVBO(nullptr);
    display().setIBO(nullptr);
}

TEST_P(DrawBuffers, TheCurrentOneIsBoundAndTheOldOneUnbound) {
    frame([&] {
        DisplayGL& d = display();
        d.setVBO(&left);
        EXPECT_EQ(&left, d.mCurrentVBO);
        EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
        d.setVBO(&left); // the current one: a second bind would abort
        d.setVBO(&whole);
        EXPECT_EQ(&whole, d.mCurrentVBO);
        left.bind(); // would abort if it were still bound
        left.unbind();
        d.setVBO(nullptr);
        EXPECT_EQ(nullptr, d.mCurrentVBO);
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
        d.setIBO(&indices);
        EXPECT_EQ(&indices, d.mCurrentIBO);
        d.setVBO(&whole);
    });
    frame([&] { // a frame starts without any
        EXPECT_EQ(nullptr, display().mCurrentVBO);
        EXPECT_EQ(nullptr, display().mCurrentIBO);
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
    });
}

TEST_F(Draw, ANegativeCountIsReportedUnderTheCallsOwnText) {
    VBO vbo(&display());
    IBO ibo(&display());
    const float corners[6] = {0, 0, 1, 0, 1, 1};
    uint32_t order[3] = {0, 1, 2};
    vbo.setup(VertexP2::format, 3, const_cast<float*>(corners));
    ibo.setup(IBO::FORMAT_UINT32, 3, order);
    const auto report = [&](int firstIndex, int numIndices, int firstVertex, int numVertices) {
        std::string text = "nothing";
        try {
            display().draw(GL_TRIANGLES, firstIndex, numIndices, firstVertex, numVertices);
        } catch (const Exception& exception) {
            text = exception.what();
        }
        return text.substr(text.find('\n') + 1);
    };
    frame([&] {
        display().setVBO(&vbo);
        EXPECT_EQ("Line: glDrawArrays(mode, firstVertex, numVertices)\nError: 'GL_INVALID_VALUE'\n",
                  report(-1, 0, 0, -3));
        display().setIBO(&ibo);
        EXPECT_EQ("Line: glDrawElements(mode, numIndices, indexType, mCurrentIBO->getPointerGL(firstIndex))\n"
                  "Error: 'GL_INVALID_VALUE'\n",
                  report(0, -3, -1, 0));
        display().setVBO(nullptr);
        display().setIBO(nullptr);
    });
}
