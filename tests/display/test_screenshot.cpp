// Reading back the picture.
#include "am_archivemanager.h"
#include "am_image.h"
#include "dis_display.h"
#include "gl_fixture.h"
#include "support.h"
#include "ztk_system.h"

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::GlTest;
using zentrak::test::Picture;
using zentrak::test::TempDir;
using zentrak::test::writePng;

// Red upper left, green upper right, blue lower left, yellow lower right, all half transparent.
static void drawQuarters(const DisplayGL& display) {
    const int w = display.mWindowMode.width / 2, h = display.mWindowMode.height / 2;
    glEnable(GL_SCISSOR_TEST);
    const float colours[4][3] = {{0, 0, 1}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}};
    for (int i = 0; i < 4; ++i) {
        glScissor(i % 2 ? w : 0, i / 2 ? h : 0, w + 1, h + 1);
        glClearColor(colours[i][0], colours[i][1], colours[i][2], 0.5f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    glDisable(GL_SCISSOR_TEST);
}

static am::Image makeImage(int width, int height) {
    am::Image image(new am::ImageObject);
    image->resize(width, height);
    return image;
}

class ScreenShot : public GlTest {};

TEST_F(ScreenShot, IsTheWindowFromTheTopInBlueGreenRedAndFullAlpha) {
    window(202, 100);
    frame([&] {
        drawQuarters(display());
        am::Image image = makeImage(202, 100);
        display().getScreenShot(image);
        const unsigned char* data = image->getData();
        const auto expectPixel = [&](int x, int y, int b, int g, int r) {
            const unsigned char* pixel = data + (y * 202 + x) * 4;
            EXPECT_EQ(b, pixel[0]) << x << " " << y;
            EXPECT_EQ(g, pixel[1]) << x << " " << y;
            EXPECT_EQ(r, pixel[2]) << x << " " << y;
            EXPECT_EQ(255, pixel[3]) << x << " " << y;
        };
        expectPixel(0, 0, 0, 0, 255);
        expectPixel(100, 49, 0, 0, 255);
        expectPixel(101, 0, 0, 255, 0);
        expectPixel(201, 49, 0, 255, 0);
        expectPixel(0, 50, 255, 0, 0);
        expectPixel(100, 99, 255, 0, 0);
        expectPixel(101, 50, 0, 255, 255);
        expectPixel(201, 99, 0, 255, 255);
        for (size_t i = 3; i < 202 * 100 * 4; i += 4)
            ASSERT_EQ(255, data[i]) << i;
    });
}

// A window without alpha always reads as 255, so this uses a target that has alpha.
TEST_F(ScreenShot, ForcesTheAlphaOfEveryPixel) {
    window(64, 64);
    frame([&] {
        GLuint target = 0, pixels = 0;
        glGenFramebuffersEXT(1, &target);
        glGenRenderbuffersEXT(1, &pixels);
        glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, pixels);
        glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_RGBA8, 64, 64);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, target);
        glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_RENDERBUFFER_EXT,
                                     pixels);
        glClearColor(1, 0, 0, 0.25f);
        glClear(GL_COLOR_BUFFER_BIT);
        unsigned char pixel[4] = {};
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_EQ(64, pixel[3]);
        am::Image image = makeImage(64, 64);
        display().getScreenShot(image);
        for (size_t i = 0; i < 64 * 64 * 4; i += 4) {
            ASSERT_EQ(255, image->getData()[i + 2]);
            ASSERT_EQ(255, image->getData()[i + 3]);
        }
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        glDeleteFramebuffersEXT(1, &target);
        glDeleteRenderbuffersEXT(1, &pixels);
    });
}

TEST_F(ScreenShot, InRgb24HasNoGapsBetweenItsRows) {
    window(203, 100); // 609 bytes a row
    frame([&] {
        drawQuarters(display());
        std::vector<unsigned char> buffer(203 * 100 * 3 + 2, 0xab);
        display().getScreenShotRGB24(buffer.data() + 1);
        EXPECT_EQ(0xab, buffer.front());
        EXPECT_EQ(0xab, buffer.back());
        const auto expectPixel = [&](int x, int y, int r, int g, int b) {
            const unsigned char* pixel = buffer.data() + 1 + (y * 203 + x) * 3;
            EXPECT_EQ(r, pixel[0]) << x << " " << y;
            EXPECT_EQ(g, pixel[1]) << x << " " << y;
            EXPECT_EQ(b, pixel[2]) << x << " " << y;
        };
        expectPixel(0, 0, 255, 0, 0);
        expectPixel(100, 49, 255, 0, 0);
        expectPixel(101, 0, 0, 255, 0);
        expectPixel(201, 49, 0, 255, 0);
        expectPixel(0, 50, 0, 0, 255);
        expectPixel(0, 99, 0, 0, 255);
        expectPixel(201, 99, 255, 255, 0);
    });
}

TEST_F(ScreenShot, IsTheSameWhateverWayOfPackingIsSet) {
    window(202, 100);
    frame([&] {
        drawQuarters(display());
        am::Image plain = makeImage(202, 100), other = makeImage(202, 100);
        display().getScreenShot(plain);
        glPixelStorei(GL_PACK_ALIGNMENT, 8);
        glPixelStorei(GL_PACK_ROW_LENGTH, 1000);
        glPixelStorei(GL_PACK_SKIP_ROWS, 100);
        glPixelStorei(GL_PACK_SWAP_BYTES, 1);
        display().getScreenShot(other);
        EXPECT_TRUE(std::equal(plain->getData(), plain->getData() + 202 * 100 * 4, other->getData()));
        GLint length = 0;
        glGetIntegerv(GL_PACK_ROW_LENGTH, &length);
        EXPECT_EQ(1000, length);
        for (GLenum setting : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SWAP_BYTES})
            glPixelStorei(setting, 0);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
    });
}

TEST_F(ScreenShot, OfAHeightOfTwoSwapsTheTwoRows) {
    window(200, 2);
    frame([&] {
        drawQuarters(display());
        am::Image image = makeImage(200, 2);
        display().getScreenShot(image);
        EXPECT_EQ(255, image->getData()[2]);
        EXPECT_EQ(255, image->getData()[200 * 4]);
    });
}

TEST_F(ScreenShot, IntoACachedImageFailsWithTheAccessText) {
    window(64, 64);
    TempDir folder;
    writePng(folder.file("a.png"), Picture(64, 64));
    am::ArchiveManager archives;
    archives.addArchive(folder.path());
    am::Image image = archives.loadImage("a.png", -1, false);
    const std::vector<unsigned char> before(image->getData(), image->getData() + 64 * 64 * 4);
    try {
        display().getScreenShot(image);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_STREQ("ImageObbject::getWriteData, Access not allowed!", exception.what());
    }
    EXPECT_TRUE(std::equal(before.begin(), before.end(), image->getData()));
}

TEST_F(ScreenShot, IntoAnImageWithoutPixelsOrNoBufferDoesNothing) {
    window(64, 64);
    am::Image image(new am::ImageObject);
    image->setData(nullptr, 64, 64);
    if (image->getWidth() == 64 && image->getHeight() == 64)
        display().getScreenShot(image);
    EXPECT_EQ(nullptr, image->getData());
    display().getScreenShotRGB24(nullptr);
}

class ScreenShotDeathTest : public GlTest {
protected:
    ScreenShotDeathTest() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(ScreenShotDeathTest, WithAnOddWindowHeightAborts) {
    window(64, 63);
    am::Image image = makeImage(64, 63);
    std::vector<unsigned char> buffer(64 * 63 * 3);
    EXPECT_DEATH(display().getScreenShot(image), "`\\(mWindowMode\\.height & 1\\) == 0'");
    EXPECT_DEATH(display().getScreenShotRGB24(buffer.data()), "`\\(mWindowMode\\.height & 1\\) == 0'");
}

TEST_F(ScreenShotDeathTest, OfAnotherSizeOrIntoNoImageAborts) {
    window(64, 64);
    am::Image null, wide = makeImage(65, 64), high = makeImage(64, 66);
    EXPECT_DEATH(display().getScreenShot(null), "`image\\.isNull\\(\\)==false'");
    EXPECT_DEATH(display().getScreenShot(wide), "`image->getWidth\\(\\)==mWindowMode\\.width'");
    EXPECT_DEATH(display().getScreenShot(high), "`image->getHeight\\(\\)==mWindowMode\\.height'");
}
