// The scene in show/model.o3d through its own camera, moving as its file says. Without the file it draws
// nothing.
#pragma once

#include "effect_resource.h"
#include "effect_scene.h"
#include "effect_script.h"

// Splines: "alpha", the brightness, 0 to 1.
class Model : public zentrak::kindler::ScriptedEffect, zentrak::kindler::SceneVisitor {
public:
    Model();
    ~Model() override;

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void setCamera(float time);
    void visit(const zentrak::o3d::SceneNode& node, const zentrak::mathbase::Matrix4x4Col& world,
               bool flip) override;

    std::unique_ptr<zentrak::o3d::Manager> mScene;
    zentrak::kindler::SceneMeshes mMeshes;
    zentrak::kindler::EffectProgram mProgram;
    float mAlpha = 1;
};
