#include "dis_texture.h"

#include "dis_context.h"
#include "dis_fbo.h"
#include "ztk_system.h"

#include <GL/glu.h>
#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace zentrak::display {

namespace {

bool isPowerOfTwo(int n) {
    return n > 0 && (n & (n - 1)) == 0;
}

// The next power of two; a power of two, and a number with no next one, is returned as it is.
int powerOfTwo(int n) {
    int power = 1;
    while (power < n && power <= (1 << 29))
        power *= 2;
    return n > 0 && power >= n ? power : n;
}

// GLU returns 0 or an error. Making mipmaps scales too.
void checkScaling(GLint error) {
    if (error)
        throw Exception("Error %s when scaling image",
                        reinterpret_cast<const char*>(gluErrorString(GLenum(error))));
}

} // namespace

Texture::Texture(DisplayGL* display)
    : Resource(display, STATIC),
      mContextCount(0),
      mInited(false),
      mMipmaps(false),
      mChannels(CHAN_DEFAULT),
      mFormat(FORMAT_DEFAULT),
      mTarget(TARGET_DEFAULT),
      mWidth(-1),
      mHeight(-1),
      mTexture(0) {}

Texture::~Texture() {
    if (mInited && contextIsCurrent(mContextCount))
        glDeleteTextures(1, &mTexture);
}

void Texture::setup(int width, int height, Channels channels, ChannelFormat format, Target target) {
    mWidth = width ? width : -1;
    mHeight = height ? height : -1;
    mChannels = channels;
    mFormat = format;
    mTarget = target;
}

void Texture::load(const std::string& filename, bool mipmaps) {
    if (!mLoadFilename.empty() || !mLoadImage.isNull())
        throw Exception("Texture; File already loaded, when loading '%s'", filename.c_str());
    mLoadFilename = filename;
    mMipmaps = mipmaps;
}

void Texture::load(am::Image image, bool mipmaps) {
    if (!mLoadImage.isNull() || mInited)
        throw Exception("Texture already loaded!");
    mLoadImage = std::move(image);
    mMipmaps = mipmaps;
}

void Texture::load(const std::string& name, const unsigned char* data, int length, bool mipmaps) {
    if (!mLoadImage.isNull() || mInited)
        throw Exception("Texture already loaded!");
    mLoadImage = loadImage(name, data, length);
    mMipmaps = mipmaps;
}

bool Texture::isLoaded() const {
    return mInited || !mLoadFilename.empty() || !mLoadImage.isNull();
}

// The source's name in messages.
std::string Texture::sourceName() const {
    if (!mLoadFilename.empty())
        return mLoadFilename;
    return mLoadImage.isNull() ? std::string() : mLoadImage->getId();
}

void Texture::bind(int side) {
    assert(getDisplay());
    if (!mInited || !contextIsCurrent(mContextCount)) {
        ZTK_LOG("info", "display", "Reloading texture from '%s'.",
                mLoadFilename.empty() ? "am::Image" : mLoadFilename.c_str());
        mInited = false;
        mTexture = 0;
        init();
    }
    if (side == -1) {
        GL_CALL(glBindTexture(mTarget, mTexture));
        return;
    }
    assert(mTarget==TARGET_CUBE);
    assert(side>=0 && side<6);
    GL_CALL(glBindTexture(GL_TEXTURE_CUBE_MAP_POSITIVE_X + side, mTexture));
}

void Texture::unbind() {
    GL_CALL(glBindTexture(mTarget == TARGET_DEFAULT ? TARGET_2D : mTarget, 0));
}

void Texture::init() {
    assert(getDisplay());
    assert(mTexture==0);
    if (mInited)
        throw Exception("Texture already inited");
    if (mFormat == FORMAT_DEFAULT)
        mFormat = FORMAT_UINT8;
    if (mChannels == CHAN_DEFAULT)
        mChannels = CHAN_RGBA;
    if (mTarget == TARGET_DEFAULT)
        mTarget = TARGET_2D;
    if ((mFormat == FORMAT_F16 || mFormat == FORMAT_F32) && !DisplayGL::hasExtension("GL_ARB_texture_float"))
        throw Exception("OpenGL does not support float-textures on this computer!");
    if (mTarget == TARGET_CUBE && !DisplayGL::hasExtension("GL_ARB_texture_cube_map"))
        throw Exception("OpenGL does not support cube maps on this computer!");

    if (mLoadImage.isNull() && !mLoadFilename.empty())
        mLoadImage = loadImage(mLoadFilename, false);
    const bool fromImage = !mLoadImage.isNull();
    if (!fromImage && mLoadFilename.empty())
        assert(mWidth!=-1 && mHeight!=-1);
    if (fromImage && mTarget == TARGET_CUBE)
        takeSizeFromCross();
    else if (mWidth == -1 || mHeight == -1)
        takeSizeFromImage();

    bool turned = false; // the image is upright where the texture is wide
    if (mTarget == TARGET_1D) {
        if (mWidth < 2 && mHeight > 1) {
            std::swap(mWidth, mHeight);
            turned = true;
        }
        if (mWidth > 1 && mHeight > 1)
            throw Exception("Loaded 1d-texture but both dimensions are non-1!");
    }
    if (fromImage && !mMipmaps && (!isPowerOfTwo(mWidth) || !isPowerOfTwo(mHeight)) &&
        !DisplayGL::hasExtension("GL_ARB_texture_non_power_of_two")) {
        mWidth = powerOfTwo(mWidth);
        mHeight = powerOfTwo(mHeight);
    }
    assert(!(mTarget==TARGET_1D && mHeight!=1));
    assert(!(mTarget==TARGET_CUBE && mHeight!=mWidth));

    const GLenum internal = internalFormat();
    try {
        upload(internal, turned);
    } catch (...) { // nothing half made is kept
        glDeleteTextures(1, &mTexture);
        mTexture = 0;
        throw;
    }
    mInited = true;
    mContextCount = currentContext();
    GL_CALL(glBindTexture(mTarget, 0));
    if (!mLoadFilename.empty())
        mLoadImage.release();
}

// Makes the texture's name, pixels and parameters. `turned`: the image's rows are the texture's columns.
void Texture::upload(GLenum internal, bool turned) {
    GL_CALL(glGenTextures( 1, &mTexture ));
    GL_CALL(glBindTexture( mTarget, mTexture ));
    if (mTarget == TARGET_CUBE)
        uploadCross(internal);
    else if (mLoadImage.isNull())
        bindAndLoadImage(mLoadImage, mTarget, internal, 0, 0, mWidth - 1, mHeight - 1, false);
    else
        bindAndLoadImage(mLoadImage, mTarget, internal, 0, 0, mLoadImage->getWidth() - 1,
                         mLoadImage->getHeight() - 1, turned);
    const GLint wrap = mTarget == TARGET_CUBE ? GL_CLAMP_TO_EDGE : GL_REPEAT;
    GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_MAG_FILTER, GL_LINEAR));
    GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_MIN_FILTER, mMipmaps ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR));
    GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_WRAP_S, wrap));
    GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_WRAP_T, wrap));
    GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_WRAP_R, wrap));
}

// Fills in what the caller left to the image. A null image throws here.
void Texture::takeSizeFromImage() {
    if (mWidth == -1)
        mWidth = mLoadImage->getWidth();
    if (mHeight == -1)
        mHeight = mLoadImage->getHeight();
}

// The same for a cube map, from a face of the cross; the cross has to be one in any case.
void Texture::takeSizeFromCross() {
    const int width = mLoadImage->getWidth(), height = mLoadImage->getHeight();
    const int longest = std::max(width, height), shortest = std::min(width, height);
    const std::string name = sourceName();
    if (longest % 4 != 0)
        throw Exception("Error when loading cube map from '%s'; longest side must be divisible by 4!",
                        name.c_str());
    if (shortest % 3 != 0)
        throw Exception("Error when loading cube map from '%s'; shorted side must be divisible by 3!",
                        name.c_str());
    const int face = shortest / 3;
    if (face != longest / 4)
        throw Exception(
            "Error when loading cube map from '%s'; the individual faces must be square textures!",
            name.c_str());
    if (height <= width)
        throw Exception("Cube maps with horizontal cross is not supported at the moment!");
    if (mWidth == -1)
        mWidth = face;
    if (mHeight == -1)
        mHeight = face;
}

GLenum Texture::internalFormat() const {
    const bool sixteen = mFormat == FORMAT_UINT16 || mFormat == FORMAT_HDR;
    const auto pick = [&](GLenum eight, GLenum wide, GLenum half, GLenum full) {
        return mFormat == FORMAT_UINT8 ? eight
               : sixteen               ? wide
               : mFormat == FORMAT_F16 ? half
               : mFormat == FORMAT_F32 ? full
                                       : GLenum(GL_NONE);
    };
    GLenum internal = GL_NONE;
    if (mChannels == CHAN_RGB)
        internal = pick(GL_RGB8, GL_RGB16, GL_RGB16F_ARB, GL_RGB32F_ARB);
    else if (mChannels == CHAN_RGBA)
        internal = pick(GL_RGBA8, GL_RGBA16, GL_RGBA16F_ARB, GL_RGBA32F_ARB);
    else if (mChannels == CHAN_LA)
        internal = pick(GL_LUMINANCE8_ALPHA8, GL_LUMINANCE16_ALPHA16, GL_LUMINANCE_ALPHA16F_ARB,
                        GL_LUMINANCE_ALPHA32F_ARB);
    else if (mChannels == CHAN_DEPTH)
        internal = mFormat == FORMAT_UINT16   ? GL_DEPTH_COMPONENT16
                   : mFormat == FORMAT_UINT24 ? GL_DEPTH_COMPONENT24
                   : mFormat == FORMAT_UINT32 ? GL_DEPTH_COMPONENT32
                                              : GL_NONE;
    if (internal == GL_NONE)
        throw Exception("Unknown format for texture");
    return internal;
}

// The six faces of the cross, or six empty ones.
void Texture::uploadCross(GLenum internal) {
    const int s = mLoadImage.isNull() ? mWidth : mLoadImage->getWidth() / 3;
    const struct {
        GLenum face;
        int x0, y0, x1, y1; // inclusive; the last face runs backwards on both axes
    } faces[6] = {
        {GL_TEXTURE_CUBE_MAP_POSITIVE_Y, s, 0, 2 * s - 1, s - 1},
        {GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, s, 2 * s, 2 * s - 1, 3 * s - 1},
        {GL_TEXTURE_CUBE_MAP_NEGATIVE_X, 0, s, s - 1, 2 * s - 1},
        {GL_TEXTURE_CUBE_MAP_POSITIVE_X, 2 * s, s, 3 * s - 1, 2 * s - 1},
        {GL_TEXTURE_CUBE_MAP_POSITIVE_Z, s, s, 2 * s - 1, 2 * s - 1},
        {GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 2 * s - 1, 4 * s - 1, s, 3 * s},
    };
    for (const auto& f : faces)
        bindAndLoadImage(mLoadImage, f.face, internal, f.x0, f.y0, f.x1, f.y1, false);
}

// Uploads the pixels from (x0, y0) to (x1, y1), both inclusive and inside the image, to one target; x1 below
// x0 or y1 below y0 walks the image backwards, `transpose` swaps rows and columns. A null image is all zero.
void Texture::bindAndLoadImage(const am::Image& image, GLenum target, GLenum internal, int x0, int y0, int x1,
                               int y1, bool transpose) {
    GLenum dataFormat = GL_BGRA, dataType = GL_UNSIGNED_BYTE;
    const void* data = nullptr;
    std::vector<uint32_t> region, scaled;
    int uploadWidth = mWidth, uploadHeight = mHeight;
    if (image.isNull()) {
        GLint most = 0;
        GL_CALL(glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most));
        if (mMipmaps) { // which are scaled down to what the driver takes, and zeros scale to zeros
            uploadWidth = std::min(mWidth, most);
            uploadHeight = std::min(mHeight, most);
        }
        if (uploadWidth > 0 && uploadHeight > 0 && uploadWidth <= most && uploadHeight <= most)
            region.assign(size_t(uploadWidth) * size_t(uploadHeight), 0);
        data = region.data(); // sizes that OpenGL refuses need no pixels
        if (mChannels == CHAN_DEPTH) {
            dataFormat = GL_DEPTH_COMPONENT;
            dataType = GL_UNSIGNED_INT;
        }
    } else {
        const bool empty = image->getWidth() <= 0 || image->getHeight() <= 0;
        const int columns = empty ? 0 : std::abs(x1 - x0) + 1, rows = empty ? 0 : std::abs(y1 - y0) + 1;
        const int width = transpose ? rows : columns, height = transpose ? columns : rows;
        const bool whole = columns == image->getWidth() && rows == image->getHeight() && width == mWidth &&
                           height == mHeight && x0 <= x1 && y0 <= y1 && !transpose;
        data = image->getData();
        if (!whole) {
            const int stepX = x0 <= x1 ? 1 : -1, stepY = y0 <= y1 ? 1 : -1;
            region.resize(size_t(width) * size_t(height));
            for (int row = 0; row < rows; ++row)
                for (int column = 0; column < columns; ++column) {
                    const size_t from =
                        size_t(y0 + row * stepY) * size_t(image->getWidth()) + size_t(x0 + column * stepX);
                    const size_t to = transpose ? size_t(column) * size_t(width) + size_t(row)
                                                : size_t(row) * size_t(width) + size_t(column);
                    std::memcpy(&region[to], image->getData() + from * 4, 4);
                }
            data = region.data();
        }
        if (width != mWidth || height != mHeight) {
            ZTK_LOG("warning", "display", "Warning: Manually rescaling picture '%s'!", sourceName().c_str());
            scaled.resize(size_t(std::max(mWidth, 0)) * size_t(std::max(mHeight, 0)));
            checkScaling(gluScaleImage(GL_RGBA, width, height, GL_UNSIGNED_BYTE, data, mWidth, mHeight,
                                       GL_UNSIGNED_BYTE, scaled.data()));
            data = scaled.data();
        }
    }

    GLint error = 0;
    if (mMipmaps && mTarget == TARGET_1D)
        error = gluBuild1DMipmaps(target, GLint(internal), uploadWidth, dataFormat, dataType, data);
    else if (mMipmaps)
        error =
            gluBuild2DMipmaps(target, GLint(internal), uploadWidth, uploadHeight, dataFormat, dataType, data);
    else if (mTarget == TARGET_1D)
        GL_CALL(glTexImage1D(target, 0, GLint(internal), mWidth, 0, dataFormat, dataType, data));
    else
        GL_CALL(glTexImage2D(target, 0, GLint(internal), mWidth, mHeight, 0, dataFormat, dataType, data));
    GL_CHECK_STATUS();
    checkScaling(error);
}

void Texture::generateMipmaps() {
    assert(mInited==true);
    if (!FBO::isSupported()) {
        ZTK_LOG("warning", "display", "GL_EXT_framebuffer_object not supported, no mipmaps are made");
        return;
    }
    GL_CALL(glGenerateMipmapEXT(mTarget));
    if (!mMipmaps)
        GL_CALL(glTexParameteri(mTarget, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR));
    mMipmaps = true;
}

void Texture::setRepeat(bool repeat) {
    setRepeat(repeat, repeat);
}

void Texture::setRepeat(bool s, bool t) {
    assert(mTarget!=TARGET_CUBE);
    const GLenum target = mTarget == TARGET_DEFAULT ? GLenum(TARGET_2D) : GLenum(mTarget);
    GL_CALL(glTexParameteri(target, GL_TEXTURE_WRAP_S, s ? GL_REPEAT : GL_CLAMP_TO_EDGE));
    GL_CALL(glTexParameteri(target, GL_TEXTURE_WRAP_T, t ? GL_REPEAT : GL_CLAMP_TO_EDGE));
}

} // namespace zentrak::display
