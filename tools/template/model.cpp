#include "model.h"

#include "am_archivemanager.h"
#include "am_file.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "o3d_chunk.h"

using namespace zentrak::kindler;
namespace o3d = zentrak::o3d;
using zentrak::mathbase::Matrix4x4Col;
using zentrak::mathbase::Quatf;
using zentrak::mathbase::Vector3f;

Model::Model() {
    bindSpline("alpha", mAlpha);
}

Model::~Model() {
    removeMeshes(mMeshes);
}

void Model::setup() {
    if (mScene || mDisplay->mArchiveManager->readFile("model.o3d").isNull())
        return;
    mScene = std::make_unique<o3d::Manager>();
    loadSceneFile(*mDisplay, *mScene, "model.o3d");
    loadMeshes(*mDisplay, *mScene, mMeshes);
    mProgram.linkFiles(*mDisplay, "model/model.vert", "model/model.frag");
}

void Model::update(float time, float, float) {
    if (!mScene || mScene->mScenes.empty())
        return;
    setCamera(time);
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glClear(GL_DEPTH_BUFFER_BIT));
    mDisplay->setColor(mAlpha, mAlpha, mAlpha, 1);
    mProgram.bind();
    walkScene(*mScene->mScenes.front(), {}, time, false, *this);
    mProgram.unbind();
    mDisplay->resetStates();
}

// zentrak-import puts a camera into every scene, ahead of all nodes.
void Model::setCamera(float time) {
    for (const o3d::SceneNode* node : mScene->mScenes.front()->mChildren)
        if (node->getType() == o3d::CHUNK_CAMERA) {
            const auto& camera = static_cast<const o3d::Camera&>(*node);
            Matrix4x4Col view, project;
            view.buildBlenderCameraInverse(camera.mPosition.getValue(time),
                                           Quatf(camera.mRotation.getValue(time)), Vector3f(1, 1, 1));
            project.setProject(camera.mAngle.getValue(time), EFFECT_ASPECT, 0.1f, 1000.0f);
            mDisplay->setProject(project);
            mDisplay->setCamera(view);
            return;
        }
    setView(*mDisplay, {}, Vector3f(0, 2, 8), Vector3f(0, 0, 0));
}

// Called for each node, with what takes its coordinates to the world's.
void Model::visit(const o3d::SceneNode& node, const Matrix4x4Col& world, bool flip) {
    const o3d::MeshInstance* instance = asInstance(node);
    if (!instance)
        return;
    mDisplay->setTransform(world);
    drawMesh(*mScene, mMeshes, meshOf(*mScene, *instance), instance, flip);
}
