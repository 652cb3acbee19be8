#include "cubejox.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "mb_vector4.h"

#include <algorithm>
#include <cmath>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr float PI = 3.14159265f;
constexpr int   SIDES = 12;

Cubejox::Rod cj[Cubejox::NUM_RODS];
Quatf        upright[Cubejox::NUM_RODS]; // from the y axis onto each rod's
float        drum[4];
float        zoom, alpha, bw;

// The rim of a rod of radius 1, closed.
struct Rim {
    float x[SIDES + 1], z[SIDES + 1];

    Rim() {
        for (int k = 0; k <= SIDES; ++k) {
            const float a = 2.0f * PI * float(k % SIDES) / 12.0f;
            x[k] = sinf(a);
            z[k] = cosf(a);
        }
    }
};

// The rotation from the y axis onto `axis`, of unit length. Asserts "length!=0" where they are one.
Quatf fromYTo(const Vector3f& axis) {
    const Vector3f y(0, 1, 0);
    return Quatf(acosf(y.dot(axis)), y.cross(axis).getNormalized());
}

} // namespace

Cubejox::Cubejox(Common*) {}

const Cubejox::Rod* Cubejox::rods() {
    return cj;
}

void Cubejox::setup() {
    for (int i = 0; i < NUM_RODS; ++i) {
        Rod&        rod = cj[i];
        const float distance = 200.0f + 50.0f * float(i % 4) + float(mRandom.draw() % 500) + 1.0f;
        rod.pos = mRandom.unitSphere() * distance;
        rod.axis = (-rod.pos).getNormalized();
        rod.angle = 2.0f * PI * mRandom.uniform();
        rod.spin = float(mRandom.draw() % 2);
        rod.sides = static_cast<unsigned char>(i % 5 + 4);
        rod.radius = 8.0f;
        upright[i] = fromYTo(rod.axis);
    }
}

void Cubejox::executeTrigger(float, const std::string& name, const std::string&) {
    if (name == "drum1")
        drum[0] = 1.0f;
    if (name == "drum2")
        drum[1] = 1.0f;
    if (name == "drum3")
        drum[2] = 1.0f;
    if (name == "drum4")
        drum[3] = 1.0f;
}

void Cubejox::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alpha = value;
    if (name == "bw")
        bw = value;
    if (name == "zoom")
        zoom = value;
}

void Cubejox::update(float time, float delta, float) {
    for (float& d : drum)
        d = std::max(0.0f, d - delta);

    setPerspective(*mDisplay, PI / 2.0f, 0.01f, 2000.0f);
    mDisplay->setTransform(Matrix4x4Col());
    setCamera(*mDisplay,
              Vector3f(120.0f * cosf(time), 120.0f * cosf(time), 120.0f * sinf(time) + 5000.0f * zoom),
              Vector3f(0, 0, 0), 0);
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_CULL_FACE));

    static const Rim rim;
    const Vector4f   green = display::DisplayGL::hex2vec("669955");
    const Vector4f   dark = display::DisplayGL::hex2vec("0c0c0c");
    const float      fade = 1.0f - 4.0f * zoom;
    for (int i = 0; i < NUM_RODS; ++i) {
        Rod& rod = cj[i];
        rod.angle += 5.1f * delta * rod.spin;
        Quatf turn;
        turn.setRotY(rod.angle);
        Matrix4x4Col transform;
        transform.buildPRS(rod.pos, upright[i] * turn, Vector3f(1, 1, 1));
        mBatch.setTransform(transform);

        Vector4f       top = green * float(i % 3 + 1) * (1.0f - 0.5f * float(i % 4) / 3.0f);
        const float    l = 0.3f * top.r + 0.59f * top.g + 0.11f * top.b;
        const Vector4f grey = Vector4f(l, l, l, 1) * bw;
        const Vector4f shade(alpha, alpha, alpha, fade);
        top = (top * (1.0f - bw) + grey) * shade;
        const Vector4f bottom = (dark * (1.0f - bw) + grey) * shade;

        const float r = rod.radius;
        mBatch.begin(GL_QUAD_STRIP); // twelve sides that share their edges
        for (int k = 0; k <= SIDES; ++k) {
            mBatch.color(bottom);
            mBatch.vertex(r * rim.x[k], -15.0f * r, r * rim.z[k]);
            mBatch.color(top);
            mBatch.vertex(r * rim.x[k], r, r * rim.z[k]);
        }
        mBatch.end();
        mBatch.begin(GL_TRIANGLE_FAN);
        mBatch.vertex(0, r, 0);
        for (int k = 0; k <= SIDES; ++k)
            mBatch.vertex(r * rim.x[k], r, r * rim.z[k]);
        mBatch.end();
    }
    mBatch.flush();
}

} // namespace zentrak::kindler
