#include "abc.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdlib>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr float SHELL = 1.081f; // the outline's size, of the mesh's

// A small angle, a different one at each call.
float tremble() {
    return float(rand() % 1000) / 100000.0f;
}

} // namespace

Abc::Abc(Common* common) : mCommon(common) {}

Abc::~Abc() {
    ZTK_LOG("log", "app", "abc: Removing meshes");
    removeMeshes(mMeshes);
}

void Abc::setup() {
    loadScene("abc/katedral.o3d");
    mProgram.linkFiles(*mDisplay, "abc/abc.vert", "abc/abc.frag");
}

void Abc::loadScene(const std::string& name) {
    removeMeshes(mMeshes);
    scene.reset();
    ZTK_LOG("log", "app", "Opening '%s'", name.c_str());
    auto manager = std::make_unique<o3d::Manager>();
    ZTK_LOG("log", "app", "Loading o3d");
    loadSceneFile(*mDisplay, *manager, name);
    if (manager->mScenes.empty())
        throw Exception("No scene in '%s'", name.c_str());
    ZTK_LOG("log", "app", "Load meshes");
    try {
        loadMeshes(*mDisplay, *manager, mMeshes);
    } catch (...) {
        removeMeshes(mMeshes);
        throw;
    }
    scene = std::move(manager);
    ZTK_LOG("log", "app", "Loading done");
}

void Abc::setTone(float time) {
    mDisplay->setColor(0.7f * sinf(time) + 1.3f, 0.91f * cosf(1.5f * time) + 1.4f, sinf(2.0f * time) + 1.35f,
                       1);
}

void Abc::update(float time, float, float) {
    setView(*mDisplay, {PI / 4.0f, 0.2f, 1000.0f}, Vector3f(cosf(sinf(1.254f * time) - 1.0f), 16, -40),
            Vector3f(0, 10, 0));
    setTone(time);
    if (!scene || !mProgram.isLinked())
        return;
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDepthFunc(GL_LESS));
    renderNode(scene->mScenes.front(), Matrix4x4Col(), time, false);
    mDisplay->setVBO(nullptr);
    mDisplay->setIBO(nullptr);
}

void Abc::renderNode(const o3d::SceneNode* node, const Matrix4x4Col& m, float time, bool flip) {
    struct Walk final : SceneVisitor {
        Abc& abc;
        float time;

        Walk(Abc& anAbc, float aTime) : abc(anAbc), time(aTime) {}

        // Every node trembles, also one without a mesh.
        void visit(const o3d::SceneNode& visited, const Matrix4x4Col& world, bool mirrored) override {
            GL_CALL(glEnable(GL_CULL_FACE));
            const float x = tremble(), y = tremble(), z = tremble();
            Matrix4x4Col shell;
            shell.buildPRS(Vector3f(0, 0, 0), Quatf(Eulerf(x, y, z)), Vector3f(SHELL, SHELL, SHELL));
            if (const o3d::MeshInstance* instance = asInstance(visited))
                abc.drawOutlined(*instance, world, shell, time, mirrored);
        }
    };
    if (!node || !scene)
        return;
    Walk walk(*this, time);
    walkScene(*node, m, time, flip, walk);
}

// The shell shows only its back faces: what reaches past the mesh is the outline.
void Abc::drawOutlined(const o3d::MeshInstance& instance, const Matrix4x4Col& world,
                       const Matrix4x4Col& shell, float time, bool flip) {
    const o3d::Mesh& mesh = meshOf(*scene, instance);
    Matrix4x4Col inflated = world;
    inflated.multiplyFromRight(shell);
    mDisplay->setTransform(inflated);
    mDisplay->setColor(0, 0, 0, 1);
    drawMesh(&mesh, &instance, !flip);

    mDisplay->setTransform(world);
    mProgram.bind();
    setTone(time);
    drawMesh(&mesh, &instance, flip);
    mProgram.unbind();
}

void Abc::drawMesh(const o3d::Mesh* mesh, const o3d::MeshInstance* instance, bool flip) {
    if (mesh && scene)
        kindler::drawMesh(*scene, mMeshes, *mesh, instance, flip);
}

} // namespace zentrak::kindler
