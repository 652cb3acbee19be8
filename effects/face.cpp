#include "face.h"

#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

constexpr float  PI = 3.14159265f;
constexpr size_t STEP = 28; // only every so many vertices glow

float alp;

// The two layers of light at each point: a small hot one, and a wide soft one.
struct Glow {
    Vector3f color;
    float    alpha;
    float    size;
};

const Glow passes[2] = {{Vector3f(5, 1.1f * 5, 0.1f * 5), 0.2f, 0.02f},
                        {Vector3f(0.3f, 0.2f, 0.1f), 0.4f, 0.2f}};

} // namespace

Face::Face(Common*) : mTexture(nullptr), mProgram(nullptr) {}

void Face::setup() {
    mTexture.setDisplay(mDisplay);
    mProgram.setDisplay(mDisplay);
    const am::File file = mDisplay->mArchiveManager->readFile("face/face.o3d");
    mScene.load(file->data, static_cast<int>(file->length));
    printf("Meshes: %d\n", static_cast<int>(mScene.mMeshes.size()));
    mTexture.load("hurry/particle.png", true);
    mTexture.init();
    mProgram.link("face/face.vert", "face/face.frag");
}

void Face::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alp = value;
}

void Face::update(float time, float, float) {
    mDisplay->resetStates();
    setPerspective(*mDisplay, PI / 4.0f, 0.015f, 1000.0f);
    mDisplay->setTransform(Matrix4x4Col());
    const Vector3f eye(1.3f * sinf(2.0f * time), 0, 1.3f * cosf(2.0f * time));
    const Vector3f target(0, 0, 0);
    setCamera(*mDisplay, eye, target, 0.0f);
    const Billboard board(eye, target, 0.0f);
    Matrix4x4Col    cameraInverse;
    cameraInverse.setCameraInv(eye, target, 0.0f);

    for (const o3d::Mesh* mesh : mScene.mMeshes) {
        GL_CALL(glEnable(GL_BLEND));
        GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE));
        GL_CALL(glDisable(GL_CULL_FACE));
        GL_CALL(glDisable(GL_DEPTH_TEST));
        GL_CALL(glEnable(GL_TEXTURE_2D));
        mTexture.bind();
        for (const Glow& glow : passes) {
            const Vector3f right = board.right * glow.size, up = board.up * glow.size;
            for (size_t i = 0; i < mesh->mVertices.size(); i += STEP) {
                const Vector3f& v = mesh->mVertices[i];
                v.getNormalized(); // a point without a direction has no side: an assertion
                const Vector3f n = cameraInverse.multiply(v).getNormalized();
                if (!(n.z > 0))
                    continue;
                const float c = n.z * alp;
                mBatch.color(glow.color * c, glow.alpha);
                mBatch.sprite(v, right, up);
            }
        }
        mBatch.flush();
        mTexture.unbind();
        GL_CALL(glDisable(GL_TEXTURE_2D));
    }
}

} // namespace zentrak::kindler
