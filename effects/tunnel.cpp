#include "tunnel.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <cmath>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int NUM_PATH = 1000;
constexpr int NUM_RINGS = 153;
constexpr int NUM_BLOCKS = 64;
constexpr int BLOCK_POSITIONS = 68; // of a ring: four more than blocks, which leaves an arc open
constexpr float DEPTH = 0.2f;       // of a block, to either side

const char* const palette[8] = {"e39e89", "8688b0", "a4c28c", "d0bf7c",
                                "9bc3b2", "c9a1af", "d6dc96", "c0ebc0"};

struct State {
    Vector3f path[NUM_PATH]; // not read
    std::vector<Tunnel::Ring> mongo;
} state;

// The direction in which each block of a ring moves out.
struct Positions {
    float sine[NUM_BLOCKS], cosine[NUM_BLOCKS];

    Positions() {
        for (int b = 0; b < NUM_BLOCKS; ++b) {
            const float theta = 2.0f * PI * float(b) / float(BLOCK_POSITIONS);
            sine[b] = sinf(-theta);
            cosine[b] = cosf(-theta);
        }
    }
};

} // namespace

Tunnel::Tunnel(Common*) {
    state = State();
}

const std::vector<Tunnel::Ring>& Tunnel::rings() {
    return state.mongo;
}

Vector3f Tunnel::getPath(float t) {
    const double d = t;
    return Vector3f(float(sin(d) + 5.05 * cos(0.2 * d) * sin(d + 1.5)), float(cos(d) + 2.0 * sin(2.0 * d)),
                    float(10.0 * d));
}

void Tunnel::setup() {
    mTexture.loadFile(*mDisplay, "hurry/particle.png", true);

    for (int i = 0; i < NUM_PATH; ++i)
        state.path[i] = getPath(float(i) / 100.0f) + mRandom.unitSphere();

    // The first rings are thin, pale and grey-blue, the last thick and of full colour.
    state.mongo.clear();
    for (int i = 0; i < NUM_RINGS; ++i) {
        Ring ring;
        const float t = (0.4f - 0.2f * float(i) / 153.0f) * float(i);
        ring.pos = getPath(t);
        ring.rot = Vector3f(0, 0, float(mRandom.draw() % 4));
        ring.spin = Vector3f(0, 0, mRandom.draw() % 3 == 0 ? -5.0f : 5.0f);
        const float m = sinf(float(i) * (PI / 2.0f) / 153.0f);
        const uint32_t s3 = mRandom.draw();
        const uint32_t s4 = mRandom.draw();
        mRandom.draw();
        const Vector4f base = display::DisplayGL::hex2vec(palette[i % 8]);
        ring.col = Vector3f(base.r, base.g, base.b) * m + Vector3f(0.51f, 0.56f, 0.56f) * (1.0f - m);
        if (i % 2 == 1)
            ring.col *= 0.73f;
        const float k = float(s3 % 5 + 1);
        const float j = float(s4 % 4 + 1);
        ring.inner = k * m + (1.0f - m);
        ring.outer = (j + k) * m + 1.5f * (1.0f - m);
        state.mongo.push_back(ring);
    }

    mProgram.linkFiles(*mDisplay, "tunnel/tunnel.vert", "tunnel/tunnel.frag");
}

void Tunnel::update(float time, float delta, float) {
    const Vector3f eye = getPath(time - 1.0f);
    const Vector3f target = getPath(time + 1.0f);
    const float roll = 2.0f * sinf(0.5f * time);
    setView(*mDisplay, {PI / 4.0f, 0.015f, 1000.0f}, eye, target, roll);
    [[maybe_unused]] const Billboard board(eye, target, roll); // for its assertion

    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    mProgram.bind();
    for (int i = 0; i < int(state.mongo.size()); ++i)
        drawRing(state.mongo[size_t(i)], i, eye, delta);
    mBatch.flush();
    mProgram.unbind();

    mDisplay->setTransform(Matrix4x4Col());
    GL_CALL(glDisable(GL_TEXTURE_2D));
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_BLEND));
}

// A ring shows only ahead of the camera: at full strength within 15 units, faded out at 24.5. Its spin takes
// a step for each block, and so settles soon after the ring comes into view.
void Tunnel::drawRing(Ring& ring, int index, const Vector3f& eye, float delta) {
    static const Positions positions;

    const Vector3f d = ring.pos - eye;
    float dist = d.length() - 15.0f;
    float a = 1.0f;
    if (dist < 0)
        dist = 0;
    else if (dist >= 25)
        return;
    else
        a = 1.0f - 0.1f * dist;
    if (!(d.z > 0) || !(a > 0.05f))
        return;

    // The ring untwists into the plane of the tunnel as it nears. Only the angle about z differs from block
    // to block.
    Quatf twistX, twistY;
    twistX.setRotX(20.0f * sinf(0.005f * dist));
    twistY.setRotY(20.0f * sinf(0.0051f * dist));
    Matrix4x4Col plane;
    plane.buildPRS(ring.pos, twistX * twistY, Vector3f(1, 1, 1));
    shapeBlock(ring.inner, ring.outer);
    mBatch.color(ring.col, a);
    for (int b = 0; b < NUM_BLOCKS; ++b) {
        if (index % 5 == 0 && (b == 0 || b == 15 || b == 31 || b == 47))
            continue;
        float& z = ring.spin.z;
        if (z > 0.1f)
            z -= 0.05f * delta;
        if (z < 0.1f)
            z += 0.05f * delta;

        const float angle = ring.rot.z + z + 0.7f * dist;
        const float c = cosf(angle), s = sinf(angle);
        const float sine = positions.sine[b], cosine = positions.cosine[b];
        const float out = 0.1f * 15.0f * dist;
        // The x axis of the block, its y axis and its position, in the plane of the ring.
        const float xx = c * cosine + s * sine, xy = s * cosine - c * sine;
        const float px = out * (c * sine - s * cosine), py = out * (s * sine + c * cosine);
        Matrix4x4Col block = plane;
        for (int r = 0; r < 3; ++r) {
            const float right = plane.mData[r], up = plane.mData[4 + r];
            block.mData[r] = right * xx + up * xy;
            block.mData[4 + r] = up * xx - right * xy;
            block.mData[12 + r] = plane.mData[12 + r] + right * px + up * py;
        }
        mBatch.setTransform(block);
        drawBlock();
    }
}

// One of the blocks that a ring of these radii is cut into, around the y axis: corners 0 to 3 at -DEPTH, 4 to
// 7 at DEPTH.
void Tunnel::shapeBlock(float inner, float outer) {
    const float h = PI / float(BLOCK_POSITIONS);
    const float c = cosf(h), s = sinf(h);
    const float x[4] = {-s * inner, s * inner, s * outer, -s * outer};
    const float y[4] = {c * inner, c * inner, c * outer, c * outer};
    for (int i = 0; i < 8; ++i)
        mBlock[i] = Vector3f(x[i & 3], y[i & 3], i < 4 ? -DEPTH : DEPTH);
}

// Front, back, inner, outer, sides, each counter-clockwise from outside.
void Tunnel::drawBlock() {
    static constexpr int FACES[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                        {3, 7, 6, 2}, {1, 2, 6, 5}, {0, 4, 7, 3}};
    mBatch.begin(GL_QUADS);
    for (const auto& face : FACES)
        for (const int corner : face)
            mBatch.vertex(mBlock[corner]);
    mBatch.end();
}

} // namespace zentrak::kindler
