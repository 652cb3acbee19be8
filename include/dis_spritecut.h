// Sprites that face the camera, cut to what their picture shows of them.
#pragma once

#include "dis_batch.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <array>
#include <vector>

namespace zentrak::display {

// Most of a sprite of light is its faint rim, and most of the rim is too faint to change a pixel: what blends
// to less than half a step of an 8-bit channel adds nothing. A SpriteCut knows the alpha of a texture, and
// from the colour and the blending of a sprite how far from its middle it can be seen:
//
//     texture.bind();                              cut.look(right, up);
//     cut.readTexture();    // once                for (each of many) {
//                                                      batch.color(color);
//                                                      cut.draw(batch, place, size, color);
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

    // The half axes of a sprite of size 1, of all that follow. Reads OpenGL's matrices, blending and what
    // else counts, which must not change up to the flush of the sprites: a state in which a pixel of alpha
    // nearly 0 matters (blending off or another, a program, depth being written, a float target, ...) draws
    // them whole. The texture is the one that was read, on unit 0, with GL_MODULATE; the batch has no
    // transform.
    void look(const mathbase::Vector3f& right, const mathbase::Vector3f& up);

    // How far from its middle a sprite in this colour shows, in its half axes: 0 for one that cannot be seen,
    // 1 for a whole one. What lies beyond this distance along `right`, along `up` and along both diagonals is
    // not seen.
    float reachOf(const mathbase::Vector3f& centre, float size, const mathbase::Vector4f& color,
                  int cell = 0) const;

    // Batch::sprite(centre, right * size, up * size, s0, t0, s1, t1) as far as it shows; with `color`, which
    // is the batch's.
    void draw(Batch& batch, const mathbase::Vector3f& centre, float size, const mathbase::Vector4f& color,
              int cell = 0, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f, float t1 = 1.0f) const;

    // The same for a `reach` that is known.
    void drawReach(Batch& batch, const mathbase::Vector3f& centre, float size, float reach, float s0 = 0.0f,
                   float t0 = 0.0f, float s1 = 1.0f, float t1 = 1.0f) const;

    // Whether a sprite's texels are larger than a pixel, so that its mipmaps play no part.
    bool isMagnified(const mathbase::Vector3f& centre, float size) const {
        return size * mLength > mTexels * depthOf(centre);
    }

    // With `all`, the sprites that follow are all magnified: the bound texture, which is the one that was
    // read, is looked up without its mipmaps, which is quicker and the same. Flush before, and set it back.
    void setMagnified(bool all) const;

private:
    // By alpha, 0 to 255: how far out there is more than that.
    using Reach = std::array<float, 256>;

    float depthOf(const mathbase::Vector3f& p) const {
        return mDepth.x * p.x + mDepth.y * p.y + mDepth.z * p.z + mDepth.w;
    }

    std::vector<Reach> mReach; // of each cell; empty before readTexture
    float mTexels = 0;
    int mFilter = 0; // of the texture, where it is minified

    bool mCuts = false;  // the state lets what is faint be left out
    bool mAdds = false;  // the blending adds light
    bool mAlpha = false; // the target keeps alpha
    mathbase::Vector3f mRight, mUp;
    mathbase::Vector4f mDepth; // the clip coordinate w of a point
    float mLength = 0;         // pixels of a sprite of size 1 at w = 1, a little less than true
};

} // namespace zentrak::display
