// The chunk IDs of a .o3d file. docs/formats.md says what each holds.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zentrak::o3d {

constexpr const char* FORMAT = "O3DF";
constexpr int VERSION_FIRST = 1;
constexpr int VERSION_SECOND = 1;

// How many chunks may be open around a new node or bone: far more than a scene needs, and few enough for a
// walk by recursion. What is nested deeper is left out, and logged.
constexpr size_t MAX_DEPTH = 2000;

enum ChunkId : uint16_t {
    CHUNK_MAIN = 0x1000,

    CHUNK_MESH = 0x2000,
    CHUNK_SUBMESH = 0x2200,
    CHUNK_BONEGROUP = 0x2300, // of a Mesh; skipped by the loader
    CHUNK_MATERIALNAMES = 0x6200,
    CHUNK_VERTICES = 0xFF00,
    CHUNK_TEXCOORDS = 0xFF10,
    CHUNK_TRIANGLES = 0xFF30,
    CHUNK_INDICES = 0xFF60,

    CHUNK_IMAGE = 0x4000,
    CHUNK_FILENAME = 0xF020,

    CHUNK_MATERIAL = 0x6000,
    CHUNK_ATTRIBUTE = 0x6100,
    CHUNK_MATERIALFLAG1 = 0x6101,
    CHUNK_MATERIALFLAG2 = 0x6111,
    CHUNK_TEXTURE = 0x7000,
    CHUNK_TEXTUREVALUE = 0x7001,
    CHUNK_IMAGENAME = 0xF030,

    CHUNK_SCENE = 0x5000,
    CHUNK_CAMERA = 0x5110,
    CHUNK_MESHINSTANCE = 0x5120,
    CHUNK_DUMMY = 0x5130,
    CHUNK_LIGHT = 0x5140,
    CHUNK_LIGHTTRACK1 = 0x5150,
    CHUNK_LIGHTFLAG = 0x5151,
    CHUNK_LIGHTTRACK2 = 0x5160,
    CHUNK_ARMATURE = 0x5180,
    CHUNK_BONE = 0x5190,
    CHUNK_MATERIALOVERRIDE = 0x6210,

    CHUNK_POSITION = 0xFA00,
    CHUNK_ROTATION = 0xFA10,
    CHUNK_SCALE = 0xFA20,
    CHUNK_COLOR = 0xFA30,
    CHUNK_ANGLE = 0xFA40,
    CHUNK_BONEROTATION = 0xFA50,

    CHUNK_DEFAULT1 = 0xF004, // default values of a track, by the number of its components
    CHUNK_DEFAULT3 = 0xF006,
    CHUNK_DEFAULT4 = 0xF007,
    CHUNK_KEYS0 = 0xFB00, // key lists
    CHUNK_KEYS1 = 0xFB10,
    CHUNK_KEYS2 = 0xFB20,
    CHUNK_KEYS3 = 0xFB30
};

} // namespace zentrak::o3d
