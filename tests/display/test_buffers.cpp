// Vertex and index buffers on a real context, with and without buffer objects.
#include "dis_ibo.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "dis_vbo.h"

#include "gl_objects.h"

#include <cstring>
#include <optional>
#include <type_traits>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::display;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr char BUFFERS[] = "GL_ARB_vertex_buffer_object";
constexpr char EMULATING[] = "GL_ARB_vertex_buffer_object not supported, emulating fool";

TEST(VertexDef, ChannelsAreGroupTimesFourPlusCountLessOne) {
    const VertexDef::CHANNEL first[8] = {VertexDef::T_1B,   VertexDef::T_1W,  VertexDef::T_1I,
                                         VertexDef::T_1F,   VertexDef::T_1D,  VertexDef::T_1B_U,
                                         VertexDef::T_1W_U, VertexDef::T_1I_U};
    const VertexDef::CHANNEL last[8] = {VertexDef::T_4B,   VertexDef::T_4W,  VertexDef::T_4I,
                                        VertexDef::T_4f,   VertexDef::T_4D,  VertexDef::T_4B_U,
                                        VertexDef::T_4W_U, VertexDef::T_4I_U};
    const GLenum types[8] = {GL_BYTE,          GL_SHORT,          GL_INT,         GL_FLOAT, GL_DOUBLE,
                             GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_UNSIGNED_INT};
    const int sizes[8] = {1, 2, 4, 4, 8, 1, 2, 4};
    for (int group = 0; group < 8; ++group) {
        EXPECT_EQ(first[group], group * 4);
        EXPECT_EQ(last[group], group * 4 + 3);
        EXPECT_EQ(VertexDef::groups[group], types[group]);
        EXPECT_EQ(VertexDef::groupSize[group], sizes[group]);
        EXPECT_EQ(VertexDef::channels(last[group]), 4);
        EXPECT_EQ(VertexDef::channelSize(last[group]), sizes[group]);
        EXPECT_EQ(VertexDef::channelsSize(last[group]), 4 * sizes[group]);
        EXPECT_EQ(VertexDef::channelGL(last[group]), types[group]);
    }
    EXPECT_EQ(VertexDef::NONE, 32);
    EXPECT_EQ(VertexDef::channels(VertexDef::NONE), 0);
    EXPECT_EQ(VertexDef::channelsSize(VertexDef::NONE), 0);
}

TEST(VertexDef, TheReadyMadeFormatsHaveTheSizesOfTheirStructs) {
    EXPECT_EQ(VertexP2::format.size, 8);
    EXPECT_EQ(VertexP3::format.size, 12);
    EXPECT_EQ(VertexP3N3::format.size, 24);
    EXPECT_EQ(VertexP3N3T2::format.size, 32);
    EXPECT_EQ(VertexP3C4b::format.size, 16);
    EXPECT_EQ(VertexP3N3T2A4A4::format.size, 64);
    EXPECT_EQ(VertexP3N3T2A4A4::format.va[1], VertexDef::T_4f);
    EXPECT_EQ(VertexP3N3T2A4A4::format.va[2], VertexDef::NONE);
    EXPECT_EQ(VertexP3N3T2A4A4::format.uv[1], VertexDef::NONE);
    EXPECT_EQ(VertexP3C4b::format.col, VertexDef::T_4B_U);
}

TEST(IBO, TheFormatsAreThoseOfOpenGL) {
    EXPECT_EQ(IBO::FORMAT_UINT8, GL_UNSIGNED_BYTE);
    EXPECT_EQ(IBO::FORMAT_UINT16, GL_UNSIGNED_SHORT);
    EXPECT_EQ(IBO::FORMAT_UINT32, GL_UNSIGNED_INT);
    EXPECT_EQ(IBO::FORMAT_NONE, 0);
}

// Both ways: the parameter says whether buffer objects are denied.
class BufferTest : public GlObjects, public ::testing::WithParamInterface<bool> {
protected:
    BufferTest() {
        if (GetParam())
            mWithout.emplace({BUFFERS});
    }

    static bool emulated() { return GetParam(); }

private:
    std::optional<WithoutExtensions> mWithout;
};

INSTANTIATE_TEST_SUITE_P(, BufferTest, ::testing::Values(false, true),
                         [](const auto& which) { return which.param ? "emulated" : "real"; });

// A triangle over the lower left half of the picture, in two colours.
void fillTriangle(VertexP3C4b* v, int r, int g, int b) {
    const float at[3][2] = {{-1, -1}, {1, -1}, {-1, 1}};
    for (int i = 0; i < 3; ++i)
        v[i] = {Vector3f(at[i][0], at[i][1], 0), uint8_t(r), uint8_t(g), uint8_t(b), 255};
}

TEST_P(BufferTest, VerticesAreDrawnFromData) {
    EXPECT_EQ(BufferObject::isSupported(), !emulated());
    VertexP3C4b corners[3];
    VBO_wrap<VertexP3C4b> vbo(&display());
    fillTriangle(corners, 255, 128, 0);
    const std::string printed = printedBy([&] { vbo.setup(3, corners); });
    EXPECT_EQ(hasLine(printed, "warning", "setup", EMULATING, "dis_vbo.cpp"), emulated()) << printed;
    EXPECT_EQ(vbo.getSize(), 3);
    EXPECT_EQ(vbo.getEntitySize(), 16);
    EXPECT_EQ(vbo.getFormat(), &VertexP3C4b::format);
    corners[0].r = 0; // it has its own
    const Picture shown = frame([&] {
        flat();
        display().setVBO(&vbo);
        EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
        EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
        display().draw(GL_TRIANGLES, -1, 0, -1, 0);
        display().setVBO(nullptr);
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
    });
    EXPECT_EQ(colorAt(shown, 20, 180), 0xff8000ffu);
    EXPECT_EQ(colorAt(shown, 180, 20), 0x000000ffu);
}

TEST_P(BufferTest, VerticesAreWrittenUnderALockAndReplaced) {
    VBO_wrap<VertexP3C4b> vbo(&display());
    vbo.setResourceMode(Resource::DYNAMIC);
    vbo.setup(6, nullptr);
    vbo.bind();
    VertexP3C4b* v = vbo.lock(true, false);
    ASSERT_NE(v, nullptr);
    fillTriangle(v, 255, 0, 0);
    fillTriangle(v + 3, 0, 255, 0);
    vbo.unlock();
    const VertexP3C4b* read = vbo.lock(false, true);
    EXPECT_EQ(read[3].g, 255);
    vbo.unlock();
    VertexP3C4b blue[3];
    fillTriangle(blue, 0, 0, 255);
    vbo.replace(3, 3, blue);
    vbo.unbind();
    const Picture shown = frame([&] {
        flat();
        display().setVBO(&vbo);
        display().draw(GL_TRIANGLES, -1, 0, 3, 3);
        display().setVBO(nullptr);
    });
    EXPECT_EQ(colorAt(shown, 20, 180), 0x0000ffffu);
}

TEST_P(BufferTest, LockReturnsTheSamePointerUnderEmulation) {
    VBO_wrap<VertexP3> vbo(&display());
    vbo.setup(4, nullptr);
    vbo.bind();
    void* first = vbo.lock(true, true);
    vbo.unlock();
    void* second = vbo.lock(true, false);
    vbo.unlock();
    if (emulated()) {
        EXPECT_EQ(first, second);
    }
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    vbo.unbind();
}

TEST_P(BufferTest, LockOnAnUnboundBufferAsserts) {
    VBO_wrap<VertexP3> vbo(&display());
    vbo.setup(4, nullptr);
    EXPECT_DEATH(vbo.lock(true, false), "`mBound'");
    EXPECT_DEATH(vbo.replace(0, 1, nullptr), "`mBound'");
    EXPECT_DEATH(vbo.unbind(), "`mBound'");
    vbo.bind();
    EXPECT_DEATH(vbo.lock(false, false), "`write==true \\|\\| read==true'");
    EXPECT_DEATH(vbo.bind(), "`mBound==false'");
    vbo.unbind();
}

TEST_P(BufferTest, ARangeOutsideTheBufferIsRefused) {
    VBO_wrap<VertexP3> vbo(&display());
    vbo.setup(4, nullptr);
    vbo.bind();
    VertexP3 some[8] = {};
    for (const auto& [first, count] : {std::pair(-1, 2), std::pair(3, 2), std::pair(0, 5), std::pair(0, -1),
                                       std::pair(0x7fffffff, 2), std::pair(5, 0)})
        EXPECT_EQ(thrownBy([&, f = first, c = count] { vbo.replace(f, c, some); }),
                  "BufferObject; Entries " + std::to_string(first) + " and " + std::to_string(count) +
                      " more are not in a buffer of 4");
    vbo.replace(0, 4, some);
    vbo.replace(4, 0, some);
    vbo.unbind();
    IBO ibo(&display());
    ibo.setup(IBO::FORMAT_UINT16, 3, nullptr);
    ibo.bind();
    EXPECT_NE(thrownBy([&] { ibo.replace(2, 2, some, 0, IBO::FORMAT_UINT32); }), "nothing");
    ibo.unbind();
}

TEST_P(BufferTest, IndicesOfEachSizeDraw) {
    VertexP3C4b corners[4];
    VBO_wrap<VertexP3C4b> vbo(&display());
    corners[0] = {};
    fillTriangle(corners + 1, 255, 255, 0);
    vbo.setup(4, corners);
    const auto draws = [&](auto indices, IBO::Format format) {
        IBO ibo(&display());
        const std::string printed = printedBy([&] { ibo.setup(format, 4, indices); });
        EXPECT_EQ(hasLine(printed, "warning", "setup", EMULATING, "dis_ibo.cpp"), emulated());
        EXPECT_EQ(ibo.getFormatGL(), GLenum(format));
        EXPECT_EQ(size_t(ibo.getEntitySize()), sizeof *indices);
        const Picture shown = frame([&] {
            flat();
            display().setVBO(&vbo);
            display().setIBO(&ibo);
            display().draw(GL_TRIANGLES, 1, 3, -1, -1);
            display().setVBO(nullptr);
            display().setIBO(nullptr);
        });
        EXPECT_EQ(colorAt(shown, 20, 180), 0xffff00ffu) << format;
    };
    uint8_t bytes[4] = {0, 1, 2, 3};
    uint16_t words[4] = {0, 1, 2, 3};
    uint32_t longs[4] = {0, 1, 2, 3};
    draws(bytes, IBO::FORMAT_UINT8);
    draws(words, IBO::FORMAT_UINT16);
    draws(longs, IBO::FORMAT_UINT32);
}

template <class Target, class Source>
void convertPair(DisplayGL& display, IBO::Format target, IBO::Format source, bool replacing) {
    Source from[3] = {Source(1), Source(7), Source(250)};
    const int offset = 10;
    IBO ibo(&display);
    if (replacing) {
        ibo.setup(target, 5, nullptr);
        ibo.bind();
        ibo.replace(2, 3, from, offset, source);
    } else {
        ibo.setup(target, 3, from, offset, source);
        ibo.bind();
    }
    const Target* stored = static_cast<const Target*>(ibo.lock(false, true)) + (replacing ? 2 : 0);
    const bool ignored = !replacing && target == source;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(stored[i], Target(from[i] + (ignored ? 0 : offset))) << target << " from " << source;
    ibo.unlock();
    ibo.unbind();
}

TEST_P(BufferTest, AllNinePairsOfIndexTypesConvert) {
    const auto sources = [&](auto target, IBO::Format format) {
        using Target = decltype(target);
        for (const bool replacing : {false, true}) {
            convertPair<Target, uint8_t>(display(), format, IBO::FORMAT_UINT8, replacing);
            convertPair<Target, uint16_t>(display(), format, IBO::FORMAT_UINT16, replacing);
            convertPair<Target, uint32_t>(display(), format, IBO::FORMAT_UINT32, replacing);
        }
    };
    sources(uint8_t(), IBO::FORMAT_UINT8);
    sources(uint16_t(), IBO::FORMAT_UINT16);
    sources(uint32_t(), IBO::FORMAT_UINT32);
}

TEST_P(BufferTest, SixteenBitsPlusTenAreStoredAsThirtyTwo) {
    uint16_t source[3] = {0, 5, 65535};
    IBO ibo(&display());
    ibo.setup(IBO::FORMAT_UINT32, 3, source, 10, IBO::FORMAT_UINT16);
    ibo.bind();
    const auto* stored = static_cast<const uint32_t*>(ibo.lock(false, true));
    EXPECT_EQ(stored[0], 10u);
    EXPECT_EQ(stored[1], 15u);
    EXPECT_EQ(stored[2], 65545u);
    ibo.unlock();
    ibo.unbind();
}

TEST_P(BufferTest, NarrowingTruncates) {
    uint32_t source[2] = {300, 70000};
    IBO ibo(&display());
    ibo.setup(IBO::FORMAT_UINT8, 2, source, 0, IBO::FORMAT_UINT32);
    ibo.bind();
    const auto* stored = static_cast<const uint8_t*>(ibo.lock(false, true));
    EXPECT_EQ(stored[0], 44);
    EXPECT_EQ(stored[1], 112);
    ibo.unlock();
    ibo.unbind();
}

TEST_P(BufferTest, UnknownIndexFormatsThrow) {
    uint32_t source[3] = {};
    IBO ibo(&display());
    EXPECT_EQ(thrownBy([&] { ibo.setup(IBO::FORMAT_NONE, 3, source); }), "Wrong format for IBO::setup!");
    EXPECT_EQ(thrownBy([&] { ibo.setup(IBO::Format(GL_SHORT), 3, source); }), "Wrong format for IBO::setup!");
    EXPECT_EQ(thrownBy([&] { ibo.setup(IBO::FORMAT_UINT8, 3, source, 0, IBO::Format(GL_SHORT)); }),
              "IBO::setup; Unknown dataformat");
    EXPECT_EQ(thrownBy([&] { ibo.setup(IBO::FORMAT_NONE, 3, source, 0, IBO::FORMAT_UINT8); }),
              "Wrong format for IBO::setup!");
    ibo.setup(IBO::FORMAT_UINT8, 3, source);
    ibo.bind();
    EXPECT_EQ(thrownBy([&] { ibo.replace(0, 3, source, 0, IBO::FORMAT_NONE); }),
              "IBO::setup; Unknown dataformat");
    ibo.unbind();
}

TEST_P(BufferTest, ReplacingIndicesIsLogged) {
    uint16_t source[2] = {1, 2};
    IBO ibo(&display());
    ibo.setup(IBO::FORMAT_UINT16, 4, nullptr);
    EXPECT_DEATH(ibo.replace(0, 2, source, 0, IBO::FORMAT_UINT16), "`mBound'");
    ibo.bind();
    char text[100];
    std::snprintf(text, sizeof text, "replace(2, 2, %p)", static_cast<void*>(source));
    EXPECT_TRUE(hasLine(printedBy([&] { ibo.replace(2, 2, source, 5, IBO::FORMAT_UINT16); }), "info",
                        "replace", text, "dis_ibo.cpp"));
    ibo.unbind();
}

TEST_P(BufferTest, PointersCountFromTheMemory) {
    uint32_t indices[4] = {1, 2, 3, 4};
    IBO ibo(&display());
    ibo.setup(IBO::FORMAT_UINT32, 4, indices);
    const auto step =
        reinterpret_cast<intptr_t>(ibo.getPointerGL(3)) - reinterpret_cast<intptr_t>(ibo.getPointerGL(0));
    EXPECT_EQ(step, 12);
    if (emulated())
        EXPECT_EQ(*static_cast<const uint32_t*>(ibo.getPointerGL(3)), 4u);
    else
        EXPECT_EQ(ibo.getPointerGL(0), nullptr);
    EXPECT_FALSE(ibo.isLimited());
    ibo.setLimits(1, 4);
    EXPECT_TRUE(ibo.isLimited());
    EXPECT_EQ(ibo.getFirstIndex(), 1);
    EXPECT_EQ(ibo.getLastIndex(), 4);
}

TEST_P(BufferTest, SetupMayBeRepeatedAndClearEmpties) {
    VertexP3C4b corners[3];
    VBO_wrap<VertexP3C4b> vbo(&display());
    for (int i = 1; i <= 3; ++i) {
        fillTriangle(corners, 80 * i, 0, 0);
        vbo.setup(3, corners);
    }
    const Picture shown = frame([&] {
        flat();
        display().setVBO(&vbo);
        display().draw(GL_TRIANGLES, -1, 0, -1, 0);
        vbo.clear(); // while it is current
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
        display().drawBox(0.5f, 0.5f, 0.2f, 0.2f); // must not read the freed buffer
    });
    EXPECT_EQ(colorAt(shown, 20, 180), 0xf00000ffu);
    EXPECT_EQ(vbo.getSize(), 0);
    EXPECT_EQ(vbo.getEntitySize(), 0);
    EXPECT_EQ(vbo.getFormat(), nullptr);
    vbo.setup(3, corners);
    EXPECT_EQ(vbo.getSize(), 3);
}

TEST_P(BufferTest, ABufferDestroyedWhileCurrentLeavesTheDisplay) {
    {
        VBO_wrap<VertexP3N3T2> vbo(&display());
        IBO ibo(&display());
        vbo.setup(3, nullptr);
        ibo.setup(IBO::FORMAT_UINT8, 3, nullptr);
        display().setVBO(&vbo);
        display().setIBO(&ibo);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    }
    EXPECT_EQ(display().mCurrentVBO, nullptr);
    EXPECT_EQ(display().mCurrentIBO, nullptr);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
    frame([&] { display().drawBox(0, 0, 1, 1); });
}

TEST_P(BufferTest, AfterANewContextTheOwnerSetsUpAgain) {
    VertexP3C4b corners[3];
    VBO_wrap<VertexP3C4b> vbo(&display()), other(&display());
    fillTriangle(corners, 255, 0, 255);
    vbo.setup(3, corners);
    display().close();
    display().open();
    other.setup(3, corners); // may get the old name
    vbo.setup(3, corners);   // must not delete it
    for (VBO* each : {static_cast<VBO*>(&vbo), static_cast<VBO*>(&other)}) {
        const Picture shown = frame([&] {
            flat();
            display().setVBO(each);
            display().draw(GL_TRIANGLES, -1, 0, -1, 0);
            display().setVBO(nullptr);
        });
        EXPECT_EQ(colorAt(shown, 20, 180), 0xff00ffffu);
    }
}

TEST_P(BufferTest, BuffersMadeWithoutADisplayGetOneLater) {
    VBO vbo(nullptr);
    IBO ibo(nullptr);
    vbo.setDisplay(&display());
    ibo.setDisplay(&display());
    vbo.setup(VertexP3N3T2A4A4::format, 10, nullptr);
    ibo.setup(IBO::FORMAT_UINT8, 10, nullptr);
    EXPECT_EQ(vbo.getSize(), 10);
    vbo.setup(VertexP3::format, 0, nullptr);
    EXPECT_EQ(vbo.getSize(), 0);
    if (emulated()) {
        EXPECT_EQ(thrownBy([&] { vbo.setup(VertexP3::format, -1, nullptr); }),
                  "BufferObject; A buffer of -1 entries of 12 bytes can not be made");
    } else
        EXPECT_NE(thrownBy([&] { vbo.setup(VertexP3::format, -1, nullptr); }).find("GL_INVALID_VALUE"),
                  std::string::npos);
}

// Texture coordinates of two units, normals and four attributes reach a program.
TEST_P(BufferTest, EveryChannelReachesAProgram) {
    struct Vertex {
        float p[2];
        int16_t n[3], pad;
        uint8_t c[4];
        float t0[2], t1[2];
        float a[4][2];
    };
    const VertexDef format(VertexDef::T_2F, VertexDef::T_4W, VertexDef::T_4B_U, VertexDef::T_2F,
                           VertexDef::T_2F, VertexDef::T_2F, VertexDef::T_2F, VertexDef::T_2F,
                           VertexDef::T_2F);
    ASSERT_EQ(size_t(format.size), sizeof(Vertex));
    Vertex v[3];
    const float at[3][2] = {{-1, -1}, {3, -1}, {-1, 3}};
    for (int i = 0; i < 3; ++i)
        v[i] = {{at[i][0], at[i][1]},
                {0, 0, 32767},
                0,
                {255, 0, 0, 255},
                {0.1f, 0.2f},
                {0.05f, 0.1f},
                {{0.1f, 0}, {0, 0.1f}, {0.05f, 0.05f}, {0.05f, 0}}};
    const char* vertexText =
        "attribute vec2 tangent0_vs, tangent1_vs;\n"
        "varying vec4 sum;\n"
        "void main() {\n"
        "    gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);\n"
        "    sum = vec4(gl_MultiTexCoord0.xy + gl_MultiTexCoord1.xy, gl_Normal.z, 1.0);\n"
        "    sum.xy += tangent0_vs + tangent1_vs;\n"
        "    sum.xy += gl_Color.xy * 0.1;\n"
        "}\n";
    const char* fragmentText = "varying vec4 sum;\nvoid main() { gl_FragColor = sum; }\n";
    VertexShader vertex(&display());
    FragmentShader fragment(&display());
    ShaderProgram program(&display());
    vertex.compile(reinterpret_cast<const unsigned char*>(vertexText), int(strlen(vertexText)), "v");
    fragment.compile(reinterpret_cast<const unsigned char*>(fragmentText), int(strlen(fragmentText)), "f");
    program.attach(vertex, fragment);
    program.link();
    VBO vbo(&display());
    vbo.setup(format, 3, v);
    const Picture shown = frame([&] {
        display().setVBO(&vbo);
        for (GLuint slot = 6; slot < 10; ++slot) {
            GLint enabled = 0;
            glGetVertexAttribiv(slot, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_TRUE(enabled);
        }
        program.bind();
        display().draw(GL_TRIANGLES, -1, 0, 0, 3);
        program.unbind();
        display().setVBO(nullptr);
        for (GLuint slot = 6; slot < 10; ++slot) {
            GLint enabled = 1;
            glGetVertexAttribiv(slot, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_FALSE(enabled);
        }
        glClientActiveTexture(GL_TEXTURE1);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
        glClientActiveTexture(GL_TEXTURE0);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    });
    const uint8_t* p = shown.at(100, 100);
    EXPECT_NEAR(p[0], 255 * (0.15f + 0.1f + 0.1f), 2); // coordinates, attribute 6, colour
    EXPECT_NEAR(p[1], 255 * (0.3f + 0.1f), 2);         // coordinates, attribute 7
    EXPECT_NEAR(p[2], 255, 2);
}

class RealBufferTest : public GlObjects {};

TEST_F(RealBufferTest, TheModeChoosesTheUsage) {
    const std::pair<Resource::Mode, GLint> table[] = {{Resource::STATIC, GL_STATIC_DRAW},
                                                      {Resource::STREAM, GL_STREAM_DRAW},
                                                      {Resource::DYNAMIC, GL_DYNAMIC_DRAW}};
    for (const auto& [mode, usage] : table) {
        VBO vbo(&display());
        EXPECT_EQ(vbo.getResourceMode(), Resource::STATIC);
        vbo.setResourceMode(mode);
        vbo.setup(VertexP3::format, 4, nullptr);
        vbo.bind();
        GLint got = 0, bytes = 0;
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_USAGE, &got);
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &bytes);
        EXPECT_EQ(got, usage);
        EXPECT_EQ(bytes, 48);
        vbo.unbind();
    }
}

TEST_F(RealBufferTest, NothingStaysBoundAfterTheSetUp) {
    VBO vbo(&display());
    IBO ibo(&display());
    vbo.setup(VertexP3::format, 4, nullptr);
    ibo.setup(IBO::FORMAT_UINT8, 4, nullptr);
    GLint bound[2] = {-1, -1};
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &bound[0]);
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &bound[1]);
    EXPECT_EQ(bound[0], 0);
    EXPECT_EQ(bound[1], 0);
    vbo.bind();
    ibo.bind();
    VBO::unbindAny();
    IBO::unbindAny();
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &bound[0]);
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &bound[1]);
    EXPECT_EQ(bound[0], 0);
    EXPECT_EQ(bound[1], 0);
}

TEST_F(RealBufferTest, ABufferOfOpenGLIsDeletedWithItsOwner) {
    GLint name = 0;
    {
        VBO vbo(&display());
        vbo.setup(VertexP3::format, 4, nullptr);
        vbo.bind();
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &name);
        vbo.lock(true, false); // and unmapped, if need be
    }
    EXPECT_FALSE(glIsBuffer(GLuint(name)));
}

TEST_F(RealBufferTest, SizesBeyondTheRecommendedOnesAreWarnings) {
    FakeLimits limits{{GL_MAX_ELEMENTS_VERTICES, 10}, {GL_MAX_ELEMENTS_INDICES, 20}};
    VBO vbo(&display());
    IBO ibo(&display());
    EXPECT_EQ(printedBy([&] { vbo.setup(VertexP3::format, 10, nullptr); }), "");
    EXPECT_TRUE(hasLine(printedBy([&] { vbo.setup(VertexP3::format, 11, nullptr); }), "warning", "setup",
                        "Creating vertex buffer with too many vertices (11 when 10 recommended)",
                        "dis_vbo.cpp"));
    EXPECT_EQ(printedBy([&] { ibo.setup(IBO::FORMAT_UINT8, 20, nullptr); }), "");
    EXPECT_TRUE(hasLine(printedBy([&] { ibo.setup(IBO::FORMAT_UINT8, 21, nullptr); }), "warning", "setup",
                        "Creating index buffer with too many indices (21 when 20 recommended)",
                        "dis_ibo.cpp"));
    EXPECT_EQ(vbo.getSize(), 11);
    EXPECT_EQ(ibo.getSize(), 21);
}

TEST_F(RealBufferTest, OneUnitNeedsNoMultitexture) {
    const WithoutExtensions without{"GL_ARB_multitexture"};
    VBO vbo(&display());
    vbo.setup(VertexP3N3T2::format, 4, nullptr);
    EXPECT_EQ(thrownBy([&] { vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr); }),
              "Your card does not support multi-texturing");
    const VertexDef two(VertexDef::T_3F, VertexDef::NONE, VertexDef::NONE, VertexDef::NONE, VertexDef::T_2F);
    EXPECT_EQ(thrownBy([&] { vbo.setup(two, 4, nullptr); }), "Your card does not support multi-texturing");
}

TEST_F(RealBufferTest, TwoTangentsCountAsFourUnits) {
    VBO vbo(&display());
    {
        FakeLimits limits{{GL_MAX_TEXTURE_COORDS, 3}, {GL_MAX_TEXTURE_UNITS, 2}};
        EXPECT_EQ(thrownBy([&] { vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr); }),
                  "Your card does not support 4 texture channels (only 3)");
        const WithoutExtensions without{"GL_ARB_fragment_program"};
        EXPECT_EQ(thrownBy([&] { vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr); }),
                  "Your card does not support 4 texture channels (only 2)");
        const VertexDef six(VertexDef::T_3F, VertexDef::NONE, VertexDef::NONE, VertexDef::NONE,
                            VertexDef::NONE, VertexDef::NONE, VertexDef::NONE, VertexDef::NONE,
                            VertexDef::T_1F);
        EXPECT_EQ(thrownBy([&] { vbo.setup(six, 4, nullptr); }),
                  "Your card does not support 6 texture channels (only 2)");
    }
    FakeLimits limits{{GL_MAX_TEXTURE_UNITS, 4}};
    vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr);
    EXPECT_EQ(vbo.getSize(), 4);
}

TEST_F(RealBufferTest, LockingAnEmptyBufferGivesNothingAndLeavesNoError) {
    VBO vbo(&display());
    vbo.setup(VertexP3::format, 0, nullptr);
    vbo.bind();
    EXPECT_EQ(vbo.lock(true, true), nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    vbo.unlock();
    vbo.unbind();
    vbo.clear();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// A pending error is reported with the text of the next call that is checked.
TEST_F(RealBufferTest, ChecksHaveTheTextsOfTheirCalls) {
    VBO vbo(&display());
    const auto thrownAt = [&](auto& function, auto broken, const auto& call) {
        const auto real = function;
        function = broken;
        const std::string thrown = thrownBy(call);
        function = real;
        const size_t from = thrown.find("Line: ") + 6;
        return thrown.substr(from, thrown.find('\n', from) - from);
    };
    EXPECT_EQ(thrownAt(
                  __glewBufferDataARB, [](GLenum, GLsizeiptrARB, const void*, GLenum) { glEnable(0xFFFF); },
                  [&] { vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr); }),
              "glBufferDataARB( mTarget, mEntitySize*numEntities, data, usage )");
    vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr);
    EXPECT_EQ(thrownAt(
                  __glewEnableVertexAttribArrayARB, [](GLuint) { glEnable(0xFFFF); }, [&] { vbo.bind(); }),
              "glEnableVertexAttribArrayARB(6 + i)");
    vbo.clear();
    vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr);
    EXPECT_EQ(thrownAt(
                  __glewVertexAttribPointerARB,
                  [](GLuint, GLint, GLenum, GLboolean, GLsizei, const void*) { glEnable(0xFFFF); },
                  [&] { vbo.bind(); }),
              "glVertexAttribPointerARB(6 + i, numChannels, type, false, mFormat->size, offset)");
    vbo.clear();
    vbo.setup(VertexP3N3T2A4A4::format, 4, nullptr);
    vbo.bind();
    float vertices[64] = {};
    EXPECT_EQ(thrownAt(
                  __glewBufferSubData, [](GLenum, GLintptr, GLsizeiptr, const void*) { glEnable(0xFFFF); },
                  [&] { vbo.replace(0, 1, vertices); }),
              "glBufferSubData(mTarget, firstEntity*mEntitySize, numEntities*mEntitySize, data)");
    vbo.unbind();
    EXPECT_EQ(
        thrownAt(
            __glewDeleteBuffersARB, [](GLsizei, const GLuint*) { glEnable(0xFFFF); }, [&] { vbo.clear(); }),
        "glDeleteBuffersARB(1, &mID)");
    EXPECT_EQ(vbo.getSize(), 0);
}

TEST_F(RealBufferTest, ADamagedBufferIsAWarning) {
    VBO vbo(&display());
    vbo.setup(VertexP3::format, 4, nullptr);
    vbo.bind();
    vbo.lock(true, false);
    static const PFNGLUNMAPBUFFERPROC unmap = __glewUnmapBuffer;
    __glewUnmapBuffer = [](GLenum target) -> GLboolean {
        unmap(target);
        return GL_FALSE;
    };
    const std::string printed = printedBy([&] { vbo.unlock(); });
    __glewUnmapBuffer = unmap;
    EXPECT_TRUE(hasLine(printed, "warning", "unlock", "Buffer object corrupted?!", "dis_bufferobject.cpp"))
        << printed;
    vbo.lock(true, false); // it can be locked again
    vbo.unlock();
    vbo.unbind();
}

TEST_F(RealBufferTest, EmulationMakesNoCallOnBuffers) {
    const WithoutExtensions without{BUFFERS};
    static int calls;
    calls = 0;
    const auto gen = __glewGenBuffersARB;
    const auto bind = __glewBindBufferARB;
    const auto map = __glewMapBuffer;
    const auto unmap = __glewUnmapBuffer;
    __glewGenBuffersARB = [](GLsizei, GLuint*) { ++calls; };
    __glewBindBufferARB = [](GLenum, GLuint) { ++calls; };
    __glewMapBuffer = [](GLenum, GLenum) -> void* { return ++calls, nullptr; };
    __glewUnmapBuffer = [](GLenum) -> GLboolean { return ++calls, GLboolean(GL_TRUE); };
    {
        VBO vbo(&display());
        vbo.setup(VertexP3::format, 4, nullptr);
        vbo.bind();
        vbo.lock(true, true);
        vbo.unlock();
        vbo.unbind();
        VBO::unbindAny();
    }
    __glewGenBuffersARB = gen;
    __glewBindBufferARB = bind;
    __glewMapBuffer = map;
    __glewUnmapBuffer = unmap;
    EXPECT_EQ(calls, 0);
}

} // namespace
