// A picture made of cubes that roll across a floor until they form it: its scattering, worked out at load
// time and played backward.
#pragma once

#include "am_image.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <string>
#include <vector>

namespace zentrak::kindler {

// Splines: "ilvo marsten" (swings the camera), "alpha". Triggers: "turn2", "turn", "expand", each permanent.
// The picture "kub/kub.png" is meant to be 64 by 32; its black pixels are left out.
class Kub : public ScriptedEffect {
public:
    // A step of a cube.
    struct Mod {
        float dx, dy;
        int step;
    };

    struct Poxel {
        std::vector<Mod> mods; // oldest first
        int count = 0;         // moves not undone yet
        float x, y;            // grid cell
        mathbase::Vector3f col;
        mathbase::Vector3f rot;  // Euler angles now
        mathbase::Vector3f draw; // position now: grid x, grid y, height
        float amp = 0.15f;       // height of a roll
        float expand = 0;        // growth of the expansion
    };

    static const std::vector<Poxel>& poxels();
    static int currentFrame(); // the step that is shown, from 120 down

    explicit Kub(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void loadPicture(const am::ImageObject& image);
    void scatter(int width, int height); // of the picture
    void drawCubes(float time, float progress);

    EffectTexture mShade;
    EffectProgram mProgram;
    EffectRandom mRandom;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
