// A frame around the picture, which can be pushed out and turned.
#pragma once

#include "dis_batch.h"
#include "dis_texture.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha", "border" (0: on the edge; above, out of the picture and turned).
class Border : public Effect {
public:
    explicit Border(Common* common);

    void setup() override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    display::Texture mTexture;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
