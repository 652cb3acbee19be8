// A box with one OpenGL call per vertex, to compare the batch with.
#pragma once

#include "mb_vector3.h"

#include <GL/glew.h>

namespace zentrak::test {

// Centre and half sizes; optionally with outward normals and the whole texture upright on each face. Faces
// and corners are in the order of display::Batch.
template <bool NORMALS = true, bool TEXTURE = true>
void plainBox(const mathbase::Vector3f& centre, const mathbase::Vector3f& half) {
    // Outward normal, then right and up on the face.
    static constexpr float faces[6][3][3] = {
        {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}}, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},  {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}},  {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
    };
    static constexpr float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    glBegin(GL_QUADS);
    for (const auto& [n, right, up] : faces) {
        if constexpr (NORMALS)
            glNormal3fv(n);
        for (const auto& [s, t] : corners) {
            if constexpr (TEXTURE)
                glTexCoord2f(s * 0.5f + 0.5f, 0.5f - t * 0.5f);
            glVertex3f(centre.x + half.x * (n[0] + s * right[0] + t * up[0]),
                       centre.y + half.y * (n[1] + s * right[1] + t * up[1]),
                       centre.z + half.z * (n[2] + s * right[2] + t * up[2]));
        }
    }
    glEnd();
}

} // namespace zentrak::test
