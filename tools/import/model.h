// The scene of a model file in plain values, as the reading process sends it.
#pragma once

#include <assimp/types.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zentrak::importer {

using Vector = aiVector3t<double>;
using Quaternion = aiQuaterniont<double>;
using Matrix = aiMatrix4x4t<double>;
using Matrix3 = aiMatrix3x3t<double>;

// Triangles of one material.
struct Part {
    std::string name;
    uint32_t material = 0; // index in the Model's
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 3>> normals;   // one per position, or none
    std::vector<std::array<float, 2>> texCoords; // one per position, or none; v upward
    std::vector<std::array<uint32_t, 3>> triangles;

    // What else the mesh has, which is lost.
    uint32_t points = 0;
    uint32_t lines = 0;
    uint32_t badTriangles = 0; // with an invalid index
    uint32_t bones = 0;
    uint32_t morphs = 0;
    uint32_t texCoordSets = 0;
    uint8_t colors = 0;
    uint8_t depthCoords = 0; // texture coordinates have a third component
};

struct Node {
    std::string name;
    int32_t parent = -1; // index; parents come before their children
    Matrix matrix;       // relative to the parent
    std::vector<uint32_t> parts;
};

struct TextureUse {
    std::string kind; // "diffuse", "normals"...
    std::string file; // "*0" is a picture in the model file
};

struct ColorUse {
    std::string kind; // "diffuse", "specular", "emissive"
    std::array<float, 4> rgba;
};

struct Surface {
    std::string name;
    std::vector<ColorUse> colors;
    std::vector<TextureUse> textures;
};

// In the space of the node of the same name.
struct CameraData {
    std::string name;
    Vector position, direction, up;
    double angle = 0; // vertical, radians
    uint8_t orthographic = 0;
};

struct LightData {
    std::string name;
    Vector position, direction;
    std::array<float, 3> color{};
    double angle = 0; // outer cone, radians; 0 where there is none
    uint8_t ambient = 0;
};

struct VectorKey {
    double time; // seconds
    Vector value;
};

struct QuaternionKey {
    double time; // seconds
    Quaternion value;
};

enum class Beyond : uint8_t { HOLD, EXTRAPOLATE, REPEAT };

// Replaces the transform of a node: linear between positions and scales, spherical between rotations. Times
// ascend; two equal times are a jump.
struct Channel {
    std::string node;
    std::vector<VectorKey> positions, scales;
    std::vector<QuaternionKey> rotations;
    Beyond before = Beyond::HOLD, after = Beyond::HOLD;
    uint8_t disordered = 0; // the keys had to be sorted
    uint8_t curved = 0;     // curves between keys are lost
};

struct Animation {
    std::string name;
    double length = 0; // seconds
    std::vector<Channel> channels;
    std::vector<std::string> others; // nodes and meshes whose vertices it moves
};

struct Model {
    std::string format;      // "Wavefront Object Importer"
    std::string name;        // may be empty
    double unit = 1;         // metres
    Matrix3 axes;            // from the file's axes to right, up and towards the viewer
    std::vector<Node> nodes; // the first is the root
    std::vector<Part> parts;
    std::vector<Surface> surfaces;
    std::vector<CameraData> cameras;
    std::vector<LightData> lights;
    std::vector<Animation> animations;
    std::vector<std::string> warnings; // of the reading library
};

} // namespace zentrak::importer
