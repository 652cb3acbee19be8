// Scenes of random shapes under random states: what the batch leaves out does not show.
#include "dis_batch.h"
#include "gl_fixture.h"

#include <cmath>
#include <random>
#include <vector>

using namespace zentrak;
using namespace zentrak::test;
using display::Batch;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int WIDTH = 320, HEIGHT = 240;

enum Kind { BOX, SOLID, SPRITE, OCTAGON, QUADS, STRIP, KINDS };

struct Shape {
    Kind kind;
    Matrix4x4Col place;
    Vector3f centre, a, b; // half sizes, or axes
    Vector4f color;
};

struct Scene {
    Matrix4x4Col project, view;
    GLenum culled = 0; // by GL_CULL_FACE; 0 for none
    GLenum front = GL_CCW;
    GLint viewport[4] = {0, 0, WIDTH, HEIGHT};
    bool flat = false, depth = false, blend = false;
    std::vector<Shape> shapes;
};

Batch::Solid makeCube() {
    static constexpr int faces[6][4] = {{1, 0, 2, 3}, {0, 4, 6, 2}, {5, 1, 3, 7},
                                        {0, 1, 5, 4}, {6, 7, 3, 2}, {4, 5, 7, 6}};
    Batch::Solid cube;
    for (int i = 0; i < 8; ++i)
        cube.addCorner(Vector3f(i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, i & 4 ? 1.0f : -1.0f), i % 2);
    for (const auto& face : faces)
        cube.addFace(face[0], face[1], face[2], face[3]);
    return cube;
}

class SceneMaker {
public:
    explicit SceneMaker(unsigned seed) : mRandom(seed) {}

    // A unit of the scene is 10 to the power of -12 to 12: nearly as far as products of three fit a float.
    Scene make() {
        mUnit = often(0.5f) ? 1 : std::pow(10.0f, any(-12, 12));
        mDepth = any(2, 200);
        Scene scene;
        scene.project = makeProjection();
        scene.view = makeView();
        const GLenum culled[] = {0, GL_BACK, GL_FRONT, GL_BACK};
        scene.culled = culled[pick(4)];
        scene.front = often(0.5f) ? GL_CCW : GL_CW;
        if (often(0.4f)) {
            const GLint viewport[4] = {pick(80) - 40, pick(80) - 40, 1 + pick(400), 1 + pick(300)};
            std::copy(viewport, viewport + 4, scene.viewport);
        }
        scene.flat = often(0.2f);
        scene.depth = often(0.3f);
        scene.blend = often(0.6f);
        mSize = mUnit * std::pow(10.0f, any(-2.5f, 1.2f)); // from less than a pixel to all of the view
        mTransforms = often(0.6f);
        for (int i = 0, count = 1 + pick(150); i < count; ++i)
            scene.shapes.push_back(makeShape());
        return scene;
    }

private:
    float any(float a, float b) { return std::uniform_real_distribution<float>(a, b)(mRandom); }
    bool often(float share) { return any(0, 1) < share; }
    int pick(int count) { return int(any(0, float(count) - 0.001f)); }

    Vector3f anyVector(float size) { return Vector3f(any(-size, size), any(-size, size), any(-size, size)); }

    Matrix4x4Col makeProjection() {
        Matrix4x4Col matrix;
        switch (pick(4)) {
        case 0:
            matrix.setProjectOrtho(-mUnit * any(5, 30), mUnit * any(5, 30), -mUnit * any(5, 30),
                                   mUnit * any(5, 30), -100 * mUnit, 100 * mUnit);
            break;
        case 1:
            for (int i = 0; i < 16; ++i)
                matrix.mData[i] = any(-1, 1) * (i < 12 ? 1 : mUnit) * (i == 15 ? 20.0f : 1.0f);
            break;
        default:
            matrix.setProject(any(0.3f, 2), any(0.5f, 2), mUnit * any(0.01f, 1), mUnit * any(50, 500));
            break;
        }
        return matrix;
    }

    Matrix4x4Col makeView() {
        Matrix4x4Col matrix;
        matrix.setIdentity();
        if (often(0.5f))
            matrix.setCamera(anyVector(20 * mUnit) + Vector3f(0, 0, 25 * mUnit),
                             anyVector(5 * mUnit) - Vector3f(0, 0, 0.5f * mDepth * mUnit), any(-1, 1));
        if (often(0.2f)) // mirrored
            for (int i = 0; i < 16; i += 4)
                matrix.mData[i] = -matrix.mData[i];
        return matrix;
    }

    // In front of the eye for the most part, turned, stretched, mirrored or flat.
    Shape makeShape() {
        Shape shape;
        shape.kind = Kind(pick(KINDS));
        shape.color = Vector4f(any(0.2f, 1), any(0.2f, 1), any(0.2f, 1), any(0.2f, 1));
        shape.centre = Vector3f(mUnit * any(-20, 20), mUnit * any(-20, 20), -mUnit * any(-5, mDepth));
        shape.place.setIdentity();
        const float size = mSize * any(0.1f, 1);
        if (mTransforms || shape.kind == SOLID) {
            Matrix4x4Col x, y, scale;
            shape.place.setTranslation(shape.centre);
            x.setRotX(any(0, 6.28f));
            y.setRotY(any(0, 6.28f));
            const float flat = often(0.05f) ? 0.0f : 1.0f;
            scale.setScale(
                Vector3f(any(0.1f, 3) * (often(0.1f) ? -1.0f : 1.0f), any(0.1f, 3), any(0.1f, 3) * flat) *
                (shape.kind == SOLID ? size : 1.0f));
            shape.place *= x;
            shape.place *= y;
            shape.place *= scale;
            shape.centre = Vector3f(0, 0, 0);
        }
        shape.a = shape.kind == BOX
                      ? Vector3f(size * any(0.2f, 1), size * any(0, 1), often(0.1f) ? 0 : size * any(0.2f, 1))
                      : anyVector(size);
        shape.b = anyVector(size);
        return shape;
    }

    std::mt19937 mRandom;
    float mUnit = 1, mDepth = 1, mSize = 1;
    bool mTransforms = false;
};

void add(Batch& batch, const Shape& shape) {
    static Batch::Solid cube = makeCube();
    const Vector3f &c = shape.centre, &a = shape.a, &b = shape.b;
    const Vector4f colors[2] = {shape.color, Vector4f(shape.color.z, shape.color.x, shape.color.y, 1)};
    batch.setTransform(shape.place);
    batch.color(shape.color);
    switch (shape.kind) {
    case BOX:
        batch.box(c, a);
        break;
    case SOLID:
        batch.solid(cube, colors);
        break;
    case SPRITE:
        batch.sprite(c, a, b);
        break;
    case OCTAGON:
        batch.octagon(c, a, b);
        break;
    case QUADS: // two that look at each other
        batch.begin(GL_QUADS);
        for (const Vector3f& p : {c, c + a, c + a + b, c + b, c, c - a, c - a + b, c + b})
            batch.vertex(p);
        batch.end();
        break;
    default:
        batch.begin(GL_QUAD_STRIP);
        for (const Vector3f& p : {c, c + a, c + b, c + a + b})
            batch.vertex(p);
        batch.end();
        break;
    }
}

class BatchRandomTest : public GlTest {
protected:
    Batch batch;
    size_t vertices = 0; // of the last picture

    void SetUp() override { window(WIDTH, HEIGHT); }

    // With or without what is left out; all in one draw, or one for each shape.
    Picture draw(const Scene& scene, Batch::Culling culling, bool apart) {
        vertices = 0;
        return frame([&] {
            display().setProject(scene.project);
            glMatrixMode(GL_MODELVIEW);
            glLoadMatrixf(scene.view.mData);
            glViewport(scene.viewport[0], scene.viewport[1], scene.viewport[2], scene.viewport[3]);
            if (scene.culled) {
                glEnable(GL_CULL_FACE);
                glCullFace(scene.culled);
            }
            glFrontFace(scene.front);
            glShadeModel(scene.flat ? GL_FLAT : GL_SMOOTH);
            if (scene.depth)
                glEnable(GL_DEPTH_TEST);
            if (scene.blend)
                glEnable(GL_BLEND);
            batch.setCulling(culling);
            const auto flush = [&] {
                vertices += batch.getVertices();
                batch.flush();
            };
            for (const Shape& shape : scene.shapes) {
                add(batch, shape);
                if (apart)
                    flush();
            }
            flush();
            glViewport(0, 0, WIDTH, HEIGHT);
            glFrontFace(GL_CCW);
            glCullFace(GL_BACK);
            glDisable(GL_CULL_FACE);
        });
    }

    static size_t differing(const Picture& a, const Picture& b) {
        size_t count = 0;
        for (size_t i = 0; i < a.rgba.size(); i += 4)
            count += !std::equal(&a.rgba[i], &a.rgba[i] + 3, &b.rgba[i]);
        return count;
    }
};

} // namespace

TEST_F(BatchRandomTest, WhatIsLeftOutDoesNotShow) {
    size_t all = 0, few = 0, seen = 0;
    for (unsigned seed = 0; seed < 400 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const Scene scene = SceneMaker(seed).make();
        const Picture whole = draw(scene, Batch::CULLING_OFF, true);
        all += vertices;
        const Picture culled = draw(scene, Batch::CULLING_ON, true);
        few += vertices;
        EXPECT_EQ(differing(whole, culled), 0u);
        seen += differing(whole, Picture(WIDTH, HEIGHT)) > 20;
    }
    EXPECT_GT(seen, 50u) << "nothing is seen of most scenes";
    EXPECT_LT(few, all / 2);
}

// OpenGL may cut a quad along either diagonal, and Mesa does it by whether a vertex of the draw is outside
// the view. That shows in the rounding of colours, and, where a face is nearly seen from its side or its
// corners are rounded out of their plane, in a pixel here and there.
TEST_F(BatchRandomTest, InOneDrawScenesAreThoseOfOneForEachShape) {
    for (unsigned seed = 0; seed < 100 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const Scene scene = SceneMaker(seed).make();
        const PictureDifference difference =
            comparePictures(draw(scene, Batch::CULLING_ON, false), draw(scene, Batch::CULLING_OFF, true));
        EXPECT_LE(difference.changed, 8.0 / (WIDTH * HEIGHT));
        EXPECT_LE(difference.mean, 0.1);
    }
}

// Where a float counts in sixteenths the corners of a face are out of its plane, and the two diagonals give
// two pictures: that of shapes drawn one by one is the one to keep to.
TEST_F(BatchRandomTest, FarFromTheMiddleOfThingsShapesLookAsDrawnOneByOne) {
    for (const float far : {3e5f, 1e6f})
        for (unsigned seed = 1; seed <= 3; ++seed) {
            std::mt19937 random(seed);
            const auto any = [&](float a, float b) {
                return std::uniform_real_distribution<float>(a, b)(random);
            };
            Scene scene;
            scene.project.setProject(0.7853982f, 1.6f, 0.15f, 1000);
            scene.view.setCamera(Vector3f(far, 10, far), Vector3f(far - 60, 0, far - 80), 0.3f);
            for (int i = 0; i < 1500; ++i) {
                const float size = any(0.01f, 0.2f);
                Shape shape = {BOX,
                               {},
                               Vector3f(far - any(20, 120), any(-30, 30), far - any(20, 120)),
                               Vector3f(size, size, size),
                               {},
                               Vector4f(any(0.2f, 1), any(0.2f, 1), any(0.2f, 1), 1)};
                shape.place.setIdentity();
                scene.shapes.push_back(shape);
            }
            const Picture whole = draw(scene, Batch::CULLING_OFF, true);
            EXPECT_EQ(differing(whole, draw(scene, Batch::CULLING_ON, true)), 0u) << far;
            EXPECT_EQ(differing(whole, draw(scene, Batch::CULLING_ON, false)), 0u) << far;
        }
}
