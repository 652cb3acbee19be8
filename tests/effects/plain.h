// The effects once more, the plain way: one call of OpenGL per vertex, one matrix per box, nothing left out
// and nothing worked out ahead. What tests hold the effects' pictures and numbers against, and benchmarks
// their speed. Each has state of its own and draws its random numbers from `start`, as an effect does whose
// start is fixed.
#pragma once

#include "am_image.h"
#include "dis_display.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "mb_matrix4x4col.h"
#include "mb_vector3.h"
#include "mb_vector4.h"
#include "o3d_manager.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zentrak::test::plain {

using display::DisplayGL;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

// The random numbers, written out once more.
struct Numbers {
    uint32_t seed;

    explicit Numbers(uint32_t start) : seed(start) {
        next();
        next();
    }
    uint32_t next() { return seed = seed * 69069u + 5u; }
    float u() { return float(next()) * (1.0f / 4294967296.0f); }
    Vector3f sphere();
};

// The model-view matrix of a camera and a transform, and the whole box around the origin, by glBegin.
void place(const Matrix4x4Col& camera, const Matrix4x4Col& transform);
void box(float hx, float hy, float hz);
void perspective(float fovy, float znear, float zfar); // of aspect 1.6

class Rund {
public:
    float alpha = 0, arne = 5;

    explicit Rund(uint32_t start) : mNumbers(start), mTexture(nullptr) {}
    void setup(DisplayGL& display);
    void update(DisplayGL& display, float time, float delta);

    struct Record {
        float x, y, scale, speed;
    } records[20];

private:
    Numbers mNumbers;
    display::Texture mTexture;
};

class Xor {
public:
    float alpha = 0, coll = 0;

    explicit Xor(uint32_t start);
    void update(DisplayGL& display, float time, float delta);

private:
    struct Record {
        Vector3f pos, col, rot;
    };
    std::vector<Record> mRecords;
};

class Tunnel {
public:
    struct Ring {
        Vector3f pos, rot, spin, col;
        float inner, outer;
    };
    std::vector<Ring> rings;

    explicit Tunnel(uint32_t start);
    void setup(DisplayGL& display);
    void update(DisplayGL& display, float time, float delta);

    static Vector3f path(float t);

private:
    display::ShaderProgram mProgram;
};

// Scatters with the C library's random numbers, as the effect does.
class Kub {
public:
    struct Mod {
        float dx, dy;
        int step;
    };
    struct Cube {
        std::vector<Mod> mods;
        int count = 0;
        float x, y;
        Vector3f col, rot, draw;
        float amp = 0.15f, expand = 0;
    };
    std::vector<Cube> cubes;
    int frame = 0;
    float fultimer = 0, pd = 0, alphaa = 1, modAngle = 0, rexpand = 0;
    bool rexpandOn = false, turnOn = false, turnOn2 = false;

    explicit Kub(uint32_t start) : mNumbers(start), mShade(nullptr), mProgram(nullptr) {}
    void setup(DisplayGL& display);
    void scatter(const am::ImageObject& image);
    void step(float time, float delta); // what update does ahead of drawing
    void draw(DisplayGL& display, float time, float progress);

private:
    Numbers mNumbers;
    display::Texture mShade;
    display::ShaderProgram mProgram;
};

class Credits {
public:
    struct Record {
        Vector3f target, start, side;
        Vector4f col;
        float delay;
    };
    std::vector<Record> pixels;
    bool explode = false;
    float boom = 0, zoom = 0;

    Credits(uint32_t start, const am::ImageObject& image);
    void update(DisplayGL& display, float delta);
};

class Grand {
public:
    float alpha = 0;

    explicit Grand(uint32_t start) : mNumbers(start) {}
    void setup(DisplayGL& display);
    void update(DisplayGL& display, float progress);

private:
    struct Record {
        Vector3f pos, col;
        float weight;
    };
    Numbers mNumbers;
    std::vector<Record> mColumns[128];
};

class Greet {
public:
    Greet();
    void setup(DisplayGL& display);
    void trigger();
    void update(DisplayGL& display, float delta);

    Vector3f from{0, 0, 305}, to{0, 0, 0};
    float roll = 0;

private:
    struct Slab {
        float vol[3][24][192];
        Vector3f col[3][24][192];
    };
    std::unique_ptr<Slab> mSlab;
    int mBand = 0;
    am::Image mImage;
    display::Texture mTexture;
};

class Vul {
public:
    float intensity = 0;

    Vul() : mTexture(nullptr) {}
    void setup(DisplayGL& display);
    void update(DisplayGL& display, float time);

private:
    display::Texture mTexture;
};

class Cubejox {
public:
    struct Rod {
        Vector3f pos, axis;
        float angle;
        int sides;
        float radius, spin;
    };
    std::vector<Rod> rods;
    float alpha = 0, bw = 0, zoom = 0;

    explicit Cubejox(uint32_t start);
    void update(DisplayGL& display, float time, float delta);
};

class Face {
public:
    float alpha = 0;
    o3d::Manager scene;

    void setup(DisplayGL& display);
    void update(DisplayGL& display, float time);

private:
    display::Texture mTexture{nullptr};
};

} // namespace zentrak::test::plain
