// A cathedral as a cartoon: every mesh once as a black shell that trembles, and once in flat tones.
#pragma once

#include "dis_shader.h"
#include "effect_scene.h"
#include "kin_effect.h"

#include <memory>
#include <string>

namespace zentrak::kindler {

class Abc : public Effect {
public:
    explicit Abc(Common* common);
    ~Abc() override;
    Abc(const Abc&) = delete;
    Abc& operator=(const Abc&) = delete;

    void setup() override;
    void update(float time, float delta, float progress) override;

    // A .o3d file of the display's archives and its meshes onto the card, in place of what was loaded. Throws
    // "No scene in '%s'", and what loadSceneFile and loadMeshes throw; there is no scene then.
    void loadScene(const std::string& name);

    // Draws `node` and all below it, each mesh with its outline. `m` is the place of the parent, `flip` tells
    // whether it is mirrored. Asserts that a node's mesh is there. Null is nothing.
    void renderNode(const o3d::SceneNode* node, const mathbase::Matrix4x4Col& m, float time, bool flip);
    void drawMesh(const o3d::Mesh* mesh, const o3d::MeshInstance* instance, bool flip);

private:
    void setTone(float time); // the colour that the tones are of
    void drawOutlined(const o3d::MeshInstance& instance, const mathbase::Matrix4x4Col& world,
                      const mathbase::Matrix4x4Col& shell, float time, bool flip);

protected:
    Common* mCommon; // not owned; looked up in by no one yet
    SceneMeshes mMeshes;
    std::unique_ptr<o3d::Manager> scene; // null until loaded
    display::ShaderProgram mProgram;
    int mContext; // the opening of the window that the program belongs to
};

} // namespace zentrak::kindler
