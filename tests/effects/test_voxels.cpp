// Credits, Grand, Greet and Vul: pictures and fields as boxes.
#include "am_archivemanager.h"
#include "credits.h"
#include "dis_display.h"
#include "effect_image.h"
#include "effect_test.h"
#include "grand.h"
#include "greet.h"
#include "vul.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using namespace zentrak::kindler;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class VoxelTest : public test::EffectTest {
protected:
    // Draws with any times, steps and progress. All it has to do is return.
    void drawAtAnyTime(Effect& effect) {
        const float infinity = std::numeric_limits<float>::infinity();
        const float nan = std::numeric_limits<float>::quiet_NaN();
        for (float time : {1.0f, infinity, -infinity, nan, -1e30f})
            for (float delta : {0.02f, -3.0f, -1e30f, infinity, -infinity, nan})
                for (float progress : {0.5f, -2.0f, 1e30f, infinity, nan})
                    ground([&] { effect.update(time, delta, progress); });
    }
    Picture ground(const std::function<void()>& draw) { return over(0.15f, 0.2f, 0.3f, draw); }

    // Draws a frame of `delta`, and checks that the batch leaves out nothing visible.
    Picture checked(Effect& effect, float time, float delta, float progress, bool textured) {
        const Picture drawn = ground([&] { effect.update(time, delta, progress); });
        const Picture again = ground([&] { effect.update(time, 0, progress); });
        const test::SendEverything all(textured);
        EXPECT_TRUE(test::samePicture(again, ground([&] { effect.update(time, 0, progress); }), 0.005))
            << time << ", " << progress;
        return drawn;
    }
};

typedef VoxelTest CreditsTest;
typedef VoxelTest GrandTest;
typedef VoxelTest GreetTest;
typedef VoxelTest VulTest;

} // namespace

TEST_F(CreditsTest, ArriveStandAndExplode) {
    Credits credits(&mCommon, "orvo");
    test::prepare(credits, display(), "credits_orvo");
    const auto at = [&](float zoom, float delta) {
        credits.updateSpline(0, "zoom", zoom);
        return checked(credits, 0, delta, 0, false);
    };
    EXPECT_TRUE(matchesReference("credits_arriving", at(0.45f, 0.02f)));
    EXPECT_TRUE(matchesReference("credits_whole", at(1, 0.02f)));
    credits.executeTrigger(0, "any name", "");
    at(1, 0.5f);
    EXPECT_TRUE(matchesReference("credits_exploding", at(1, 0.3f)));
    at(1, -0.1f);
}

// Computed independently: seed 1, two draws, then three per visible pixel.
TEST_F(CreditsTest, TheRecordsAreThoseOfTheSeed) {
    test::OwnFiles files(display());
    const std::string name = "credits/credits_code.png";
    files.write(name, test::readFile(test::sourcePath("tests/effects/assets/" + name)));
    Credits credits(&mCommon, "code");
    test::prepare(credits, display(), "credits_code");
    struct Wanted {
        size_t i;
        float x, y, side, delay, z;
        int red, green, blue, alpha;
    };
    const Wanted wanted[] = {
        {0, -26, 28, -440, 0.298042f, 1589, 46, 158, 168, 140},
        {1, -25, 28, -845, 0.323855f, 40793, 46, 158, 168, 255},
        {2, -24, 28, -695, 0.311832f, 43188, 46, 158, 168, 255},
        {337, 4, 19, -532, 0.209869f, 12741, 140, 196, 192, 140},
        {674, 28, 10, -583, 0.166557f, 12964, 247, 240, 219, 140},
    };
    ASSERT_EQ(credits.pixels.size(), 675u);
    for (const Wanted& w : wanted) {
        const Credits::poxdata& p = credits.pixels[w.i];
        EXPECT_EQ(p.target, Vector3f(w.x, w.y, 0)) << w.i;
        EXPECT_EQ(p.start, Vector3f(2 * w.x, 2 * w.y, w.z)) << w.i;
        EXPECT_EQ(p.side, Vector3f(0, w.side, 0)) << w.i;
        EXPECT_NEAR(p.delay, w.delay, 1e-6) << w.i;
        EXPECT_FLOAT_EQ(p.col.x, float(w.red) / 255) << w.i;
        EXPECT_FLOAT_EQ(p.col.y, float(w.green) / 255) << w.i;
        EXPECT_FLOAT_EQ(p.col.z, float(w.blue) / 255) << w.i;
        EXPECT_FLOAT_EQ(p.col.w, float(w.alpha) / 255) << w.i;
    }
    // At a "zoom" of a half, which is the sine of 45 degrees, 104 of them have arrived; none at 0.3; all at
    // 0.7.
    const auto arrived = [&](float zoom) {
        return std::count_if(credits.pixels.begin(), credits.pixels.end(),
                             [=](const Credits::poxdata& p) { return zoom + p.delay >= 1; });
    };
    EXPECT_EQ(arrived(0.4539905f), 0);
    EXPECT_EQ(arrived(0.7071068f), 104);
    EXPECT_EQ(arrived(0.8910065f), 675);
}

TEST_F(CreditsTest, WithoutASplineItsZoomIsZero) {
    Credits credits(&mCommon, "orvo");
    test::prepare(credits, display(), "credits_orvo");
    for (Credits::poxdata& p : credits.pixels)
        p.start.z = 100; // within view: the camera is at 200
    const Picture without = checked(credits, 0, 0.02f, 0, false);
    EXPECT_GT(test::covered(without, ground([] {})), 0);
    credits.updateSpline(0, "zoom", 0);
    credits.updateSpline(0, "Zoom", 1);
    EXPECT_EQ(test::comparePictures(without, checked(credits, 0, 0.02f, 0, false)).mean, 0);
}

TEST_F(CreditsTest, AtAZoomOfOneEveryPixelIsInItsPlace) {
    Credits credits(&mCommon, "orvo");
    test::prepare(credits, display(), "credits_orvo");
    credits.updateSpline(0, "zoom", 1);
    const Picture drawn = ground([&] { credits.update(0, 0.02f, 0); });
    for (Credits::poxdata& p : credits.pixels)
        p.start = p.target; // no distance left, so neither rotation nor size can depend on it
    EXPECT_TRUE(test::samePicture(drawn, ground([&] { credits.update(0, 0.02f, 0); })));
    EXPECT_GT(test::covered(drawn, ground([] {})), 0.01);
    const Picture boxes = ground([&] {
        mathbase::Matrix4x4Col projection, camera;
        projection.setProject(0.78539816f, 1.6f, 0.15f, 1000.0f);
        camera.setCamera(Vector3f(0, 0, 200), Vector3f(0, 0, 0), 0);
        display().setProject(projection);
        display().setCamera(camera);
        glEnable(GL_BLEND);
        for (const Credits::poxdata& p : credits.pixels) {
            mathbase::Matrix4x4Col place;
            place.setTranslation(p.target);
            display().setTransform(place);
            glColor4f(p.col.r, p.col.g, p.col.b, p.col.a);
            display().drawBox(Vector3f(0, 0, 0), Vector3f(0.5f, 0.5f, 0.5f));
        }
        glDisable(GL_BLEND);
    });
    EXPECT_TRUE(test::samePicture(drawn, boxes, 0.005));
}

// An effect's name in scripts is independent of its picture's name.
TEST_F(CreditsTest, ThePictureIsThatOfTheKeyWhateverNameItIsRegisteredUnder) {
    Credits orvo(&mCommon, "orvo"), code(&mCommon, "code"), renamed(&mCommon, "orvo");
    test::prepare(orvo, display(), "credits_orvo");
    test::prepare(code, display(), "credits_code");
    test::prepare(renamed, display(), "credits_code");
    EXPECT_EQ(renamed.pixels.size(), orvo.pixels.size());
    EXPECT_NE(renamed.pixels.size(), code.pixels.size());
}

// Once a pixel by 0.002 times the step: 675 of them take "code" to 5, where it stops, in 3.7 seconds.
TEST_F(CreditsTest, AnExplosionEndsAtFiveAndComesBackWithTime) {
    Credits credits(&mCommon, "code");
    test::prepare(credits, display(), "credits_code");
    credits.updateSpline(0, "zoom", 1);
    const auto draw = [&](float delta) { return ground([&] { credits.update(0, delta, 0); }); };
    const Picture whole = draw(0.02f), empty = ground([] {});
    EXPECT_EQ(test::comparePictures(draw(100), whole).mean, 0); // nothing has set it off
    credits.executeTrigger(0, "", "");
    draw(0.5f); // to 0.675: at an alpha of 0.6 less 0.405 it is still seen
    EXPECT_GT(test::covered(draw(0), empty), 0.001);
    draw(100); // to 5, where no alpha is left
    EXPECT_EQ(test::comparePictures(draw(0), empty).mean, 0);
    draw(-2); // 2.7 back, to 2.3
    EXPECT_EQ(test::comparePictures(draw(0), empty).mean, 0);
    draw(-1.5f); // to 0.275
    EXPECT_GT(test::covered(draw(0), empty), 0.001);
    credits.resetTriggers(); // does not undo it
    EXPECT_GT(test::comparePictures(draw(0), whole).mean, 0);
}

TEST_F(CreditsTest, AnyTimeIsHarmless) {
    Credits credits(&mCommon, "qark");
    test::prepare(credits, display(), "credits_qark");
    for (float zoom :
         {0.5f, -2.0f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        credits.updateSpline(0, "zoom", zoom);
        ground([&] { credits.update(0, 0.02f, 0); });
    }
    credits.executeTrigger(0, "boom", "");
    drawAtAnyTime(credits);
}

TEST_F(CreditsTest, APictureOfTooManyPixelsIsRefusedByName) {
    test::OwnFiles files(display());
    Credits credits(&mCommon, "qark");
    files.write("credits/credits_qark.png", test::whitePicture(256, 256));
    EXPECT_EQ(test::thrown([&] { test::prepare(credits, display(), "credits_qark"); }), "");
    EXPECT_EQ(credits.pixels.size(), 65536u);
    files.write("credits/credits_orvo.png", test::whitePicture(257, 256));
    Credits larger(&mCommon, "orvo");
    EXPECT_EQ(
        test::thrown([&] { test::prepare(larger, display(), "credits_orvo"); }),
        "Too many pixels in 'credits/credits_orvo.png': an effect draws at most 65536 of them as boxes");
}

TEST_F(CreditsTest, AMissingPictureThrows) {
    Credits credits(&mCommon, "nobody");
    EXPECT_THROW(test::prepare(credits, display(), "credits_nobody"), std::exception);
}

TEST_F(GrandTest, TipsColumnByColumn) {
    Grand grand(&mCommon);
    test::prepare(grand, display(), "grand");
    const auto at = [&](float alpha, float progress) {
        grand.updateSpline(0, "alpha", alpha);
        return checked(grand, 0, 0.02f, progress, false);
    };
    const Picture before = at(0.9f, 0.3f);
    EXPECT_TRUE(matchesReference("grand_before", before));
    EXPECT_TRUE(matchesReference("grand_sweep", at(0.9f, 0.52f)));
    EXPECT_TRUE(matchesReference("grand_after", at(0.9f, 0.9f)));
    // Below 0.385 no column is tipped.
    EXPECT_EQ(test::comparePictures(before, at(0.9f, 0.38f)).mean, 0);
    // Without an alpha nothing is seen.
    EXPECT_EQ(test::comparePictures(at(0, 0.3f), ground([] {})).mean, 0);
}

// Columns from 128 on are left out; the others are placed by the whole width.
TEST_F(GrandTest, APictureWiderThan128IsCutThere) {
    test::OwnFiles files(display());
    for (int n = 1; n <= 19; ++n) {
        char name[32];
        snprintf(name, sizeof name, "grand/grand%02d.png", n);
        files.write(name, test::whitePicture(160, 8));
    }
    Grand grand(&mCommon);
    test::prepare(grand, display(), "grand");

    grand.updateSpline(0, "alpha", 1);
    const Picture drawn = over(0, 0, 0, [&] { grand.update(0, 0.02f, 0); });
    // The middle of column c is at 0.015 * (c - 80) in clip space, and 0.01 to either side are covered: from
    // the left border, which column 13 crosses, to 0.715 of column 127, which is at pixel 343.
    for (int x = 0; x < 400; ++x)
        EXPECT_EQ(drawn.at(x, 125)[0] > 0, x < 343) << x;
}

// 19 layers of 128 x 32 pixels are 77824.
TEST_F(GrandTest, LayersOfTooManyPixelsAreRefusedByName) {
    test::OwnFiles files(display());
    for (int n = 1; n <= 19; ++n) {
        char name[32];
        snprintf(name, sizeof name, "grand/grand%02d.png", n);
        files.write(name, test::whitePicture(128, 32));
    }
    Grand grand(&mCommon);
    EXPECT_EQ(test::thrown([&] { test::prepare(grand, display(), "grand"); }),
              "Too many pixels in 'grand/grand17.png': an effect draws at most 65536 of them as boxes");
}

TEST_F(GrandTest, TipsWithinTheTimesOfTheSweep) {
    Grand grand(&mCommon);
    test::prepare(grand, display(), "grand");
    grand.updateSpline(0, "alpha", 1);
    const auto draw = [&](float progress) { return ground([&] { grand.update(0, 0.02f, progress); }); };
    const Picture before = draw(0), after = draw(1);
    EXPECT_EQ(test::comparePictures(before, draw(0.384f)).mean, 0);
    EXPECT_GT(test::comparePictures(before, draw(0.42f)).mean, 0);
    EXPECT_GT(test::comparePictures(after, draw(0.64f)).mean, 0);
    EXPECT_EQ(test::comparePictures(after, draw(0.385f + 0.1f + 0.1935f)).mean, 0);
    EXPECT_EQ(test::comparePictures(before, draw(-1)).mean, 0); // and back, without a trace
}

TEST_F(GrandTest, AnyTimeIsHarmless) {
    Grand grand(&mCommon);
    test::prepare(grand, display(), "grand");
    for (float alpha : {std::numeric_limits<float>::quiet_NaN(), -1.0f, 1e30f, 1.0f}) {
        grand.updateSpline(0, "alpha", alpha);
        ground([&] { grand.update(0, 0.02f, 0.5f); });
    }
    for (float progress :
         {-1e30f, 1e30f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        ground([&] { grand.update(0, -0.02f, progress); });
}

TEST_F(GreetTest, StampsAndFades) {
    Greet greet(&mCommon);
    test::prepare(greet, display(), "greet");
    const auto at = [&](float delta) { return checked(greet, 0, delta, 0, true); };
    const auto trigger = [&] { greet.executeTrigger(0, "any name", ""); };
    // Nothing before the first greeting.
    EXPECT_EQ(test::comparePictures(at(0.02f), ground([] {})).mean, 0);
    trigger();
    EXPECT_TRUE(matchesReference("greet_one", at(0.02f)));
    at(0.5f);
    trigger();
    EXPECT_TRUE(matchesReference("greet_two", at(0.02f)));
    at(-1); // fades on forward time alone
    trigger();
    EXPECT_TRUE(matchesReference("greet_three", at(0.02f)));
    EXPECT_TRUE(matchesReference("greet_decayed", at(0.9f)));
    // The picture has twelve bands. After the last one, nothing is stamped and nothing is read.
    for (int i = 3; i < 12; ++i)
        trigger();
    at(10);
    for (int i = 0; i < 40; ++i)
        greet.executeTrigger(0, "any name", "");
    at(0.02f);
    at(30);
    greet.executeTrigger(0, "any name", "");
    EXPECT_EQ(test::comparePictures(at(0.02f), ground([] {})).mean, 0);
    // From the first band again, with the camera of the third.
    greet.resetTriggers();
    greet.executeTrigger(0, "any name", "");
    EXPECT_TRUE(matchesReference("greet_again", ground([&] { greet.update(0, 0.02f, 0); })));
}

TEST_F(GreetTest, AnyTimeIsHarmless) {
    Greet greet(&mCommon);
    test::prepare(greet, display(), "greet");
    for (int i = 0; i < 3; ++i)
        greet.executeTrigger(std::numeric_limits<float>::quiet_NaN(), "any name", "");
    drawAtAnyTime(greet);
}

// A picture whose height is not a whole number of bands, and narrower than the slab.
TEST_F(GreetTest, APictureOfAnotherSizeIsStampedAsFarAsItGoes) {
    test::OwnFiles files(display());
    files.write("greet/greet.png", test::whitePicture(100, 30));
    Greet greet(&mCommon);
    test::prepare(greet, display(), "greet");

    const Picture empty = ground([] {});
    const auto draw = [&](float delta) { return ground([&] { greet.update(0, delta, 0); }); };
    greet.executeTrigger(0, "", "");
    const double whole = test::covered(draw(0), empty);
    draw(10);
    greet.executeTrigger(0, "", ""); // six rows
    const double rest = test::covered(draw(0), empty);
    EXPECT_GT(rest, 0.001);
    EXPECT_LT(rest, 0.5 * whole);
    draw(10);
    greet.executeTrigger(0, "", "");
    EXPECT_EQ(test::comparePictures(draw(0), empty).mean, 0);
}

TEST_F(GreetTest, ARewindKeepsTheCameraOfTheThirdGreeting) {
    Greet greet(&mCommon);
    test::prepare(greet, display(), "greet");
    const auto first = [&] {
        greet.resetTriggers();
        greet.executeTrigger(0, "", "");
        return ground([&] { greet.update(0, -5, 0); });
    };
    const Picture before = first();
    greet.executeTrigger(0, "", "");
    EXPECT_EQ(test::comparePictures(first(), before).mean, 0); // the second one leaves it
    greet.executeTrigger(0, "", "");
    greet.executeTrigger(0, "", "");
    const Picture after = first();
    EXPECT_GT(test::comparePictures(after, before).mean, 1);
    EXPECT_EQ(test::comparePictures(first(), after).mean, 0);
}

TEST_F(VulTest, AnyTimeIsHarmless) {
    Vul vul(&mCommon);
    test::prepare(vul, display(), "vul");
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (float intensity : {1.0f, -1e30f, -infinity, infinity, nan})
        for (float time : {1.0f, -1e30f, infinity, nan}) {
            vul.updateSpline(time, "intensity", intensity);
            ground([&] { vul.update(time, nan, nan); });
        }
}

TEST_F(VulTest, SeeksAndTriggersLeaveNoTrace) {
    Vul vul(&mCommon);
    test::prepare(vul, display(), "vul");
    vul.updateSpline(0, "intensity", 1.5f);
    const auto draw = [&](float time, float delta) { return ground([&] { vul.update(time, delta, 0); }); };
    const Picture first = draw(3, 0.02f);
    draw(90, 87);
    vul.executeTrigger(90, "any", "thing");
    vul.resetTriggers();
    EXPECT_EQ(test::comparePictures(draw(3, -87), first).mean, 0);
}

TEST_F(VulTest, Wanders) {
    Vul vul(&mCommon);
    test::prepare(vul, display(), "vul");
    const auto at = [&](float time, float intensity) {
        vul.updateSpline(time, "intensity", intensity);
        return checked(vul, time, 0.02f, 0, false);
    };
    EXPECT_TRUE(matchesReference("vul_small", at(3, 2)));
    EXPECT_TRUE(matchesReference("vul_large", at(7.5f, 0.8f)));
    at(1, 0);
    // If no cell is above the bound, nothing is drawn.
    EXPECT_EQ(test::comparePictures(at(2, 3), ground([] {})).mean, 0);
}
