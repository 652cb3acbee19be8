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

constexpr int NUM_RECORDS = 50000;
constexpr int TAIL = 200; // boxes drawn at once

struct xorData {
    Vector3f pos;
    Vector3f col;
    Vector3f rot; // Euler angles, radians
};

struct State {
    float alpha = 0;
    float coll = 0; // the flash: 1 at a shot, drawn while above 0
    std::vector<xorData> xdata;
} state;

} // namespace

Xor::Xor(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
    bindTrigger("shot", [](float, const std::string&) { state.coll = 1.0f; });
}

void Xor::setup() {
    mTexture.loadFile(*mDisplay, "rund/rund.png", true);

    state.xdata.clear();
    state.xdata.reserve(NUM_RECORDS);
    for (int i = 0; i < NUM_RECORDS; ++i) {
        const float t = float(i);
        xorData record;
        record.pos = Vector3f(5.0f * sinf(t / 1000.234f), 5.0f * cosf(t / 800.5453f),
                              5.0f * sinf(t / 2000.0f) * cosf(t / 300.2343f));
        mRandom.draw(); // a tint that was replaced by black: the draws that follow depend on it
        record.col = Vector3f(0, 0, 0);
        record.rot = mRandom.unitSphere();
        state.xdata.push_back(record);
    }
}

void Xor::update(float time, float delta, float) {
    // 500 records a second, held inside the table.
    const float position = time * 50000.0f * 0.01f;
    const int n = position > 0 ? int(std::min(position, float(NUM_RECORDS - 1))) : 0;

    setView(*mDisplay, Lens(),
            Vector3f(15.0f * sinf(0.1f * time), 15.0f * sinf(time), 15.0f * cosf(0.1f * time)),
            state.xdata[size_t(n)].pos);
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glEnable(GL_BLEND));

    for (int k = std::max(0, n - TAIL); k < n; ++k) {
        const xorData& record = state.xdata[size_t(k)];
        Matrix4x4Col transform;
        transform.buildPRS(record.pos, Quatf(Eulerf(record.rot)), Vector3f(1, 1, 1));
        Vector3f colour = record.col;
        if (state.coll > 0)
            colour = record.col * (1.0f - state.coll) + Vector3f(0, 0.2f, 0.6f) * state.coll;
        mBatch.setTransform(transform);
        mBatch.color(colour, (0.3f - 0.002f * float(n - k)) * state.alpha);
        mBatch.box(Vector3f(0, 0, 0), Vector3f(2, 2, 2));
    }
    mBatch.flush();

    mDisplay->resetStates();
    state.coll -= delta;
}

} // namespace zentrak::kindler
