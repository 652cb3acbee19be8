#include "credits.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_image.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <cmath>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

Credits::Credits(Common*, const std::string& key_) : key(key_) {
    bindSpline("zoom", zoom, [](float value) { return sinf(value * PI * 0.5f); });
    bindAnyTrigger([this](float, const std::string&) { explode = true; });
}

void Credits::setup() {
    const std::string file = "credits/credits_" + key + ".png";
    const am::Image image = loadPixels(*mDisplay, file);
    const int width = image->getWidth(), height = image->getHeight();
    const float w = float(width), h = float(height);
    pixels.clear();
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const Vector4f colour = pixelAt(*image, column, row);
            if (!(colour.a > 0.1f))
                continue;
            checkBoxes(pixels.size(), file);
            poxdata p;
            p.target = Vector3f(float(column) - 0.5f * w, 0.5f * h - float(row), 0);
            p.side = Vector3f(0, -float(mRandom.draw() % 701) - 300.0f, 0);
            const float f = (w - float(column) - 1.0f) / w;
            p.delay = 0.4f * f + 0.1f * (0.4f * f + 0.4f * mRandom.uniform());
            p.start = Vector3f(2.0f * p.target.x, 2.0f * p.target.y, float(mRandom.draw() % 49751 + 250));
            p.col = colour;
            pixels.push_back(p);
        }
    }
}

void Credits::update(float, float delta, float) {
    setView(*mDisplay, Lens(), Vector3f(0, 0, 200), Vector3f(0, 0, 0), 0.1f * boom * boom);
    GL_CALL(glEnable(GL_BLEND));

    for (const poxdata& p : pixels) {
        const float f = std::min(zoom + p.delay, 1.0f);
        const float w = 1.0f - f;
        Vector3f place = p.start + (p.target - p.start) * f;
        if (explode) {
            place.z += 50.0999985f * boom * sinf(boom);
            boom = std::min(boom + 0.002f * delta, 5.0f); // once a pixel: the more of them, the faster
        }
        const float size = 1.0f + 5.0f * w;
        Matrix4x4Col transform;
        transform.buildPRS(place, Quatf(Eulerf(place * (0.05f * w))), Vector3f(size, size, size));
        mBatch.setTransform(transform);
        mBatch.color(p.col.r, p.col.g, p.col.b, p.col.a - 0.6f * boom);
        mBatch.box(Vector3f(0, 0, 0), Vector3f(0.5f, 0.5f, 0.5f));
    }
    mBatch.flush();
    GL_CALL(glDisable(GL_BLEND));
}

} // namespace zentrak::kindler
