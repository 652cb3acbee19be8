// A stone before the sky, cut out by the alpha of its picture and lit through a map of normals.
#pragma once

#include "am_image.h"
#include "dis_batch.h"
#include "dis_texture.h"
#include "effect_resource.h"
#include "effect_scene.h"
#include "effect_script.h"
#include "o3d_manager.h"

namespace zentrak::kindler {

// No splines, no triggers.
class Sten : public ScriptedEffect {
public:
    explicit Sten(Common* common);
    ~Sten() override;

    // Throws "File '%s' not found" and "No scene in '%s'", and what loading meshes, pictures and shaders
    // does.
    void setup() override;
    void update(float time, float delta, float progress) override;

    // Turns a picture of heights (its red bytes) into one of normals in place: red, green and blue are 127 n
    // + 127 of the unit normal, alpha the height. Both neighbours of a pixel are the one to its left, except
    // at the borders, where they are on the opposite side. Throws what ImageObject::getWriteData does; an
    // image without pixels stays as it is.
    static void filter(am::Image& image);

private:
    EffectTexture mTexture;
    display::Texture mHeight{nullptr};
    EffectProgram mProgram;
    o3d::Manager mManager;
    SceneMeshes mMeshes;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
