// The second demo, played by the film tool with its effects: a picture of each of its scenes.

#include "picture.h"
#include "support.h"

#include <gtest/gtest.h>

using zentrak::test::matchesReference;
using zentrak::test::Picture;
using zentrak::test::readPng;
using zentrak::test::runCommand;
using zentrak::test::TempDir;

namespace {

// The frame at `second`, of a run of the demo up to there. Embers are points of chance, so the seed is fixed.
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
