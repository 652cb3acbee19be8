// Shapes, matrices and states, as they show in the picture.
#include "dis_display.h"
#include "gl_fixture.h"

using namespace zentrak;
using namespace zentrak::display;
using zentrak::mathbase::Matrix4x4Col;
using zentrak::mathbase::Vector3f;
using zentrak::test::GlTest;
using zentrak::test::Picture;

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
    // Seen along z the four edges along z are points, and front and back fall on each other.
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
        DisplayGL&   d = display();
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
        DisplayGL&   d = display();
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

TEST_F(Draw, AWindowWithoutHeightHasAProjectionAllTheSame) {
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
