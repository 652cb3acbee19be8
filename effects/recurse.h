// The inside of a cube whose walls show the last picture of the same.
#pragma once

#include "dis_batch.h"
#include "dis_fbo.h"
#include "dis_texture.h"
#include "effect_script.h"
#include "mb_vector3.h"

namespace zentrak::kindler {

// No splines, no triggers.
class Recurse : public ScriptedEffect {
public:
    explicit Recurse(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

    // The box from centre - half to centre + half: each face with its outward normal, a colour of its own and
    // the whole texture. Goes into the batch that the caller flushes.
    static void drawColorCube(display::Batch& batch, const mathbase::Vector3f& centre,
                              const mathbase::Vector3f& half);

    int getIndex() const { return index; } // the target of the next frame

private:
    display::FBO mFbos[2] = {display::FBO(nullptr), display::FBO(nullptr)};
    display::Texture mTextures[2] = {display::Texture(nullptr),
                                     display::Texture(nullptr)}; // attached to mFbos
    int index = 0; // the target of this frame, 0 or 1; the other holds the last frame
    display::Batch mBatch;
};

} // namespace zentrak::kindler
