// Rays from a moving light, traced against a few spheres: where one hits, a point of light appears and fades.
#pragma once

#include "dis_batch.h"
#include "dis_fbo.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "effect_script.h"
#include "mb_vector3.h"
#include "trc_primitive.h"

#include <memory>
#include <vector>

namespace zentrak::kindler {

// No splines, no triggers.
class Photon : public ScriptedEffect {
public:
    struct Material : trace::Material {
        mathbase::Vector3f color;

        explicit Material(const mathbase::Vector3f& c) : color(c) {}
    };

    struct Light {
        virtual ~Light() {}
        // The light that reaches `p`.
        virtual mathbase::Vector3f eval(const mathbase::Vector3f& p) const = 0;
    };

    // Shines in all directions.
    struct PointLight : Light {
        mathbase::Vector3f pos;
        mathbase::Vector3f col;

        PointLight(const mathbase::Vector3f& p, const mathbase::Vector3f& c) : pos(p), col(c) {}
        mathbase::Vector3f
        eval(const mathbase::Vector3f& p) const override; // falls with the square of the distance
    };

    explicit Photon(Common* common);
    ~Photon() override;

    void setup() override;
    void update(float time, float delta, float progress) override;

protected:
    // Fills the scene, the lights and the materials, which are empty before.
    virtual void setupScene();

    // Sends `count` photons from each light and draws, as points under the current matrices, where they hit
    // what `eye` sees.
    void drawPhotons(int count, float delta, const mathbase::Vector3f& eye);

    // Adds a sphere, which the effect then owns, to the scene.
    void addSphere(const mathbase::Vector3f& centre, float radius, Material* material);

    EffectRandom mRandom;
    trace::PrimScene mScene;
    std::vector<Light*> mLights;       // owned
    std::vector<Material*> mMaterials; // owned
    display::FBO mFbo{nullptr};
    display::Texture mTexture{nullptr};

private:
    void clearScene();
    bool isSeen(const mathbase::Vector3f& point, const mathbase::Vector3f& eye) const;

    std::vector<std::unique_ptr<trace::Primitive>> mPrimitives; // those of the scene
    display::Batch mBatch;
};

} // namespace zentrak::kindler
