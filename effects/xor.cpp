#include "xor.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr float PI = 3.14159265f;
constexpr int NUM_RECORDS = 50000;
constexpr int TAIL = 200; // boxes drawn at once

struct xorData {
    Vector3f pos;
    Vector3f col;
    Vector3f rot; // Euler angles, radians
};

float alpha;
float coll; // the flash: 1 at a shot, drawn while above 0
std::vector<xorData> xdata;

} // namespace

Xor::Xor(Common*) : mTexture(nullptr), mProgram(nullptr) {}

void Xor::setup() {
    mTexture.setDisplay(mDisplay);
    mProgram.setDisplay(mDisplay);
    mTexture.load("rund/rund.png", true);
    mTexture.init();

    xdata.clear();
    xdata.reserve(NUM_RECORDS);
    for (int i = 0; i < NUM_RECORDS; ++i) {
        const float t = float(i);
        xorData record;
        record.pos = Vector3f(5.0f * sinf(t / 1000.234f), 5.0f * cosf(t / 800.5453f),
                              5.0f * sinf(t / 2000.0f) * cosf(t / 300.2343f));
        mRandom.draw(); // a tint that gave way to black; the draws behind it stay where they were
        record.col = Vector3f(0, 0, 0);
        record.rot = mRandom.unitSphere();
        xdata.push_back(record);
    }
}

void Xor::executeTrigger(float, const std::string& name, const std::string&) {
    if (name == "shot")
        coll = 1.0f;
}

void Xor::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alpha = value;
}

void Xor::update(float time, float delta, float) {
    // 500 records a second, held inside the table.
    const float position = time * 50000.0f * 0.01f;
    const int n = position > 0 ? int(std::min(position, float(NUM_RECORDS - 1))) : 0;

    setPerspective(*mDisplay, PI / 4.0f, 0.15f, 1000.0f);
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glEnable(GL_BLEND));
    mDisplay->setTransform(Matrix4x4Col());
    setCamera(*mDisplay, Vector3f(15.0f * sinf(0.1f * time), 15.0f * sinf(time), 15.0f * cosf(0.1f * time)),
              xdata[size_t(n)].pos, 0);

    for (int k = std::max(0, n - TAIL); k < n; ++k) {
        const xorData& record = xdata[size_t(k)];
        Matrix4x4Col transform;
        transform.buildPRS(record.pos, Quatf(Eulerf(record.rot)), Vector3f(1, 1, 1));
        Vector3f colour = record.col;
        if (coll > 0)
            colour = record.col * (1.0f - coll) + Vector3f(0, 0.2f, 0.6f) * coll;
        mBatch.setTransform(transform);
        mBatch.color(colour, (0.3f - 0.002f * float(n - k)) * alpha);
        mBatch.box(Vector3f(0, 0, 0), Vector3f(2, 2, 2));
    }
    mBatch.flush();

    mDisplay->resetStates();
    coll -= delta;
}

} // namespace zentrak::kindler
