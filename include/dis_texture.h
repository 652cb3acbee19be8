// One texture: described first, made at its first use, and made again in a new context.
#pragma once

#include "dis_resource.h"

#include <GL/glew.h>
#include <string>

namespace zentrak::display {

class Texture : public Resource {
public:
    enum Channels : int {
        CHAN_DEFAULT = 0, // CHAN_RGBA
        CHAN_ALPHA = 1,   // has no format
        CHAN_RGB = 2,
        CHAN_RGBA = 3,
        CHAN_LA = 4, // luminance, from red, and alpha
        CHAN_DEPTH = 5
    };
    enum ChannelFormat : int {
        FORMAT_DEFAULT = 0, // FORMAT_UINT8
        FORMAT_UINT8 = 1,
        FORMAT_UINT16 = 2,
        FORMAT_UINT24 = 3, // of CHAN_DEPTH alone
        FORMAT_UINT32 = 4, // of CHAN_DEPTH alone
        FORMAT_F16 = 5,
        FORMAT_F32 = 6,
        FORMAT_HDR = 7 // as FORMAT_UINT16
    };
    enum Target : int {
        TARGET_1D = 3552,
        TARGET_2D = 3553,
        TARGET_3D = 32879, // has no way to load
        TARGET_CUBE = 34067,
        TARGET_DEFAULT = 34068 // TARGET_2D
    };

    explicit Texture(DisplayGL* display);
    ~Texture() override;
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    // Its description, for the next time it is made. A width or height of 0 or -1 is taken from the image.
    void setup(int width, int height, Channels channels, ChannelFormat format, Target target);

    // The source of its pixels: a file, which is read when the texture is made; an image, which is kept; or
    // bytes in memory, which are decoded at once (the extension of `name` gives their format) and stay the
    // caller's. Throws "Texture; File already loaded, when loading '%s'" (the first) and "Texture already
    // loaded!" (the others). A cube map is cut out of a cross, 3 faces wide and 4 high.
    void load(const std::string& filename, bool mipmaps);
    void load(am::Image image, bool mipmaps);
    void load(const std::string& name, const unsigned char* data, int length, bool mipmaps);

    // Binds it to the active unit, and makes it if it is not there yet or lost its context. A `side` of 0 to
    // 5 asks for one face of a cube map, a target that OpenGL refuses to bind to: "GL_INVALID_ENUM". Asserts
    // "getDisplay()", and for a side "mTarget==TARGET_CUBE" and "side>=0 && side<6"; throws what init throws.
    void bind(int side = -1);
    void unbind();

    // Makes it. bind does so by itself; a second time throws "Texture already inited". Asserts a valid
    // description ("mWidth!=-1 && mHeight!=-1" for a texture without a source, and so on), and throws, in
    // addition to what loading an image throws:
    // "OpenGL does not support float-textures on this computer!", "OpenGL does not
    // support cube maps on this computer!", "Unknown format for texture", "Loaded 1d-texture but both
    // dimensions are non-1!", "Error %s when scaling image", and for a cross "Error when loading cube map
    // from '%s'; ..." and "Cube maps with horizontal cross is not supported at the moment!".
    void init();

    bool isLoaded() const;                  // it has a source of pixels, or is made
    int getWidth() const { return mWidth; } // pixels; -1 while it is to be taken from the image
    int getHeight() const { return mHeight; }
    bool hasMipmaps() const { return mMipmaps; }

    // These work on the bound texture: the caller binds it. setRepeat asserts that it is no cube map;
    // generateMipmaps asserts "mInited==true", and only warns where the driver cannot do it.
    void setRepeat(bool repeat);
    void setRepeat(bool s, bool t);
    void generateMipmaps();

private:
    friend class FBO;

    void upload(GLenum internal, bool turned);
    void takeSizeFromImage();
    void takeSizeFromCross();
    GLenum internalFormat() const;
    void uploadCross(GLenum internal);
    void bindAndLoadImage(const am::Image& image, GLenum target, GLenum internal, int x0, int y0, int x1,
                          int y1, bool transpose);
    std::string sourceName() const;

    int mContextCount;         // DisplayGL::getContext, when the texture was made
    std::string mLoadFilename; // empty if there is no file
    am::Image mLoadImage;      // possibly null
    bool mInited;
    bool mMipmaps;
    Channels mChannels;
    ChannelFormat mFormat;
    Target mTarget;
    int mWidth;
    int mHeight;
    GLuint mTexture;
};

} // namespace zentrak::display
