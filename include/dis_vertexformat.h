// The layout of a vertex, channel by channel, and ready-made vertex types.
#pragma once

#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <cstdint>

namespace zentrak::display {

// The layout of one vertex: the channels that are present follow each other without gaps, in the order of the
// fields below.
struct VertexDef {
    // Group of types times 4, plus the number of components less 1.
    // clang-format off
    enum CHANNEL : int {
        T_1B   = 0,  T_2B,   T_3B,   T_4B,   // GL_BYTE
        T_1W   = 4,  T_2W,   T_3W,   T_4W,   // GL_SHORT
        T_1I   = 8,  T_2I,   T_3I,   T_4I,   // GL_INT
        T_1F   = 12, T_2F,   T_3F,   T_4f,   // GL_FLOAT
        T_1D   = 16, T_2D,   T_3D,   T_4D,   // GL_DOUBLE
        T_1B_U = 20, T_2B_U, T_3B_U, T_4B_U, // GL_UNSIGNED_BYTE
        T_1W_U = 24, T_2W_U, T_3W_U, T_4W_U, // GL_UNSIGNED_SHORT
        T_1I_U = 28, T_2I_U, T_3I_U, T_4I_U, // GL_UNSIGNED_INT
        NONE   = 32                          // the channel is absent
    };
    // clang-format on

    static constexpr int UVS = 2;
    static constexpr int VAS = 4;

    static constexpr GLenum groups[8] = {
        GL_BYTE, GL_SHORT, GL_INT, GL_FLOAT, GL_DOUBLE, GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_UNSIGNED_INT};
    static constexpr int groupSize[8] = {1, 2, 4, 4, 8, 1, 2, 4}; // bytes per component

    constexpr VertexDef(CHANNEL position, CHANNEL normal = NONE, CHANNEL color = NONE, CHANNEL uv0 = NONE,
                        CHANNEL uv1 = NONE, CHANNEL va0 = NONE, CHANNEL va1 = NONE, CHANNEL va2 = NONE,
                        CHANNEL va3 = NONE)
        : size(channelsSize(position) + channelsSize(normal) + channelsSize(color) + channelsSize(uv0) +
               channelsSize(uv1) + channelsSize(va0) + channelsSize(va1) + channelsSize(va2) +
               channelsSize(va3)),
          pos(position),
          nor(normal),
          col(color),
          uv{uv0, uv1},
          va{va0, va1, va2, va3} {}

    static constexpr bool present(CHANNEL c) { return c >= 0 && c < NONE; }
    static constexpr int channels(CHANNEL c) { return present(c) ? c % 4 + 1 : 0; }           // components
    static constexpr int channelSize(CHANNEL c) { return present(c) ? groupSize[c / 4] : 0; } // bytes of one
    static constexpr int channelsSize(CHANNEL c) { return channels(c) * channelSize(c); }     // bytes of all
    static constexpr GLenum channelGL(CHANNEL c) { return present(c) ? groups[c / 4] : GL_NONE; }

    int size; // bytes per vertex
    CHANNEL pos;
    CHANNEL nor;
    CHANNEL col;
    CHANNEL uv[UVS]; // texture coordinates of units 0 and 1
    CHANNEL va[VAS]; // generic attributes of slots 6 to 9
};

struct VertexP2 {
    mathbase::Vector2f p;

    static const VertexDef format;
};

struct VertexP3 {
    mathbase::Vector3f p;

    static const VertexDef format;
};

struct VertexP3N3 {
    mathbase::Vector3f p;
    mathbase::Vector3f n;

    static const VertexDef format;
};

struct VertexP3N3T2 {
    mathbase::Vector3f p;
    mathbase::Vector3f n;
    mathbase::Vector2f t;

    static const VertexDef format;
};

struct VertexP3C4b {
    mathbase::Vector3f p;
    uint8_t r, g, b, a;

    static const VertexDef format;
};

struct VertexP3N3T2A4A4 {
    mathbase::Vector3f p;
    mathbase::Vector3f n;
    mathbase::Vector2f t1;
    mathbase::Vector4f a1; // "tangent0_vs" of a program
    mathbase::Vector4f a2; // "tangent1_vs"

    static const VertexDef format;
};

} // namespace zentrak::display
