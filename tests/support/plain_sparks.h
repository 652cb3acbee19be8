// The particles with one OpenGL call per vertex, to compare sparks::Engine with.
#pragma once

#include "dis_glcheck.h"
#include "mb_matrix4x4col.h"
#include "mb_random.h"
#include "sparks_engine.h"

#include <algorithm>
#include <cmath>

namespace zentrak::test {

// `flicker` is 0 or 1.
inline float alphaOf(float flicker, const sparks::Spark& spark, float age) {
    float alpha = (1 - flicker * spark.noise) * std::min(spark.energy, 1.0f) * spark.intensity;
    if (age < 0.2f)
        alpha *= sinf(3.1415927f * age * 2.5f);
    return alpha;
}

// Every live particle of `engine` at the time `now`. `flicker` is drawn from once for each that is shown.
inline void drawPlainSparks(sparks::Engine& engine, const mathbase::Matrix4x4Col& cameraInverse, float now,
                            mathbase::Random& flicker) {
    using mathbase::Vector3f;
    const Vector3f right = cameraInverse.multiplyVector(Vector3f(1, 0, 0)).getNormalized() * 0.5f;
    const Vector3f up = cameraInverse.multiplyVector(Vector3f(0, -1, 0)).getNormalized() * 0.5f;
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    engine.texture.bind();
    glBegin(GL_QUADS);
    for (const sparks::Spark* s = engine.live; s; s = s->next) {
        const float age = now - (s->time + s->timeoffset);
        if (age <= 0)
            continue;
        const float u0 = 0.125f * float(s->texture), u1 = u0 + 0.125f;
        glColor4f(s->colour.x, s->colour.y, s->colour.z, alphaOf(float(flicker.draw() & 1), *s, age));
        glTexCoord2f(u0, 0);
        glVertex3fv(s->position + (up - right) * s->size);
        glTexCoord2f(u1, 0);
        glVertex3fv(s->position + (up + right) * s->size);
        glTexCoord2f(u1, 1);
        glVertex3fv(s->position + (right - up) * s->size);
        glTexCoord2f(u0, 1);
        glVertex3fv(s->position + (-up - right) * s->size);
    }
    glEnd();
    engine.texture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

} // namespace zentrak::test
