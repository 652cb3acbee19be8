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
    void update(float time, float delta,
                float progress) override; // asserts "length!=0" for a point at the origin

    const o3d::Manager& getScene() const { return mScene; }

private:
    // A vertex that glows.
    struct Point {
        mathbase::Vector3f place;
        mathbase::Vector3f seen; // to the right, up, and into the depth of the camera
        float light;             // above 0, at most 1
    };

    void collect(const o3d::Mesh& mesh, const mathbase::Vector3f& eye, const Billboard& board,
                 const mathbase::Matrix4x4Col& cameraInverse);
    void drawSprite(const Point& point, const Billboard& board, float size, const mathbase::Vector4f& color);

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
