// Cameras and billboards as all effects set them.
#pragma once

#include "mb_vector3.h"

namespace zentrak::display {
class DisplayGL;
}

namespace zentrak::kindler {

// The aspect of every effect's projection, whatever the size of the picture.
constexpr float EFFECT_ASPECT = 1.6f;

// Identity projection, camera and transform: vertices are in clip space.
void setClipSpace(display::DisplayGL& display);

// A perspective with the full vertical angle `fovy` in radians. Leaves the matrix mode at the projection.
void setPerspective(display::DisplayGL& display, float fovy, float znear, float zfar);

// The camera at `eye` that looks at `target`, turned by `roll` radians; the transform stays. Asserts
// "length!=0" where the two points give no direction.
void setCamera(display::DisplayGL& display, const mathbase::Vector3f& eye, const mathbase::Vector3f& target,
               float roll);

// The half axes of sprites of size 1 that face a camera: a sprite of size s has the corners
// P + s * (up - right), P + s * (-up - right), P + s * (-up + right) and P + s * (up + right), with texture
// (0, 0), (0, 1), (1, 1) and (1, 0) in this order; display::Batch::sprite(P, right * s, up * s) draws it.
struct Billboard {
    mathbase::Vector3f right; // half a unit long
    mathbase::Vector3f up;    // half a unit long

    Billboard(const mathbase::Vector3f& eye, const mathbase::Vector3f& target, float roll);
};

} // namespace zentrak::kindler
