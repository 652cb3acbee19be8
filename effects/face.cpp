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

// Half the view at depth 1, a hair inside its edges.
const float VIEW_Y = tanf(PI / 8.0f) * 0.99999f;
const float VIEW_X = VIEW_Y * EFFECT_ASPECT;

// The part of a length from -1 to 1 around `middle`, in units of `half`, that lies within `edge` of 0.
struct Part {
    float low, high;

    Part(float middle, float half, float edge)
        : low(std::max(-1.0f, (-edge - middle) / half)), high(std::min(1.0f, (edge - middle) / half)) {}

    float centre() const { return 0.5f * (low + high); }
    float extent() const { return 0.5f * (high - low); }
    bool isWhole() const { return low == -1.0f && high == 1.0f; }
};

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

// The points of a mesh that glow, and where the camera has them.
void Face::collect(const o3d::Mesh& mesh, const Vector3f& eye, const Billboard& board,
                   const Matrix4x4Col& cameraInverse) {
    const Vector3f right = board.right * 2.0f, up = board.up * 2.0f, back = right.cross(up);
    mPoints.clear();
    for (size_t i = 0; i < mesh.mVertices.size(); i += STEP) {
        const Vector3f& v = mesh.mVertices[i];
        v.getNormalized(); // a point without a direction has no side: an assertion
        const Vector3f n = cameraInverse.multiply(v).getNormalized();
        if (!(n.z > 0))
            continue;
        const Vector3f way = v - eye;
        mPoints.push_back({v, Vector3f(right.dot(way), up.dot(way), -back.dot(way)), n.z});
    }
}

/*
 * A sprite is parallel to the screen, and so easily cut to what the screen shows: one vertex outside sends a
 * whole draw the long way through software OpenGL, which clips each face by itself.
 */
void Face::drawSprite(const Point& point, const Billboard& board, float size, const Vector4f& color) {
    const Vector3f& seen = point.seen;
    if (!(seen.z > 0))
        return;
    const float reach = mCut.reachOf(point.place, size, color);
    const float half = 0.5f * size * reach;
    const Part x(seen.x, half, VIEW_X * seen.z), y(seen.y, half, VIEW_Y * seen.z);
    if (x.low >= x.high || y.low >= y.high || reach == 0)
        return;
    mBatch.color(color);
    if (x.isWhole() && y.isWhole()) {
        mCut.drawReach(mBatch, point.place, size, reach);
        return;
    }
    const Vector3f right = board.right * (size * reach), up = board.up * (size * reach);
    const float s = 0.5f * reach;
    mBatch.sprite(point.place + right * x.centre() + up * y.centre(), right * x.extent(), up * y.extent(),
                  0.5f + s * x.low, 0.5f - s * y.high, 0.5f + s * x.high, 0.5f - s * y.low);
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
        collect(*mesh, eye, board, cameraInverse);
        mCut.look(board.right, board.up);
        for (const Glow& glow : passes) {
            mCut.setMagnified(std::all_of(mPoints.begin(), mPoints.end(), [&](const Point& point) {
                return mCut.isMagnified(point.place, glow.size);
            }));
            for (const Point& point : mPoints) {
                const Vector3f color = glow.color * (point.light * state.alp);
                drawSprite(point, board, glow.size, Vector4f(color.x, color.y, color.z, glow.alpha));
            }
            mBatch.flush();
        }
        mCut.setMagnified(false);
        mTexture.unbind();
        GL_CALL(glDisable(GL_TEXTURE_2D));
    }
}

} // namespace zentrak::kindler
