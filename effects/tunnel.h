// A flight along a curve through 153 rings, each cut from 64 blocks that close up as the ring nears.
#pragma once

#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <string>
#include <vector>

namespace zentrak::kindler {

class Tunnel : public ScriptedEffect {
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
    void shapeBlock(float inner, float outer);
    void drawBlock();

    EffectTexture mTexture;
    EffectRandom mRandom;
    EffectProgram mProgram;
    display::Batch& mBatch = sharedBatch();
    mathbase::Vector3f mBlock[8]; // the corners of a block of the ring that is drawn
};

} // namespace zentrak::kindler
