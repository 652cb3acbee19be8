// A graph of the latest samples of a measured quantity, with its scale.
#pragma once

#include "pan_control.h"
#include "pan_textline.h"

#include <array>

namespace zentrak::panorama {

// One column of two pixels a sample, the newest at the right. The scale begins at 0, or at the least sample
// below that, and ends at a round number (1, 2 or 5 times a power of ten) above the greatest that is shown.
class Stat : public Control {
public:
    static constexpr int SAMPLES = 1024; // kept; the oldest goes first

    Stat();

    Control* clone() override; // a plain new one without samples, owned by the caller

    void addValue(float value); // one that is not finite leaves a gap
    void clearValues();
    int getValueCount() const { return mCount; }
    float getValue(int index) const; // 0 is the oldest; returns 0 for an invalid index

    // The ends of the scale for the newest `count` samples: 0 and 1 without any.
    void getScale(int count, float& low, float& high) const;

    void draw() override;

private:
    void drawGraph(Render& render, const mathbase::Box2& box, int shown, float low, float high);
    void drawFigure(Render& render, const mathbase::Box2& box, TextLine& line, float value,
                    TextLine::Align vertical);

    std::array<float, SAMPLES> mValues{};
    int mNext = 0; // where the next sample goes
    int mCount = 0;
    TextLine mHigh; // the figures of the scale
    TextLine mLow;
    std::string mFigure;
};

} // namespace zentrak::panorama
