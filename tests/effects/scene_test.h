// Shared by the tests of effects with scenes: a folder whose files are found before those of the tree.
#pragma once

#include "effect_test.h"
#include "scene/scene_file.h"
#include "scene/shape.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace zentrak::test {

class SceneTest : public EffectTest {
protected:
    TempDir mOwn;

    void SetUp() override {
        EffectTest::SetUp();
        window().archives().addArchive(mOwn.path());
        window().archives().addArchive(sourcePath("tests/data"));
    }

    void writeOwn(const std::string& name, const std::string& bytes) {
        const std::filesystem::path path = mOwn.file(name);
        std::filesystem::create_directories(path.parent_path());
        writeFile(path.string(), bytes);
    }

    // A scene with a cube "box" of half size 1 among its meshes; `fill` adds the nodes. All materials of the
    // mesh are "stone".
    void writeScene(const std::string& name,
                    const std::function<void(o3d::Scene& scene, const o3d::Mesh&)>& fill) {
        o3d::Manager manager;
        scene::Shape shape;
        shape.box(0, mathbase::Vector3f(-1, -1, -1), mathbase::Vector3f(1, 1, 1));
        scene::addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
        const o3d::Mesh* box = scene::addMesh(manager, shape.build("box", {"stone"}));
        auto root = std::make_unique<o3d::Scene>();
        root->mName = "yard";
        fill(*root, *box);
        manager.addScene(root.release());
        writeOwn(name, scene::sceneFile(manager));
    }

    // At `eye`, looking at the origin, with a vertical angle of 45 degrees.
    static void addCamera(o3d::SceneNode& parent, const mathbase::Vector3f& eye) {
        auto camera = std::make_unique<o3d::Camera>();
        camera->mName = "camera";
        scene::setValue(camera->mPosition, eye);
        scene::setValue(camera->mRotation, scene::lookAt(eye, mathbase::Vector3f(0, 0, 0)));
        camera->mAngle.mX.mValue = 0.78539816f;
        parent.addChild(camera.release());
    }
};

} // namespace zentrak::test
