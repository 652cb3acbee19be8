// Cameras and billboards as all effects set them.
#pragma once

#include "mb_vector3.h"

#include <numbers>

namespace zentrak::display {
class DisplayGL;
}

namespace zentrak::kindler {

constexpr float PI = std::numbers::pi_v<float>;

// The aspect of every effect's projection, whatever the size of the picture.
constexpr float EFFECT_ASPECT = 1.6f;

struct Lens {
    float fovy = PI / 4.0f; // full vertical angle, radians
    float znear = 0.15f;
    float zfar = 1000.0f;
};

// Identity projection, camera and transform: vertices are in clip space.
void setClipSpace(display::DisplayGL& display);

// A perspective with the full vertical angle `fovy` in radians. Leaves the matrix mode at the projection.
void setPerspective(display::DisplayGL& display, float fovy, float znear, float zfar);

// A perspective, an identity transform, and the camera at `eye` that looks at `target`, turned by `roll`
// radians. Asserts "length!=0" if the two points are one.
void setView(display::DisplayGL& display, const Lens& lens, const mathbase::Vector3f& eye,
             const mathbase::Vector3f& target, float roll = 0.0f);

// The camera alone.
void setCamera(display::DisplayGL& display, const mathbase::Vector3f& eye, const mathbase::Vector3f& target,
               float roll = 0.0f);

// The half axes of sprites of size 1 that face a camera: a sprite of size s has the corners
// P + s * (up - right), P + s * (-up - right), P + s * (-up + right) and P + s * (up + right), with texture
// (0, 0), (0, 1), (1, 1) and (1, 0) in this order; display::Batch::sprite(P, right * s, up * s) draws it.
struct Billboard {
    mathbase::Vector3f right; // half a unit long
    mathbase::Vector3f up;    // half a unit long

    Billboard(const mathbase::Vector3f& eye, const mathbase::Vector3f& target, float roll);
};

} // namespace zentrak::kindler
