// Labels, graphs and the line of text, without a window.
#include "inputs.h"
#include "pan_label.h"
#include "pan_stat.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using test::ENDLESS;
using test::NO_NUMBER;

namespace {

class DisplaysTest : public test::InputTest {
protected:
    static std::pair<float, float> scale(const Stat& stat, int count = Stat::SAMPLES) {
        float low = 0, high = 0;
        stat.getScale(count, low, high);
        return {low, high};
    }
};

typedef std::pair<float, float> Scale;

} // namespace

TEST_F(DisplaysTest, ALabelReadsItsTextAndAlignment) {
    Label* label = load<Label>(Box2(0, 0, 50, 20), "text=\"Hello\"/>");
    EXPECT_EQ(label->getType(), "label");
    EXPECT_EQ(label->getText(), "Hello");
    EXPECT_EQ(label->mAlign, TextLine::START);
    EXPECT_EQ(label->mVAlign, TextLine::START);
    reload(label, "align=\"center\" valign=\"middle\"/>");
    EXPECT_EQ(label->getText(), "Hello");
    EXPECT_EQ(label->mAlign, TextLine::MIDDLE);
    EXPECT_EQ(label->mVAlign, TextLine::MIDDLE);
    reload(label, "align=\"right\" valign=\"bottom\"/>");
    EXPECT_EQ(label->mAlign, TextLine::END);
    EXPECT_EQ(label->mVAlign, TextLine::END);
    reload(label, "align=\"left\" valign=\"top\"/>");
    EXPECT_EQ(label->mAlign, TextLine::START);
    EXPECT_EQ(label->mVAlign, TextLine::START);
    label->setText("Bye");
    EXPECT_EQ(label->getText(), "Bye");
    Control* clone = label->clone();
    EXPECT_NE(dynamic_cast<Label*>(clone), nullptr);
    delete clone;
}

TEST_F(DisplaysTest, AGraphKeepsTheNewestSamples) {
    Stat stat;
    EXPECT_EQ(stat.getType(), "stat");
    EXPECT_EQ(stat.getValueCount(), 0);
    EXPECT_EQ(stat.getValue(0), 0.0f);
    for (int i = 0; i < Stat::SAMPLES + 10; ++i)
        stat.addValue(float(i));
    EXPECT_EQ(stat.getValueCount(), int(Stat::SAMPLES));
    EXPECT_EQ(stat.getValue(0), 10.0f);
    EXPECT_EQ(stat.getValue(Stat::SAMPLES - 1), float(Stat::SAMPLES + 9));
    EXPECT_EQ(stat.getValue(Stat::SAMPLES), 0.0f);
    EXPECT_EQ(stat.getValue(-1), 0.0f);
    Control* clone = stat.clone();
    EXPECT_EQ(static_cast<Stat*>(clone)->getValueCount(), 0);
    delete clone;
    stat.clearValues();
    EXPECT_EQ(stat.getValueCount(), 0);
}

TEST_F(DisplaysTest, TheScaleEndsAtARoundNumberAboveTheGreatest) {
    const struct {
        float value, high;
    } cases[] = {{59.94f, 100},  {20, 20},     {20.1f, 50},      {0.7f, 1},
                 {0.03f, 0.05f}, {1234, 2000}, {1e-30f, 1e-30f}, {0.1f, 0.1f}};
    for (const auto& each : cases) {
        Stat stat;
        stat.addValue(each.value);
        EXPECT_EQ(scale(stat).first, 0.0f);
        EXPECT_FLOAT_EQ(scale(stat).second, each.high) << each.value;
    }
}

TEST_F(DisplaysTest, TheScaleBeginsAtZeroOrBelowTheLeast) {
    Stat stat;
    EXPECT_EQ(scale(stat), Scale(0, 1));
    stat.addValue(0);
    EXPECT_EQ(scale(stat), Scale(0, 1));
    stat.addValue(-3);
    EXPECT_EQ(scale(stat), Scale(-5, 0));
    stat.addValue(7);
    EXPECT_EQ(scale(stat), Scale(-5, 10));
    EXPECT_EQ(scale(stat, 1), Scale(0, 10));
    EXPECT_EQ(scale(stat, 0), Scale(0, 1));
    EXPECT_EQ(scale(stat, -1), Scale(0, 1));
}

TEST_F(DisplaysTest, SamplesOfNanAreIgnored) {
    Stat stat;
    for (const float value : {NO_NUMBER, ENDLESS, -ENDLESS})
        stat.addValue(value);
    EXPECT_EQ(scale(stat), Scale(0, 1));
    EXPECT_EQ(stat.getValueCount(), 3);
    for (const float most : {std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(),
                             std::numeric_limits<float>::denorm_min()})
        stat.addValue(most);
    const auto [low, high] = scale(stat);
    EXPECT_TRUE(std::isfinite(low) && std::isfinite(high) && low < 0 && high > 0);
}
