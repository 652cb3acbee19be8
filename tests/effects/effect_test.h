// Shared by the tests of effects.
#pragma once

#include "am_archivemanager.h"
#include "effect_random.h"
#include "gl_fixture.h"
#include "kin_effect.h"
#include "support.h"

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

namespace zentrak::test {

// While it lives, every effect that is built gets the same random numbers.
class FixedRandom {
public:
    explicit FixedRandom(uint32_t start = 1) { mathbase::fixRandomStart(start); }
    ~FixedRandom() { mathbase::fixRandomStart(std::nullopt); }
    FixedRandom(const FixedRandom&) = delete;
    FixedRandom& operator=(const FixedRandom&) = delete;
};

// Sets `effect` up as the driver does.
inline void prepare(kindler::Effect& effect, display::DisplayGL& display, const std::string& name) {
    effect.mName = name;
    effect.mDisplay = &display;
    effect.setup();
}

// While it lives, the display finds the files written here before those of data/.
class OwnFiles {
public:
    explicit OwnFiles(display::DisplayGL& display) : mDisplay(display), mBefore(display.mArchiveManager) {
        mArchives.addArchive(mFolder.path());
        mArchives.addArchive(sourcePath("data"));
        display.setArchive(&mArchives);
    }
    ~OwnFiles() { mDisplay.setArchive(mBefore); }
    OwnFiles(const OwnFiles&) = delete;
    OwnFiles& operator=(const OwnFiles&) = delete;

    void write(const std::string& name, const std::string& bytes) {
        const std::filesystem::path path = mFolder.file(name);
        std::filesystem::create_directories(path.parent_path());
        writeFile(path.string(), bytes);
    }
    void write(const std::string& name, const Picture& picture) {
        EXPECT_TRUE(writePng(mFolder.file(name), picture));
    }

private:
    TempDir mFolder;
    am::ArchiveManager mArchives;
    display::DisplayGL& mDisplay;
    am::ArchiveManager* mBefore;
};

// The text of what the call throws, or an empty text.
inline std::string thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::exception& exception) {
        return exception.what();
    }
    return "";
}

// An opaque white picture.
inline Picture whitePicture(int width, int height) {
    Picture picture(width, height);
    picture.rgba.assign(picture.rgba.size(), 255);
    return picture;
}

constexpr const char* NULL_IMAGE = "Image::operator->() - Attempt to dereference (NULL)ImageObject!";

// Programs that show the normals, 0 to 255 for -1 to 1, and that mirror the picture left to right, so that
// the faces turned away become those that GL_CULL_FACE keeps.
inline const std::string SHOW_NORMALS =
    "varying vec3 n; void main() { n = gl_Normal; gl_Position = ftransform(); }";
inline const std::string NORMAL_COLORS =
    "varying vec3 n; void main() { gl_FragColor = vec4(0.5 * n + 0.5, 1.0); }";
inline const std::string MIRROR = "void main() { gl_Position = ftransform() * vec4(-1.0, 1.0, 1.0, 1.0); }";
inline const std::string WHITE = "void main() { gl_FragColor = vec4(1.0); }";

// The fixture of the effects: a small window, and random numbers with the seed START. Tests that draw one
// picture in two ways compare them over a ground of one colour.
class EffectTest : public GlTest {
protected:
    static constexpr uint32_t START = 1;

    FixedRandom mFixed{START};
    kindler::Common mCommon;

    void SetUp() override { window(400, 250); }

    Picture over(float r, float g, float b, const std::function<void()>& draw) {
        return frame([&] {
            glClearColor(r, g, b, 1);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            draw();
        });
    }
};

// While it lives, a program is bound that draws as fixed function would. Under a program, which could move
// vertices, the batch and SpriteCut leave nothing out.
class SendEverything {
public:
    explicit SendEverything(bool textured) : mProgram(glCreateProgram()) {
        const char* vertex = "void main() { gl_FrontColor = gl_Color; gl_TexCoord[0] = gl_MultiTexCoord0; "
                             "gl_Position = ftransform(); }";
        const char* plain = "void main() { gl_FragColor = gl_Color; }";
        const char* modulated = "uniform sampler2D unit0; void main() { "
                                "gl_FragColor = gl_Color * texture2D(unit0, gl_TexCoord[0].xy); }";
        attach(GL_VERTEX_SHADER, vertex);
        attach(GL_FRAGMENT_SHADER, textured ? modulated : plain);
        glLinkProgram(mProgram);
        glUseProgram(mProgram);
    }
    ~SendEverything() {
        glUseProgram(0);
        glDeleteProgram(mProgram);
    }
    SendEverything(const SendEverything&) = delete;
    SendEverything& operator=(const SendEverything&) = delete;

private:
    void attach(GLenum kind, const char* text) {
        const GLuint shader = glCreateShader(kind);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(mProgram, shader);
        glDeleteShader(shader);
    }

    GLuint mProgram;
};

// The mean of the three channels over the pixels from (x0, y0) up to, not including, (x1, y1), 0 to 255.
inline double brightness(const Picture& picture, int x0, int y0, int x1, int y1) {
    double sum = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            for (int c = 0; c < 3; ++c)
                sum += picture.at(x, y)[c];
    return sum / (3.0 * (x1 - x0) * (y1 - y0));
}
inline double brightness(const Picture& picture) {
    return brightness(picture, 0, 0, picture.width, picture.height);
}

// Whether two pictures are the same but for rounding.
inline ::testing::AssertionResult samePicture(const Picture& drawn, const Picture& plain,
                                              double maxChanged = 0.0005) {
    const PictureDifference difference = comparePictures(drawn, plain);
    if (difference.mean < 0.2 && difference.changed < maxChanged)
        return ::testing::AssertionSuccess();
    writePng(binaryPath("pictures-failed/differs-drawn.png"), drawn);
    writePng(binaryPath("pictures-failed/differs-plain.png"), plain);
    return ::testing::AssertionFailure() << "mean difference " << difference.mean << ", changed pixels "
                                         << difference.changed << "; see pictures-failed/differs-*.png";
}

// The share of pixels that differ from the ground, whose colour is that of the corner (0, 0) of `ground`.
inline double covered(const Picture& picture, const Picture& ground) {
    return comparePictures(picture, ground).changed;
}

} // namespace zentrak::test
