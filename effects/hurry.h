// A dark core in a swarm of sprites, lit by two flickering lights, with bolts of lightning.
#pragma once

#include "dis_batch.h"
#include "dis_ibo.h"
#include "dis_material.h"
#include "dis_vbo.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zentrak::kindler {

// Triggers: "bolt".
class Hurry : public ScriptedEffect {
public:
    struct Bolt {
        float start;               // time of the trigger
        float strength;            // of its light
        mathbase::Vector3f target; // where it strikes
    };

    explicit Hurry(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

    // The sway of a point: smooth, defined everywhere.
    static mathbase::Vector3f evaluateNoise(const mathbase::Vector3f& p);

    const std::vector<Bolt>& getBolts() const { return mBolts; } // those that burn

    // The first vertices of the sprites, in the order in which the last frame drew them.
    std::vector<uint32_t> getOrder() const;

private:
    // One sprite, to be sorted.
    struct HM {
        mathbase::Vector3f position;
        uint32_t vertex; // its first of four
        float distance;  // along the eye's axis, towards the eye

        bool operator<(const HM& other) const { return distance < other.distance; }
    };

    void drawSprites(float time, const mathbase::Vector3f& eye, const mathbase::Vector3f& target);
    void drawBolts(float time);

    display::VBO_wrap<display::VertexP3N3T2> mVbo;
    display::IBO mIbo;
    std::vector<HM> mSprites;
    EffectProgram mProgram;
    display::Material mMaterial{nullptr};
    EffectTexture mTexture;
    EffectRandom mRandom;
    std::vector<Bolt> mBolts;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
