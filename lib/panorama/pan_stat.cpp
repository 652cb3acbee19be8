#include "pan_stat.h"

#include "pan_look.h"

#include <cstdio>
#include <limits>

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;
using mathbase::Vector4f;

namespace {

constexpr float COLUMN = 2.0f; // pixels a sample

// The least of 1, 2 and 5 times a power of ten that is at or above a number above 0.
double roundUp(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0})
        if (value <= step * power * (1 + 1e-6)) // 0.1f is a little more than a tenth
            return step * power;
    return 10.0 * power;
}

} // namespace

Stat::Stat() {
    mType = "stat";
    setSunkLook(mBack);
    setTextLook(mText);
    setPair(mText.color, Vector4f(0.62f, 0.62f, 0.68f, 1.0f), NO_COLOR);
    setPair(mBack.pushed, Vector4f(0.06f, 0.06f, 0.08f, 0.7f));              // under the figures
    setPair(mCaption.border, Vector4f(1.0f, 1.0f, 1.0f, 0.10f));             // the lines of the scale
    setPair(mCaption.color, Vector4f(0.46f, 0.46f, 0.78f, 1.0f), accent);    // the columns
    setPair(mCaption.highlight, Vector4f(0.78f, 0.78f, 1.0f, 1.0f), bright); // the newest of them
    mFigure.reserve(32);
}

Control* Stat::clone() {
    return new Stat;
}

void Stat::addValue(float value) {
    mValues[size_t(mNext)] = value;
    mNext = (mNext + 1) % SAMPLES;
    mCount = std::min(mCount + 1, SAMPLES);
}

void Stat::clearValues() {
    mNext = mCount = 0;
}

float Stat::getValue(int index) const {
    if (index < 0 || index >= mCount)
        return 0;
    return mValues[size_t((mNext - mCount + index + SAMPLES) % SAMPLES)];
}

void Stat::getScale(int count, float& low, float& high) const {
    double least = 0, greatest = 0;
    for (int i = std::max(0, mCount - count); i < mCount; ++i) {
        const float value = getValue(i);
        if (!std::isfinite(value))
            continue;
        least = std::min<double>(least, value);
        greatest = std::max<double>(greatest, value);
    }
    constexpr double most = std::numeric_limits<float>::max();
    low = least < 0 ? float(-std::min(roundUp(-least), most)) : 0.0f;
    high = greatest > 0 ? float(std::min(roundUp(greatest), most)) : least < 0 ? 0.0f : 1.0f;
}

void Stat::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, mBack.color);
    const Box2 inside = shrunk(box, 1);
    const int shown =
        std::min(mCount, int(std::max(0.0f, std::min(inside.getWidth(), float(SAMPLES) * COLUMN)) / COLUMN));
    float low, high;
    getScale(shown, low, high);
    drawGraph(*render, inside, shown, low, high);
    drawFigure(*render, inside, mHigh, high, TextLine::START);
    drawFigure(*render, inside, mLow, low, TextLine::END);
    outline(*render, box, mBack.border);
    Control::draw();
}

// The lines of the scale at its quarters, and a column from zero for each sample.
void Stat::drawGraph(Render& render, const Box2& box, int shown, float low, float high) {
    const double range = double(high) - double(low);
    const auto heightOf = [&](double value) {
        return toPixel(box.y2 - float((value - double(low)) / range) * box.getHeight());
    };
    for (int quarter = 1; quarter < 4; ++quarter) {
        const float y = heightOf(double(low) + range * quarter / 4);
        fill(render, Box2(box.x1, y, box.x2, y + 1), mCaption.border);
    }
    const float zero = heightOf(0);
    for (int i = 0; i < shown; ++i) {
        const float value = getValue(mCount - 1 - i);
        if (!std::isfinite(value))
            continue;
        const float x = box.x2 - float(i + 1) * COLUMN, y = heightOf(value);
        // A sample of zero is still drawn, one pixel high.
        fill(render, Box2(x, std::min(y, zero - 1), x + COLUMN, std::max(y, zero)),
             i == 0 ? mCaption.highlight : mCaption.color);
    }
}

void Stat::drawFigure(Render& render, const Box2& box, TextLine& line, float value,
                      TextLine::Align vertical) {
    char figure[32];
    snprintf(figure, sizeof figure, "%g", double(value));
    mFigure = figure;
    line.set(mFigure);
    if (box.getHeight() < 2 * render.getFontHeight())
        return;
    line.fit(render, box.getWidth() - 6);
    const float top = vertical == TextLine::START ? box.y1 : box.y2 - render.getFontHeight();
    const Box2 plate(box.x1, top, std::min(box.x2, box.x1 + line.getLength() + 6),
                     top + render.getFontHeight());
    fill(render, plate, mBack.pushed);
    render.setColor(mText.color.first, NO_COLOR);
    line.draw(render, Box2(box.x1 + 3, box.y1, box.x2 - 3, box.y2), TextLine::START, vertical);
}

} // namespace zentrak::panorama
