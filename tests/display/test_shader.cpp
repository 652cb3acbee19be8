// Shaders, programs and materials on a real context.
#include "dis_material.h"
#include "dis_shader.h"
#include "dis_texture.h"

#include "gl_objects.h"

#include <cstring>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::display;
using mathbase::Matrix4x4Col;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

const std::string VERTEX = "void main() { gl_Position = gl_Vertex; gl_TexCoord[0] = gl_MultiTexCoord0; }\n";
const std::string FRAGMENT = "uniform vec4 tint;\nvoid main() { gl_FragColor = tint; }\n";

class ShaderTest : public GlObjects {
protected:
    static void compile(Shader& shader, const std::string& text, const char* name = "text") {
        shader.compile(reinterpret_cast<const unsigned char*>(text.data()), int(text.size()), name);
    }

    void link(ShaderProgram& target, const std::string& vertexText, const std::string& fragmentText) {
        VertexShader vertex(&display());
        FragmentShader fragment(&display());
        compile(vertex, vertexText);
        compile(fragment, fragmentText);
        target.attach(vertex, fragment);
        target.link();
    }

    // The driver's own log of a text that does not compile.
    static std::string driverLog(GLenum type, const std::string& text) {
        const GLuint handle = glCreateShader(type);
        const char* data = text.c_str();
        glShaderSource(handle, 1, &data, nullptr);
        glCompileShader(handle);
        char log[4000] = {};
        glGetShaderInfoLog(handle, sizeof log, nullptr, log);
        glDeleteShader(handle);
        return log;
    }

    // A full picture drawn by the program.
    Picture paint(ShaderProgram& with) {
        return frame([&] {
            with.bind();
            glRectf(-1, -1, 1, 1);
            with.unbind();
        });
    }

    ShaderProgram program{&display()};
};

TEST_F(ShaderTest, FilesAreCompiledLinkedAndDrawnWith) {
    writeFile(path("a.vert"), VERTEX);
    writeFile(path("a.frag"), FRAGMENT);
    program.link("a.vert", "a.frag");
    EXPECT_TRUE(program.isLinked());
    EXPECT_FALSE(program.isBound());
    program.set("tint", Vector4f(1, 0.5f, 0, 1));
    EXPECT_EQ(colorAt(paint(program), 100, 100) & 0xff00ffff, 0xff0000ffu);
}

TEST_F(ShaderTest, AShaderThatDoesNotCompileThrowsTheDriversLog) {
    const std::string bad = "void main() {\n    gl_FragColor = nonsense;\n}\n";
    writeFile(path("bad.frag"), bad);
    FragmentShader fragment(&display());
    const std::string log = driverLog(GL_FRAGMENT_SHADER, bad);
    EXPECT_NE(log.find("nonsense"), std::string::npos);
    EXPECT_EQ(thrownBy([&] { fragment.compile("bad.frag", ""); }),
              "Could not compile 'bad.frag'.\nCompile message:\n" + log);
    writeFile(path("a.vert"), VERTEX);
    EXPECT_EQ(thrownBy([&] { program.link("a.vert", "bad.frag"); }),
              "Could not compile 'bad.frag'.\nCompile message:\n" + log);
    EXPECT_FALSE(program.isLinked());
    compile(fragment, FRAGMENT); // the shader can take another text
}

TEST_F(ShaderTest, LineNumbersReferToPrefixPlusFile) {
    const std::string prefix = "#define A 1\n#define B 2\n",
                      bad = "void main() {\n    gl_FragColor = nonsense;\n}\n";
    writeFile(path("bad.frag"), bad);
    FragmentShader fragment(&display());
    const std::string thrown = thrownBy([&] { fragment.compile("bad.frag", prefix); });
    EXPECT_EQ(thrown, "Could not compile 'bad.frag'.\nCompile message:\n" +
                          driverLog(GL_FRAGMENT_SHADER, prefix + bad));
    EXPECT_NE(thrown.find("0:4("), std::string::npos) << thrown; // line 2 of the file
}

TEST_F(ShaderTest, APrefixDefinesWhatTheFileUses) {
    writeFile(path("a.vert"), VERTEX);
    writeFile(path("a.frag"), "void main() { gl_FragColor = TINT; }\n");
    VertexShader vertex(&display());
    FragmentShader fragment(&display());
    vertex.compile("a.vert", "");
    fragment.compile("a.frag", "#define TINT vec4(0.0, 1.0, 0.0, 1.0)\n");
    program.attach(vertex);
    program.attach(fragment);
    program.link();
    EXPECT_EQ(colorAt(paint(program), 100, 100), 0x00ff00ffu);
}

TEST_F(ShaderTest, AProgramThatDoesNotLinkThrowsTheDriversLog) {
    const std::string open = "vec4 elsewhere();\nvoid main() { gl_FragColor = elsewhere(); }\n";
    const std::string thrown = thrownBy([&] { link(program, VERTEX, open); });
    const std::string begin = "Could not link.\n\nLink message:\n";
    ASSERT_EQ(thrown.substr(0, begin.size()), begin);
    EXPECT_NE(thrown.find("elsewhere", begin.size()), std::string::npos) << thrown; // from the driver
    EXPECT_FALSE(program.isLinked());
}

TEST_F(ShaderTest, MissingFilesAndDisplaysThrow) {
    FragmentShader fragment(&display());
    EXPECT_EQ(thrownBy([&] { fragment.compile("none.frag", ""); }),
              "Display::Resource; File 'none.frag' could not be read");
    EXPECT_EQ(thrownBy([&] { fragment.compile(nullptr, ""); }),
              "Display::Resource; File '' could not be read");
    display().setArchive(nullptr);
    EXPECT_EQ(thrownBy([&] { fragment.compile("none.frag", ""); }),
              "The device can not load files! (when loading none.frag)");
    VertexShader none(nullptr);
    EXPECT_EQ(thrownBy([&] { none.compile("none.vert", ""); }),
              "The device can not load files! (when loading none.vert)");
    ShaderProgram without(nullptr);
    EXPECT_DEATH(without.link("a.vert", "a.frag"), "`getDisplay\\(\\)'");
    EXPECT_DEATH(fragment.compile(nullptr, 0, "x"), "`data'");
}

TEST_F(ShaderTest, EachOfTheFourExtensionsIsNeeded) {
    EXPECT_TRUE(Shader::hasShaders());
    for (const char* name : {"GL_ARB_shader_objects", "GL_ARB_shading_language_100", "GL_ARB_vertex_shader",
                             "GL_ARB_fragment_shader"}) {
        const WithoutExtensions without{name};
        EXPECT_FALSE(Shader::hasShaders()) << name;
        VertexShader vertex(&display());
        EXPECT_EQ(thrownBy([&] { vertex.compile("a.vert", ""); }),
                  "Your graphic card does not support shaders!");
        EXPECT_EQ(thrownBy([&] { compile(vertex, VERTEX); }), "Your graphic card does not support shaders!");
        EXPECT_EQ(thrownBy([&] { program.link(); }), "Your graphic card does not support shaders!");
        EXPECT_EQ(thrownBy([&] { program.attach(vertex); }), "Your graphic card does not support shaders!");
    }
}

TEST_F(ShaderTest, AnEmptyFileDoesNotCrash) {
    writeFile(path("empty.frag"), "");
    FragmentShader fragment(&display());
    const std::string thrown = thrownBy([&] { fragment.compile("empty.frag", ""); });
    EXPECT_TRUE(thrown == "nothing" ||
                thrown.find("Could not compile 'empty.frag'.\nCompile message:\n") == 0)
        << thrown;
    EXPECT_NE(thrownBy([&] { compile(fragment, std::string(100000, '{')); }), "nothing");
}

TEST_F(ShaderTest, SetOnAnUnlinkedProgramAsserts) {
    EXPECT_DEATH(program.set("a", 1), "`mLinked'");
    EXPECT_DEATH(program.set("a", 1.0f), "`mLinked'");
    EXPECT_DEATH(program.bind(), "`mHandle'");
    VertexShader vertex(&display());
    compile(vertex, VERTEX);
    program.attach(vertex);
    EXPECT_DEATH(program.bind(), "`mLinked'");
    EXPECT_DEATH(program.getAttrib("a"), "`mLinked'");
}

TEST_F(ShaderTest, BindTwiceAsserts) {
    link(program, VERTEX, FRAGMENT);
    program.bind();
    EXPECT_TRUE(program.isBound());
    EXPECT_DEATH(program.bind(), "`!mBound'");
    program.unbind();
    EXPECT_DEATH(program.unbind(), "`mBound'");
}

TEST_F(ShaderTest, SetOnAnUnboundProgramLeavesItUnbound) {
    link(program, VERTEX, FRAGMENT);
    program.set("tint", Vector4f(0, 0, 1, 1));
    EXPECT_FALSE(program.isBound());
    GLint current = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(current, 0);
    program.bind();
    program.set("tint", Vector4f(0, 1, 1, 1));
    EXPECT_TRUE(program.isBound());
    program.unbind();
    EXPECT_EQ(colorAt(paint(program), 100, 100), 0x00ffffffu);
}

TEST_F(ShaderTest, EveryTypeOfUniform) {
    link(program, VERTEX,
         "uniform int i;\nuniform float f;\nuniform vec2 v2;\nuniform vec3 v3;\nuniform vec4 v4;\n"
         "uniform mat4 m;\nuniform vec2 list[3];\n"
         "void main() { gl_FragColor = m * vec4(float(i) + f, v2 + v3.xy, v4.w) + vec4(list[0] + list[1] + "
         "list[2], "
         "v3.z, v4.x + v4.y + v4.z); }\n");
    program.set("i", 7);
    program.set("f", 0.5f);
    program.set("v2", Vector2f(1, 2));
    program.set("v3", Vector3f(3, 4, 5));
    program.set("v4", Vector4f(6, 7, 8, 9));
    Matrix4x4Col matrix;
    for (int i = 0; i < 16; ++i)
        matrix.mData[i] = float(i);
    program.set("m", matrix);
    const Vector2f list[3] = {Vector2f(1, 2), Vector2f(3, 4), Vector2f(5, 6)};
    program.set("list", list, 3);
    program.set("list", nullptr, 3);
    program.set("nowhere", 1); // no such uniform
    program.set("nowhere", matrix);

    program.bind();
    GLint handle = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &handle);
    const auto values = [&](const char* name) {
        std::vector<float> got(16, -1);
        glGetUniformfv(GLuint(handle), glGetUniformLocation(GLuint(handle), name), got.data());
        return got;
    };
    EXPECT_EQ(values("i")[0], 7);
    EXPECT_EQ(values("f")[0], 0.5f);
    EXPECT_EQ(values("v2")[1], 2);
    EXPECT_EQ(values("v3")[2], 5);
    EXPECT_EQ(values("v4")[3], 9);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(values("m")[size_t(i)], float(i)); // not transposed
    EXPECT_EQ(values("list[0]")[0], 1);
    EXPECT_EQ(values("list[2]")[1], 6);
    program.unbind();
}

TEST_F(ShaderTest, ASetThatThrowsLeavesNoProgramBound) {
    link(program, VERTEX, FRAGMENT);
    glEnable(0xFFFF); // a pending error
    EXPECT_NE(thrownBy([&] { program.set("value", 1.0f); }), "nothing");
    const auto uniform = __glewUniform1f;
    __glewUniform1f = [](GLint, GLfloat) { glEnable(0xFFFF); };
    EXPECT_NE(thrownBy([&] { program.set("value", 1.0f); }), "nothing");
    __glewUniform1f = uniform;
    EXPECT_FALSE(program.isBound());
    GLint bound = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &bound);
    EXPECT_EQ(bound, 0);
}

TEST_F(ShaderTest, AMaterialThatThrowsLeavesNoProgramBound) {
    link(program, VERTEX, FRAGMENT);
    Texture missing(&display());
    missing.load("none.png", false);
    Material material(&program);
    material.set("missing", &missing);
    EXPECT_NE(thrownBy([&] { material.bind(); }), "nothing");
    EXPECT_FALSE(program.isBound());
    GLint bound = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &bound);
    EXPECT_EQ(bound, 0);
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(ShaderTest, TangentsHaveTheirSlotsAndAMissingAttributeAsserts) {
    link(program,
         "attribute vec4 other, tangent1_vs, tangent0_vs;\n"
         "void main() { gl_Position = gl_Vertex + tangent0_vs + tangent1_vs + other; }\n",
         FRAGMENT);
    EXPECT_EQ(program.getAttrib("tangent0_vs"), 6);
    EXPECT_EQ(program.getAttrib("tangent1_vs"), 7);
    EXPECT_GE(program.getAttrib("other"), 0);
    EXPECT_DEATH(program.getAttrib("nowhere"), "`res>=0'");
    ShaderProgram empty(&display());
    EXPECT_DEATH(empty.getAttrib("other"), "`mHandle!=0'");
}

// Some drivers write to the log even on success: these tests fake that log.
const char* spoken;

class TalkingTest : public ShaderTest {
protected:
    void talk(const char* text, const std::function<void()>& call) {
        spoken = text;
        static const auto programiv = __glewGetProgramiv;
        static const auto shaderiv = __glewGetShaderiv;
        const auto programLog = __glewGetProgramInfoLog;
        const auto shaderLog = __glewGetShaderInfoLog;
        __glewGetProgramiv = [](GLuint handle, GLenum name, GLint* value) {
            programiv(handle, name, value);
            if (name == GL_INFO_LOG_LENGTH)
                *value = GLint(strlen(spoken)) + 1;
        };
        __glewGetShaderiv = [](GLuint handle, GLenum name, GLint* value) {
            shaderiv(handle, name, value);
            if (name == GL_INFO_LOG_LENGTH)
                *value = GLint(strlen(spoken)) + 1;
        };
        const auto say = [](GLuint, GLsizei most, GLsizei* length, GLchar* log) {
            *length = std::snprintf(log, size_t(most), "%s", spoken);
        };
        __glewGetProgramInfoLog = say;
        __glewGetShaderInfoLog = say;
        call();
        __glewGetProgramiv = programiv;
        __glewGetShaderiv = shaderiv;
        __glewGetProgramInfoLog = programLog;
        __glewGetShaderInfoLog = shaderLog;
    }
};

TEST_F(TalkingTest, APleasantMessageGivesNoLogLine) {
    std::string printed = printedBy([&] { talk(" Link successful.", [&] { program.link(); }); });
    EXPECT_EQ(printed, "");
    EXPECT_TRUE(program.isLinked());
    ShaderProgram other(&display());
    printed = printedBy([&] { talk("Be careful.", [&] { other.link(); }); });
    EXPECT_TRUE(hasLine(printed, "info", "link", "Linked shaderprogram, message (11):\nBe careful.",
                        "dis_shader.cpp"))
        << printed;
    ShaderProgram third(&display());
    EXPECT_EQ(printedBy([&] { talk("", [&] { third.link(); }); }), "");
}

TEST_F(TalkingTest, AShadersMessageIsLogged) {
    VertexShader vertex(&display());
    const std::string printed =
        printedBy([&] { talk("Deprecated.", [&] { compile(vertex, VERTEX, "old.vert"); }); });
    EXPECT_TRUE(hasLine(printed, "info", "compile",
                        "Shader 'old.vert' compiled with message (11 chars):\nDeprecated.", "dis_shader.cpp"))
        << printed;
}

TEST_F(ShaderTest, ShadersAndProgramsDeleteTheirHandles) {
    GLuint handle;
    {
        VertexShader vertex(&display());
        compile(vertex, VERTEX);
        handle = vertex.getHandle();
        EXPECT_TRUE(glIsShader(handle));
    }
    EXPECT_FALSE(glIsShader(handle));
    GLint name = 0;
    {
        ShaderProgram gone(&display());
        link(gone, VERTEX, FRAGMENT);
        gone.bind();
        glGetIntegerv(GL_CURRENT_PROGRAM, &name);
        gone.unbind();
        EXPECT_TRUE(glIsProgram(GLuint(name)));
    }
    EXPECT_FALSE(glIsProgram(GLuint(name)));
}

TEST_F(ShaderTest, AfterANewContextTheOwnerLinksAgain) {
    auto lost = std::make_unique<ShaderProgram>(&display());
    link(*lost, VERTEX, FRAGMENT);
    link(program, VERTEX, FRAGMENT);
    display().close();
    display().open();
    link(program, VERTEX, FRAGMENT);
    lost.reset(); // must not delete the new program
    program.set("tint", Vector4f(1, 0, 1, 1));
    EXPECT_EQ(colorAt(paint(program), 100, 100), 0xff00ffffu);
}

class MaterialTest : public ShaderTest {
protected:
    // Two textures side by side, times a colour.
    void linkTextured() {
        link(program, VERTEX,
             "uniform sampler2D a, b;\nuniform vec3 tint;\nuniform float gain;\n"
             "void main() { vec4 c = gl_FragCoord.x < 100.0 ? texture2D(a, vec2(0.5)) : texture2D(b, "
             "vec2(0.5));\n"
             "    gl_FragColor = vec4(c.rgb * tint * gain, 1.0); }\n");
    }

    GLint uniform(const char* name) {
        GLint handle = 0, value = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &handle);
        glGetUniformiv(GLuint(handle), glGetUniformLocation(GLuint(handle), name), &value);
        return value;
    }

    Texture red{&display()}, green{&display()};
};

TEST_F(MaterialTest, TexturesTakeUnitsByTheOrderOfTheirNames) {
    linkTextured();
    red.load(makeImage(2, 2, [](int, int) { return 0xff0000ffu; }), false);
    green.load(makeImage(2, 2, [](int, int) { return 0x00ff00ffu; }), false);
    Material material(&program);
    EXPECT_EQ(material.getProgram(), &program);
    material.set("b", &green);
    material.set("a", &red);
    material.set("tint", Vector3f(1, 1, 1));
    material.set("gain", 1.0f);
    const Picture shown = frame([&] {
        material.bind();
        EXPECT_TRUE(material.isBound());
        EXPECT_TRUE(program.isBound());
        EXPECT_EQ(uniform("a"), 0);
        EXPECT_EQ(uniform("b"), 1);
        GLint active = 0, bound = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        EXPECT_EQ(active, GL_TEXTURE1); // the last one used
        glRectf(-1, -1, 1, 1);
        material.unbind();
        EXPECT_FALSE(material.isBound());
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_NE(bound, 0); // textures stay bound
        green.unbind();
        glActiveTexture(GL_TEXTURE0);
    });
    EXPECT_EQ(colorAt(shown, 20, 100), 0xff0000ffu);
    EXPECT_EQ(colorAt(shown, 180, 100), 0x00ff00ffu);
}

TEST_F(MaterialTest, AValueSetAgainReplacesTheOldOne) {
    link(program, VERTEX, "uniform vec3 tint;\nvoid main() { gl_FragColor = vec4(tint, 1.0); }\n");
    static int alive;
    struct Counted {
        Counted() { ++alive; }
        Counted(const Counted&) { ++alive; }
        ~Counted() { --alive; }
        operator float() const { return 0.5f; }
    };
    alive = 0;
    {
        Material material(&program);
        material.set("gain", Counted());
        EXPECT_EQ(alive, 1);
        material.set("gain", Counted());
        EXPECT_EQ(alive, 1); // the old attribute is gone
        material.removeAttrib("gain");
        EXPECT_EQ(alive, 0);
        material.removeAttrib("gain"); // nothing happens
        material.set("one", Counted());
        material.set("two", Counted());
        material.clearAttribs();
        EXPECT_EQ(alive, 0);
        material.set("one", Counted());
    }
    EXPECT_EQ(alive, 0);
    Material material(&program);
    material.set("tint", Vector3f(1, 0, 0));
    material.set("tint", Vector3f(0, 0, 1));
    material.set("absent", 3.0f); // the program lacks it
    const Picture shown = frame([&] {
        material.bind();
        glRectf(-1, -1, 1, 1);
        material.unbind();
    });
    EXPECT_EQ(colorAt(shown, 100, 100), 0x0000ffffu);
}

TEST_F(MaterialTest, AMaterialWithoutAProgramAsserts) {
    Material material(nullptr);
    EXPECT_FALSE(material.isBound());
    EXPECT_DEATH(material.bind(), "`mProgram'");
    EXPECT_DEATH(material.unbind(), "`mProgram'");
    linkTextured();
    material.setProgram(&program);
    material.bind();
    EXPECT_DEATH(material.set("gain", 1.0f), "`false'");
    EXPECT_DEATH(material.set("a", &red), "`false'");
    material.unbind();
    material.clear();
    EXPECT_EQ(material.getProgram(), nullptr);
}

TEST_F(MaterialTest, AThirtyThirdTextureAsserts) {
    linkTextured();
    red.load(makeImage(2, 2, [](int, int) { return 0xff0000ffu; }), false);
    Material material(&program);
    for (int i = 0; i < 32; ++i)
        material.set("texture" + std::to_string(i), &red);
    material.bind();
    material.unbind();
    glActiveTexture(GL_TEXTURE0);
    material.set("texture32", &red);
    EXPECT_DEATH(material.bind(), "`usedTextureChannels < 32'");
    Material none(&program);
    none.set("a", static_cast<Texture*>(nullptr));
    none.bind(); // a missing texture doesn't touch the unit
    none.unbind();
}

} // namespace
