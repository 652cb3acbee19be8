// Shared by the tests of textures, buffers, programs and targets.
#pragma once

#include "am_image.h"
#include "extensions.h"
#include "gl_fixture.h"
#include "support.h"
#include "ztk_system.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <regex>
#include <string>

namespace zentrak::test {

// The text of what `call` throws, or "nothing".
template <class Call>
std::string thrownBy(Call call) {
    try {
        call();
    } catch (const std::exception& exception) {
        return exception.what();
    }
    return "nothing";
}

// What is printed on standard output while `call` runs.
template <class Call>
std::string printedBy(Call call) {
    CaptureStdout capture;
    call();
    return capture.text();
}

// Whether `printed` has a whole log line of this level, function and text, from this file.
inline bool hasLine(const std::string& printed, const std::string& level, const std::string& function,
                    const std::string& text, const std::string& file) {
    const std::string begin = "[" + level + "][" + function + "], " + text + " (" + file + ":";
    for (size_t at = printed.find(begin); at != std::string::npos; at = printed.find(begin, at + 1)) {
        size_t end = at + begin.size();
        while (end < printed.size() && isdigit(printed[end]))
            ++end;
        if (end > at + begin.size() && printed.compare(end, 2, ")\n") == 0)
            return true;
    }
    return false;
}

// While it lives, glGetIntegerv returns these values instead of the driver's (see gl_objects.cpp).
class FakeLimits {
public:
    FakeLimits(std::initializer_list<std::pair<const unsigned, int>> limits);
    ~FakeLimits();
};

class GlObjects : public GlTest {
protected:
    GlObjects() {
        mFolder.reset(new TempDir);
        window(200, 200);
        display().setArchive(nullptr);
        mArchives.addArchive(mFolder->path());
        display().setArchive(&mArchives);
    }

    std::string path(const std::string& name) const { return mFolder->file(name); }

    // An image of the painter's colours, red, green, blue, alpha in 0xRRGGBBAA.
    static am::Image makeImage(int width, int height, const std::function<uint32_t(int x, int y)>& paint,
                               const std::string& name = "made") {
        am::Image image(new am::ImageObject);
        image->setId(name);
        image->resize(width, height);
        unsigned char* p = image->getWriteData();
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x, p += 4) {
                const uint32_t c = paint(x, y);
                p[0] = (unsigned char)(c >> 8);
                p[1] = (unsigned char)(c >> 16);
                p[2] = (unsigned char)(c >> 24);
                p[3] = (unsigned char)c;
            }
        return image;
    }

    void writeImage(const std::string& name, const am::Image& image) const {
        ASSERT_TRUE(writePng(path(name), toPicture(image)));
    }

    // A level of the bound texture, rows as they were uploaded.
    static Picture readTexture(GLenum target, int level = 0) {
        GLint width = 0, height = 0;
        glGetTexLevelParameteriv(target, level, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(target, level, GL_TEXTURE_HEIGHT, &height);
        Picture picture(width, height);
        glGetTexImage(target, level, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
        return picture;
    }

    static uint32_t colorAt(const Picture& picture, int x, int y) {
        const uint8_t* p = picture.at(x, y);
        return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    }

    static mathbase::Matrix4x4Col identity() {
        mathbase::Matrix4x4Col m;
        m.setIdentity();
        return m;
    }

    // Sets up clip space, with no state that hides anything.
    void flat() {
        display().setProject(identity());
        display().setModelView();
    }

private:
    std::unique_ptr<TempDir> mFolder;
    am::ArchiveManager mArchives;
};

} // namespace zentrak::test
