// Which parts of a shape can be visible, computed from matrices alone.
#pragma once

#include "mb_matrix4x4col.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

namespace zentrak::display {

// Against the view volume. OUTSIDE: beyond one of its four sides (the near and far planes don't count, since
// a depth clamp lifts them). INSIDE: within all six planes, so nothing has to be clipped.
enum class Location { OUTSIDE, ACROSS, INSIDE };

// Finds the location of the convex hull of the points added. Conservative: what isn't certain (a point at the
// eye, NaN) is ACROSS.
class Locator {
public:
    // `clip` takes points to clip space.
    explicit Locator(const mathbase::Matrix4x4Col& clip = {}) : mClip(clip) {}

    void add(const mathbase::Vector3f& point) {
        const mathbase::Vector4f p = mClip.multiply(mathbase::Vector4f(point.x, point.y, point.z, 1));
        mBeyond &= unsigned(p.x < -p.w) | unsigned(p.x > p.w) << 1 | unsigned(p.y < -p.w) << 2 |
                   unsigned(p.y > p.w) << 3;
        mInside &= int(p.x >= -p.w) & int(p.x <= p.w) & int(p.y >= -p.w) & int(p.y <= p.w) &
                   int(p.z >= -p.w) & int(p.z <= p.w);
    }
    Location get() const {
        return mBeyond ? Location::OUTSIDE : mInside ? Location::INSIDE : Location::ACROSS;
    }

private:
    mathbase::Matrix4x4Col mClip;
    unsigned mBeyond = 15; // a mask of the sides that all points are beyond
    int mInside = 1;       // all points are within all planes
};

// The eye in the space that `clip` takes to clip space, homogeneous: the point projected to x = y = w = 0.
// With a parallel projection w is 0, and the eye a direction.
mathbase::Vector4f eyeOf(const mathbase::Matrix4x4Col& clip);

// The faces of a box, in drawing order.
enum Face : int { FACE_BACK, FACE_LEFT, FACE_RIGHT, FACE_BOTTOM, FACE_TOP, FACE_FRONT, NUM_FACES };

// A mask, 1 << Face, of the faces of a box (its centre and its half axes along x, y and z, in the eye's
// space) that aren't turned away. With `side` 1 a face is turned away if it shows its corners clockwise, with
// -1 if it shows them counter-clockwise; seen from outside, the corners of a box run counter-clockwise where
// its axes are right-handed. Faces that are exactly edge-on are kept.
unsigned facesTowards(const mathbase::Vector4f& eye, const mathbase::Vector3f& centre,
                      const mathbase::Vector3f (&axes)[3], float side);

} // namespace zentrak::display
