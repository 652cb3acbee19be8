#include "kin_gui_ruler.h"

#include "kin_gui_effect.h"
#include "kin_gui_row.h"
#include "pan_render.h"
#include "script_engine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zentrak::kindler {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;
using panorama::Control;
using panorama::Event;
using panorama::NO_COLOR;
using panorama::Render;

namespace {

constexpr int MARK = 1;       // seconds between the marks
constexpr int LONG_MARK = 5;  // and between the longer ones
constexpr int NUMBER = 10;    // and between the numbers
constexpr float SHORT = 3.0f; // pixels of a mark
constexpr float LONG = 6.0f;
constexpr float FARTHEST = 1e6f; // seconds that are drawn

} // namespace

Ruler::Ruler() {
    mType = mName = "timeruler";
    mBack.color = {Vector4f(0.16f, 0.17f, 0.2f, 1), Vector4f(0.12f, 0.13f, 0.16f, 1)};
    mBack.border = {Vector4f(0.45f, 0.47f, 0.52f, 1), Vector4f(0.45f, 0.47f, 0.52f, 1)};
    mBack.highlight.first = Vector4f(1, 0.45f, 0.25f, 1);
    mText.color.first = Vector4f(0.7f, 0.72f, 0.76f, 1);
    mText.highlight.first = Vector4f(0, 0, 0, 1);
}

Control* Ruler::clone() {
    return new Ruler;
}

bool Ruler::acceptEvents(Event&) {
    return false;
}

void Ruler::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    render->setFontMode(display::Font::ALIGN_LEFT);
    render->setColor(mBack.color.first, mBack.color.second);
    render->drawBox(mArea.clip, 0);
    const float left = mArea.world.x1 + Row::LABEL_WIDTH;
    drawScale(*render, left);
    if (mEngine)
        drawTime(*render, left);
    Control::draw();
}

// Marks at full seconds, numbers in minutes and seconds.
void Ruler::drawScale(Render& render, float left) {
    const Box2& clip = mArea.clip;
    const float origin = left - mScrollPos;
    const int first = int(std::clamp((left - origin) / Effector::SCALE, 0.0f, FARTHEST));
    const int end = int(std::clamp((clip.x2 - origin) / Effector::SCALE + 1, 0.0f, FARTHEST));
    for (int second = first; second <= end; second += MARK) {
        const float x = std::floor(origin + Effector::SCALE * float(second));
        if (x < left)
            continue;
        const float length = second % LONG_MARK == 0 ? LONG : SHORT;
        render.setColor(mBack.border.first, NO_COLOR);
        render.drawBox(Box2(x, clip.y1, x + 1, clip.y1 + length), 0);
        if (second % NUMBER != 0)
            continue;
        char text[32];
        snprintf(text, sizeof text, "%d:%02d", second / 60, second % 60);
        mNumber = text;
        render.setColor(mText.color.first, NO_COLOR);
        render.drawText(mNumber, Vector2f(x + 3, std::floor((clip.y1 + clip.y2) * 0.5f) + 2));
    }
}

// The line through the rows, and the time itself in the column of the labels.
void Ruler::drawTime(Render& render, float left) {
    const float time = mEngine->mPreviousTime;
    if (!(time >= 0 && time < FARTHEST))
        return;
    const Box2& clip = mArea.clip;
    const float middle = std::floor((clip.y1 + clip.y2) * 0.5f);
    char text[32];
    snprintf(text, sizeof text, "%d:%05.2f", int(time) / 60, double(time) - 60 * (int(time) / 60));
    mNumber = text;
    render.setColor(mBack.highlight.first, NO_COLOR);
    render.drawText(mNumber, Vector2f(mArea.world.x1 + 5, middle));

    const float x = std::floor(left - mScrollPos + Effector::SCALE * time);
    if (x < left || x >= clip.x2)
        return;
    Box2 line(x, clip.y1, x + 1, clip.y2);
    if (mRows && mRows->getParent()) {
        const Box2 rows = mRows->getParent()->mChildArea.clip;
        line.y1 = std::min(line.y1, rows.y1);
        line.y2 = std::max(line.y2, rows.y2);
    }
    render.setClipArea(line);
    render.drawBox(line, 0);
    render.setClipArea(clip);
}

} // namespace zentrak::kindler
