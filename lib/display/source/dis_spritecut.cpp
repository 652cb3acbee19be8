#include "dis_spritecut.h"

#include "dis_glcheck.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zentrak::display {

using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr float DIAGONAL = 0.70710678f;
constexpr float SLOP = 1.02f;
constexpr float OCTAGON_PIXELS = 40; // below, eight corners cost more than the pixels they save

GLint get(GLenum name) {
    GLint value = 0;
    GL_CALL(glGetIntegerv(name, &value));
    return value;
}

// A point's distance in the metric whose circles are octagons.
float distanceOf(float x, float y) {
    return std::max({x, y, (x + y) * DIAGONAL});
}

bool texturesAsGiven() {
    float matrix[16];
    GLint mode = 0;
    GL_CALL(glGetFloatv(GL_TEXTURE_MATRIX, matrix));
    GL_CALL(glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode));
    for (int i = 0; i < 16; ++i)
        if (matrix[i] != (i % 5 == 0 ? 1.0f : 0.0f))
            return false;
    return mode == GL_MODULATE && glIsEnabled(GL_TEXTURE_2D) && !glIsEnabled(GL_TEXTURE_GEN_S) &&
           !glIsEnabled(GL_TEXTURE_GEN_T);
}

// Whether a pixel's colour is all that is written, and blending all that affects it.
bool writesColorAlone() {
    if (GLEW_VERSION_2_0 && get(GL_CURRENT_PROGRAM))
        return false;
    if ((GLEW_ARB_framebuffer_sRGB || GLEW_EXT_framebuffer_sRGB) && glIsEnabled(GL_FRAMEBUFFER_SRGB))
        return false;
    if (glIsEnabled(GL_DEPTH_TEST) && get(GL_DEPTH_WRITEMASK))
        return false;
    GLint polygonMode[2] = {GL_FILL, GL_FILL};
    GL_CALL(glGetIntegerv(GL_POLYGON_MODE, polygonMode));
    return polygonMode[0] == GL_FILL && polygonMode[1] == GL_FILL && !glIsEnabled(GL_STENCIL_TEST) &&
           !glIsEnabled(GL_COLOR_LOGIC_OP) && !glIsEnabled(GL_FOG) && !glIsEnabled(GL_LIGHTING) &&
           !glIsEnabled(GL_POLYGON_STIPPLE) && !glIsEnabled(GL_POLYGON_SMOOTH);
}

} // namespace

// A point that is magnified gets its alpha from the four texels around it, none of them more than one
// texel away; at an edge, texels of the next cell or of the opposite side contribute.
void SpriteCut::readTexture(int cells) {
    GLint width = 0, height = 0, bits = 0, filter = GL_LINEAR, magnified = GL_LINEAR;
    GL_CALL(glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width));
    GL_CALL(glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height));
    GL_CALL(glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_ALPHA_SIZE, &bits));
    GL_CALL(glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter));
    GL_CALL(glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &magnified));
    mReach.clear();
    const int side = cells > 0 ? width / cells : 0;
    if (side < 1 || height < 1 || side * cells != width || bits > 8 || magnified != GL_LINEAR)
        return;
    mFilter = filter;
    mTexels = float(std::max(side, height));
    std::vector<uint8_t> texels(size_t(width) * size_t(height) * 4);
    GL_CALL(glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT));
    GL_CALL(glPixelStorei(GL_PACK_ALIGNMENT, 1));
    GL_CALL(glPixelStorei(GL_PACK_ROW_LENGTH, 0));
    GL_CALL(glPixelStorei(GL_PACK_SKIP_ROWS, 0));
    GL_CALL(glPixelStorei(GL_PACK_SKIP_PIXELS, 0));
    GL_CALL(glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data()));
    GL_CALL(glPopClientAttrib());

    // How far a texel's light reaches: from its centre, one texel further.
    const auto extent = [](int i, int n) {
        return std::fabs(float(2 * i + 1 - n)) / float(n) + 2.1f / float(n);
    };
    for (int cell = 0; cell < cells; ++cell) {
        Reach farthest = {}; // by alpha: how far out there is a texel of it
        for (int y = -1; y <= height; ++y)
            for (int x = -1; x <= side; ++x) {
                const size_t column = size_t((cell * side + x + width) % width);
                const size_t row = size_t((y + height) % height);
                const uint8_t alpha = texels[(row * size_t(width) + column) * 4 + 3];
                farthest[alpha] = std::max(farthest[alpha], distanceOf(extent(x, side), extent(y, height)));
            }
        Reach reach;
        float most = 0;
        for (int alpha = 255; alpha >= 0; --alpha) {
            reach[size_t(alpha)] = std::min(most, 1.0f);
            most = std::max(most, farthest[size_t(alpha)]);
        }
        mReach.push_back(reach);
    }
}

void SpriteCut::look(const Vector3f& right, const Vector3f& up) {
    mRight = right;
    mUp = up;
    mCuts = false;
    mLength = 0;
    float view[16], project[16], row[4][4];
    GLint viewport[4];
    GL_CALL(glGetFloatv(GL_MODELVIEW_MATRIX, view));
    GL_CALL(glGetFloatv(GL_PROJECTION_MATRIX, project));
    GL_CALL(glGetIntegerv(GL_VIEWPORT, viewport));
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            row[r][c] = 0;
            for (int k = 0; k < 4; ++k)
                row[r][c] += project[k * 4 + r] * view[c * 4 + k];
        }
    mDepth = Vector4f(row[3][0], row[3][1], row[3][2], row[3][3]);

    // Both axes in the window, for w = 1; and whether the whole sprite has one w.
    const auto along = [&](const float* r, const Vector3f& v) {
        return r[0] * v.x + r[1] * v.y + r[2] * v.z;
    };
    const float halfWidth = 0.5f * float(viewport[2]), halfHeight = 0.5f * float(viewport[3]);
    const float ax = along(row[0], right) * halfWidth, ay = along(row[1], right) * halfHeight;
    const float bx = along(row[0], up) * halfWidth, by = along(row[1], up) * halfHeight;
    const float a = std::hypot(ax, ay), b = std::hypot(bx, by);
    const float w = std::max(std::fabs(along(row[3], right)), std::fabs(along(row[3], up)));
    const bool parallel = w < 1e-4f * (right.length() + up.length());
    const bool square = std::fabs(ax * bx + ay * by) < 0.01f * a * b;
    if (!parallel || !square || !(std::min(a, b) > 0))
        return;
    mLength = 2 * std::min(a, b) / SLOP;

    if (mReach.empty() || !glIsEnabled(GL_BLEND) || !GLEW_VERSION_2_0 || !texturesAsGiven() ||
        !writesColorAlone())
        return;
    const GLint target = get(GL_BLEND_DST_RGB), bits = get(GL_RED_BITS);
    mAdds = target == GL_ONE;
    mAlpha = get(GL_ALPHA_BITS) > 0;
    mCuts = bits > 0 && bits <= 8 && (mAdds || target == GL_ONE_MINUS_SRC_ALPHA) &&
            get(GL_BLEND_DST_ALPHA) == target && get(GL_BLEND_SRC_RGB) == GL_SRC_ALPHA &&
            get(GL_BLEND_SRC_ALPHA) == GL_SRC_ALPHA && get(GL_BLEND_EQUATION_RGB) == GL_FUNC_ADD &&
            get(GL_BLEND_EQUATION_ALPHA) == GL_FUNC_ADD;
}

// A pixel is unchanged where the product added to it rounds to 0 (rounded once or, in some drivers, each
// factor first), or where the alpha that takes from it does.
float SpriteCut::reachOf(const Vector3f& centre, float size, const Vector4f& color, int cell) const {
    if (!mCuts || cell < 0 || size_t(cell) >= mReach.size() ||
        (mFilter != GL_LINEAR && !isMagnified(centre, size)))
        return 1;
    const float brightest = 255 * std::clamp(std::max({color.x, color.y, color.z}), 0.0f, 1.0f);
    const float alpha = std::clamp(color.w, 0.0f, 1.0f);
    float faint = 0.49f; // the largest alpha, of 255, that is invisible
    if (mAdds) {
        faint = std::max(faint, 127.0f / (brightest + 0.5f) - 0.51f);
        if (mAlpha)
            faint = std::min(faint, 10.7f);
    }
    if (std::isnan(color.x + color.y + color.z + color.w))
        return 1;
    if (255 * alpha <= faint)
        return 0;
    return mReach[size_t(cell)][size_t(faint / alpha)];
}

void SpriteCut::setMagnified(bool all) const {
    if (!mReach.empty() && mFilter == GL_LINEAR_MIPMAP_LINEAR)
        GL_CALL(glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, all ? GL_LINEAR : mFilter));
}

void SpriteCut::draw(Batch& batch, const Vector3f& centre, float size, const Vector4f& color, int cell,
                     float s0, float t0, float s1, float t1) const {
    drawReach(batch, centre, size, reachOf(centre, size, color, cell), s0, t0, s1, t1);
}

void SpriteCut::drawReach(Batch& batch, const Vector3f& centre, float size, float reach, float s0, float t0,
                          float s1, float t1) const {
    if (reach == 0)
        return;
    if (!(reach < 1)) {
        batch.sprite(centre, mRight * size, mUp * size, s0, t0, s1, t1);
        return;
    }
    const Vector3f right = mRight * (size * reach), up = mUp * (size * reach);
    const float s = 0.5f * (s0 + s1), t = 0.5f * (t0 + t1);
    const float ds = 0.5f * (s1 - s0) * reach, dt = 0.5f * (t0 - t1) * reach;
    if (size * reach * mLength < OCTAGON_PIXELS * depthOf(centre)) {
        batch.sprite(centre, right, up, s - ds, t + dt, s + ds, t - dt);
        return;
    }

    // A regular octagon, as three quads: left, centre and right.
    static constexpr float SIDE = 0.41421356f; // half of one
    static constexpr float CORNERS[12][2] = {{-SIDE, 1}, {-1, SIDE},  {-1, -SIDE}, {-SIDE, -1},
                                             {-SIDE, 1}, {-SIDE, -1}, {SIDE, -1},  {SIDE, 1},
                                             {SIDE, 1},  {SIDE, -1},  {1, -SIDE},  {1, SIDE}};
    batch.begin(GL_QUADS);
    for (const auto& [x, y] : CORNERS) {
        batch.texCoord(s + ds * x, t + dt * y);
        batch.vertex(centre + right * x + up * y);
    }
    batch.end();
}

} // namespace zentrak::display
