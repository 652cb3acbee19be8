// Without a window: values, names, colours, and the clock before there is a display.
#include "dis_clock.h"
#include "dis_display.h"
#include "dis_glcheck.h"

#include <gtest/gtest.h>

using namespace zentrak::display;
using zentrak::mathbase::Vector4f;

TEST(WindowMode, StartsFromTheDefaults) {
    WindowMode mode;
    EXPECT_EQ("The Untitled Application", mode.title);
    EXPECT_EQ(800, mode.width);
    EXPECT_EQ(600, mode.height);
    EXPECT_EQ(32, mode.bitdepth);
    EXPECT_FALSE(mode.fullscreen);
    EXPECT_FALSE(mode.canResize);
}

TEST(WindowMode, OmittedArgumentsKeepTheirDefaults) {
    WindowMode mode("title", 320, 200, true);
    EXPECT_EQ("title", mode.title);
    EXPECT_EQ(320, mode.width);
    EXPECT_EQ(200, mode.height);
    EXPECT_EQ(32, mode.bitdepth);
    EXPECT_TRUE(mode.fullscreen);
    EXPECT_FALSE(mode.canResize);
}

TEST(WindowMode, SetDefaultsRestoresThem) {
    WindowMode mode("title", 320, 200, true);
    mode.bitdepth = 16;
    mode.canResize = true;
    mode.setDefaults();
    EXPECT_EQ("The Untitled Application", mode.title);
    EXPECT_EQ(800, mode.width);
    EXPECT_EQ(600, mode.height);
    EXPECT_EQ(32, mode.bitdepth);
    EXPECT_FALSE(mode.fullscreen);
    EXPECT_FALSE(mode.canResize);
}

TEST(Values, OfEnumerations) {
    EXPECT_EQ(0, SOLID);
    EXPECT_EQ(1, WIRE);
    EXPECT_EQ(0, DisplayGL::FPS_VARIABLE);
    EXPECT_EQ(1, DisplayGL::FPS_VSYNC);
    EXPECT_EQ(2, DisplayGL::FPS_FIXED);
    EXPECT_EQ(3, DisplayGL::FPS_EVENT);
    EXPECT_EQ(4, DisplayGL::FPS_DELTA);
    EXPECT_EQ(0, Listener::WHATEVER);
    EXPECT_EQ(1, Listener::BLOCK);
    EXPECT_EQ(2, Listener::QUIT);
    EXPECT_EQ(4, Listener::DIRTY);
    EXPECT_EQ(0, MOUSE_LEFT);
    EXPECT_EQ(1, MOUSE_RIGHT);
    EXPECT_EQ(2, MOUSE_MIDDLE);
}

TEST(Values, OfPrintableKeysAreTheirCharacters) {
    EXPECT_EQ('!', KEY_EXCLAIM);
    EXPECT_EQ('"', KEY_QUOTEDBL);
    EXPECT_EQ('#', KEY_HASH);
    EXPECT_EQ('$', KEY_DOLLAR);
    EXPECT_EQ('%', KEY_PERCENT);
    EXPECT_EQ('&', KEY_AMPERSAND);
    EXPECT_EQ('\'', KEY_QUOTE);
    EXPECT_EQ('(', KEY_LEFTPAREN);
    EXPECT_EQ(')', KEY_RIGHTPAREN);
    EXPECT_EQ('*', KEY_ASTERISK);
    EXPECT_EQ('+', KEY_PLUS);
    EXPECT_EQ(',', KEY_COMMA);
    EXPECT_EQ('-', KEY_MINUS);
    EXPECT_EQ('.', KEY_PERIOD);
    EXPECT_EQ('/', KEY_SLASH);
    EXPECT_EQ('0', KEY_0);
    EXPECT_EQ('9', KEY_9);
    EXPECT_EQ(':', KEY_COLON);
    EXPECT_EQ(';', KEY_SEMICOLON);
    EXPECT_EQ('<', KEY_LESS);
    EXPECT_EQ('=', KEY_EQUALS);
    EXPECT_EQ('>', KEY_GREATER);
    EXPECT_EQ('?', KEY_QUESTION);
    EXPECT_EQ('@', KEY_AT);
    EXPECT_EQ('A', KEY_a);
    EXPECT_EQ('Q', KEY_q);
    EXPECT_EQ('Z', KEY_z);
    EXPECT_EQ('[', KEY_LEFTBRACKET);
    EXPECT_EQ('\\', KEY_BACKSLASH);
    EXPECT_EQ(']', KEY_RIGHTBRACKET);
    EXPECT_EQ('^', KEY_CARET);
    EXPECT_EQ('_', KEY_UNDERSCORE);
    EXPECT_EQ('`', KEY_BACKQUOTE);
}

TEST(Values, OfSpecialKeys) {
    EXPECT_EQ(0, KEY_UNKNOWN);
    EXPECT_EQ(8, KEY_BACKSPACE);
    EXPECT_EQ(9, KEY_TAB);
    EXPECT_EQ(12, KEY_CLEAR);
    EXPECT_EQ(13, KEY_ENTER);
    EXPECT_EQ(19, KEY_PAUSE);
    EXPECT_EQ(27, KEY_ESCAPE);
    EXPECT_EQ(32, KEY_SPACE);
    EXPECT_EQ(127, KEY_DELETE);
    EXPECT_EQ(256, KEY_SPECIAL);
    EXPECT_EQ(257, KEY_ESC);
    EXPECT_EQ(258, KEY_F1);
    EXPECT_EQ(282, KEY_F25);
    EXPECT_EQ(283, KEY_UP);
    EXPECT_EQ(284, KEY_DOWN);
    EXPECT_EQ(285, KEY_LEFT);
    EXPECT_EQ(286, KEY_RIGHT);
    EXPECT_EQ(287, KEY_LSHIFT);
    EXPECT_EQ(288, KEY_RSHIFT);
    EXPECT_EQ(289, KEY_LCTRL);
    EXPECT_EQ(290, KEY_RCTRL);
    EXPECT_EQ(291, KEY_LALT);
    EXPECT_EQ(292, KEY_RALT);
    EXPECT_EQ(293, KEY_INSERT);
    EXPECT_EQ(294, KEY_DEL);
    EXPECT_EQ(295, KEY_PAGEUP);
    EXPECT_EQ(296, KEY_PAGEDOWN);
    EXPECT_EQ(297, KEY_HOME);
    EXPECT_EQ(298, KEY_END);
    EXPECT_EQ(299, KEY_KP_0);
    EXPECT_EQ(308, KEY_KP_9);
    EXPECT_EQ(309, KEY_KP_DIVIDE);
    EXPECT_EQ(310, KEY_KP_MULTIPLY);
    EXPECT_EQ(311, KEY_KP_SUBTRACT);
    EXPECT_EQ(312, KEY_KP_ADD);
    EXPECT_EQ(313, KEY_KP_DECIMAL);
    EXPECT_EQ(314, KEY_KP_EQUAL);
    EXPECT_EQ(315, KEY_KP_ENTER);
    EXPECT_EQ(316, KEY_LAST);
}

TEST(Values, OfModifiers) {
    EXPECT_EQ(0, KEYMOD_NONE);
    EXPECT_EQ(1, KEYMOD_LSHIFT);
    EXPECT_EQ(2, KEYMOD_RSHIFT);
    EXPECT_EQ(64, KEYMOD_LCTRL);
    EXPECT_EQ(128, KEYMOD_RCTRL);
    EXPECT_EQ(256, KEYMOD_LALT);
    EXPECT_EQ(512, KEYMOD_RALT);
    EXPECT_EQ(4096, KEYMOD_NUMLOCK);
    EXPECT_EQ(8192, KEYMOD_CAPSLOCK);
}

static void expectColour(const char* text, float r, float g, float b, float a) {
    const Vector4f colour = DisplayGL::hex2vec(text);
    EXPECT_EQ(r / 255.0f, colour.x) << text;
    EXPECT_EQ(g / 255.0f, colour.y) << text;
    EXPECT_EQ(b / 255.0f, colour.z) << text;
    EXPECT_EQ(a / 255.0f, colour.w) << text;
}

TEST(Hex2vec, ReadsDigitsAndLettersInEitherCase) {
    expectColour("ff8000", 255, 128, 0, 255);
    expectColour("FF8000", 255, 128, 0, 255);
    expectColour("fFd974", 0xff, 0xd9, 0x74, 255);
    expectColour("0c0c0c", 12, 12, 12, 255);
}

TEST(Hex2vec, ReadsAnAlpha) {
    expectColour("330000fe", 0x33, 0, 0, 0xfe);
}

TEST(Hex2vec, TakesAHashBeforeTheDigits) {
    expectColour("#ff8000", 255, 128, 0, 255);
    expectColour("#ff800040", 255, 128, 0, 64);
}

TEST(Hex2vec, MissingDigitsAreZeroAndAMissingAlphaIsOne) {
    expectColour("", 0, 0, 0, 255);
    expectColour("#", 0, 0, 0, 255);
    expectColour("f", 0xf0, 0, 0, 255);
    expectColour("ff", 255, 0, 0, 255);
    expectColour("ff8", 255, 0x80, 0, 255);
    expectColour("ff80001", 255, 128, 0, 16);
}

TEST(Hex2vec, OtherCharactersAreZero) {
    expectColour("zz0000", 0, 0, 0, 255);
    expectColour("g1\xff\x80-f", 1, 0, 15, 255);
    expectColour(std::string("1\0"
                             "2x\0\0",
                             6)
                     .c_str(),
                 16, 0, 0, 255);
}

TEST(Hex2vec, TrailingTextIsIgnored) {
    expectColour("01020304 and more", 1, 2, 3, 4);
}

TEST(Clock, WithoutADisplayShowsTheTimeItWasSetTo) {
    // The time is 0 until a display is made.
    Clock clock;
    EXPECT_EQ(0.0f, clock.getTime());
    clock.setTime(12.5f);
    EXPECT_EQ(12.5f, clock.getTime());
    EXPECT_EQ(-12.5f, clock.mStartTime);
    EXPECT_FALSE(clock.mManualUpdate);
}

TEST(Clock, StandsStillBetweenUpdates) {
    Clock clock;
    clock.setTime(3.0f);
    clock.update();
    EXPECT_TRUE(clock.mManualUpdate);
    EXPECT_EQ(3.0f, clock.getTime());
    clock.setTime(7.0f);
    EXPECT_EQ(3.0f, clock.getTime());
    clock.update();
    EXPECT_EQ(7.0f, clock.getTime());
}

TEST(Clock, ResetRunsFreelyFromZero) {
    Clock clock;
    clock.setTime(3.0f);
    clock.update();
    clock.reset();
    EXPECT_FALSE(clock.mManualUpdate);
    EXPECT_EQ(0.0f, clock.getTime());
}

TEST(GlCheck, FileNamesLoseTheirFolders) {
    EXPECT_STREQ("dis_display.cpp", fileNameOf("/a/b.c/dis_display.cpp"));
    EXPECT_STREQ("dis_display.cpp", fileNameOf("a\\dis_display.cpp"));
    EXPECT_STREQ("dis_display.cpp", fileNameOf("dis_display.cpp"));
    EXPECT_STREQ("", fileNameOf("a/"));
}

TEST(GlCheck, NamesSevenCodes) {
    EXPECT_STREQ("GL_INVALID_ENUM", glErrorName(0x0500));
    EXPECT_STREQ("GL_INVALID_VALUE", glErrorName(0x0501));
    EXPECT_STREQ("GL_INVALID_OPERATION", glErrorName(0x0502));
    EXPECT_STREQ("GL_STACK_OVERFLOW", glErrorName(0x0503));
    EXPECT_STREQ("GL_STACK_UNDERFLOW", glErrorName(0x0504));
    EXPECT_STREQ("GL_OUT_OF_MEMORY", glErrorName(0x0505));
    EXPECT_STREQ("GL_TABLE_TOO_LARGE", glErrorName(0x8031));
    EXPECT_EQ(nullptr, glErrorName(0));
    EXPECT_EQ(nullptr, glErrorName(0x0506));
    EXPECT_EQ(nullptr, glErrorName(0xffffffff));
}
