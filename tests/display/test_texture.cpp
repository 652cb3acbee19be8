// Textures on a real context: uploads, refusals, and restoring them in a new context.
#include "dis_texture.h"

#include "gl_objects.h"

#include <optional>

using namespace zentrak;
using namespace zentrak::test;
using display::DisplayGL;
using display::Texture;

namespace {

constexpr uint32_t RED = 0xff0000ff, GREEN = 0x00ff00ff, BLUE = 0x0000ffff, WHITE = 0xffffffff;
constexpr char NPOT[] = "GL_ARB_texture_non_power_of_two";

class TextureTest : public GlObjects {
protected:
    Texture texture{&display()};

    static am::Image halves(int width, int height, const std::string& name = "made") {
        return makeImage(
            width, height, [&](int x, int) { return x < width / 2 ? RED : BLUE; }, name);
    }

    GLint parameter(GLenum target, GLenum name) {
        GLint value = 0;
        glGetTexParameteriv(target, name, &value);
        return value;
    }

    GLint levelParameter(GLenum target, GLenum name, int level = 0) {
        GLint value = 0;
        glGetTexLevelParameteriv(target, level, name, &value);
        return value;
    }
};

TEST_F(TextureTest, TheValuesAreThoseOfOpenGL) {
    EXPECT_EQ(Texture::TARGET_1D, GL_TEXTURE_1D);
    EXPECT_EQ(Texture::TARGET_2D, GL_TEXTURE_2D);
    EXPECT_EQ(Texture::TARGET_3D, GL_TEXTURE_3D);
    EXPECT_EQ(Texture::TARGET_CUBE, GL_TEXTURE_CUBE_MAP);
    EXPECT_EQ(Texture::TARGET_DEFAULT, 34068);
    EXPECT_EQ(texture.getWidth(), -1);
    EXPECT_EQ(texture.getHeight(), -1);
    EXPECT_FALSE(texture.isLoaded());
    EXPECT_FALSE(texture.hasMipmaps());
}

TEST_F(TextureTest, AFileIsReadAtTheFirstBindAndItsPixelsAreLetGo) {
    const am::Image image = makeImage(4, 2, [](int x, int y) { return x == 3 && y == 1 ? GREEN : RED; });
    writeImage("a.png", image);
    texture.load("a.png", false);
    EXPECT_TRUE(texture.isLoaded());
    const std::string printed = printedBy([&] { texture.bind(); });
    EXPECT_TRUE(hasLine(printed, "info", "bind", "Reloading texture from 'a.png'.", "dis_texture.cpp"))
        << printed;
    const Picture picture = readTexture(GL_TEXTURE_2D);
    EXPECT_EQ(picture.width, 4);
    EXPECT_EQ(picture.height, 2);
    EXPECT_EQ(colorAt(picture, 0, 0), RED); // the image's first row is the texture's first
    EXPECT_EQ(colorAt(picture, 3, 1), GREEN);
    EXPECT_EQ(texture.getWidth(), 4);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(printedBy([&] { texture.bind(); }), ""); // it is there
    texture.unbind();
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
}

TEST_F(TextureTest, AnImageIsKeptAndNamedAsSuch) {
    am::Image image = halves(8, 8);
    texture.load(image, false);
    EXPECT_EQ(image.getRef(), 2);
    const std::string printed = printedBy([&] { texture.bind(); });
    EXPECT_TRUE(hasLine(printed, "info", "bind", "Reloading texture from 'am::Image'.", "dis_texture.cpp"));
    EXPECT_EQ(image.getRef(), 2); // for a rebuild
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 7, 0), BLUE);
}

TEST_F(TextureTest, BytesInMemoryAreDecodedAtOnce) {
    writeImage("a.png", halves(8, 8));
    const std::string bytes = readFile(path("a.png"));
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    EXPECT_NE(thrownBy([&] { texture.load("a.png", data, 20, false); }), "nothing");
    EXPECT_FALSE(texture.isLoaded());
    texture.load("a.png", data, int(bytes.size()), false);
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 0, 0), RED);
    EXPECT_EQ(thrownBy([&] { texture.load("a.png", data, int(bytes.size()), false); }),
              "Texture already loaded!");
}

TEST_F(TextureTest, ASecondLoadThrows) {
    texture.load("a.png", false);
    EXPECT_EQ(thrownBy([&] { texture.load("b.png", true); }),
              "Texture; File already loaded, when loading 'b.png'");
    Texture other(&display());
    other.load(halves(8, 8), false);
    EXPECT_EQ(thrownBy([&] { other.load(halves(8, 8), false); }), "Texture already loaded!");
    EXPECT_EQ(thrownBy([&] { other.load("c.png", false); }),
              "Texture; File already loaded, when loading 'c.png'");
    Texture empty(&display());
    empty.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    empty.bind();
    EXPECT_EQ(thrownBy([&] { empty.load(halves(8, 8), false); }), "Texture already loaded!");
}

TEST_F(TextureTest, AMissingFileThrowsAndCanComeLater) {
    texture.load("late.png", false);
    EXPECT_EQ(thrownBy([&] { texture.bind(); }), "loadImage, File not found (late.png)");
    writeImage("late.png", halves(8, 8));
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 0, 0), RED);
}

TEST_F(TextureTest, HundredByFiftyWithoutTheExtensionBecomes128By64) {
    const WithoutExtensions without{NPOT};
    writeImage("wide.png", halves(100, 50));
    texture.load("wide.png", false);
    const std::string printed = printedBy([&] { texture.bind(); });
    EXPECT_TRUE(hasLine(printed, "warning", "bindAndLoadImage",
                        "Warning: Manually rescaling picture 'wide.png'!", "dis_texture.cpp"))
        << printed;
    EXPECT_EQ(texture.getWidth(), 128);
    EXPECT_EQ(texture.getHeight(), 64);
    const Picture picture = readTexture(GL_TEXTURE_2D);
    EXPECT_EQ(picture.width, 128);
    EXPECT_EQ(picture.height, 64);
    EXPECT_EQ(colorAt(picture, 2, 2), RED);
    EXPECT_EQ(colorAt(picture, 60, 60), RED);
    EXPECT_EQ(colorAt(picture, 68, 60), BLUE);
    EXPECT_EQ(colorAt(picture, 125, 2), BLUE);
}

TEST_F(TextureTest, OneOddSideRoundsAndTheOtherStays) {
    const WithoutExtensions without{NPOT};
    texture.load(halves(64, 50), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), 64);
    EXPECT_EQ(texture.getHeight(), 64);
}

TEST_F(TextureTest, SixtyFourByThirtyTwoIsKeptWithoutTheExtension) {
    const WithoutExtensions without{NPOT};
    texture.load(halves(64, 32), false);
    EXPECT_EQ(printedBy([&] { texture.bind(); }).find("rescaling"), std::string::npos);
    EXPECT_EQ(texture.getWidth(), 64);
    EXPECT_EQ(texture.getHeight(), 32);
}

TEST_F(TextureTest, HundredByFiftyIsKeptWithTheExtension) {
    texture.load(halves(100, 50), false);
    texture.bind();
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH), 100);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_HEIGHT), 50);
}

TEST_F(TextureTest, AMipmappedTextureIsScaledByTheMipmapBuilder) {
    const WithoutExtensions without{NPOT};
    texture.load(halves(100, 50), true);
    EXPECT_EQ(printedBy([&] { texture.bind(); }).find("rescaling"), std::string::npos);
    EXPECT_TRUE(texture.hasMipmaps());
    EXPECT_EQ(texture.getWidth(), 100);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH), 128);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH, 3), 16);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D, 3), 1, 1), RED);
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D, 3), 14, 1), BLUE);
}

TEST_F(TextureTest, ATextureWithoutAnImageKeepsItsSizeAndIsBlack) {
    const WithoutExtensions without{NPOT};
    texture.setup(100, 50, Texture::CHAN_DEFAULT, Texture::FORMAT_DEFAULT, Texture::TARGET_DEFAULT);
    texture.bind();
    const Picture picture = readTexture(GL_TEXTURE_2D);
    EXPECT_EQ(picture.width, 100);
    EXPECT_EQ(picture.height, 50);
    for (size_t i = 0; i < picture.rgba.size(); ++i)
        ASSERT_EQ(picture.rgba[i], 0);
}

TEST_F(TextureTest, AGivenSizeScalesTheImage) {
    texture.setup(16, 8, Texture::CHAN_RGB, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    texture.load(halves(64, 64, "big"), false);
    const std::string printed = printedBy([&] { texture.bind(); });
    EXPECT_TRUE(hasLine(printed, "warning", "bindAndLoadImage", "Warning: Manually rescaling picture 'big'!",
                        "dis_texture.cpp"));
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH), 16);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_HEIGHT), 8);
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 15, 7), BLUE);
}

TEST_F(TextureTest, SetupWithZeroTakesTheSizeFromTheImage) {
    texture.setup(0, 0, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    EXPECT_EQ(texture.getWidth(), -1);
    texture.load(halves(32, 16), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), 32);
    EXPECT_EQ(texture.getHeight(), 16);
}

TEST_F(TextureTest, NeitherSourceNorSizeAsserts) {
    EXPECT_DEATH(texture.bind(), "mWidth!=-1 && mHeight!=-1");
    Texture none(nullptr);
    EXPECT_DEATH(none.bind(), "getDisplay\\(\\)");
    EXPECT_DEATH(none.init(), "getDisplay\\(\\)");
}

TEST_F(TextureTest, InitTwiceThrowsOrAsserts) {
    texture.load(halves(8, 8), false);
    texture.init();
    EXPECT_DEATH(texture.init(), "mTexture==0");
}

TEST_F(TextureTest, EveryFormatOfTheTableAndNoOther) {
    const GLenum NO = GL_NONE;
    const struct {
        Texture::Channels channels;
        GLenum formats[8]; // by ChannelFormat; the default is that of 8 bits
    } table[] = {
        {Texture::CHAN_ALPHA, {NO, NO, NO, NO, NO, NO, NO, NO}},
        {Texture::CHAN_RGB, {GL_RGB8, GL_RGB8, GL_RGB16, NO, NO, GL_RGB16F_ARB, GL_RGB32F_ARB, GL_RGB16}},
        {Texture::CHAN_RGBA,
         {GL_RGBA8, GL_RGBA8, GL_RGBA16, NO, NO, GL_RGBA16F_ARB, GL_RGBA32F_ARB, GL_RGBA16}},
        {Texture::CHAN_DEFAULT,
         {GL_RGBA8, GL_RGBA8, GL_RGBA16, NO, NO, GL_RGBA16F_ARB, GL_RGBA32F_ARB, GL_RGBA16}},
        {Texture::CHAN_LA,
         {GL_LUMINANCE8_ALPHA8, GL_LUMINANCE8_ALPHA8, GL_LUMINANCE16_ALPHA16, NO, NO,
          GL_LUMINANCE_ALPHA16F_ARB, GL_LUMINANCE_ALPHA32F_ARB, GL_LUMINANCE16_ALPHA16}},
        {Texture::CHAN_DEPTH,
         {NO, NO, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT32, NO, NO, NO}},
    };
    for (const auto& row : table)
        for (int format = 0; format < 8; ++format) {
            Texture made(&display());
            made.setup(8, 8, row.channels, Texture::ChannelFormat(format), Texture::TARGET_2D);
            const std::string thrown = thrownBy([&] { made.bind(); });
            if (row.formats[format] == NO) {
                EXPECT_EQ(thrown, "Unknown format for texture") << row.channels << " " << format;
                continue;
            }
            ASSERT_EQ(thrown, "nothing") << row.channels << " " << format;
            EXPECT_EQ(GLenum(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_INTERNAL_FORMAT)), row.formats[format])
                << row.channels << " " << format;
        }
}

TEST_F(TextureTest, LuminanceComesFromRed) {
    texture.setup(-1, -1, Texture::CHAN_LA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    texture.load(makeImage(2, 2, [](int, int) { return 0x40506070u; }), false);
    texture.bind();
    unsigned char values[8] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, values);
    EXPECT_EQ(values[0], 0x40);
    EXPECT_EQ(values[1], 0x70);
}

TEST_F(TextureTest, MissingFloatAndCubeExtensionsThrow) {
    std::optional<WithoutExtensions> without;
    without.emplace({"GL_ARB_texture_float", "GL_ARB_texture_cube_map"});
    for (const Texture::ChannelFormat format : {Texture::FORMAT_F16, Texture::FORMAT_F32}) {
        Texture floats(&display());
        floats.setup(8, 8, Texture::CHAN_RGBA, format, Texture::TARGET_2D);
        EXPECT_EQ(thrownBy([&] { floats.bind(); }),
                  "OpenGL does not support float-textures on this computer!");
    }
    texture.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
    EXPECT_EQ(thrownBy([&] { texture.bind(); }), "OpenGL does not support cube maps on this computer!");
    without.reset();
    texture.bind(); // nothing was lost
}

TEST_F(TextureTest, OneDimensionAlongOrDown) {
    for (const bool down : {false, true}) {
        Texture line(&display());
        line.setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_1D);
        line.load(down ? makeImage(1, 16, [](int, int y) { return y < 4 ? RED : GREEN; })
                       : makeImage(16, 1, [](int x, int) { return x < 4 ? RED : GREEN; }),
                  false);
        line.bind();
        EXPECT_EQ(line.getWidth(), 16);
        EXPECT_EQ(line.getHeight(), 1);
        Picture picture(16, 1);
        glGetTexImage(GL_TEXTURE_1D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
        EXPECT_EQ(colorAt(picture, 3, 0), RED);
        EXPECT_EQ(colorAt(picture, 4, 0), GREEN);
    }
    for (const bool mipmaps : {false, true}) {
        Texture square(&display());
        square.setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_1D);
        square.load(halves(2, 2), mipmaps);
        EXPECT_EQ(thrownBy([&] { square.bind(); }), "Loaded 1d-texture but both dimensions are non-1!");
    }
    Texture empty(&display());
    empty.setup(1, 32, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_1D);
    empty.bind();
    EXPECT_EQ(levelParameter(GL_TEXTURE_1D, GL_TEXTURE_WIDTH), 32);
    Texture mipmapped(&display());
    mipmapped.setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_1D);
    mipmapped.load(halves(16, 1), true);
    mipmapped.bind();
    EXPECT_EQ(levelParameter(GL_TEXTURE_1D, GL_TEXTURE_WIDTH, 2), 4);
}

TEST_F(TextureTest, SidesThatCanNotBeAssert) {
    texture.setup(8, -3, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_1D);
    EXPECT_DEATH(texture.bind(), "!\\(mTarget==TARGET_1D && mHeight!=1\\)");
    Texture cube(&display());
    cube.setup(8, 16, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
    EXPECT_DEATH(cube.bind(), "!\\(mTarget==TARGET_CUBE && mHeight!=mWidth\\)");
}

TEST_F(TextureTest, SizesThatOpenGLRefusesThrowItsError) {
    for (const int width : {-7, 1 << 20}) {
        Texture bad(&display());
        bad.setup(width, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
        EXPECT_NE(thrownBy([&] { bad.bind(); }).find("Error: 'GL_INVALID_VALUE'\n"), std::string::npos)
            << width;
        bad.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
        bad.bind(); // it can still be loaded
    }
    Texture deep(&display());
    deep.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_3D);
    EXPECT_NE(thrownBy([&] { deep.bind(); }).find("Error: 'GL_INVALID_ENUM'\n"), std::string::npos);
}

TEST_F(TextureTest, AnImageWithoutPixelsIsAnEmptyTexture) {
    texture.load(am::Image(new am::ImageObject), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), 0);
    Texture sized(&display());
    sized.setup(4, 4, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    sized.load(am::Image(new am::ImageObject), false);
    sized.bind();
    EXPECT_EQ(readTexture(GL_TEXTURE_2D).width, 4);
}

TEST_F(TextureTest, WithMipmapsAndNoImageWiderThanTheDriverTakesIsScaledDown) {
    FakeLimits limits{{GL_MAX_TEXTURE_SIZE, 64}};
    texture.load(am::Image(), true);
    texture.setup(100000, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    texture.bind();
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 64);
    texture.unbind();
}

TEST_F(TextureTest, GenerateMipmapsNeedsATextureAndMakesThem) {
    EXPECT_DEATH(texture.generateMipmaps(), "mInited==true");
    texture.load(halves(16, 16), false);
    texture.bind();
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH, 1), 0);
    texture.generateMipmaps();
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, GL_TEXTURE_WIDTH, 1), 8);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_TRUE(texture.hasMipmaps());
    const WithoutExtensions without{"GL_EXT_framebuffer_object"};
    EXPECT_TRUE(hasLine(printedBy([&] { texture.generateMipmaps(); }), "warning", "generateMipmaps",
                        "GL_EXT_framebuffer_object not supported, no mipmaps are made", "dis_texture.cpp"));
}

TEST_F(TextureTest, SetRepeatSetsBothDirectionsOrEach) {
    texture.load(halves(16, 16), false);
    texture.bind();
    texture.setRepeat(false);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    texture.setRepeat(true, false);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    Texture cube(&display());
    cube.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
    cube.bind();
    EXPECT_DEATH(cube.setRepeat(true), "mTarget!=TARGET_CUBE");
}

// A cross of faces of side s, each in a colour of its own, with an arrow from the middle to its upper edge.
class CubeTest : public TextureTest {
protected:
    static constexpr int S = 64;

    // The faces of the cross, cell by cell: 3 across, 4 down.
    static constexpr uint32_t cells[4][3] = {{0, 0xff0000ff, 0},                   // +y
                                             {0x00ff00ff, 0x0000ffff, 0xffff00ff}, // -x, +z, +x
                                             {0, 0xff00ffff, 0},                   // -y
                                             {0, 0x00ffffff, 0}};                  // -z

    static bool onArrow(int x, int y) { // in a face, y down
        const int dx = x - S / 2;
        return y >= 8 && y < S / 2 && (std::abs(dx) < 3 || (y < 24 && std::abs(dx) < y - 8));
    }

    static am::Image cross() {
        return makeImage(3 * S, 4 * S, [](int x, int y) {
            const uint32_t c = cells[y / S][x / S];
            return c && onArrow(x % S, y % S) ? WHITE : c;
        });
    }

    void setupCube() {
        texture.setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
    }
};

TEST_F(CubeTest, TheFacesAreCutFromTheVerticalCross) {
    setupCube();
    texture.load(cross(), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), S);
    EXPECT_EQ(texture.getHeight(), S);
    EXPECT_EQ(parameter(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_R), GL_CLAMP_TO_EDGE);
    const struct {
        GLenum face;
        int column, row;
        bool backwards;
    } faces[] = {{GL_TEXTURE_CUBE_MAP_POSITIVE_Y, 1, 0, false}, {GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 1, 2, false},
                 {GL_TEXTURE_CUBE_MAP_NEGATIVE_X, 0, 1, false}, {GL_TEXTURE_CUBE_MAP_POSITIVE_X, 2, 1, false},
                 {GL_TEXTURE_CUBE_MAP_POSITIVE_Z, 1, 1, false}, {GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 1, 3, true}};
    for (const auto& f : faces) {
        const Picture picture = readTexture(f.face);
        ASSERT_EQ(picture.width, S);
        for (int y = 0; y < S; ++y)
            for (int x = 0; x < S; ++x) {
                const bool arrow = f.backwards ? onArrow(S - 1 - x, S - 1 - y) : onArrow(x, y);
                ASSERT_EQ(colorAt(picture, x, y), arrow ? WHITE : cells[f.row][f.column])
                    << f.face << " at " << x << ", " << y;
            }
    }
}

TEST_F(CubeTest, TheFaceReadBackwardsIsUpsideDown) {
    setupCube();
    texture.load(cross(), true);
    // The six directions in two rows, -x, +z, +x and +y, -y, -z, each with OpenGL's s and t of that face.
    const struct {
        float middle[3], s[3], t[3];
    } faces[6] = {{{-1, 0, 0}, {0, 0, 1}, {0, -1, 0}}, {{0, 0, 1}, {1, 0, 0}, {0, -1, 0}},
                  {{1, 0, 0}, {0, 0, -1}, {0, -1, 0}}, {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}},
                  {{0, -1, 0}, {1, 0, 0}, {0, 0, -1}}, {{0, 0, -1}, {-1, 0, 0}, {0, -1, 0}}};
    const Picture shown = frame([&] {
        flat();
        texture.bind();
        glEnable(GL_TEXTURE_CUBE_MAP);
        glColor4f(1, 1, 1, 1);
        for (int i = 0; i < 6; ++i) {
            const float x = -0.96f + 0.65f * float(i % 3), y = i < 3 ? 0.1f : -0.8f;
            glBegin(GL_QUADS);
            for (const auto& [cs, ct] :
                 {std::pair(-1.f, 1.f), std::pair(1.f, 1.f), std::pair(1.f, -1.f), std::pair(-1.f, -1.f)}) {
                float direction[3];
                for (int k = 0; k < 3; ++k)
                    direction[k] = faces[i].middle[k] + 0.99f * (cs * faces[i].s[k] + ct * faces[i].t[k]);
                glTexCoord3fv(direction);
                glVertex2f(x + 0.31f * (cs + 1), y + 0.35f * (1 - ct)); // t goes down
            }
            glEnd();
        }
        texture.unbind();
    });
    EXPECT_TRUE(matchesReference("display_cube", shown));
    EXPECT_EQ(colorAt(shown, 10, 20) | 0xff, 0x00ff00ffu);   // -x
    EXPECT_EQ(colorAt(shown, 75, 20) | 0xff, 0x0000ffffu);   // +z
    EXPECT_EQ(colorAt(shown, 140, 20) | 0xff, 0xffff00ffu);  // +x
    EXPECT_EQ(colorAt(shown, 10, 115) | 0xff, 0xff0000ffu);  // +y
    EXPECT_EQ(colorAt(shown, 75, 115) | 0xff, 0xff00ffffu);  // -y
    EXPECT_EQ(colorAt(shown, 140, 115) | 0xff, 0x00ffffffu); // -z
}

TEST_F(CubeTest, CrossesOfTheWrongShapeThrow) {
    const auto outcome = [&](int width, int height, bool fromFile) {
        Texture cube(&display());
        cube.setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
        const am::Image image = makeImage(
            width, height, [](int, int) { return RED; }, "memory");
        if (fromFile) {
            writeImage("cross.png", image);
            cube.load("cross.png", false);
        } else
            cube.load(image, false);
        return thrownBy([&] { cube.bind(); });
    };
    EXPECT_EQ(outcome(190, 255, true),
              "Error when loading cube map from 'cross.png'; longest side must be divisible by 4!");
    EXPECT_EQ(outcome(190, 256, true),
              "Error when loading cube map from 'cross.png'; shorted side must be divisible by 3!");
    EXPECT_EQ(outcome(189, 256, false),
              "Error when loading cube map from 'memory'; the individual faces must be square textures!");
    EXPECT_EQ(outcome(256, 192, false), "Cube maps with horizontal cross is not supported at the moment!");
    EXPECT_EQ(outcome(192, 256, false), "nothing");
    EXPECT_EQ(outcome(0, 0, false), "Cube maps with horizontal cross is not supported at the moment!");
}

TEST_F(CubeTest, ACrossOf192By256GivesFacesOf64) {
    setupCube();
    texture.load(makeImage(192, 256, [](int, int) { return GREEN; }), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), 64);
    EXPECT_EQ(levelParameter(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, GL_TEXTURE_WIDTH), 64);
}

TEST_F(CubeTest, FacesThatAreNoPowerOfTwoAreRounded) {
    const WithoutExtensions without{NPOT};
    setupCube();
    texture.load(makeImage(150, 200, [](int, int) { return GREEN; }), false);
    texture.bind();
    EXPECT_EQ(texture.getWidth(), 64);
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z), 63, 0), GREEN);
}

TEST_F(CubeTest, BindingOneFaceIsRefusedByOpenGL) {
    setupCube();
    texture.load(cross(), false);
    EXPECT_DEATH(texture.bind(6), "side>=0 && side<6");
    EXPECT_DEATH(texture.bind(-2), "side>=0 && side<6");
    const std::string thrown = thrownBy([&] { texture.bind(5); });
    EXPECT_TRUE(std::regex_match(
        thrown, std::regex("GL-error at \\[[0-9]+\\] dis_texture.cpp\nLine: "
                           "glBindTexture\\(GL_TEXTURE_CUBE_MAP_POSITIVE_X \\+ side, mTexture\\)\n"
                           "Error: 'GL_INVALID_ENUM'\n")))
        << thrown;
    Texture plain(&display());
    plain.load(halves(8, 8), false);
    EXPECT_DEATH(plain.bind(0), "mTarget==TARGET_CUBE");
}

TEST_F(TextureTest, AfterSetFullscreenTheFileIsReadAgain) {
    writeImage("a.png", makeImage(8, 8, [](int, int) { return RED; }));
    texture.load("a.png", false);
    texture.bind();
    writeImage("a.png", makeImage(16, 16, [](int, int) { return GREEN; }));
    display().setFullscreen(true);
    const std::string printed = printedBy([&] { texture.bind(); });
    EXPECT_TRUE(hasLine(printed, "info", "bind", "Reloading texture from 'a.png'.", "dis_texture.cpp"))
        << printed;
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 7, 7), GREEN);
    EXPECT_EQ(texture.getWidth(), 8); // the first size stays
    display().setFullscreen(false);
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 7, 7), GREEN);
}

TEST_F(TextureTest, AfterANewContextAnImageComesBackAndATargetIsEmpty) {
    texture.load(halves(8, 8), false);
    Texture target(&display());
    target.setup(8, 8, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    texture.bind();
    target.bind();
    display().close();
    display().open();
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 7, 0), BLUE);
    target.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 7, 0), 0u);
}

TEST_F(TextureTest, ANameOfAContextThatIsGoneIsNotDeleted) {
    auto old = std::make_unique<Texture>(&display());
    old->load(halves(8, 8), false);
    old->bind();
    display().close();
    display().open();
    texture.load(halves(8, 8), false);
    texture.bind(); // has the old texture's name
    GLint name = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
    old.reset();
    EXPECT_TRUE(glIsTexture(GLuint(name)));
}

TEST_F(TextureTest, TheDestructorDeletesTheName) {
    GLint name = 0;
    {
        Texture gone(&display());
        gone.load(halves(8, 8), false);
        gone.bind();
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
        EXPECT_TRUE(glIsTexture(GLuint(name)));
    }
    EXPECT_FALSE(glIsTexture(GLuint(name)));
}

TEST_F(TextureTest, WithoutADisplayThatLoadsAFileCanNotCome) {
    display().setArchive(nullptr);
    texture.load("a.png", false);
    EXPECT_EQ(thrownBy([&] { texture.bind(); }),
              "Display::Resource; This resource can not load files (when loading image 'a.png')");
}

} // namespace
