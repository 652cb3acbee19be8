#include "cubejox.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "mb_vector4.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int SIDES = 12;
constexpr int KINDS = 12; // of rods, by colour

enum Color { LOWER, UPPER };

struct State {
    Cubejox::Rod cj[Cubejox::NUM_RODS];
    Matrix4x4Col upright[Cubejox::NUM_RODS]; // from the y axis onto each rod's, and to its position
    float drum[4] = {};
    float zoom = 0, alpha = 0, bw = 0;
} state;

struct Circle {
    float x[SIDES], z[SIDES];

    Circle() {
        for (int k = 0; k < SIDES; ++k) {
            const float a = 2.0f * PI * float(k) / 12.0f;
            x[k] = sinf(a);
            z[k] = cosf(a);
        }
    }
};

// A rod of radius 1 along the y axis, in the colours of its lower end and its top: twelve sides, and the top
// around its middle.
void drawRod(display::Batch& batch, const Vector4f (&colors)[2]) {
    static const Circle circle;
    const auto vertex = [&](Color end, int k) {
        batch.color(colors[end]);
        batch.vertex(circle.x[k % SIDES], end == LOWER ? -15.0f : 1.0f, circle.z[k % SIDES]);
    };
    batch.begin(GL_QUADS);
    for (int k = 0; k < SIDES; ++k) {
        vertex(UPPER, k);
        vertex(LOWER, k);
        vertex(LOWER, k + 1);
        vertex(UPPER, k + 1);
    }
    for (int k = 0; k < SIDES; k += 2) { // two triangles a quad
        batch.vertex(0, 1, 0);
        vertex(UPPER, k);
        vertex(UPPER, k + 1);
        vertex(UPPER, k + 2);
    }
    batch.end();
}

// The rotation from the y axis onto `axis`, of unit length. Asserts "length!=0" where they are one.
Quatf fromYTo(const Vector3f& axis) {
    const Vector3f y(0, 1, 0);
    return Quatf(acosf(y.dot(axis)), y.cross(axis).getNormalized());
}

} // namespace

Cubejox::Cubejox(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
    bindSpline("bw", state.bw);
    bindSpline("zoom", state.zoom);
    static const char* const drums[] = {"drum1", "drum2", "drum3", "drum4"};
    for (size_t i = 0; i < std::size(drums); ++i)
        bindTrigger(drums[i], [i](float, const std::string&) { state.drum[i] = 1.0f; });
}

const Cubejox::Rod* Cubejox::rods() {
    return state.cj;
}

void Cubejox::setup() {
    for (int i = 0; i < NUM_RODS; ++i) {
        Rod& rod = state.cj[i];
        const float distance = 200.0f + 50.0f * float(i % 4) + float(mRandom.draw() % 500) + 1.0f;
        rod.pos = mRandom.unitSphere() * distance;
        rod.axis = (-rod.pos).getNormalized();
        rod.angle = 2.0f * PI * mRandom.uniform();
        rod.spin = float(mRandom.draw() % 2);
        rod.sides = static_cast<unsigned char>(i % 5 + 4);
        rod.radius = 8.0f;
        state.upright[i].buildPRS(rod.pos, fromYTo(rod.axis), Vector3f(1, 1, 1));
    }
}

void Cubejox::update(float time, float delta, float) {
    for (float& d : state.drum)
        d = std::max(0.0f, d - delta);

    setView(*mDisplay, {PI / 2.0f, 0.01f, 2000.0f},
            Vector3f(120.0f * cosf(time), 120.0f * cosf(time), 120.0f * sinf(time) + 5000.0f * state.zoom),
            Vector3f(0, 0, 0));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_CULL_FACE));

    // The colours of a rod's lower end and of its top, which are those of one of twelve.
    const Vector4f green = display::DisplayGL::hex2vec("669955");
    const Vector4f dark = display::DisplayGL::hex2vec("0c0c0c");
    const Vector4f shade(state.alpha, state.alpha, state.alpha, 1.0f - 4.0f * state.zoom);
    Vector4f colors[KINDS][2];
    for (int i = 0; i < KINDS; ++i) {
        const Vector4f top = green * float(i % 3 + 1) * (1.0f - 0.5f * float(i % 4) / 3.0f);
        const float l = 0.3f * top.r + 0.59f * top.g + 0.11f * top.b;
        const Vector4f grey = Vector4f(l, l, l, 1) * state.bw;
        colors[i][LOWER] = (dark * (1.0f - state.bw) + grey) * shade;
        colors[i][UPPER] = (top * (1.0f - state.bw) + grey) * shade;
    }

    for (int i = 0; i < NUM_RODS; ++i) {
        Rod& rod = state.cj[i];
        rod.angle += 5.1f * delta * rod.spin;
        // The rod turned about the y axis, and then upright.
        const float c = rod.radius * cosf(rod.angle), s = rod.radius * sinf(rod.angle);
        const float* from = state.upright[i].mData;
        Matrix4x4Col transform = state.upright[i];
        for (int r = 0; r < 3; ++r) {
            transform.mData[r] = c * from[r] - s * from[8 + r];
            transform.mData[4 + r] = rod.radius * from[4 + r];
            transform.mData[8 + r] = s * from[r] + c * from[8 + r];
        }
        mBatch.setTransform(transform);
        drawRod(mBatch, colors[i % KINDS]);
    }
    mBatch.flush();
}

} // namespace zentrak::kindler
