#include "face.h"

#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr const char* SCENE = "face/face.o3d";
constexpr size_t STEP = 28; // only every so many vertices glow

struct State {
    float alp = 0;
} state;

// The two layers of light at each point: a small hot one, and a wide soft one.
struct Glow {
    Vector3f color;
    float alpha;
    float size;
};

const Glow passes[2] = {{Vector3f(5, 1.1f * 5, 0.1f * 5), 0.2f, 0.02f},
                        {Vector3f(0.3f, 0.2f, 0.1f), 0.4f, 0.2f}};

} // namespace

Face::Face(Common*) {
    state = State();
    bindSpline("alpha", state.alp);
}

void Face::setup() {
    mScene.clear();
    readNamed(SCENE, [this] {
        const am::File file = mDisplay->mArchiveManager->readFile(SCENE);
        mScene.load(file->data, int(file->length));
    });
    printf("Meshes: %d\n", int(mScene.mMeshes.size()));
    for (const o3d::Mesh* mesh : mScene.mMeshes)
        mPoints.reserve(mesh->mVertices.size() / STEP + 1);
    mTexture.loadFile(*mDisplay, "hurry/particle.png", true);
    mTexture.bind();
    mCut.readTexture();
    mTexture.unbind();
    mProgram.linkFiles(*mDisplay, "face/face.vert", "face/face.frag");
}

void Face::collect(const o3d::Mesh& mesh, const Matrix4x4Col& cameraInverse) {
    mPoints.clear();
    for (size_t i = 0; i < mesh.mVertices.size(); i += STEP) {
        const Vector3f& v = mesh.mVertices[i];
        v.getNormalized(); // a point without a direction has no side: an assertion
        const Vector3f n = cameraInverse.multiply(v).getNormalized();
        if (n.z > 0)
            mPoints.push_back({v, n.z});
    }
}

void Face::update(float time, float, float) {
    mDisplay->resetStates();
    const Vector3f eye(1.3f * sinf(2.0f * time), 0, 1.3f * cosf(2.0f * time));
    const Vector3f target(0, 0, 0);
    setView(*mDisplay, {PI / 4.0f, 0.015f, 1000.0f}, eye, target);
    const Billboard board(eye, target, 0.0f);
    Matrix4x4Col cameraInverse;
    cameraInverse.setCameraInv(eye, target, 0.0f);

    for (const o3d::Mesh* mesh : mScene.mMeshes) {
        GL_CALL(glEnable(GL_BLEND));
        GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE));
        GL_CALL(glDisable(GL_CULL_FACE));
        GL_CALL(glDisable(GL_DEPTH_TEST));
        GL_CALL(glEnable(GL_TEXTURE_2D));
        mTexture.bind();
        collect(*mesh, cameraInverse);
        mCut.look(board.right, board.up);
        for (const Glow& glow : passes) {
            mCut.setMagnified(std::all_of(mPoints.begin(), mPoints.end(), [&](const Point& point) {
                return mCut.isMagnified(point.place, glow.size);
            }));
            for (const Point& point : mPoints) {
                const Vector3f light = glow.color * (point.light * state.alp);
                const Vector4f color(light.x, light.y, light.z, glow.alpha);
                mBatch.color(color);
                mCut.draw(mBatch, point.place, glow.size, color);
            }
            mBatch.flush();
        }
        mCut.setMagnified(false);
        mTexture.unbind();
        GL_CALL(glDisable(GL_TEXTURE_2D));
    }
}

} // namespace zentrak::kindler
