// A name whose pixels fly in from far away as boxes, and which can be blown apart.
#pragma once

#include "effect_batch.h"
#include "effect_random.h"
#include "effect_script.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <string>
#include <vector>

namespace zentrak::kindler {

// Splines: "zoom" (0: far away but for the first to arrive; 1: all in place). Triggers: any name blows it
// apart permanently. The picture is "credits/credits_" + key + ".png".
class Credits : public ScriptedEffect {
public:
    struct poxdata {
        mathbase::Vector3f target; // position in the finished picture
        mathbase::Vector3f start;  // position far away
        mathbase::Vector3f side;   // not used
        mathbase::Vector4f col;
        float delay; // the more, the sooner this pixel arrives
    };

    std::vector<poxdata> pixels; // rows from the top

    Credits(Common* common, const std::string& key);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    bool explode = false;
    float boom = 0; // how far it has flown apart, 0 to 5
    EffectRandom mRandom;
    std::string key;
    float zoom = 0;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
