// Files that come, go and can't be written, questions, recovery, and the show inside the studio.

#include "../app/music.h"
#include "studio_fixture.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Box2;
using mathbase::Vector2f;
using studio::Kind;

namespace {

// While it lives, no file can grow past so many bytes: writing fails, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limit{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        signal(SIGXFSZ, mHandler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*mHandler)(int) = signal(SIGXFSZ, SIG_IGN);
    rlimit mBefore;
};

const std::string MUSIC_SETUP =
    "<demo><display width=\"1280\" height=\"800\"/><script filename=\"script.xml\"/>"
    "<music filename=\"tune.wav\"/></demo>";

std::string withOverlayAt(std::string script, const std::string& start) {
    return script.replace(script.find("\"12\""), 4, "\"" + start + "\"");
}

} // namespace

// Files

TEST_F(StudioTest, AScriptThatIsRemovedIsUnsavedWork) {
    window();
    std::filesystem::remove(dir().file("script.xml"));
    until("the message",
          [&] { return window().getMessage() == "script.xml is gone: Ctrl+S writes it again"; });
    EXPECT_FALSE(editor().isSaved());
    EXPECT_EQ(readFile(dir().file("script.xml.unsaved")), mScript);
    key("ctrl+q");
    until("the question", [&] { return overlay().isDialog(); });
    choose("Cancel");
    writeFile(dir().file("script.xml"), mScript); // as it was
    until("it is back", [&] { return editor().isSaved(); });
    EXPECT_FALSE(overlay().isOpen());
    // A program that removes the file before it writes another asks no question.
    std::filesystem::remove(dir().file("script.xml"));
    until("it is gone", [&] { return !editor().isSaved(); });
    const std::string other = withOverlayAt(mScript, "11");
    writeFile(dir().file("script.xml"), other);
    until("the other", [&] { return at("overlay").start == 11; });
    EXPECT_TRUE(editor().isSaved());
    EXPECT_FALSE(overlay().isOpen());
    std::filesystem::remove(dir().file("script.xml"));
    until("it is gone", [&] { return !editor().isSaved(); });
    key("ctrl+s");
    until("the file", [&] { return editor().isSaved(); });
    EXPECT_EQ(script(), other);
}

TEST_F(StudioTest, WhatASaveFindsOnDiskIsOverwrittenOrLoadedAsAsked) {
    window();
    window().setWatching(false);
    editor().select({at("grid").id});
    editor().move(1, 0);
    const std::string mine = editor().getDocument().getText(), theirs = withOverlayAt(mScript, "11");
    const auto saveOver = [&](const std::string& there, const std::string& answer) {
        writeFile(dir().file("script.xml"), there);
        key("ctrl+s");
        choose(answer);
    };
    saveOver("<script>\n\t<effect name=\"clear\n", "Load theirs");
    EXPECT_EQ(overlay().getTitle(), "It can't be read");
    choose("Close");
    EXPECT_EQ(editor().getDocument().getText(), mine);
    EXPECT_FALSE(editor().isSaved());
    saveOver(theirs, "Load theirs");
    EXPECT_EQ(editor().getDocument().getText(), theirs);
    EXPECT_TRUE(editor().isSaved());
    editor().undo();
    EXPECT_EQ(editor().getDocument().getText(), mine);
    saveOver(mScript, "Overwrite");
    EXPECT_EQ(script(), mine);
    EXPECT_EQ(window().getMessage(), "Saved script.xml");
    EXPECT_EQ(readFile(dir().file("script.xml.bak")), mScript);
}

TEST_F(StudioTest, AChangeOnDiskCanReplaceUnsavedWorkAndUndoBringsThatBack) {
    window();
    editor().select({at("grid").id});
    editor().move(1, 0);
    const std::string mine = editor().getDocument().getText(), theirs = withOverlayAt(mScript, "11");
    writeFile(dir().file("script.xml"), theirs);
    choose("Load theirs");
    EXPECT_EQ(editor().getDocument().getText(), theirs);
    EXPECT_TRUE(editor().isSaved());
    editor().undo();
    EXPECT_EQ(editor().getDocument().getText(), mine);
    editor().redo();
    // What is on disk is what is here: no question.
    writeFile(dir().file("script.xml"), mine);
    until("it is loaded", [&] { return editor().getDocument().getText() == mine; });
    EXPECT_FALSE(overlay().isOpen());
}

TEST_F(StudioTest, AFullDiskLosesNothingAndIsSaid) {
    window();
    editor().select({at("overlay").id});
    frame();
    {
        const FullDisk full(100);
        key("Right");
        until("the message",
              [&] { return window().getMessage() == "Unsaved work can't be kept beside the script"; });
        key("ctrl+s");
        until("the refusal", [&] { return overlay().isDialog(); });
        EXPECT_EQ(overlay().getTitle(), "script.xml could not be saved");
        choose("Close");
        viewer().requestClose();
        choose("Save");
        EXPECT_EQ(overlay().getTitle(), "script.xml could not be saved");
        choose("Close");
        EXPECT_TRUE(show().getDisplay().update()) << "it stays open";
    }
    EXPECT_EQ(script(), mScript);
    EXPECT_FALSE(editor().isSaved());
    key("ctrl+s");
    until("the file", [&] { return editor().isSaved(); });
    EXPECT_EQ(script(), editor().getDocument().getText());
}

TEST_F(StudioTest, LeavingWithoutSavingDropsTheWork) {
    window();
    editor().select({at("overlay").id});
    key("Right");
    until("an edit", [&] { return fileExists(dir().file("script.xml.unsaved")); });
    key("ctrl+q");
    leaveBy("Don't save");
    EXPECT_FALSE(fileExists(dir().file("script.xml.unsaved")));
    EXPECT_EQ(script(), mScript);
}

TEST_F(StudioTest, AQuestionEndsThePlayersEditor) {
    window();
    editor().select({at("overlay").id});
    editor().move(1, 0);
    key("F9");
    until("the player's editor", [&] { return window().isPreviewing(); });
    key("space");
    until("playing", [&] { return show().isPlaying(); });
    key("space");
    until("paused", [&] { return !show().isPlaying(); });
    viewer().requestClose();
    until("the question", [&] { return overlay().isDialog() && !window().isPreviewing(); });
    choose("Cancel");
    EXPECT_FALSE(overlay().isOpen());
    key("F9");
    until("the player's editor", [&] { return window().isPreviewing(); });
    key("Tab"); // hides it, there as in the player
    until("the studio", [&] { return !window().isPreviewing(); });
}

// Recovery

TEST_F(StudioTest, EachRecoveredWorkIsRestoredThrownAwayOrLeftForLater) {
    const std::string first = withOverlayAt(mScript, "11"), second = withOverlayAt(mScript, "10");
    writeFile(dir().file("script.xml.unsaved"), mScript); // no other than the script
    writeFile(dir().file("script.xml.unsaved-2"), first);
    writeFile(dir().file("script.xml.unsaved-3"), second);
    window();
    choose("Later");
    EXPECT_FALSE(overlay().isOpen());
    killed();
    window();
    EXPECT_FALSE(fileExists(dir().file("script.xml.unsaved")));
    choose("Throw away");
    EXPECT_FALSE(fileExists(dir().file("script.xml.unsaved-2")));
    choose("Restore");
    EXPECT_FALSE(overlay().isOpen());
    EXPECT_EQ(editor().getDocument().getText(), second);
    editor().undo();
    EXPECT_EQ(editor().getDocument().getText(), mScript);
}

TEST_F(StudioTest, RecoveredWorkThatCantBeReadStays) {
    const std::string broken = "<script>\n\t<effect name=\"clear\n";
    writeFile(dir().file("script.xml.unsaved"), broken);
    window();
    choose("Restore");
    EXPECT_EQ(overlay().getTitle(), "It can't be read");
    choose("Close");
    EXPECT_EQ(readFile(dir().file("script.xml.unsaved")), broken);
    EXPECT_EQ(editor().getDocument().getText(), mScript);
    killed();
    writeFile(dir().file("script.xml"), "nor this");
    writeFile(dir().file("script.xml.bak"), "nor that");
    window();
    for (const char* button : {"Unsaved work", "Backup"}) {
        choose(button);
        EXPECT_EQ(overlay().getTitle(), "It can't be read");
        choose("Close");
        EXPECT_EQ(overlay().getTitle(), "script.xml can't be read") << "it is asked again";
    }
    EXPECT_EQ(readFile(dir().file("script.xml.unsaved")), broken);
    leaveBy("Leave");
    EXPECT_EQ(script(), "nor this");
}

// The show

TEST_F(StudioTest, TheMusicIsDrawnAndEndsTheShow) {
    std::string wav = makeWav(12000); // a second and a half, of which the last third is silent
    std::fill(wav.end() - 8000, wav.end(), '\0');
    writeFile(dir().file("tune.wav"), wav);
    writeFile(dir().file("setup.xml"), MUSIC_SETUP);
    window();
    EXPECT_NEAR(show().getLength(), 1.5, 1e-3);
    until("the wave", [&] { return show().getWave().getPeak(0.9, 1).second > 0; });
    for (const double width : {0.01, 0.1, 0.4, 0.9}) {
        const auto [low, high] = show().getWave().getPeak(0.05, 0.05 + width);
        EXPECT_NEAR(high, 3000 / 32768.0, 1e-3) << width;
        EXPECT_NEAR(low, -3000 / 32768.0, 1e-3) << width;
    }
    EXPECT_EQ(show().getWave().getPeak(1.1, 1.4), std::pair(0.0f, 0.0f));
    EXPECT_EQ(show().getWave().getPeak(2, 3), std::pair(0.0f, 0.0f));
    const Picture drawn = picture();
    const int y = int(timeline().getAxis().y1 - studio::Timeline::WAVE_HEIGHT / 2);
    const uint8_t* const loud = drawn.at(int(timeline().toX(0.5)), y);
    const uint8_t* const soft = drawn.at(int(timeline().toX(1.25)), y);
    EXPECT_GT(int(loud[1]), int(soft[1]) + 30);

    key("m");
    until("mute", [&] { return show().isMuted(); });
    key("m");
    until("no mute", [&] { return !show().isMuted(); });
    show().seek(1.3);
    key("space");
    until("playing", [&] { return show().isPlaying(); });
    until("the end", [&] { return !show().isPlaying(); });
    EXPECT_NEAR(show().getTime(), 1.5, 1e-2);
    key("space");
    until("playing again", [&] { return show().isPlaying() && show().getTime() > 0.02; });
    EXPECT_LT(show().getTime(), 1.4) << "from the beginning";
    key("space");
    until("paused", [&] { return !show().isPlaying(); });

    // A loop up to the end, or past it, goes on.
    for (const double end : {1.5, 20.0}) {
        show().setLoop(std::pair(0.6, end));
        show().seek(1.4);
        show().setPlaying(true);
        until("the loop", [&] { return show().getTime() < 1.3; });
        EXPECT_TRUE(show().isPlaying());
        until("it plays", [&] { return show().getTime() > 0.65; });
        EXPECT_LT(show().getTime(), 1.3);
        show().setPlaying(false);
    }
    show().setLoop(std::pair(30.0, 40.0)); // none of it is in the music
    show().seek(1.4);
    show().setPlaying(true);
    until("the end", [&] { return !show().isPlaying(); });
}

TEST_F(StudioTest, MusicThatIsMissingLeavesTheShowSilent) {
    writeFile(dir().file("setup.xml"), MUSIC_SETUP);
    window();
    EXPECT_EQ(show().getLength(), 20) << "that of the script";
    show().seek(3);
    show().setPlaying(true);
    until("it plays", [&] { return show().getTime() > 3.05; });
}

TEST_F(StudioTest, WithoutMusicTooTheShowEndsOrLoops) {
    window();
    show().seek(19.9);
    show().setPlaying(true);
    until("the end", [&] { return !show().isPlaying(); });
    EXPECT_NEAR(show().getTime(), 20, 1e-3);
    show().setLoop(std::pair(18.0, 20.0));
    show().seek(19.9);
    show().setPlaying(true);
    until("the loop", [&] { return show().getTime() < 19; });
    EXPECT_TRUE(show().isPlaying());
    // A replay at the loop's beginning does not end it.
    show().setPlaying(false);
    show().setReplaying(true);
    show().setLoop(std::pair(1.0, 2.0));
    show().seek(1.95);
    until("the replay", [&] { return !show().getProgress(); });
    EXPECT_FALSE(show().isPlaying());
    show().setPlaying(true);
    until("the loop", [&] { return show().getTime() < 1.5 && !show().getProgress(); });
    EXPECT_TRUE(show().isPlaying());
}

TEST_F(StudioTest, AnEffectWhoseFileIsRemovedRunsOn) {
    copyFolder("tunnel");
    window();
    const std::string good = readFile(dir().file("tunnel/tunnel.frag"));
    std::filesystem::remove(dir().file("tunnel/tunnel.frag"));
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0], "effect tunnel: tunnel/tunnel.frag: The file is gone");
    writeFile(dir().file("tunnel/tunnel.frag"), good);
    until("no error", [&] { return window().getErrors().empty(); });
}

// Its other files may change meanwhile: it is made again once all can be used.
TEST_F(StudioTest, AnEffectWaitsUntilAllOfItsFilesCanBeUsed) {
    copyFolder("face");
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"face\"");
    window();
    show().seek(7);
    frame();
    const Picture before = picture();
    const std::string scene = readFile(dir().file("face/face.o3d")),
                      shader = readFile(dir().file("face/face.frag"));
    const std::string empty("O3DF\1\1\0\x10\0\0\0\0", 12); // a scene of nothing
    writeFile(dir().file("face/face.o3d"), empty);
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0], "effect face: face/face.o3d: The scene holds no mesh");
    writeFile(dir().file("face/face.frag"), "nonsense");
    until("both errors", [&] { return window().getErrors().size() > 1; });
    writeFile(dir().file("face/face.frag"), shader);
    until("one error", [&] { return window().getErrors().size() == 1; });
    EXPECT_EQ(window().getErrors()[0], "effect face: face/face.o3d: The scene holds no mesh");
    EXPECT_LT(comparePictures(before, picture()).changed, 0.06) << "but for the error on it";
    writeFile(dir().file("face/face.o3d"), scene);
    until("no error", [&] { return window().getErrors().empty(); });
    EXPECT_LT(comparePictures(before, picture()).changed, 0.01);
}

TEST_F(StudioTest, APictureIsLoadedAgain) {
    copyFolder("kub");
    window();
    writeFile(dir().file("kub/kub.png"), "no picture");
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_NE(window().getErrors()[0].find("kub/kub.png"), std::string::npos);
    std::filesystem::remove(dir().file("kub/kub.png"));
    std::filesystem::copy(dir().file("kub/shade.png"), dir().file("kub/kub.png"));
    until("no error", [&] { return window().getErrors().empty(); });
}

TEST_F(StudioTest, OfManyProblemsTheFirstAreShown) {
    std::string curves;
    for (int i = 0; i < 12; ++i)
        curves += "\t\t<spline name=\"c" + std::to_string(i) + "\" type=\"linear\"></spline>\n";
    mScript.replace(mScript.find("\t\t<spline"), 0, curves);
    window();
    timeline().setOpen(element("grid"), true);
    frame();
    EXPECT_EQ(window().getErrors().size(), 12u);
    EXPECT_EQ(window().getErrors()[0].substr(0, 13), "script.xml:9:");
    EXPECT_GT(int(picture().at(640, 20)[0]), 0);
}

TEST_F(StudioTest, AnEffectThatIsBrokenAtTheStartIsMadeOnceItIsMended) {
    copyFolder("tunnel");
    const std::string good = readFile(dir().file("tunnel/tunnel.frag"));
    writeFile(dir().file("tunnel/tunnel.frag"), "nonsense");
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"tunnel\"");
    window();
    show().seek(9);
    frame();
    ASSERT_FALSE(window().getErrors().empty());
    EXPECT_EQ(window().getErrors()[0].substr(0, 14), "effect tunnel:");
    const Picture without = picture();
    writeFile(dir().file("tunnel/tunnel.frag"), good);
    until("no error", [&] { return window().getErrors().empty(); });
    EXPECT_GT(comparePictures(without, picture()).changed, 0.1);
}

TEST_F(StudioTest, AnotherScriptThatIsMissingIsNamed) {
    writeFile(dir().file("setup.xml"),
              "<demo><display width=\"1280\" height=\"800\"/><script filename=\"ground.xml\"/>"
              "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    window();
    const std::vector<std::string> missing = {"ground.xml: It is not there"};
    EXPECT_EQ(window().getErrors(), missing);
    writeFile(dir().file("ground.xml"), "<nothing></nothing>");
    until("the other error", [&] { return window().getErrors() != missing; });
    EXPECT_EQ(window().getErrors(), std::vector<std::string>{"ground.xml: The player refuses it"});
    writeFile(dir().file("ground.xml"), "<script>");
    until("a third", [&] { return window().getErrors()[0].find("refuses") == std::string::npos; });
    EXPECT_EQ(window().getErrors().size(), 1u);
    writeFile(dir().file("ground.xml"), mScript);
    until("no error", [&] { return window().getErrors().empty(); });
}

TEST_F(StudioTest, ABlankScriptIsOneToBeginWith) {
    writeFile(dir().file("script.xml"), " \n");
    window();
    EXPECT_FALSE(overlay().isOpen());
    editor().addSpan(0, "clear", 0, 4);
    key("ctrl+s");
    until("the file", [&] { return script() == editor().getDocument().getText(); });
    EXPECT_EQ(readFile(dir().file("script.xml.bak")), " \n");
}

TEST(Show, ASetupFileWithoutAScriptIsRefused) {
    const TempDir dir;
    const WorkingDir here(dir.path());
    writeFile(dir.file("setup.xml"), "<demo><display width=\"64\" height=\"64\"/></demo>");
    studio::Show show;
    EXPECT_THROW(show.setup(), Exception);
}
