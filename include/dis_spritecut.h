// Sprites that face the camera, cut to their visible part.
#pragma once

#include "dis_batch.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <array>
#include <vector>

namespace zentrak::display {

// Most of a sprite of light is its faint rim, and most of the rim is too faint to change a pixel: what blends
// to less than half a step of an 8-bit channel adds nothing. A SpriteCut reads the alpha of a texture once,
// and works out from a sprite's colour and the blending how far from its centre it is visible (docs/batch.md
// has the figures):
//
//     texture.bind();                              cut.look(right, up);
//     cut.readTexture();    // once                for (each of many) {
//                                                      batch.color(color);
//                                                      cut.draw(batch, centre, size, color);
//                                                  }
//                                                  batch.flush();
//
// The picture is that of the whole sprites, but for the rounding of the texture coordinates, by which a few
// pixels may be a step of a channel apart.
class SpriteCut {
public:
    // Reads the alpha of the bound 2D texture, of `cells` pictures side by side. Allocates. Without it, or
    // with more than 8 bits of alpha, sprites are drawn whole.
    void readTexture(int cells = 1);

    // Sets the half axes of a sprite of size 1 for all that follow, and reads OpenGL's matrices, blending and
    // other state, which must not change until the sprites are flushed. In a state in which a pixel of alpha
    // near 0 matters (no blending or another, a program, depth writes, a float target, ...) sprites are drawn
    // whole. The texture must be the one that was read, on unit 0, with GL_MODULATE; the batch must have no
    // transform.
    void look(const mathbase::Vector3f& right, const mathbase::Vector3f& up);

    // How far from its centre a sprite of this colour is visible, in its half axes: 0 for an invisible one, 1
    // for a whole one. Measured along `right`, along `up` and along both diagonals.
    float reachOf(const mathbase::Vector3f& centre, float size, const mathbase::Vector4f& color,
                  int cell = 0) const;

    // The visible part of Batch::sprite(centre, right * size, up * size, s0, t0, s1, t1). `color` is the
    // batch's.
    void draw(Batch& batch, const mathbase::Vector3f& centre, float size, const mathbase::Vector4f& color,
              int cell = 0, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f, float t1 = 1.0f) const;

    // The same with a known `reach`.
    void drawReach(Batch& batch, const mathbase::Vector3f& centre, float size, float reach, float s0 = 0.0f,
                   float t0 = 0.0f, float s1 = 1.0f, float t1 = 1.0f) const;

    // Whether a sprite's texels are larger than a pixel, so that its mipmaps aren't used.
    bool isMagnified(const mathbase::Vector3f& centre, float size) const {
        return size * mLength > mTexels * depthOf(centre);
    }

    // With `all`, the sprites that follow must all be magnified; the bound texture, the one that was read, is
    // then sampled without its mipmaps: the same picture, faster. Flush before, and set it back afterwards.
    void setMagnified(bool all) const;

private:
    // By alpha, 0 to 255: the farthest distance with more than that.
    using Reach = std::array<float, 256>;

    float depthOf(const mathbase::Vector3f& p) const {
        return mDepth.x * p.x + mDepth.y * p.y + mDepth.z * p.z + mDepth.w;
    }

    std::vector<Reach> mReach; // of each cell; empty before readTexture
    float mTexels = 0;
    int mFilter = 0; // of the texture, where minified

    bool mCuts = false;  // the state allows it
    bool mAdds = false;  // the blending adds light
    bool mAlpha = false; // the target keeps alpha
    mathbase::Vector3f mRight, mUp;
    mathbase::Vector4f mDepth; // the clip coordinate w of a point
    float mLength = 0;         // pixels of a sprite of size 1 at w = 1, a little less than true
};

} // namespace zentrak::display
