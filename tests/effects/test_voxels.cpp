// Credits, Grand, Greet and Vul: pictures and fields as boxes.
#include "am_archivemanager.h"
#include "credits.h"
#include "dis_display.h"
#include "effect_image.h"
#include "effect_test.h"
#include "grand.h"
#include "greet.h"
#include "plain.h"
#include "vul.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::kindler;
using test::matchesReference;
using test::Picture;

namespace {

class VoxelTest : public test::EffectTest {
protected:
    Picture ground(const std::function<void()>& draw) { return over(0.15f, 0.2f, 0.3f, draw); }
};

typedef VoxelTest CreditsTest;
typedef VoxelTest GrandTest;
typedef VoxelTest GreetTest;
typedef VoxelTest VulTest;

} // namespace

TEST_F(CreditsTest, ArriveStandAndExplodeAsOneCallPerVertexDraws) {
    Credits credits(&mCommon, "orvo");
    test::prepare(credits, display(), "credits_orvo");
    const am::Image      image = loadPixels(display(), "credits/credits_orvo.png");
    test::plain::Credits plain(START, *image);
    ASSERT_EQ(credits.pixels.size(), plain.pixels.size());
    ASSERT_GT(credits.pixels.size(), 300u);
    for (size_t i = 0; i < credits.pixels.size(); ++i) {
        const Credits::poxdata&             a = credits.pixels[i];
        const test::plain::Credits::Record& b = plain.pixels[i];
        ASSERT_EQ(a.target.x, b.target.x);
        ASSERT_EQ(a.target.y, b.target.y);
        ASSERT_FLOAT_EQ(a.delay, b.delay);
        ASSERT_EQ(a.start.z, b.start.z);
        ASSERT_EQ(a.side.y, b.side.y);
        ASSERT_GE(a.start.z, 250);
        ASSERT_LE(a.start.z, 50000);
    }
    const auto both = [&](float zoom, float delta) {
        credits.updateSpline(0, "zoom", zoom);
        plain.zoom = sinf(zoom * 3.14159265f * 0.5f);
        const Picture drawn = ground([&] { credits.update(0, delta, 0); });
        EXPECT_TRUE(test::samePicture(drawn, ground([&] { plain.update(display(), delta); }), 0.005)) << zoom;
        return drawn;
    };
    EXPECT_TRUE(matchesReference("credits_arriving", both(0.45f, 0.02f)));
    EXPECT_TRUE(matchesReference("credits_whole", both(1, 0.02f)));
    credits.executeTrigger(0, "any name", "");
    plain.explode = true;
    both(1, 0.5f);
    EXPECT_TRUE(matchesReference("credits_exploding", both(1, 0.3f)));
    both(1, -0.1f);
}

TEST_F(CreditsTest, APictureThatIsNotThereIsAnException) {
    Credits credits(&mCommon, "nobody");
    EXPECT_THROW(test::prepare(credits, display(), "credits_nobody"), std::exception);
}

TEST_F(GrandTest, TipsColumnByColumnAsOneCallPerVertexDraws) {
    Grand              grand(&mCommon);
    test::plain::Grand plain(START);
    test::prepare(grand, display(), "grand");
    plain.setup(display());
    const auto both = [&](float alpha, float progress) {
        grand.updateSpline(0, "alpha", alpha);
        plain.alpha = alpha;
        const Picture drawn = ground([&] { grand.update(0, 0.02f, progress); });
        EXPECT_TRUE(test::samePicture(drawn, ground([&] { plain.update(display(), progress); }), 0.005))
            << progress;
        return drawn;
    };
    const Picture before = both(0.9f, 0.3f);
    EXPECT_TRUE(matchesReference("grand_before", before));
    EXPECT_TRUE(matchesReference("grand_sweep", both(0.9f, 0.52f)));
    EXPECT_TRUE(matchesReference("grand_after", both(0.9f, 0.9f)));
    // Below 0.385 no column is tipped.
    EXPECT_EQ(test::comparePictures(before, both(0.9f, 0.38f)).mean, 0);
    // Without an alpha nothing is seen.
    EXPECT_EQ(test::comparePictures(both(0, 0.3f), ground([] {})).mean, 0);
}

TEST_F(GreetTest, StampsAndFadesAsOneCallPerVertexDraws) {
    Greet              greet(&mCommon);
    test::plain::Greet plain;
    test::prepare(greet, display(), "greet");
    plain.setup(display());
    const auto both = [&](float delta) {
        const Picture drawn = ground([&] { greet.update(0, delta, 0); });
        EXPECT_TRUE(test::samePicture(drawn, ground([&] { plain.update(display(), delta); }), 0.005))
            << delta;
        return drawn;
    };
    const auto trigger = [&] {
        greet.executeTrigger(0, "any name", "");
        plain.trigger();
    };
    // Nothing before the first greeting.
    EXPECT_EQ(test::comparePictures(both(0.02f), ground([] {})).mean, 0);
    trigger();
    EXPECT_TRUE(matchesReference("greet_one", both(0.02f)));
    both(0.5f);
    trigger();
    EXPECT_TRUE(matchesReference("greet_two", both(0.02f)));
    both(-1); // fades on forward time alone
    trigger();
    EXPECT_TRUE(matchesReference("greet_three", both(0.02f)));
    EXPECT_TRUE(matchesReference("greet_decayed", both(0.9f)));
    // The picture has twelve bands. Past the last one there is nothing to stamp, and nothing is read.
    for (int i = 3; i < 12; ++i)
        trigger();
    both(10);
    for (int i = 0; i < 40; ++i)
        greet.executeTrigger(0, "any name", "");
    both(0.02f);
    both(30);
    greet.executeTrigger(0, "any name", "");
    EXPECT_EQ(test::comparePictures(both(0.02f), ground([] {})).mean, 0);
    // From the first band again, with the camera of the third.
    greet.resetTriggers();
    greet.executeTrigger(0, "any name", "");
    EXPECT_TRUE(matchesReference("greet_again", ground([&] { greet.update(0, 0.02f, 0); })));
}

TEST_F(VulTest, WandersAsOneCallPerVertexDraws) {
    Vul              vul(&mCommon);
    test::plain::Vul plain;
    test::prepare(vul, display(), "vul");
    plain.setup(display());
    const auto both = [&](float time, float intensity) {
        vul.updateSpline(time, "intensity", intensity);
        plain.intensity = intensity;
        const Picture drawn = ground([&] { vul.update(time, 0.02f, 0); });
        EXPECT_TRUE(test::samePicture(drawn, ground([&] { plain.update(display(), time); }), 0.005)) << time;
        return drawn;
    };
    EXPECT_TRUE(matchesReference("vul_small", both(3, 2)));
    EXPECT_TRUE(matchesReference("vul_large", both(7.5f, 0.8f)));
    both(1, 0);
    // Where no cell is above the bound, nothing is drawn.
    EXPECT_EQ(test::comparePictures(both(2, 3), ground([] {})).mean, 0);
}
