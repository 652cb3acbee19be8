// A head of points of light, which the camera circles.
#pragma once

#include "am_image.h"
#include "dis_spritecut.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "mb_vector3.h"
#include "mb_vector4.h"
#include "o3d_manager.h"

#include <string>
#include <vector>

namespace zentrak::kindler {

// Spline: "alpha", the brightness. Leaves blending on and additive.
class Face : public ScriptedEffect {
public:
    explicit Face(Common* common);

    // Throws what a missing or invalid scene throws.
    void setup() override;
    // Asserts "length!=0" for a point at the origin.
    void update(float time, float delta, float progress) override;

    const o3d::Manager& getScene() const { return mScene; }

private:
    // A vertex that glows.
    struct Point {
        mathbase::Vector3f place;
        float light; // above 0, at most 1
    };

    // Fills mPoints.
    void collect(const o3d::Mesh& mesh, const mathbase::Matrix4x4Col& cameraInverse);

    am::Image mImage; // never set
    EffectTexture mTexture;
    EffectProgram mProgram; // linked, and not bound by update
    EffectRandom mRandom;
    o3d::Manager mScene;
    std::vector<Point> mPoints; // of the mesh that is drawn
    display::SpriteCut mCut;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
