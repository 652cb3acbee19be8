#include "kasper.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "o3d_chunk.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>

namespace zentrak {

using display::FBO;
using display::Texture;
using kindler::asInstance;
using kindler::meshOf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr int MAP_SIZE = 1024; // pixels

const Vector3f one(1, 1, 1);
const Vector3f lightDirection = Vector3f(-12, -18, -8).getNormalized(); // of its rays

bool isExcluded(const o3d::SceneNode& node) {
    return node.mName.compare(0, 3, "ex_") == 0;
}

const o3d::Camera* activeCamera(const o3d::Scene& scene) {
    for (const o3d::SceneNode* child : scene.mChildren)
        if (child && child->getType() == o3d::CHUNK_CAMERA)
            return static_cast<const o3d::Camera*>(child);
    return nullptr;
}

} // namespace

Kasper::Kasper() = default;

Kasper::~Kasper() {
    unload();
}

void Kasper::unload() {
    kindler::removeMeshes(mMeshes);
    root = nullptr;
    camera = nullptr;
    manager.reset();
}

void Kasper::loadScene(display::DisplayGL* display, const std::string& name) {
    unload();
    mDisplay = display;
    try {
        ZTK_LOG("log", "app", "Opening '%s'", name.c_str());
        manager = std::make_unique<o3d::Manager>();
        ZTK_LOG("log", "app", "Loading o3d");
        kindler::loadSceneFile(*mDisplay, *manager, name);
        if (manager->mScenes.empty())
            throw Exception("No scene in '%s'", name.c_str());
        const o3d::Scene& scene = *manager->mScenes.front();
        ZTK_LOG("log", "app", "Find active camera");
        camera = activeCamera(scene);
        if (!camera)
            throw Exception("No camera in scene '%s' in '%s'", scene.mName.c_str(), name.c_str());
        ZTK_LOG("log", "app", "Load meshes");
        kindler::loadMeshes(*mDisplay, *manager, mMeshes);
        apple.linkFiles(*mDisplay, "kasper/apple.vert", "kasper/apple.frag");
        light.linkFiles(*mDisplay, "kasper/light.vert", "kasper/light.frag");
        root = &scene;
    } catch (...) {
        unload();
        throw;
    }

    mFbo.setDisplay(mDisplay);
    mFbo.setup(MAP_SIZE, MAP_SIZE, true);
    if (mFbo.attachments.empty()) {
        mTexture.setDisplay(mDisplay);
        mTexture.setup(-1, -1, Texture::CHAN_RGB, Texture::FORMAT_UINT16, Texture::TARGET_DEFAULT);
        mFbo.attach(FBO::COLOR0, &mTexture);
    }
    mTexture.bind();
    mTexture.setRepeat(false);
    mTexture.unbind();
    ZTK_LOG("log", "app", "Loading done");
}

void Kasper::render(float time) {
    if (!root)
        return;
    const Vector3f position = camera->mPosition.getValue(time);
    const Quatf rotation(camera->mRotation.getValue(time));
    Matrix4x4Col view, project;
    view.buildBlenderCameraInverse(position, rotation, one);
    mCameraMatrix.buildBlenderCamera(position, rotation, one);
    mDisplay->setColor(1, 1, 1, 1);
    project.setProject(camera->mAngle.getValue(time), kindler::EFFECT_ASPECT, 0.5f, 1000.0f);
    mDisplay->setProject(project);
    mDisplay->setCamera(view);
    renderNode(root, Matrix4x4Col(), time, false, false, false);
    mDisplay->setVBO(nullptr);
    mDisplay->setIBO(nullptr);
}

void Kasper::updateBox(float time) {
    boxing = true;
    renderNode(root, Matrix4x4Col(), time, false, true, false);
}

void Kasper::renderLight(float time, const Matrix4x4Col& model) {
    if (!root)
        return;
    boxing = true;
    renderNode(root, model, time, false, true, false);
    mFbo.bind();
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glClearColor(1, 1, 1, 1)); // nothing is as far as the light reaches
    GL_CALL(glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    setLight();
    mDisplay->setColor(1, 1, 1, 1);
    light.bind();
    light.set("light_znear", mLightNear);
    light.set("light_zfar", mLightFar);
    const bool flip = true; // what the light sees is mirrored: depth grows along its frame's z
    renderNode(root, model, time, flip, false, true);
    mDisplay->setVBO(nullptr);
    mDisplay->setIBO(nullptr);
    light.unbind();
    mFbo.unbind();
    mTexture.bind();
    mTexture.generateMipmaps();
    mTexture.unbind();
}

// A parallel light along lightDirection that covers the whole box: the z axis of its frame is its direction,
// and depth grows along it. A box whose size is 0 or not a finite number counts as of size 1.
void Kasper::setLight() {
    const Vector3f extent = boxMax - boxMin;
    float size = std::max(extent.x, std::max(extent.y, extent.z));
    if (!(size > 0 && std::isfinite(size)))
        size = 1;
    const Vector3f z(0, 0, 1);
    const Quatf rotation(acosf(z.dot(lightDirection)), z.cross(lightDirection).getNormalized());
    const Vector3f position = (boxMin + boxMax) * 0.5f - lightDirection * (2 * size);
    mLightNear = size;
    mLightFar = 3 * size;

    Matrix4x4Col project, view;
    project.setProjectOrtho(-size, size, -size, size, mLightNear, mLightFar);
    view.buildPRSinverse(position, rotation, one);
    mDisplay->setProject(project);
    mDisplay->setCamera(view);

    mLightMatrix.buildPRS(one * 0.5f, Quatf(), one * 0.5f);
    mLightMatrix *= project;
    mLightMatrix *= view;
}

void Kasper::renderNode(const o3d::SceneNode* node, const Matrix4x4Col& m, float time, bool flip, bool boxed,
                        bool skipEx) {
    struct Walk final : kindler::SceneVisitor {
        Kasper& kasper;
        bool boxed, skipEx;

        Walk(Kasper& aKasper, bool boxes, bool skips) : kasper(aKasper), boxed(boxes), skipEx(skips) {}

        void visit(const o3d::SceneNode& visited, const Matrix4x4Col& world, bool mirrored) override {
            const o3d::MeshInstance* instance = asInstance(visited);
            if (!instance)
                return;
            const o3d::Mesh& mesh = meshOf(*kasper.manager, *instance);
            if (boxed) {
                if (!isExcluded(visited))
                    kasper.growBox(mesh, world);
            } else if (!skipEx || !isExcluded(visited)) {
                kasper.mDisplay->setTransform(world);
                kasper.drawMesh(&mesh, instance, mirrored);
            }
        }
    };
    if (!node || !manager)
        return;
    Walk walk(*this, boxed, skipEx);
    kindler::walkScene(*node, m, time, flip, walk);
}

void Kasper::growBox(const o3d::Mesh& mesh, const Matrix4x4Col& world) {
    for (const Vector3f& vertex : mesh.mVertices) {
        const Vector3f p = world.multiply(vertex);
        if (boxing)
            boxMin = boxMax = p;
        boxing = false;
        boxMin.min(p);
        boxMax.max(p);
    }
}

void Kasper::drawMesh(const o3d::Mesh* mesh, const o3d::MeshInstance* instance, bool flip) {
    if (mesh && manager)
        kindler::drawMesh(*manager, mMeshes, *mesh, instance, flip);
}

} // namespace zentrak
