// Thousands of boxes and sprites through Batch, compared with the same ones by glBegin, glVertex3f and glEnd,
// alternating within one run:
//     tests/with_display build/bench/bench/display/bench_batch [ROUNDS]
// One line per scene (boxes and sprites are about 7 pixels, small ones 2.4): milliseconds per frame each way
// and the speedup of the batch, first by the clock, then by processor time over all threads (steadier on a
// busy machine), then with GL_RASTERIZER_DISCARD, which leaves the cost of getting the shapes to the
// rasteriser; and the batch's cost of collecting alone.
#include "../measure.h"
#include "am_image.h"
#include "dis_batch.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "dis_texture.h"
#include "mb_random.h"
#include "plain_box.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

using namespace zentrak;
using display::Batch;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int WIDTH = 1280, HEIGHT = 800, COUNT = 10000;

float uniform(float low, float high) {
    static mathbase::Random random(12345);
    return low + (high - low) * float(random.draw() >> 8) / float(1 << 24);
}

struct Shape {
    Matrix4x4Col transform;
    Vector4f color;
    Vector3f place;
};

// Randomly rotated shapes in a slab across the view; with `spread` above 1 some lie outside it.
std::vector<Shape> makeShapes(float spread) {
    std::vector<Shape> shapes(COUNT);
    for (Shape& shape : shapes) {
        Matrix4x4Col x, z;
        x.setRotX(uniform(0, 6.28f));
        z.setRotZ(uniform(0, 6.28f));
        const float deep = uniform(150, 250), high = 0.41f * deep * spread;
        shape.place = Vector3f(uniform(-1.6f, 1.6f) * high, uniform(-1, 1) * high, -deep);
        shape.transform.setTranslation(shape.place);
        shape.transform *= x;
        shape.transform *= z;
        shape.color = Vector4f(uniform(0, 1), uniform(0, 1), uniform(0, 1), uniform(0.1f, 1));
    }
    return shapes;
}

// One call per vertex, with only the attributes that the state of the scene uses.
void plainBoxes(const std::vector<Shape>& shapes, const Vector3f& half, bool textured) {
    for (const Shape& shape : shapes) {
        glLoadMatrixf(shape.transform.mData);
        glColor4f(shape.color.x, shape.color.y, shape.color.z, shape.color.w);
        if (textured)
            test::plainBox<false, true>(Vector3f(0, 0, 0), half);
        else
            test::plainBox<false, false>(Vector3f(0, 0, 0), half);
    }
    glLoadIdentity();
}

void batchBoxes(Batch& batch, const std::vector<Shape>& shapes, const Vector3f& half) {
    for (const Shape& shape : shapes) {
        batch.setTransform(shape.transform);
        batch.color(shape.color);
        batch.box(Vector3f(0, 0, 0), half);
    }
}

// As effects that draw box by box do: the display's matrices, checked calls, normals and texture coordinates.
void displayBoxes(display::DisplayGL& window, const std::vector<Shape>& shapes, const Vector3f& half) {
    for (const Shape& shape : shapes) {
        window.setTransform(shape.transform);
        window.setColor(shape.color.x, shape.color.y, shape.color.z, shape.color.w);
        test::plainBox(Vector3f(0, 0, 0), half);
        GL_CHECK_STATUS();
    }
    Matrix4x4Col identity;
    identity.setIdentity();
    window.setTransform(identity);
}

// The greetings as they decay: three in four boxes have shrunk to nothing.
float decayed(size_t i) {
    return i % 4 ? 0.0f : 0.75f;
}

void plainDecayed(const std::vector<Shape>& shapes) {
    for (size_t i = 0; i < shapes.size(); ++i) {
        glLoadMatrixf(shapes[i].transform.mData);
        glColor4f(shapes[i].color.x, shapes[i].color.y, shapes[i].color.z, shapes[i].color.w);
        test::plainBox<false, true>(Vector3f(0, 0, 0), Vector3f(1, 1, 1) * decayed(i));
    }
    glLoadIdentity();
}

void batchDecayed(Batch& batch, const std::vector<Shape>& shapes) {
    for (size_t i = 0; i < shapes.size(); ++i) {
        batch.setTransform(shapes[i].transform);
        batch.color(shapes[i].color);
        batch.box(Vector3f(0, 0, 0), Vector3f(1, 1, 1) * decayed(i));
    }
}

void plainSprites(const std::vector<Shape>& shapes, float s) {
    glBegin(GL_QUADS);
    for (const Shape& shape : shapes) {
        const Vector3f& p = shape.place;
        glColor4f(shape.color.x, shape.color.y, shape.color.z, shape.color.w);
        glTexCoord2f(0, 0);
        glVertex3f(p.x - s, p.y + s, p.z);
        glTexCoord2f(0, 1);
        glVertex3f(p.x - s, p.y - s, p.z);
        glTexCoord2f(1, 1);
        glVertex3f(p.x + s, p.y - s, p.z);
        glTexCoord2f(1, 0);
        glVertex3f(p.x + s, p.y + s, p.z);
    }
    glEnd();
}

// Sprites each with its own matrix and its own shape.
void plainTurnedSprites(const std::vector<Shape>& shapes, float s) {
    for (const Shape& shape : shapes) {
        glLoadMatrixf(shape.transform.mData);
        glColor4f(shape.color.x, shape.color.y, shape.color.z, shape.color.w);
        glBegin(GL_QUADS);
        glTexCoord2f(0, 0);
        glVertex3f(-s, s, 0);
        glTexCoord2f(0, 1);
        glVertex3f(-s, -s, 0);
        glTexCoord2f(1, 1);
        glVertex3f(s, -s, 0);
        glTexCoord2f(1, 0);
        glVertex3f(s, s, 0);
        glEnd();
    }
    glLoadIdentity();
}

void batchSprites(Batch& batch, const std::vector<Shape>& shapes, float s, bool turned) {
    const Vector3f right(s, 0, 0), up(0, s, 0);
    for (const Shape& shape : shapes) {
        batch.color(shape.color);
        if (turned)
            batch.setTransform(shape.transform);
        batch.sprite(turned ? Vector3f(0, 0, 0) : shape.place, right, up);
    }
}

FILE* results;

void measure(bench::Times& times, const std::function<void()>& draw) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glFinish();
    times.add([&] {
        draw();
        glFinish();
    });
}

void compare(const char* name, int rounds, const std::function<void()>& state,
             const std::function<void()>& plain, Batch& batch, const std::function<void()>& collect) {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    state();
    bench::Times plainCost, batchCost, plainSent, batchSent, collected;
    const auto both = [&](bench::Times& a, bench::Times& b) {
        measure(a, plain);
        measure(b, [&] {
            collect();
            batch.flush();
        });
    };
    for (int i = 0; i < rounds; ++i)
        both(plainCost, batchCost);
    glEnable(GL_RASTERIZER_DISCARD);
    for (int i = 0; i < rounds; ++i)
        both(plainSent, batchSent);
    for (int i = 0; i < rounds; ++i) {
        measure(collected, collect);
        batch.clear();
    }
    glDisable(GL_RASTERIZER_DISCARD);
    glPopAttrib();
    const double wall[2] = {bench::median(plainCost.wall), bench::median(batchCost.wall)};
    const double cpu[2] = {bench::median(plainCost.processor), bench::median(batchCost.processor)};
    const double sent[2] = {bench::median(plainSent.processor), bench::median(batchSent.processor)};
    std::fprintf(results, "%-34s %7.1f %6.1f %5.1fx %8.1f %6.1f %5.1fx %8.1f %6.2f %5.1fx %9.2f\n", name,
                 wall[0], wall[1], wall[0] / wall[1], cpu[0], cpu[1], cpu[0] / cpu[1], sent[0], sent[1],
                 sent[0] / sent[1], bench::median(collected.processor));
}

} // namespace

int main(int count, char** arguments) {
    keepFreedMemory(); // as the program does
    results = bench::separateResults();
    const int rounds = bench::roundsOf(count, arguments, 15);
    display::DisplayGL window(display::WindowMode("bench", WIDTH, HEIGHT, false));
    window.open();
    window.resetAllStates();
    Matrix4x4Col project;
    project.setProject(0.7853982f, 1.6f, 0.15f, 1000);
    window.setProject(project);
    window.setModelView();

    am::Image image(new am::ImageObject);
    image->resize(64, 64);
    for (int i = 0; i < 64 * 64 * 4; ++i)
        image->getWriteData()[i] = (unsigned char)(i * 7);
    display::Texture texture(&window);
    texture.load(image, true);
    texture.bind();

    Batch batch;
    const std::vector<Shape> inside = makeShapes(1), wide = makeShapes(3);
    const Vector3f half(0.75f, 0.75f, 0.75f), tiny(0.25f, 0.25f, 0.25f);
    const auto textured = [] { glEnable(GL_TEXTURE_2D); };
    const auto solid = [] { glEnable(GL_DEPTH_TEST), glEnable(GL_CULL_FACE); };
    const auto blended = [] { glEnable(GL_BLEND); };

    std::fprintf(results, "%s, %d shapes at %d x %d, median of %d rounds, milliseconds\n",
                 glGetString(GL_RENDERER), COUNT, WIDTH, HEIGHT, rounds);
    std::fprintf(results, "%-34s %21s %22s %22s %9s\n", "", "by the clock", "processor time",
                 "without pixels", "collect");
    std::fprintf(results, "%-34s %7s %6s %6s %8s %6s %6s %8s %6s %6s\n", "", "plain", "batch", "", "plain",
                 "batch", "", "plain", "batch", "");
    const auto boxes = [&](const char* name, const std::function<void()>& state,
                           const std::vector<Shape>& shapes, const Vector3f& size, bool texturedBoxes) {
        compare(
            name, rounds, state, [&] { plainBoxes(shapes, size, texturedBoxes); }, batch,
            [&] { batchBoxes(batch, shapes, size); });
    };
    boxes("boxes, depth, culled", solid, inside, half, false);
    boxes(
        "boxes, depth, culled, textured", [&] { solid(), textured(); }, inside, half, true);
    boxes(
        "boxes, depth, not culled", [] { glEnable(GL_DEPTH_TEST); }, inside, half, false);
    boxes("boxes, blended, not culled", blended, inside, half, false);
    boxes("small boxes, depth, culled", solid, inside, tiny, false);
    boxes("boxes, depth, culled, 8/9 outside", solid, wide, half, false);
    compare(
        "boxes, depth, culled, by display", rounds, solid, [&] { displayBoxes(window, inside, half); }, batch,
        [&] { batchBoxes(batch, inside, half); });
    compare(
        "small boxes, likewise", rounds, solid, [&] { displayBoxes(window, inside, tiny); }, batch,
        [&] { batchBoxes(batch, inside, tiny); });
    compare(
        "boxes, textured, 3/4 of no size", rounds, [&] { solid(), textured(); },
        [&] { plainDecayed(inside); }, batch, [&] { batchDecayed(batch, inside); });

    const auto added = [&] {
        textured();
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    };
    const auto sprites = [&](const char* name, const std::vector<Shape>& shapes, float size, bool turned) {
        compare(
            name, rounds, added,
            [&] { turned ? plainTurnedSprites(shapes, size) : plainSprites(shapes, size); }, batch,
            [&] { batchSprites(batch, shapes, size, turned); });
    };
    sprites("sprites, one glBegin", inside, 0.75f, false);
    sprites("sprites, a transform each", inside, 0.75f, true);
    sprites("small sprites, a transform each", inside, 0.25f, true);
    sprites("sprites, one glBegin, 8/9 outside", wide, 0.75f, false);
    return 0;
}
