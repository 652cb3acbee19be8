// Sprites are drawn whole where light too faint for 8 bits can show: into a float target, into an sRGB
// target, and by a program.
#include "am_image.h"
#include "dis_fbo.h"
#include "dis_shader.h"
#include "dis_spritecut.h"
#include "dis_texture.h"
#include "gl_fixture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

using namespace zentrak;
using namespace zentrak::test;
using display::Batch;
using display::FBO;
using display::SpriteCut;
using display::Texture;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int TEXELS = 32;
constexpr int SIDE = 200;   // pixels of the target
constexpr int LAYERS = 100; // each too faint to see alone

const Vector4f FAINT(0.05f, 0.04f, 0.03f, 0.15f);

// A glow that ends in a circle.
am::Image glow() {
    auto* object = new am::ImageObject;
    object->resize(TEXELS, TEXELS);
    unsigned char* texel = object->getWriteData();
    for (int y = 0; y < TEXELS; ++y)
        for (int x = 0; x < TEXELS; ++x, texel += 4) {
            const float r = std::hypot(2 * float(x) + 1 - TEXELS, 2 * float(y) + 1 - TEXELS) / TEXELS;
            texel[0] = texel[1] = texel[2] = 255;
            texel[3] = static_cast<unsigned char>(255 * std::max(0.0f, 1 - r));
        }
    return am::Image(object);
}

class SpriteCutTargetTest : public GlTest {
protected:
    using Pixels = std::vector<float>; // four for each

    std::unique_ptr<Texture> mTexture;
    SpriteCut mCut;
    float mReach = -1; // of the last sprites drawn

    void SetUp() override {
        window(320, 240);
        mTexture = std::make_unique<Texture>(&display());
        mTexture->load(glow(), true);
        mTexture->bind();
        mCut.readTexture();
        mTexture->unbind();
    }
    void TearDown() override { mTexture.reset(); }

    // Many sprites on top of each other over a square of pixels, cut by `cut` or whole.
    void drawLayers(const SpriteCut& cut, const std::function<void()>& state) {
        Matrix4x4Col project;
        project.setProjectOrtho(0, SIDE, 0, SIDE, -1, 1);
        display().setProject(project);
        display().setModelView();
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        mTexture->bind();
        state();
        SpriteCut way = cut;
        Batch batch;
        const Vector3f middle(SIDE / 2, SIDE / 2, 0);
        way.look(Vector3f(1, 0, 0), Vector3f(0, 1, 0));
        mReach = way.reachOf(middle, SIDE / 2, FAINT);
        batch.color(FAINT);
        for (int i = 0; i < LAYERS; ++i)
            way.draw(batch, middle, SIDE / 2, FAINT);
        batch.flush();
        mTexture->unbind();
    }

    // The square, drawn into `target` or, without one, into the window.
    Pixels draw(FBO* target, const SpriteCut& cut, const std::function<void()>& state,
                const std::function<void()>& undo) {
        Pixels pixels(size_t(SIDE) * SIDE * 4);
        frame([&] {
            if (target)
                target->bind();
            else
                glViewport(0, 0, SIDE, SIDE);
            drawLayers(cut, state);
            glReadPixels(0, 0, SIDE, SIDE, GL_RGBA, GL_FLOAT, pixels.data());
            undo();
            if (target)
                target->unbind();
            else
                glViewport(0, 0, 320, 240);
            display().resetStates();
        });
        return pixels;
    }

    // Both ways, with light far from the centre in both. Without a texture read, a cut sprite is whole.
    void expectWhole(
        FBO* target, const std::function<void()>& state = [] {}, const std::function<void()>& undo = [] {}) {
        const Pixels whole = draw(target, SpriteCut(), state, undo);
        const Pixels cut = draw(target, mCut, state, undo);
        EXPECT_EQ(mReach, 1);
        size_t apart = 0;
        for (size_t i = 0; i < whole.size(); ++i)
            apart += whole[i] != cut[i];
        EXPECT_EQ(apart, 0u);
        EXPECT_GT(whole[size_t(SIDE / 2 * SIDE + SIDE / 10) * 4], 0) << "nothing is seen of the rim";
    }
};

} // namespace

// Shows that the other tests test something: in 8 bits the same sprites are cut, and the rim is dark.
TEST_F(SpriteCutTargetTest, InEightBitsTheFaintRimIsNotDrawn) {
    FBO target(&display());
    target.setup(SIDE, SIDE, false);
    target.attach(FBO::COLOR0, Texture::CHAN_RGBA, Texture::FORMAT_UINT8);
    for (FBO* into : {static_cast<FBO*>(nullptr), &target}) {
        const Pixels cut = draw(
            into, mCut, [] {}, [] {});
        EXPECT_LT(mReach, 0.9f);
        EXPECT_EQ(cut[size_t(SIDE / 2 * SIDE + SIDE / 10) * 4], 0);
        EXPECT_EQ(cut, draw(
                           into, SpriteCut(), [] {}, [] {}));
    }
}

TEST_F(SpriteCutTargetTest, AFloatTargetGetsWholeSprites) {
    for (const Texture::ChannelFormat format : {Texture::FORMAT_F16, Texture::FORMAT_F32}) {
        FBO target(&display());
        target.setup(SIDE, SIDE, false);
        target.attach(FBO::COLOR0, Texture::CHAN_RGBA, format);
        expectWhole(&target);
    }
}

TEST_F(SpriteCutTargetTest, ATargetOfSixteenBitsGetsWholeSprites) {
    FBO target(&display());
    target.setup(SIDE, SIDE, false);
    target.attach(FBO::COLOR0, Texture::CHAN_RGBA, Texture::FORMAT_UINT16);
    expectWhole(&target);
}

// A little light is many steps of sRGB.
TEST_F(SpriteCutTargetTest, AnSRGBTargetGetsWholeSprites) {
    ASSERT_TRUE(GLEW_VERSION_3_0);
    GLuint target = 0, color = 0;
    frame([&] {
        glGenFramebuffers(1, &target);
        glGenRenderbuffers(1, &color);
        glBindRenderbuffer(GL_RENDERBUFFER, color);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_SRGB8_ALPHA8, SIDE, SIDE);
    });
    expectWhole(
        nullptr,
        [&] {
            glBindFramebuffer(GL_FRAMEBUFFER, target);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
            ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
            glClear(GL_COLOR_BUFFER_BIT);
            glEnable(GL_FRAMEBUFFER_SRGB);
        },
        [] {
            glDisable(GL_FRAMEBUFFER_SRGB);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
        });
    glDeleteFramebuffers(1, &target);
    glDeleteRenderbuffers(1, &color);
}

// This program makes light where the texture has no alpha.
TEST_F(SpriteCutTargetTest, UnderAProgramSpritesAreWhole) {
    static const char VERTEX[] = "void main() { gl_Position = ftransform(); gl_TexCoord[0] = "
                                 "gl_MultiTexCoord0; gl_FrontColor = gl_Color; }\n";
    static const char FRAGMENT[] = "uniform sampler2D picture;\nvoid main() { gl_FragColor = vec4(0.5, 0.5, "
                                   "0.5, 1.0 - texture2D(picture, gl_TexCoord[0].xy).a); }\n";
    display::ShaderProgram program(&display());
    display::VertexShader vertex(&display());
    display::FragmentShader fragment(&display());
    vertex.compile(reinterpret_cast<const unsigned char*>(VERTEX), int(strlen(VERTEX)), "vertex");
    fragment.compile(reinterpret_cast<const unsigned char*>(FRAGMENT), int(strlen(FRAGMENT)), "fragment");
    program.attach(vertex, fragment);
    program.link();
    expectWhole(
        nullptr, [&] { program.bind(); }, [&] { program.unbind(); });
}

// Its colours may be brighter than white, which makes faint alpha visible.
TEST_F(SpriteCutTargetTest, ATextureOfFloatsIsNotCut) {
    std::vector<float> texels;
    for (int i = 0; i < TEXELS * TEXELS; ++i) {
        const auto place = [](int j) { return (2 * float(j) + 1) / TEXELS - 1; };
        const float r = std::hypot(place(i % TEXELS), place(i / TEXELS));
        texels.insert(texels.end(), {8, 8, 8, std::max(0.0f, 1 - r)});
    }
    GLuint texture = 0;
    frame([&] {
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, TEXELS, TEXELS, 0, GL_RGBA, GL_FLOAT, texels.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        mCut.readTexture();
    });
    expectWhole(nullptr, [&] { glBindTexture(GL_TEXTURE_2D, texture); });
    glDeleteTextures(1, &texture);
}
