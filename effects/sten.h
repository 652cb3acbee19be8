// A stone before the sky, cut out by the alpha of its picture and lit through a map of normals.
#pragma once

#include "am_image.h"
#include "dis_batch.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_scene.h"
#include "kin_effect.h"
#include "o3d_manager.h"

namespace zentrak::kindler {

// No splines, no triggers.
class Sten : public Effect {
public:
    explicit Sten(Common* common);
    ~Sten() override;

    // Throws "File '%s' not found" and "No scene in '%s'", and what loading meshes, pictures and shaders
    // does.
    void setup() override;
    void update(float time, float delta, float progress) override;

    // Turns a picture of heights (its red bytes) into one of normals in place: red, green and blue are 127 n
    // + 127 of the unit normal, alpha keeps the height. At a border the neighbour is on the other side, in
    // its own way: inside the picture the neighbour of both directions is the pixel to the left. Throws what
    // ImageObject::getWriteData does; nothing for an image without pixels.
    static void filter(am::Image& image);

private:
    display::Texture mTexture;
    display::Texture mHeight;
    display::ShaderProgram mProgram;
    o3d::Manager mManager;
    SceneMeshes mMeshes;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
