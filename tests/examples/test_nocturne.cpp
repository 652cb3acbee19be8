// A picture of each scene of the second demo, made by the film tool.

#include "audiere.h"
#include "picture.h"
#include "script_engine.h"
#include "script_loadxml.h"
#include "support.h"

#include <algorithm>
#include <gtest/gtest.h>

using zentrak::test::matchesReference;
using zentrak::test::Picture;
using zentrak::test::readPng;
using zentrak::test::runCommand;
using zentrak::test::TempDir;

namespace {

// The frame at `second` of the demo. The seed is fixed, because the embers are random.
Picture still(const char* second) {
    const TempDir folder;
    const auto [status, text] = runCommand(
        NOCTURNE_FILM " --virtual --seed 1 --rate 10 --size 320x200 --show '" NOCTURNE_FOLDER "' --still " +
        std::string(second) + " '" + folder.file("still.png") + "'");
    EXPECT_EQ(0, status) << text;
    Picture picture;
    EXPECT_TRUE(readPng(folder.file("still.png"), picture));
    return picture;
}

} // namespace

TEST(Nocturne, TheEmbers) {
    EXPECT_TRUE(matchesReference("nocturne_embers", still("3")));
}

TEST(Nocturne, TheCityAsTheCameraComesInAndAtTheRings) {
    EXPECT_TRUE(matchesReference("nocturne_city", still("9.1")));
    EXPECT_TRUE(matchesReference("nocturne_rings", still("20.8")));
}

TEST(Nocturne, TheCathedral) {
    EXPECT_TRUE(matchesReference("nocturne_cathedral", still("25.8")));
}

TEST(Nocturne, TheRoomWithinARoom) {
    EXPECT_TRUE(matchesReference("nocturne_recurse", still("30")));
}

TEST(Nocturne, TheStormAndTheFadeToBlack) {
    EXPECT_TRUE(matchesReference("nocturne_storm", still("35.8")));
    EXPECT_TRUE(matchesReference("nocturne_fade", still("39.1")));
}

TEST(Nocturne, TheMusicIsAsLongAsTheScript) {
    using namespace zentrak::audiere;
    const std::string music = zentrak::test::readFile(NOCTURNE_FOLDER "/nocturne.ogg");
    const RefPtr<SampleSource> source =
        AdrOpenSampleSourceFromFile(AdrCreateMemoryFile(music.data(), int(music.size())), 0);
    ASSERT_TRUE(source);
    int channels = 0, rate = 0;
    SampleFormat format;
    source->getFormat(channels, rate, format);

    zentrak::script::ScriptEngine script;
    ASSERT_TRUE(zentrak::script::LoadXML().load(NOCTURNE_FOLDER "/show/script.xml", script));
    float end = 0;
    for (const zentrak::script::Effect* effect : script.mEffects)
        end = std::max(end, effect->mEnd);
    EXPECT_NEAR(40, end, 0.01);
    EXPECT_NEAR(end, double(source->getLength()) / rate, 0.01);
}
