// A flight along a curve through 153 rings, each cut from 64 blocks that close up as the ring nears.
#pragma once

#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "kin_effect.h"
#include "mb_vector3.h"

#include <string>
#include <vector>

namespace zentrak::kindler {

class Tunnel : public Effect {
public:
    struct Ring {
        mathbase::Vector3f pos;  // centre, on the curve
        mathbase::Vector3f rot;  // Euler angles, only z is not 0
        mathbase::Vector3f spin; // added to rot when drawn; only z is not 0
        mathbase::Vector3f col;
        float inner; // radii of a block
        float outer;
    };

    static const std::vector<Ring>& rings();
    static mathbase::Vector3f getPath(float t); // the curve; any t is valid

    explicit Tunnel(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void drawRing(Ring& ring, int index, const mathbase::Vector3f& eye, float delta);
    void drawCuboCono(int n, float inner, float outer, float depth);

    display::Texture mTexture;
    EffectRandom mRandom;
    display::ShaderProgram mProgram;
    display::Batch& mBatch = sharedBatch();
    display::Batch::Solid mBlock; // the last that was drawn,
    float mBlockShape[4];         // made of these four
};

} // namespace zentrak::kindler
