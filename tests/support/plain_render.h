// The toolkit's drawing with one OpenGL call per vertex, to compare panorama::Render with.
#pragma once

#include "dis_font.h"
#include "pan_render.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <string>

namespace zentrak::test {

// Draws each shape and text immediately, one call per vertex, clipped by the scissor test.
class PlainRender : public panorama::Render {
public:
    void setColor(const mathbase::Vector4f& first, const mathbase::Vector4f& second) override {
        panorama::Render::setColor(first, second);
        glColor4fv(mColorFirst);
    }
    void setClipArea(mathbase::Box2 area) override {
        if (area.y2 == -1) {
            glDisable(GL_SCISSOR_TEST);
            return;
        }
        glEnable(GL_SCISSOR_TEST);
        glScissor(int(area.x1 - mDrawOffset.x), int(mSize.y - area.y2 + mDrawOffset.y),
                  std::max(0, int(area.x2 - area.x1)), std::max(0, int(area.y2 - area.y1)));
    }
    void drawBox(const mathbase::Box2& box, int direction) override {
        const mathbase::Vector4f& right = direction == 1 ? mColorSecond : mColorFirst;
        const mathbase::Vector4f& below = direction == 1 ? mColorFirst : mColorSecond;
        glBegin(GL_QUADS);
        point(box.x1, box.y1, mColorFirst);
        point(box.x2, box.y1, right);
        point(box.x2, box.y2, mColorSecond);
        point(box.x1, box.y2, below);
        glEnd();
    }
    void drawBorder(const mathbase::Box2& box) override {
        glLineWidth(1);
        glBegin(GL_LINE_LOOP);
        point(box.x1 + 0.5f, box.y1 + 0.5f, mColorFirst);
        point(box.x2 - 0.5f, box.y1 + 0.5f, mColorFirst);
        point(box.x2 - 0.5f, box.y2 - 0.5f, mColorSecond);
        point(box.x1 + 0.5f, box.y2 - 0.5f, mColorSecond);
        glEnd();
    }
    void drawCircle(const mathbase::Box2& box, int segments, float start) override {
        const float width = box.getWidth(), height = box.getHeight();
        if (segments == -1)
            segments = int((height + width) * 3.1415927f * 0.5f);
        segments = std::max(segments, 3);
        const mathbase::Vector2f centre(box.x1 + width * 0.5f, box.y1 + height * 0.5f);
        glColor4fv(mColorFirst);
        glBegin(GL_TRIANGLE_FAN);
        glVertex2f(centre.x, centre.y);
        for (int i = 1; i <= segments + 1; ++i) {
            const float angle = (float(i % segments) / float(segments) + start) * 2 * 3.1415927f;
            glVertex2f(centre.x + width * 0.5f * sinf(angle), centre.y + height * 0.5f * cosf(angle));
        }
        glEnd();
    }
    void drawLine(const mathbase::Vector2f& a, const mathbase::Vector2f& b) override {
        glBegin(GL_LINES);
        point(a.x, a.y, mColorFirst);
        point(b.x, b.y, mColorFirst);
        glEnd();
    }
    void drawText(const std::string& text, mathbase::Vector2f position) override {
        const float length = getTextLength(text);
        const int mode = mFont->getAlignment();
        float x = position.x - (mode == 0 ? 0 : mode == 1 ? length : length * 0.5f);
        x = std::floor(x + 0.5f);
        const float shift = x - position.x + (mode == 0 ? 0 : mode == 1 ? length : length * 0.5f);
        const float top = std::floor(position.y - mFont->getHeight() * 0.5f + 0.5f);
        glPushMatrix();
        glTranslatef(position.x + shift, top + mFont->getHeight() * 0.5f, 0);
        mFont->draw(text, mathbase::Vector2f(1, -1), mColorFirst);
        glPopMatrix();
    }

private:
    static void point(float x, float y, const mathbase::Vector4f& color) {
        glColor4fv(color);
        glVertex2f(x, y);
    }
};

} // namespace zentrak::test
