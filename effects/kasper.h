// A renderer of scenes: through the scene's own camera, and from a light into a shadow map.
#pragma once

#include "dis_fbo.h"
#include "dis_texture.h"
#include "effect_resource.h"
#include "effect_scene.h"
#include "mb_matrix4x4col.h"
#include "mb_vector3.h"
#include "o3d_manager.h"

#include <memory>
#include <string>

namespace zentrak {

// Not an effect itself: effects hold one. Without a scene every operation but loadScene does nothing.
class Kasper {
public:
    Kasper();
    ~Kasper();
    Kasper(const Kasper&) = delete;
    Kasper& operator=(const Kasper&) = delete;

    // Loads a .o3d file of the display's archives, its meshes onto the card, the programs "kasper/apple" and
    // "kasper/light" and the shadow map, in place of what was loaded before. The display is not owned. Throws
    // "No scene in '%s'" and "No camera in scene '%s' in '%s'", and what kindler::loadSceneFile,
    // kindler::loadMeshes and ShaderProgram::link throw; there is no scene then.
    void loadScene(display::DisplayGL* display, const std::string& name);

    // Draws the scene at `time`, in white, through its camera, whose angle is the vertical field of view,
    // with the program and into the target that are bound.
    void render(float time);

    // Draws the depth of the scene as placed by `model`, seen from the light, into the shadow map. Objects
    // whose names begin with "ex_" throw no shadow.
    void renderLight(float time, const mathbase::Matrix4x4Col& model);

    // Finds the box around the vertices of the scene at `time`, without those of objects named "ex_...". With
    // no vertices the box stays.
    void updateBox(float time);

    // Draws `node` and all below it, or, if `boxing`, extends the box by them. `m` is the parent's transform
    // to the world, `flip` whether it mirrors; `skipEx` leaves out the objects named "ex_...". Asserts that a
    // node's mesh exists. Null does nothing.
    void renderNode(const o3d::SceneNode* node, const mathbase::Matrix4x4Col& m, float time, bool flip,
                    bool boxing, bool skipEx);
    void drawMesh(const o3d::Mesh* mesh, const o3d::MeshInstance* instance, bool flip);

    const mathbase::Vector3f& getBoxMin() const { return boxMin; }
    const mathbase::Vector3f& getBoxMax() const { return boxMax; }
    display::Texture& getShadowMap() { return mTexture; } // depth in red, its square in green
    float getLightNear() const { return mLightNear; }     // distances along the light
    float getLightFar() const { return mLightFar; }
    const mathbase::Matrix4x4Col& getLightMatrix() const { return mLightMatrix; }   // world to map, 0 to 1
    const mathbase::Matrix4x4Col& getCameraMatrix() const { return mCameraMatrix; } // of the last render()

private:
    void unload();
    void setLight(); // of the box
    void growBox(const o3d::Mesh& mesh, const mathbase::Matrix4x4Col& world);

    display::DisplayGL* mDisplay = nullptr; // not owned
    kindler::SceneMeshes mMeshes;
    std::unique_ptr<o3d::Manager> manager;
    const o3d::SceneNode* root = nullptr; // the first scene of `manager`; null without one
    const o3d::Camera* camera = nullptr;  // its first
    bool boxing = false;                  // the next vertex starts a new box
    kindler::EffectProgram apple;
    kindler::EffectProgram light;
    mathbase::Vector3f boxMin;
    mathbase::Vector3f boxMax;
    display::FBO mFbo{nullptr};
    display::Texture mTexture{nullptr};
    float mLightNear = 0;
    float mLightFar = 0;
    mathbase::Matrix4x4Col mLightMatrix;
    mathbase::Matrix4x4Col mCameraMatrix;
};

} // namespace zentrak
