// The font: metrics from a made picture, quads on the screen, and the show's own letters.
#include "dis_font.h"

#include "gl_objects.h"

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::display;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr int CELL = 10;

// 16 by 16 cells of 10 by 10 pixels: 'A' is 4 wide with a dim fifth column, 'B' is full, a space is full too,
// byte 200 has one bright pixel in its first column, and the rest are empty.
uint32_t made(int x, int y) {
    const int c = y / CELL * 16 + x / CELL, column = x % CELL, row = y % CELL;
    int red = 0;
    if (c == 'A')
        red = column < 4 ? 255 : column == 4 ? 200 : 0; // 200 is not above 200
    if (c == 'B' || c == ' ')
        red = 255;
    if (c == 200)
        red = column == 0 && row == 9 ? 201 : 0;
    return uint32_t(red) << 24 | 0x00ffff80; // green, blue and alpha don't count
}

class FontTest : public GlObjects {
protected:
    Font font{&display()};

    FontTest() { writeImage("made.png", makeImage(16 * CELL, 16 * CELL, made)); }

    void load(Vector2f size = Vector2f(200, 200)) { font.load("made.png", false, size); }

    void pixels() { // one unit is one pixel, y up
        mathbase::Matrix4x4Col project;
        project.setProjectOrtho(0, 200, 0, 200, -1, 1);
        display().setProject(project);
        display().setModelView();
    }

    void at(float x, float y) {
        mathbase::Matrix4x4Col place;
        place.setTranslation(mathbase::Vector3f(x, y, 0));
        display().setTransform(place);
    }

    // The bounds of the lit pixels: left, top, right, bottom, inclusive; or "nothing".
    static std::string bounds(const Picture& picture) {
        int left = picture.width, top = picture.height, right = -1, bottom = -1;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.at(x, y)[0] > 127) {
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
        if (right < 0)
            return "nothing";
        return std::to_string(left) + " " + std::to_string(top) + " " + std::to_string(right) + " " +
               std::to_string(bottom);
    }

    // Shapes drawn with the texture's solid spot have exactly their own colour.
    void expectSolid() {
        const Picture shown = frame([&] {
            pixels();
            font.getTexture().bind();
            glEnable(GL_TEXTURE_2D);
            glColor4f(0.2f, 0.4f, 0.6f, 1);
            glTexCoord2f(font.getSolid().x, font.getSolid().y);
            glRectf(0, 0, 200, 200);
            font.getTexture().unbind();
        });
        EXPECT_EQ(shown.at(100, 100)[0], 51);
        EXPECT_EQ(shown.at(100, 100)[1], 102);
        EXPECT_EQ(shown.at(100, 100)[2], 153);
    }

    std::string drawn(const std::string& text, int align, Vector2f scale = Vector2f(1, 1)) {
        return bounds(frame([&] {
            pixels();
            at(100, 100);
            font.setAlignment(align);
            font.draw(text, scale, Vector4f(1, 1, 1, 1));
        }));
    }
};

TEST_F(FontTest, AdvancesAreMeasuredFromTheRedChannel) {
    load();
    EXPECT_FLOAT_EQ(font.getAdvance('A'), 4 + 2);
    EXPECT_FLOAT_EQ(font.getAdvance('B'), 10 + 2);
    EXPECT_FLOAT_EQ(font.getAdvance(200), 1 + 2); // the lower half of the grid, whatever the encoding
    EXPECT_FLOAT_EQ(font.getHeight(), 10);
    EXPECT_FLOAT_EQ(font.getLength("AB"), 18);
    EXPECT_FLOAT_EQ(font.getLength(""), 0);
    EXPECT_FLOAT_EQ(font.getLength("\xc8"), 3);
}

TEST_F(FontTest, ASpaceAdvancesByThreeTenthsWhateverItsCellHolds) {
    load();
    EXPECT_FLOAT_EQ(font.getAdvance(' '), 10 * 0.3f + 2);
    font.setSizeOfSpace(3);
    EXPECT_FLOAT_EQ(font.getAdvance(' '), 3);
}

TEST_F(FontTest, AnEmptyCellAdvancesByTwoPixels) {
    load();
    EXPECT_FLOAT_EQ(font.getAdvance('C'), 2);
    EXPECT_FLOAT_EQ(font.getAdvance(0), 2);
    EXPECT_FLOAT_EQ(font.getAdvance(255), 2);
}

TEST_F(FontTest, TheInkOfACellIsItsVisiblePart) {
    load();
    EXPECT_EQ(font.getInk('A'), mathbase::Box2(0, 0, 5, 10)); // the dim column too
    EXPECT_EQ(font.getInk('B'), mathbase::Box2(0, 0, 10, 10));
    EXPECT_EQ(font.getInk(200), mathbase::Box2(0, 9, 1, 10));
    EXPECT_EQ(font.getInk('C'), mathbase::Box2());
    EXPECT_EQ(font.getInk(0), mathbase::Box2());
}

TEST_F(FontTest, ByteZeroIsNotDrawnWhereItsEmptyCellHoldsAWhiteSpot) {
    load();
    EXPECT_EQ(font.getSolid(), Vector2f(5.0f / 160, 5.0f / 160));
    EXPECT_EQ(drawn(std::string(1, '\0'), Font::ALIGN_LEFT), "nothing");
    expectSolid();
}

TEST_F(FontTest, ByteZeroIsDrawnLikeAnyOtherWhereItHasAGlyph) {
    writeImage("made.png", makeImage(16 * CELL, 16 * CELL, [](int x, int y) {
                   const bool dim = x < 3 && y < 8; // of byte 0
                   return dim ? 0xfe000000u : made(x, y);
               }));
    load();
    EXPECT_FLOAT_EQ(font.getAdvance(0), 3 + 2);
    EXPECT_EQ(font.getInk(0), mathbase::Box2(0, 0, 3, 8));
    EXPECT_EQ(drawn(std::string(1, '\0'), Font::ALIGN_LEFT), "100 95 102 102");
    expectSolid();
}

TEST_F(FontTest, ByteZeroIsDrawnInAPictureWithNothingSolid) {
    writeImage("made.png", makeImage(16 * CELL, 16 * CELL, [](int, int) { return 0xfe000000u; }));
    load();
    EXPECT_FLOAT_EQ(font.getAdvance(0), 10 + 2);
    EXPECT_EQ(font.getInk(0), mathbase::Box2(0, 0, 10, 10));
    EXPECT_EQ(drawn(std::string(1, '\0'), Font::ALIGN_LEFT), "100 95 109 104");
}

TEST_F(FontTest, WithNothingSolidAnotherEmptyCellHoldsTheWhiteSpot) {
    writeImage("made.png", makeImage(16 * CELL, 16 * CELL, [](int x, int y) {
                   return x / CELL == 3 && y / CELL == 1 ? 0u : 0xfe000000u; // byte 19 is empty
               }));
    load();
    EXPECT_EQ(drawn(std::string(1, '\0'), Font::ALIGN_LEFT), "100 95 109 104");
    EXPECT_EQ(drawn(std::string(1, '\x13'), Font::ALIGN_LEFT), "nothing");
    EXPECT_EQ(font.getSolid(), Vector2f(35.0f / 160, 15.0f / 160));
    expectSolid();
}

TEST_F(FontTest, TheUnitIsTheSizeOverTheWindows) {
    load(Vector2f(100, 50));
    EXPECT_FLOAT_EQ(font.getAdvance('A'), 6 * 100.0f / 200);
    EXPECT_FLOAT_EQ(font.getHeight(), 10 * 50.0f / 200);
}

TEST_F(FontTest, TextIsRightOfLeftOfOrAroundTheOrigin) {
    load();
    EXPECT_EQ(drawn("B", Font::ALIGN_LEFT), "100 95 109 104");
    EXPECT_EQ(drawn("AB", Font::ALIGN_LEFT), "100 95 115 104");
    EXPECT_EQ(drawn("AB", Font::ALIGN_RIGHT), "82 95 97 104");
    EXPECT_EQ(drawn("AB", Font::ALIGN_CENTER), "91 95 106 104");
    EXPECT_EQ(drawn("B", Font::ALIGN_LEFT, Vector2f(2, 3)), "100 85 119 114");
    EXPECT_EQ(drawn("C", Font::ALIGN_LEFT), "nothing");
    EXPECT_EQ(Font::ALIGN_LEFT, 0);
    EXPECT_EQ(Font::ALIGN_RIGHT, 1);
    EXPECT_EQ(Font::ALIGN_CENTER, 2);
}

TEST_F(FontTest, AnEmptyStringInTheCentreDrawsNothing) {
    load();
    EXPECT_EQ(drawn("", Font::ALIGN_CENTER), "nothing");
    EXPECT_EQ(drawn("", Font::ALIGN_RIGHT), "nothing");
}

TEST_F(FontTest, TheColourIsTheOneGivenAndTheStateIsAsBefore) {
    load();
    const Picture shown = frame([&] {
        pixels();
        at(20, 100);
        glColor4f(0.25f, 0.5f, 0.75f, 1);
        font.draw("B", Vector2f(1, 1), Vector4f(0, 1, 0, 0.5f));
        float color[4];
        glGetFloatv(GL_CURRENT_COLOR, color);
        EXPECT_EQ(color[0], 0.25f);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        GLint bound = -1, depth = -1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(bound, 0);
        glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
        EXPECT_EQ(depth, 1); // the frame's own
    });
    EXPECT_EQ(shown.at(25, 100)[0], 0);
    EXPECT_NEAR(shown.at(25, 100)[1], 128, 2); // blended by the state that every frame begins with
}

TEST_F(FontTest, FailuresThrow) {
    EXPECT_EQ(thrownBy([&] { font.load("none.png", false, Vector2f(1, 1)); }),
              "loadImage, File not found (none.png)");
    display().setArchive(nullptr);
    EXPECT_EQ(thrownBy([&] { font.load("made.png", false, Vector2f(1, 1)); }),
              "Cannot load font motherfucker!");
    Font none(nullptr);
    EXPECT_EQ(thrownBy([&] { none.load("made.png", false, Vector2f(1, 1)); }),
              "Cannot load font motherfucker!");
}

TEST_F(FontTest, APictureTooSmallForCellsDoesNotCrash) {
    writeImage("tiny.png", makeImage(7, 5, [](int, int) { return 0xffffffffu; }));
    font.load("tiny.png", true, Vector2f(200, 200));
    EXPECT_FLOAT_EQ(font.getAdvance('A'), 2);
    EXPECT_EQ(drawn("ABC", Font::ALIGN_LEFT), "nothing");
}

TEST_F(FontTest, LivesThroughANewContext) {
    load();
    EXPECT_EQ(drawn("B", Font::ALIGN_LEFT), "100 95 109 104");
    display().close();
    display().open();
    EXPECT_EQ(drawn("B", Font::ALIGN_LEFT), "100 95 109 104");
}

class ShowsFont : public GlTest {};

TEST_F(ShowsFont, AllOfLatin1) {
    window(480, 240);
    Font font(&display());
    font.load("fonthelvete2.png", false, Vector2f(480, 240));
    for (int c = 33; c < 256; ++c)
        if (c < 127 || (c > 160 && c != 173)) {
            EXPECT_GT(font.getAdvance((unsigned char)c), 2.0f) << c;
        }
    EXPECT_FLOAT_EQ(font.getHeight(), 16);
    const std::string lines[] = {"The quick brown fox jumps over the lazy dog.",
                                 "0123456789  (a+b)*c = {x}[y] / 100% #1 & @2",
                                 "Vet hut, J\xe4gern\xe4s \xc5"
                                 "land \xd6sterg\xf6k \xc6\xf8\xdf",
                                 "iIl1| .,:;!? \"quoted\" 'so' ~^_`$",
                                 "AVATAR WAVE Typography f\xfcr Gl\xfc"
                                 "ck \xa9 \xbd \xbf"};
    const Picture shown = frame([&] {
        mathbase::Matrix4x4Col project, place;
        project.setProjectOrtho(0, 480, 0, 240, -1, 1);
        display().setProject(project);
        float y = 220;
        for (const std::string& line : lines) {
            place.setTranslation(mathbase::Vector3f(10, y, 0));
            display().setTransform(place);
            font.draw(line, Vector2f(1, 1), Vector4f(1, 1, 1, 1));
            y -= 20;
        }
        place.setTranslation(mathbase::Vector3f(240, 90, 0));
        display().setTransform(place);
        font.setAlignment(Font::ALIGN_CENTER);
        font.draw("Twice as large", Vector2f(2, 2), Vector4f(1, 0.7f, 0.2f, 1));
        place.setTranslation(mathbase::Vector3f(470, 40, 0));
        display().setTransform(place);
        font.setAlignment(Font::ALIGN_RIGHT);
        font.draw("three times", Vector2f(3, 3), Vector4f(0.4f, 0.8f, 1, 0.8f));
    });
    EXPECT_TRUE(matchesReference("display_font", shown));
}

} // namespace
