// Loads any bytes as the two sources of a shader program, up to the driver. The driver itself is not under
// test: a stand-in reads all that it is given, and refuses or accepts with a message, as the first byte says.

#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_shader.h"
#include "fuzz.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <algorithm>
#include <cstring>

using namespace zentrak;

namespace {

struct Driver {
    bool compiles = true;
    bool links = true;
    GLint claimed = 0;   // length of the message, with its final 0
    std::string message; // at most as long as the claim
    size_t seen = 0;     // bytes of source
} driver;

GLuint create() {
    return 1;
}

void source(GLuint, GLsizei count, const GLchar* const* texts, const GLint* lengths) {
    volatile unsigned sum = 0;
    for (GLsizei i = 0; i < count; ++i) {
        driver.seen += size_t(lengths[i]);
        for (GLint j = 0; j < lengths[i]; ++j)
            sum = sum + static_cast<unsigned char>(texts[i][j]);
    }
}

void status(GLuint, GLenum name, GLint* value) {
    *value = name == GL_COMPILE_STATUS ? driver.compiles
             : name == GL_LINK_STATUS  ? driver.links
                                       : driver.claimed;
}

void log(GLuint, GLsizei room, GLsizei* length, GLchar* text) {
    const size_t count = std::min(driver.message.size(), size_t(std::max(room - 1, 0)));
    std::copy_n(driver.message.begin(), count, text);
    if (room > 0)
        text[count] = 0;
    *length = GLsizei(count);
}

bool stand() {
    for (GLboolean* has : {&__GLEW_VERSION_2_0, &__GLEW_ARB_shader_objects, &__GLEW_ARB_shading_language_100,
                           &__GLEW_ARB_vertex_shader, &__GLEW_ARB_fragment_shader})
        *has = GL_TRUE;
    __glewCreateShader = [](GLenum) { return create(); };
    __glewCreateProgram = create;
    __glewShaderSource = source;
    __glewCompileShader = __glewLinkProgram = __glewDeleteShader = __glewDeleteProgram = [](GLuint) {};
    __glewGetShaderiv = __glewGetProgramiv = status;
    __glewGetShaderInfoLog = __glewGetProgramInfoLog = log;
    __glewAttachShader = [](GLuint, GLuint) {};
    __glewBindAttribLocation = [](GLuint, GLuint, const GLchar*) {};
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool standing = stand();
    static display::DisplayGL display(display::WindowMode("", 640, 480, false));
    const int mood = size && standing ? data[0] : 0;
    driver = {(mood & 1) == 0, (mood & 2) == 0, 0, "", 0};
    if (mood & 4)
        driver.message.assign(reinterpret_cast<const char*>(data), size);
    driver.claimed = mood & 8 ? -1 : GLint(driver.message.size() + 1);

    const fuzz::InFolder folder;
    const size_t half = size / 2;
    fuzz::write("a.vert", data, half);
    fuzz::write("a.frag", data + half, size - half);
    am::ArchiveManager archives;
    archives.addArchive("./");
    display.mArchiveManager = &archives;
    try {
        display::ShaderProgram program(&display);
        program.link("a.vert", "a.frag");
        fuzz::check(program.isLinked() && driver.seen == size);
        display::FragmentShader(&display).compile("a.frag", "#define A 1\n");
        fuzz::check(driver.seen == size + (size - half) + strlen("#define A 1\n"));
    } catch (const Exception&) {
        fuzz::check(!driver.compiles || !driver.links);
    }
    return 0;
}
