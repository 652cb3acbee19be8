#include "recurse.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "mb_quat.h"
#include "mb_vector4.h"

#include <cmath>

namespace zentrak::kindler {

using display::FBO;
using display::Texture;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int TARGET_SIZE = 64; // pixels

// A face of the cube: its outward normal, and the directions in which s and t rise.
struct Face {
    Vector3f normal, right, up;
    Vector4f color;
};

const Face faces[6] = {
    {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}, {0, 0.5f, 1, 1}}, // -z
    {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {1, 0, 0.5f, 1}},  // -x
    {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}, {1, 0.5f, 0, 1}},  // +x
    {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}, {0.5f, 1, 0, 1}},  // -y
    {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}, {0, 1, 0.5f, 1}},  // +y
    {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0.5f, 0, 1, 1}},   // +z
};

} // namespace

Recurse::Recurse(Common*) {}

void Recurse::setup() {
    for (int i = 0; i < 2; ++i) {
        if (mFbos[i].attachments.empty()) {
            mFbos[i].setDisplay(mDisplay);
            mTextures[i].setDisplay(mDisplay);
            mTextures[i].setup(-1, -1, Texture::CHAN_DEFAULT, Texture::FORMAT_DEFAULT,
                               Texture::TARGET_DEFAULT);
            mFbos[i].setup(TARGET_SIZE, TARGET_SIZE, false);
            mFbos[i].attach(FBO::COLOR0, &mTextures[i]);
        }
        mTextures[i].bind();
        mTextures[i].setRepeat(true);
        mTextures[i].unbind();
        mFbos[i].bind();
        GL_CALL(glClearColor(0, 0, 0, 0));
        GL_CALL(glClear(GL_COLOR_BUFFER_BIT));
        mFbos[i].unbind();
    }
}

void Recurse::drawColorCube(display::Batch& batch, const Vector3f& centre, const Vector3f& half) {
    batch.begin(GL_QUADS);
    for (const Face& face : faces) {
        batch.color(face.color);
        batch.normal(face.normal);
        for (const auto& [s, t] : {std::pair(0.0f, 0.0f), {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}}) {
            batch.texCoord(s, t);
            batch.vertex(centre +
                         half * (face.normal + face.right * (2.0f * s - 1.0f) + face.up * (2.0f * t - 1.0f)));
        }
    }
    batch.end();
}

// The eye never leaves the cube, whose walls thus cover the target: nothing is cleared, and no depth buffer
// is needed.
void Recurse::update(float time, float, float) {
    const Vector3f origin(0, 0, 0);
    mDisplay->resetStates();
    mFbos[index].bind();
    setView(*mDisplay, {PI / 2.0f, 0.1f, 1000.0f}, Vector3f(sinf(time), cosf(0.5f * time), cosf(time)),
            origin);
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTextures[1 - index].bind();

    const Vector3f axis = Vector3f(sinf(0.7f * time), cosf(0.4f * time), cosf(0.63f * time)).getNormalized();
    const float half = 0.15f * time; // of the angle
    const Vector3f turn = axis * sinf(half);
    Matrix4x4Col rotation;
    rotation.setRot(Quatf(cosf(half), turn.x, turn.y, turn.z));
    mDisplay->setTransform(rotation);
    GL_CALL(glFrontFace(GL_CW));
    drawColorCube(mBatch, origin, Vector3f(1.5f, 1.5f, 1.5f));
    mBatch.flush();
    GL_CALL(glFrontFace(GL_CCW));
    mTextures[1 - index].unbind();

    GL_CALL(glDisable(GL_TEXTURE_2D));
    mBatch.color(1, 1, 1, 1);
    mBatch.box(origin, Vector3f(0.02f, 0.02f, 150));
    mBatch.box(origin, Vector3f(0.02f, 150, 0.02f));
    mBatch.box(origin, Vector3f(150, 0.02f, 0.02f));
    mBatch.flush();
    mFbos[index].unbind();

    setClipSpace(*mDisplay);
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTextures[index].bind();
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mTextures[index].unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    index = 1 - index;
}

} // namespace zentrak::kindler
