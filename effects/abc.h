// A cathedral as a cartoon: every mesh once as a black shell that trembles, and once in flat tones.
#pragma once

#include "effect_resource.h"
#include "effect_scene.h"
#include "effect_script.h"

#include <memory>
#include <string>

namespace zentrak::kindler {

class Abc : public ScriptedEffect {
public:
    explicit Abc(Common* common);
    ~Abc() override;
    Abc(const Abc&) = delete;
    Abc& operator=(const Abc&) = delete;

    void setup() override;
    void update(float time, float delta, float progress) override;

    // Replaces the scene by a .o3d file of the display's archives. Throws "No scene in '%s'" and what
    // loadSceneFile and loadMeshes throw; there is no scene then.
    void loadScene(const std::string& name);

    // Draws `node` and all below it, each mesh with its outline. `m` is the parent's transform to the world,
    // `flip` whether it mirrors. Asserts that a node's mesh exists. Null draws nothing.
    void renderNode(const o3d::SceneNode* node, const mathbase::Matrix4x4Col& m, float time, bool flip);
    void drawMesh(const o3d::Mesh* mesh, const o3d::MeshInstance* instance, bool flip);

private:
    void setTone(float time); // the base colour of the tones
    void drawOutlined(const o3d::MeshInstance& instance, const mathbase::Matrix4x4Col& world,
                      const mathbase::Matrix4x4Col& shell, float time, bool flip);

protected:
    Common* mCommon; // not owned, not used
    SceneMeshes mMeshes;
    std::unique_ptr<o3d::Manager> scene; // null until loaded
    EffectProgram mProgram;
};

} // namespace zentrak::kindler
