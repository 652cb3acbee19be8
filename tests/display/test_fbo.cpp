// Render targets on a real context.
#include "dis_fbo.h"

#include "gl_objects.h"

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::display;

namespace {

class FboTest : public GlObjects {
protected:
    FBO fbo{&display()};
    Texture texture{&display()};

    static void clearTo(float r, float g, float b) {
        glClearColor(r, g, b, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    static GLint boundTarget() {
        GLint bound = -1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &bound);
        return bound;
    }

    static std::string viewport() {
        GLint v[4];
        glGetIntegerv(GL_VIEWPORT, v);
        return std::to_string(v[0]) + " " + std::to_string(v[1]) + " " + std::to_string(v[2]) + " " +
               std::to_string(v[3]);
    }
};

TEST_F(FboTest, TheAttachmentsAreThoseOfOpenGL) {
    EXPECT_EQ(FBO::COLOR0, GL_COLOR_ATTACHMENT0_EXT);
    EXPECT_EQ(FBO::COLOR1, GL_COLOR_ATTACHMENT1_EXT);
    EXPECT_EQ(FBO::COLOR2, GL_COLOR_ATTACHMENT2_EXT);
    EXPECT_EQ(FBO::COLOR3, GL_COLOR_ATTACHMENT3_EXT);
    EXPECT_EQ(FBO::DEPTH, GL_DEPTH_ATTACHMENT_EXT);
    EXPECT_EQ(FBO::STENCIL, GL_STENCIL_ATTACHMENT_EXT);
    EXPECT_TRUE(FBO::isSupported());
    EXPECT_EQ(fbo.getWidth(), -1);
    EXPECT_EQ(fbo.getHeight(), -1);
}

TEST_F(FboTest, DrawingsIntoItAreInItsTexture) {
    fbo.setup(320, 256, true);
    fbo.attach(FBO::COLOR0, &texture);
    EXPECT_EQ(texture.getWidth(), 320);
    EXPECT_EQ(texture.getHeight(), 256);
    const Picture shown = frame([&] {
        EXPECT_EQ(viewport(), "0 0 200 200");
        fbo.bind();
        EXPECT_EQ(viewport(), "0 0 320 256");
        clearTo(0, 0, 1);
        flat();
        glEnable(GL_DEPTH_TEST);
        glColor4f(1, 0, 0, 1);
        display().drawBox(-0.5f, 0, -0.5f, 0.5f, 1, 0); // nearer
        glColor4f(0, 1, 0, 1);
        display().drawBox(0, 0, 0.5f, 0.7f, 1, 0); // behind, drawn later
        glDisable(GL_DEPTH_TEST);
        fbo.unbind();
        EXPECT_EQ(viewport(), "0 0 200 200");
        EXPECT_EQ(boundTarget(), 0);
        clearTo(0, 0, 0);
        glEnable(GL_TEXTURE_2D);
        texture.bind();
        glColor4f(1, 1, 1, 1);
        display().drawBox(0, 0, 1, 1);
        texture.unbind();
    });
    EXPECT_EQ(colorAt(shown, 50, 100), 0xff0000ffu);
    EXPECT_EQ(colorAt(shown, 150, 100), 0x00ff00ffu);
    EXPECT_EQ(colorAt(shown, 190, 100), 0x0000ffffu);
}

TEST_F(FboTest, SetupAfterTheFirstBindChangesNothing) {
    fbo.setup(64, 32, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    fbo.unbind();
    fbo.setup(128, 128, true);
    EXPECT_EQ(fbo.getWidth(), 64);
    EXPECT_EQ(fbo.getHeight(), 32);
    fbo.init(); // likewise
    texture.bind();
    EXPECT_EQ(readTexture(GL_TEXTURE_2D).width, 64);
}

TEST_F(FboTest, TargetsNestAndGoBackToTheOneBefore) {
    FBO inner(&display());
    Texture innerTexture(&display());
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    inner.setup(32, 32, false);
    inner.attach(FBO::COLOR0, &innerTexture);
    frame([&] {
        fbo.bind();
        const GLint outerName = boundTarget();
        clearTo(1, 0, 0);
        inner.bind();
        EXPECT_NE(boundTarget(), outerName);
        EXPECT_EQ(viewport(), "0 0 32 32");
        clearTo(0, 1, 0);
        inner.unbind();
        EXPECT_EQ(boundTarget(), outerName);
        EXPECT_EQ(viewport(), "0 0 64 64");
        fbo.unbind();
        EXPECT_EQ(boundTarget(), 0);
    });
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 5, 5), 0xff0000ffu);
    innerTexture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 5, 5), 0x00ff00ffu);
}

TEST_F(FboTest, AfterBindingTwiceUnbindStillGoesBack) {
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    frame([&] {
        for (int i = 0; i < 40; ++i) // more than the attribute stack is deep
            fbo.bind();
        fbo.unbind();
        EXPECT_EQ(boundTarget(), 0);
        EXPECT_EQ(viewport(), "0 0 200 200");
    });
}

TEST_F(FboTest, UnbindWithoutBindDoesNothing) {
    fbo.unbind();
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    fbo.unbind();
    frame([&] {
        fbo.unbind();
        EXPECT_EQ(viewport(), "0 0 200 200");
    });
}

TEST_F(FboTest, AttachedTexturesLoseTheirMipmaps) {
    texture.load(makeImage(64, 64, [](int, int) { return 0xff0000ffu; }), true);
    EXPECT_TRUE(texture.hasMipmaps());
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    fbo.unbind();
    EXPECT_FALSE(texture.hasMipmaps());
    texture.bind();
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(filter, GL_LINEAR);
}

TEST_F(FboTest, ATargetMakesTexturesOfItsOwn) {
    GLint name = 0;
    {
        FBO own(&display());
        own.setup(32, 16, false);
        Texture* color = own.attach(FBO::COLOR0, Texture::CHAN_RGBA, Texture::FORMAT_F16);
        Texture* depth = own.attach(FBO::DEPTH, Texture::CHAN_DEPTH, Texture::FORMAT_UINT24);
        ASSERT_EQ(own.attachments.size(), 2u);
        EXPECT_TRUE(own.attachments[0].manage);
        EXPECT_EQ(own.attachments[1].texture, depth);
        EXPECT_EQ(own.attachments[1].attachment, FBO::DEPTH);
        EXPECT_EQ(printedBy([&] { own.bind(); }).find("Framebuffer"), std::string::npos);
        clearTo(2, 0, 0); // more than 1 stays
        own.unbind();
        color->bind();
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
        float red[4 * 32 * 16] = {};
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, red);
        EXPECT_EQ(red[0], 2.0f);
        color->unbind();
    }
    EXPECT_FALSE(glIsTexture(GLuint(name)));
    fbo.attach(FBO::COLOR0, &texture);
    EXPECT_FALSE(fbo.attachments[0].manage);
    EXPECT_DEATH(fbo.attach(FBO::COLOR0, static_cast<Texture*>(nullptr)), "`texture!=0'");
}

TEST_F(FboTest, SeveralColoursAtOnce) {
    Texture second(&display());
    fbo.setup(16, 16, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.attach(FBO::COLOR1, &second);
    fbo.bind();
    const GLenum both[2] = {GL_COLOR_ATTACHMENT0_EXT, GL_COLOR_ATTACHMENT1_EXT};
    glDrawBuffers(2, both);
    clearTo(0, 1, 1);
    fbo.unbind();
    for (Texture* each : {&texture, &second}) {
        each->bind();
        EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 3, 3), 0x00ffffffu);
    }
}

TEST_F(FboTest, WithoutASizeOfItsOwnItTakesTheTextures) {
    texture.setup(48, 24, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
    fbo.attach(FBO::COLOR0, &texture);
    frame([&] {
        fbo.bind();
        EXPECT_EQ(viewport(), "0 0 48 24");
        fbo.unbind();
    });
    EXPECT_EQ(fbo.getWidth(), -1);
}

TEST_F(FboTest, MissingRenderTargetsThrow) {
    const WithoutExtensions without{"GL_EXT_framebuffer_object"};
    EXPECT_FALSE(FBO::isSupported());
    fbo.setup(64, 64, true);
    fbo.attach(FBO::COLOR0, &texture);
    EXPECT_EQ(thrownBy([&] { fbo.bind(); }),
              "Display::FBO; Render Targets not supported [GL_EXT_framebuffer_object]");
    fbo.unbind();
}

TEST_F(FboTest, AnIncompleteTargetIsPrintedAndWorkGoesOn) {
    fbo.setup(64, 64, false);
    EXPECT_EQ(printedBy([&] { fbo.bind(); }), "Framebuffer incomplete, missing attachment\n");
    fbo.unbind();
    EXPECT_EQ(boundTarget(), 0);
    EXPECT_EQ(printedBy([&] { fbo.bind(); }), ""); // once, when it is made
    fbo.unbind();
}

TEST_F(FboTest, EveryStatusHasItsLine) {
    const std::pair<GLenum, const char*> table[] = {
        {GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT, "Framebuffer incomplete, missing attachment\n"},
        {GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT,
         "Framebuffer incomplete, attached images must have same dimensions\n"},
        {GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT,
         "Framebuffer incomplete, attached images must have same format\n"},
        {GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT, "Framebuffer incomplete, missing draw buffer\n"},
        {GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT, "Framebuffer incomplete, missing read buffer\n"},
        {GL_FRAMEBUFFER_UNSUPPORTED_EXT, "Unsupported framebuffer format\n"},
        {GL_FRAMEBUFFER_COMPLETE_EXT, ""},
        {0x1234, ""},
    };
    static GLenum status;
    const auto check = __glewCheckFramebufferStatusEXT;
    __glewCheckFramebufferStatusEXT = [](GLenum) { return status; };
    for (const auto& [value, text] : table) {
        status = value;
        EXPECT_EQ(printedBy([&] { fbo.CheckFramebufferStatus(); }), text);
    }
    __glewCheckFramebufferStatusEXT = check;
}

TEST_F(FboTest, ATargetThatOpenGLRefusesLeavesTheOldOneBound) {
    fbo.setup(1 << 20, 16, true);
    const std::string thrown = thrownBy([&] { fbo.bind(); });
    EXPECT_NE(thrown.find("Error: 'GL_INVALID_VALUE'\n"), std::string::npos) << thrown;
    EXPECT_EQ(boundTarget(), 0);
    fbo.setup(16, 16, true); // it can be another
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    fbo.unbind();
    FBO wrong(&display());
    wrong.setup(16, 16, false);
    wrong.attach(FBO::COLOR0, Texture::CHAN_ALPHA);
    EXPECT_EQ(thrownBy([&] { wrong.bind(); }), "Unknown format for texture");
    EXPECT_EQ(boundTarget(), 0);
}

TEST_F(FboTest, AfterSetFullscreenItIsMadeAgainEmpty) {
    fbo.setup(64, 64, true);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    clearTo(1, 0, 0);
    fbo.unbind();
    display().setFullscreen(true);
    const std::string printed = printedBy([&] { fbo.bind(); });
    EXPECT_EQ(printed.substr(0, 14), "Reloading fbo\n") << printed;
    EXPECT_EQ(printed.find("incomplete"), std::string::npos);
    fbo.unbind();
    texture.bind();
    EXPECT_EQ(colorAt(readTexture(GL_TEXTURE_2D), 5, 5), 0u);
    EXPECT_EQ(printedBy([&] { fbo.bind(); }), "");
    fbo.unbind();
    display().setFullscreen(false);
    EXPECT_EQ(printedBy([&] { fbo.bind(); }).substr(0, 14), "Reloading fbo\n");
    fbo.unbind();
}

TEST_F(FboTest, ATargetBoundWhenItsContextGoesIsUnboundWithIt) {
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    display().close();
    display().open();
    fbo.unbind(); // its attribute stack is gone too
    EXPECT_EQ(GLenum(glGetError()), GLenum(GL_NO_ERROR));
    EXPECT_EQ(printedBy([&] { fbo.bind(); }).substr(0, 14), "Reloading fbo\n");
    fbo.unbind();
}

TEST_F(FboTest, TheDestructorDeletesOnlyNamesOfThisContext) {
    auto gone = std::make_unique<FBO>(&display());
    Texture target(&display());
    gone->setup(16, 16, true);
    gone->attach(FBO::COLOR0, &target);
    gone->bind();
    const GLint name = boundTarget();
    gone.reset(); // while it is bound
    EXPECT_EQ(boundTarget(), 0);
    EXPECT_FALSE(glIsFramebufferEXT(GLuint(name)));

    auto old = std::make_unique<FBO>(&display());
    old->setup(16, 16, false);
    old->attach(FBO::COLOR0, &target);
    old->bind();
    old->unbind();
    display().close();
    display().open();
    fbo.setup(64, 64, false);
    fbo.attach(FBO::COLOR0, &texture);
    fbo.bind();
    const GLint fresh = boundTarget();
    fbo.unbind();
    old.reset();
    EXPECT_TRUE(glIsFramebufferEXT(GLuint(fresh)));
}

} // namespace
