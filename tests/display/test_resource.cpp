// Resources and their files, and the display while it is closed; no window is opened here.
#include "am_archivemanager.h"
#include "am_image.h"
#include "dis_resource.h"
#include "picture.h"
#include "support.h"
#include "ztk_system.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::CaptureStdout;
using zentrak::test::Picture;
using zentrak::test::readFile;
using zentrak::test::TempDir;
using zentrak::test::writeFile;
using zentrak::test::writePng;

// The text of what `call` throws, or "nothing".
template <class Call>
static std::string thrownBy(Call call) {
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "nothing";
}

TEST(Resource, KeepsItsConstructorsArguments) {
    EXPECT_EQ(0, Resource::STATIC);
    EXPECT_EQ(1, Resource::STREAM);
    EXPECT_EQ(2, Resource::DYNAMIC);

    DisplayGL display{WindowMode()};
    Resource resource(&display, Resource::STREAM);
    EXPECT_EQ(&display, resource.getDisplay());
    EXPECT_EQ(&display, const_cast<const Resource&>(resource).getDisplay());
    EXPECT_EQ(Resource::STREAM, resource.getResourceMode());
    resource.setResourceMode(Resource::DYNAMIC);
    EXPECT_EQ(Resource::DYNAMIC, resource.getResourceMode());
    resource.setDisplay(nullptr);
    EXPECT_EQ(nullptr, resource.getDisplay());
}

TEST(Resource, WithANullDisplayCanNotLoad) {
    Resource resource(nullptr, Resource::STATIC);
    EXPECT_FALSE(resource.canLoad());
    EXPECT_EQ("Display::Resource; This resource can not load files (when loading 'a.txt')",
              thrownBy([&] { resource.loadFile("a.txt"); }));
    EXPECT_EQ("Display::Resource; This resource can not load files (when loading image 'a.png')",
              thrownBy([&] { resource.loadImage("a.png", false); }));
    EXPECT_EQ("Display::Resource; This resource can not load files (when loading image 'a.png')",
              thrownBy([&] { resource.loadImage("a.png", nullptr, 0); }));
}

TEST(Resource, WithoutAnArchiveCanNotLoad) {
    DisplayGL display{WindowMode()};
    Resource resource(&display, Resource::STATIC);
    EXPECT_FALSE(resource.canLoad());
    EXPECT_EQ("Display::Resource; This resource can not load files (when loading 'a.txt')",
              thrownBy([&] { resource.loadFile("a.txt"); }));
}

TEST(Resource, FindsAnArchiveThatIsSetAfterItsCreation) {
    TempDir folder;
    am::ArchiveManager archives;
    archives.addArchive(folder.path());
    writeFile(folder.file("a.txt"), "hello");

    DisplayGL display{WindowMode()};
    Resource resource(&display, Resource::STATIC);
    EXPECT_FALSE(resource.canLoad());
    display.setArchive(&archives);
    EXPECT_TRUE(resource.canLoad());
    am::File file = resource.loadFile("a.txt");
    ASSERT_FALSE(file.isNull());
    EXPECT_EQ("hello",
              std::string(reinterpret_cast<char*>(file.getObject()->data), size_t(file.getObject()->length)));
    display.setArchive(nullptr);
    EXPECT_FALSE(resource.canLoad());
}

TEST(Resource, ThrowsForAFileThatIsNotThere) {
    TempDir folder;
    am::ArchiveManager archives;
    archives.addArchive(folder.path());
    DisplayGL display{WindowMode()};
    display.setArchive(&archives);
    Resource resource(&display, Resource::STATIC);
    EXPECT_EQ("Display::Resource; File 'a.txt' could not be read",
              thrownBy([&] { resource.loadFile("a.txt"); }));
    EXPECT_EQ("loadImage, File not found (a.png)", thrownBy([&] { resource.loadImage("a.png", false); }));
}

// A folder with a picture of two pixels, and a display that finds it.
class ResourceImages : public ::testing::Test {
protected:
    ResourceImages() : display(WindowMode()), resource(&display, Resource::STATIC) {
        Picture picture(2, 1);
        const uint8_t pixels[8] = {10, 20, 30, 255, 40, 50, 60, 255};
        std::copy(pixels, pixels + 8, picture.rgba.begin());
        writePng(folder.file("a.png"), picture);
        archives.addArchive(folder.path());
        display.setArchive(&archives);
    }

    void expectPicture(am::Image& image) {
        ASSERT_FALSE(image.isNull());
        ASSERT_EQ(2, image->getWidth());
        ASSERT_EQ(1, image->getHeight());
        const uint8_t bgra[8] = {30, 20, 10, 255, 60, 50, 40, 255};
        EXPECT_TRUE(std::equal(bgra, bgra + 8, image->getData()));
    }

    TempDir folder;
    am::ArchiveManager archives;
    DisplayGL display;
    Resource resource;
};

TEST_F(ResourceImages, AreSharedOrPrivate) {
    am::Image shared = resource.loadImage("a.png", false);
    am::Image again = resource.loadImage("a.png", false);
    am::Image own = resource.loadImage("a.png", true);
    expectPicture(shared);
    expectPicture(own);
    EXPECT_EQ(&*shared, &*again);
    EXPECT_NE(&*shared, &*own);
    EXPECT_NE(nullptr, own->getWriteData());
    EXPECT_THROW(shared->getWriteData(), Exception);
}

TEST_F(ResourceImages, FromMemoryLeaveTheBytesToTheCaller) {
    const std::string bytes = readFile(folder.file("a.png"));
    std::unique_ptr<unsigned char[]> copy(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    am::Image image = resource.loadImage("other.PNG", copy.get(), int(bytes.size()));
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), reinterpret_cast<char*>(copy.get())));
    copy.reset(); // frees them once: a second time would end the program
    expectPicture(image);
    EXPECT_NE(nullptr, image->getWriteData());
}

TEST_F(ResourceImages, FromMemoryAreTheGivenBytesWhateverTheNameHoldsAlready) {
    am::Image shared = resource.loadImage("a.png", false);
    Picture other(1, 1);
    writePng(folder.file("other.png"), other);
    const std::string bytes = readFile(folder.file("other.png"));
    am::Image image =
        resource.loadImage("a.png", reinterpret_cast<const unsigned char*>(bytes.data()), int(bytes.size()));
    EXPECT_EQ(1, image->getWidth());
}

TEST_F(ResourceImages, FromMemoryThatIsNoPictureThrowAndLeaveTheBytes) {
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[4]{1, 2, 3, 4});
    EXPECT_THROW(resource.loadImage("a.png", bytes.get(), 4), Exception);
    EXPECT_THROW(resource.loadImage("a.png", bytes.get(), 0), Exception);
    EXPECT_THROW(resource.loadImage("a.png", bytes.get(), -4), Exception);
    EXPECT_THROW(resource.loadImage("a.png", nullptr, 4), Exception);
    EXPECT_EQ(3, bytes[2]);
    EXPECT_EQ("ImageManager::loadImage, No decoder found for a.xyz",
              thrownBy([&] { resource.loadImage("a.xyz", bytes.get(), 4); }));
}

TEST(ClosedDisplay, IsTheOnlyOne) {
    {
        DisplayGL display{WindowMode()};
        EXPECT_EQ(&display, DisplayGL::currentDisplay);
        EXPECT_EQ("Could not open another GLFW-device", thrownBy([] { DisplayGL second{WindowMode()}; }));
        EXPECT_EQ(&display, DisplayGL::currentDisplay);
    }
    EXPECT_EQ(nullptr, DisplayGL::currentDisplay);
    DisplayGL next{WindowMode()};
    EXPECT_EQ(&next, DisplayGL::currentDisplay);
}

TEST(ClosedDisplay, StartsInAKnownState) {
    const WindowMode mode("title", 320, 200, true);
    DisplayGL display(mode);
    EXPECT_EQ(0, display.mContextCount);
    EXPECT_EQ(nullptr, display.mCurrentVBO);
    EXPECT_EQ(nullptr, display.mCurrentIBO);
    EXPECT_FALSE(display.mOpened);
    EXPECT_FALSE(display.mDirty);
    EXPECT_FALSE(display.mIconified);
    EXPECT_FALSE(display.mFocused);
    EXPECT_EQ("title", display.mWindowMode.title);
    EXPECT_EQ(320, display.mWindowMode.width);
    EXPECT_EQ(200, display.mWindowMode.height);
    EXPECT_TRUE(display.mWindowMode.fullscreen);
    EXPECT_TRUE(display.mListeners.empty());
    for (bool pressed : display.mPressed)
        EXPECT_FALSE(pressed);
    EXPECT_EQ(316u, sizeof(display.mPressed));
    EXPECT_EQ(DisplayGL::FPS_VARIABLE, display.mFpsType);
    EXPECT_EQ(0.0f, display.mFpsLastTime);
    EXPECT_EQ(-1.0f, display.mLastClickTime);
    EXPECT_FALSE(display.mQuittingBlocking);
    EXPECT_FALSE(display.mPushedStates);
    EXPECT_EQ(0.0f, display.mFpsCountFinal);
    EXPECT_EQ(0.0f, display.mFpsCountFinalTime);
    EXPECT_EQ(0.0f, display.mFpsCountFrames);
    EXPECT_EQ(nullptr, display.mArchiveManager);
    EXPECT_EQ(0.0f, display.getMousePosition().x);
    EXPECT_EQ(0.0f, display.getMousePosition().y);
}

TEST(ClosedDisplay, UpdateIsFalse) {
    DisplayGL display{WindowMode()};
    EXPECT_FALSE(display.update());
    display.updateBlocking();
}

TEST(ClosedDisplay, WithoutADisplayServerOpenThrows) {
    const char* server = std::getenv("DISPLAY");
    const std::string saved = server ? server : "";
    unsetenv("DISPLAY");
    {
        DisplayGL display{WindowMode()};
        EXPECT_EQ("Could not open window", thrownBy([&] { display.open(); }));
        EXPECT_FALSE(display.mOpened);
        EXPECT_EQ(0, display.mContextCount);
        std::vector<WindowMode> modes(3);
        display.getModes(modes);
        EXPECT_TRUE(modes.empty());
    }
    if (server)
        setenv("DISPLAY", saved.c_str(), 1);
}

TEST(ClosedDisplay, SetArchiveIsLogged) {
    DisplayGL display{WindowMode()};
    am::ArchiveManager archives;
    char expected[200];
    std::snprintf(expected, sizeof expected, "[info][setArchive], Assigning archive %p to display %p (",
                  static_cast<void*>(&archives), static_cast<void*>(&display));
    CaptureStdout captured;
    display.setArchive(&archives);
    EXPECT_EQ(expected, captured.text().substr(0, std::string(expected).size()));
    EXPECT_EQ(&archives, display.mArchiveManager);
}

TEST(ClosedDisplay, HasNoExtension) {
    DisplayGL display{WindowMode()};
    EXPECT_FALSE(display.hasExtension("GL_ARB_vertex_buffer_object"));
}

TEST(ClosedDisplay, CallsThatNeedAWindowAssert) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    DisplayGL display{WindowMode()};
    EXPECT_DEATH(display.close(), "`mOpened'");
    EXPECT_DEATH(display.setFps(DisplayGL::FPS_VSYNC, 30), "`mOpened'");
    EXPECT_DEATH(display.setFullscreen(true), "`mOpened'");
    display.setFullscreen(false); // no change, nothing happens
}

TEST(ClosedDisplay, ListenersMustNotBeNull) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    DisplayGL display{WindowMode()};
    EXPECT_DEATH(display.addListener(nullptr), "`listener!=0'");
    EXPECT_DEATH(display.removeListener(nullptr), "`listener!=0'");
}

TEST(ClosedDisplay, ListenersJoinOnceAndLeave) {
    DisplayGL display{WindowMode()};
    Listener first, second(&display);
    display.addListener(&first);
    display.addListener(&first);
    ASSERT_EQ(2u, display.mListeners.size());
    EXPECT_EQ(&second, display.mListeners[0]);
    EXPECT_EQ(&first, display.mListeners[1]);
    EXPECT_EQ(&display, first.display);
    second.attachToDisplay(nullptr);
    EXPECT_EQ(nullptr, second.display);
    ASSERT_EQ(1u, display.mListeners.size());
    display.removeListener(&second); // it has left already
    { Listener third(&display); }    // leaves at its end
    EXPECT_EQ(1u, display.mListeners.size());
    first.attachToDisplay(&display); // leaves and joins again
    EXPECT_EQ(1u, display.mListeners.size());
}

TEST(ClosedDisplay, LetsItsListenersGoAtItsEnd) {
    Listener listener;
    {
        DisplayGL display{WindowMode()};
        display.addListener(&listener);
    }
    EXPECT_EQ(nullptr, listener.display);
}
