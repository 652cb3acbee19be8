// A render target: textures to draw into, and a depth buffer.
#pragma once

#include "dis_resource.h"
#include "dis_texture.h"

#include <GL/glew.h>
#include <vector>

namespace zentrak::display {

// Made at its first bind, and made again, empty, after a new context.
class FBO : public Resource {
public:
    enum Attachment : int {
        COLOR0 = 36064,
        COLOR1 = 36065,
        COLOR2 = 36066,
        COLOR3 = 36067,
        DEPTH = 36096,
        STENCIL = 36128
    };

    struct Entry {
        Attachment attachment;
        Texture* texture;
        bool manage; // the texture is this target's own
    };

    explicit FBO(DisplayGL* display);
    ~FBO() override;
    FBO(const FBO&) = delete;
    FBO& operator=(const FBO&) = delete;

    static bool isSupported(); // GL_EXT_framebuffer_object

    // Size in pixels (-1: that of the textures), and whether a depth buffer of 24 bits is wanted. No effect
    // once the target is made.
    void setup(int width, int height, bool renderZ);

    // Before the first bind. A texture gets the target's size, where that is set, and loses its mipmaps. The
    // first form takes a texture of the caller's, who keeps it alive; it asserts "texture!=0". The second
    // makes one, which belongs to the target, and returns it for drawing.
    void attach(Attachment attachment, Texture* texture);
    Texture* attach(Attachment attachment, Texture::Channels channels = Texture::CHAN_DEFAULT,
                    Texture::ChannelFormat format = Texture::FORMAT_DEFAULT);

    // Drawing between the two goes to the target, with the viewport covering it. Targets nest. Throws
    // "Display::FBO; Render Targets not supported [GL_EXT_framebuffer_object]".
    void bind();
    void unbind(); // back to the target and viewport before; nothing if it is not bound

    int getWidth() const { return mScreenX; } // pixels; -1 until set
    int getHeight() const { return mScreenY; }

    void CheckFramebufferStatus(); // prints a line on standard output if the bound target is not complete
    void init();                   // makes it; bind does so by itself

    std::vector<Entry> attachments; // in the order of attach

private:
    void releaseNames() noexcept;

    bool mSetup; // the OpenGL objects exist
    bool mBound;
    bool mRenderZ;
    GLint mOldFBO; // the binding to go back to
    int mContextCount;
    int mScreenX;
    int mScreenY;
    GLuint mFrameBuffer;
    GLuint mDepthTexture; // the renderbuffer
};

} // namespace zentrak::display
