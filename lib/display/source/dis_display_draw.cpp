// Simple shapes, colours, and the picture read back.
#include "am_image.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "ztk_text.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

namespace zentrak::display {

using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

// Shapes, one OpenGL call a vertex: for a single shape, a batch costs 15 to 30 times as much.

static constexpr float CORNERS[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};

// Each face from its lower left corner on, counter-clockwise from outside.
static void drawSolidBox(const Vector3f& centre, const Vector3f& half) {
    // The outward normal of a face, and what is right and up on it.
    static constexpr float FACES[6][3][3] = {
        {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}}, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},  {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}},  {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
    };
    glBegin(GL_QUADS);
    for (const auto& [normal, right, up] : FACES) {
        glNormal3fv(normal);
        for (const auto& [s, t] : CORNERS) {
            glTexCoord2f(0.5f + 0.5f * s, 0.5f - 0.5f * t);
            glVertex3f(centre.x + half.x * (normal[0] + s * right[0] + t * up[0]),
                       centre.y + half.y * (normal[1] + s * right[1] + t * up[1]),
                       centre.z + half.z * (normal[2] + s * right[2] + t * up[2]));
        }
    }
    GL_CALL(glEnd());
}

// Every pair of corners that differ in one direction: the twelve edges.
static void drawWireBox(const Vector3f& centre, const Vector3f& half) {
    glBegin(GL_LINES);
    for (int corner = 0; corner < 8; ++corner)
        for (int axis = 1; axis < 8; axis *= 2)
            if (!(corner & axis))
                for (const int end : {corner, corner | axis})
                    glVertex3f(centre.x + (end & 1 ? half.x : -half.x),
                               centre.y + (end & 2 ? half.y : -half.y),
                               centre.z + (end & 4 ? half.z : -half.z));
    GL_CALL(glEnd());
}

void DisplayGL::setColor(float r, float g, float b, float a) {
    GL_CALL(glColor4f(r, g, b, a));
}

void DisplayGL::drawLine(float x1, float y1, float x2, float y2) {
    glBegin(GL_LINES);
    glVertex2f(x1, y1);
    glVertex2f(x2, y2);
    GL_CALL(glEnd());
}

void DisplayGL::drawBox(float x, float y, float halfWidth, float halfHeight, FillMode fill) {
    glBegin(fill == SOLID ? GL_QUADS : GL_LINE_LOOP);
    for (const auto& [right, up] : CORNERS) {
        glTexCoord2f(0.5f + 0.5f * right, 0.5f - 0.5f * up);
        glVertex2f(x + right * halfWidth, y + up * halfHeight);
    }
    GL_CALL(glEnd());
}

void DisplayGL::drawBox(float x, float y, float z, float halfWidth, float halfHeight, float halfDepth,
                        FillMode fill) {
    drawBox(Vector3f(x, y, z), Vector3f(halfWidth, halfHeight, halfDepth), fill);
}

void DisplayGL::drawBox(const Vector3f& centre, const Vector3f& halfSizes, FillMode fill) {
    if (fill == SOLID)
        drawSolidBox(centre, halfSizes);
    else
        drawWireBox(centre, halfSizes);
}

void DisplayGL::drawCircle(float x, float y, float radius, FillMode fill) {
    drawCircle(x, y, radius, radius, fill);
}

void DisplayGL::drawCircle(float x, float y, float radiusX, float radiusY, FillMode fill) {
    static constexpr int SEGMENTS = 64;
    glBegin(fill == SOLID ? GL_POLYGON : GL_LINE_LOOP);
    for (int i = 0; i < SEGMENTS; ++i) {
        const float angle = float(i) * (2 * 3.14159265f / float(SEGMENTS));
        const float c = std::cos(angle), s = std::sin(angle);
        glTexCoord2f(0.5f + 0.5f * c, 0.5f - 0.5f * s);
        glVertex2f(x + radiusX * c, y + radiusY * s);
    }
    GL_CALL(glEnd());
}

// Colours and the mouse

Vector4f DisplayGL::hex2vec(const std::string& text) {
    const size_t start = !text.empty() && text[0] == '#' ? 1 : 0;
    float channels[4] = {0, 0, 0, 1};
    for (size_t i = 0; i < 4 && start + 2 * i < text.size(); ++i) {
        const size_t at = start + 2 * i;
        const int low = at + 1 < text.size() ? hexDigit(text[at + 1]) : 0;
        channels[i] = float(hexDigit(text[at]) * 16 + low) / 255.0f;
    }
    return Vector4f(channels[0], channels[1], channels[2], channels[3]);
}

Vector2f DisplayGL::getMousePosition() const {
    return Vector2f(mMouseX, mMouseY);
}

// Screenshots

// Reads the window's picture into rows from the top, without gaps between them.
static void readPixels(int width, int height, GLenum format, int pixelSize, unsigned char* pixels) {
    // Don't depend on the current pixel-store settings.
    GL_CALL(glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT));
    for (GLenum setting :
         {GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS})
        GL_CALL(glPixelStorei(setting, 0));
    GL_CALL(glPixelStorei(GL_PACK_ALIGNMENT, 1));
    GL_CALL(glReadPixels(0, 0, width, height, format, GL_UNSIGNED_BYTE, pixels));
    GL_CALL(glPopClientAttrib());

    const size_t row = size_t(width) * size_t(pixelSize);
    for (size_t top = 0, bottom = size_t(height) - 1; top < bottom; ++top, --bottom)
        std::swap_ranges(pixels + top * row, pixels + (top + 1) * row, pixels + bottom * row);
}

void DisplayGL::getScreenShot(am::Image& image) const {
    assert(image.isNull()==false);
    assert((mWindowMode.height & 1) == 0);
    assert(image->getWidth()==mWindowMode.width);
    assert(image->getHeight()==mWindowMode.height);
    unsigned char* pixels = image->getWriteData();
    if (!pixels || mWindowMode.width <= 0 || mWindowMode.height <= 0)
        return;
    readPixels(mWindowMode.width, mWindowMode.height, GL_BGRA, 4, pixels);
    const size_t bytes = size_t(mWindowMode.width) * size_t(mWindowMode.height) * 4;
    for (size_t i = 3; i < bytes; i += 4)
        pixels[i] = 255;
}

void DisplayGL::getScreenShotRGB24(unsigned char* buffer) const {
    assert((mWindowMode.height & 1) == 0);
    if (!buffer || mWindowMode.width <= 0 || mWindowMode.height <= 0)
        return;
    readPixels(mWindowMode.width, mWindowMode.height, GL_RGB, 3, buffer);
}

} // namespace zentrak::display
