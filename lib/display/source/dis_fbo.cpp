#include "dis_fbo.h"

#include "dis_context.h"
#include "ztk_system.h"

#include <cassert>
#include <cstdio>
#include <memory>

namespace zentrak::display {

FBO::FBO(DisplayGL* display)
    : Resource(display, STATIC),
      mSetup(false),
      mBound(false),
      mRenderZ(false),
      mOldFBO(0),
      mContextCount(0),
      mScreenX(-1),
      mScreenY(-1),
      mFrameBuffer(0),
      mDepthTexture(0) {}

FBO::~FBO() {
    if (mSetup && contextIsCurrent(mContextCount)) {
        if (mBound) {
            glPopAttrib();
            glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, GLuint(mOldFBO));
        }
        releaseNames();
    }
    for (const Entry& e : attachments)
        if (e.manage)
            delete e.texture;
}

void FBO::releaseNames() noexcept {
    if (mFrameBuffer)
        glDeleteFramebuffersEXT(1, &mFrameBuffer);
    if (mDepthTexture)
        glDeleteRenderbuffersEXT(1, &mDepthTexture);
    mFrameBuffer = mDepthTexture = 0;
}

bool FBO::isSupported() {
    static const std::string name = "GL_EXT_framebuffer_object"; // each bind asks
    return DisplayGL::hasExtension(name);
}

void FBO::setup(int width, int height, bool renderZ) {
    if (mSetup)
        return;
    mScreenX = width;
    mScreenY = height;
    mRenderZ = renderZ;
}

void FBO::attach(Attachment attachment, Texture* texture) {
    assert(texture!=0);
    if (mScreenX != -1)
        texture->mWidth = mScreenX;
    if (mScreenY != -1)
        texture->mHeight = mScreenY;
    attachments.push_back({attachment, texture, false});
}

Texture* FBO::attach(Attachment attachment, Texture::Channels channels, Texture::ChannelFormat format) {
    auto texture = std::make_unique<Texture>(getDisplay());
    texture->setup(-1, -1, channels, format, Texture::TARGET_2D);
    attach(attachment, texture.get());
    attachments.back().manage = true;
    return texture.release();
}

void FBO::init() {
    if (mSetup)
        return;
    if (!isSupported())
        throw Exception("Display::FBO; Render Targets not supported [GL_EXT_framebuffer_object]");
    assert(getDisplay());
    mBound = false;
    GLint before = 0;
    GL_CALL(glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &before));
    try {
        GL_CALL(glGenFramebuffersEXT(1, &mFrameBuffer));
        GL_CALL(glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, mFrameBuffer));
        for (const Entry& e : attachments) {
            if (mScreenX != -1)
                e.texture->mWidth = mScreenX;
            if (mScreenY != -1)
                e.texture->mHeight = mScreenY;
            e.texture->mMipmaps = false;
            e.texture->bind(-1);
            e.texture->unbind();
            GL_CALL(glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, e.attachment, e.texture->mTarget, e.texture->mTexture, 0));
        }
        if (mRenderZ) {
            GL_CALL(glGenRenderbuffersEXT(1, &mDepthTexture));
            GL_CALL(glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, mDepthTexture));
            GL_CALL(glRenderbufferStorageEXT( GL_RENDERBUFFER_EXT, GL_DEPTH_COMPONENT24, mScreenX, mScreenY ));
            GL_CALL(glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT,GL_DEPTH_ATTACHMENT_EXT, GL_RENDERBUFFER_EXT, mDepthTexture ));
        }
        CheckFramebufferStatus();
        GL_CALL(glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0));
    } catch (...) {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, GLuint(before));
        releaseNames();
        throw;
    }
    mSetup = true;
    mContextCount = currentContext();
}

void FBO::bind() {
    assert(getDisplay());
    if (mSetup && !contextIsCurrent(mContextCount)) {
        std::puts("Reloading fbo");
        mSetup = false;
        mFrameBuffer = 0;
        mDepthTexture = 0;
        mBound = false;
    }
    GLint before = 0;
    if (isSupported())
        GL_CALL(glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &before));
    if (!mSetup) {
        init();
        GL_CALL(glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, GLuint(before)));
    }
    if (!mBound) { // bound twice, it goes back to where it was first
        mOldFBO = before;
        GL_CALL(glPushAttrib(GL_VIEWPORT_BIT));
    }
    mBound = true;
    GL_CALL(glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, mFrameBuffer));
    int width = mScreenX, height = mScreenY;
    if (!attachments.empty()) {
        width = width != -1 ? width : attachments[0].texture->mWidth;
        height = height != -1 ? height : attachments[0].texture->mHeight;
    }
    GL_CALL(glViewport(0, 0, width, height));
}

void FBO::unbind() {
    if (!mSetup || !mBound)
        return;
    mBound = false;
    if (!contextIsCurrent(mContextCount))
        return;
    GL_CALL(glPopAttrib());
    GL_CALL(glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, GLuint(mOldFBO)));
}

void FBO::CheckFramebufferStatus() {
    GLenum status = GL_FRAMEBUFFER_COMPLETE_EXT;
    GL_CALL(status = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT));
    switch (status) {
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT:
        std::puts("Framebuffer incomplete, missing attachment");
        break;
    case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
        std::puts("Framebuffer incomplete, attached images must have same dimensions");
        break;
    case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
        std::puts("Framebuffer incomplete, attached images must have same format");
        break;
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT:
        std::puts("Framebuffer incomplete, missing draw buffer");
        break;
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT:
        std::puts("Framebuffer incomplete, missing read buffer");
        break;
    case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
        std::puts("Unsupported framebuffer format");
        break;
    default:
        break;
    }
}

} // namespace zentrak::display
