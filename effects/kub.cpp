#include "kub.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_image.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr int NUM_STEPS = 120;
constexpr const char* PICTURE = "kub/kub.png";

struct State {
    std::vector<Kub::Poxel> poxel;
    int frame = 0;      // the simulation step now shown
    float fultimer = 0; // progress within it, in steps
    float pd = 0;       // phase of the camera's swing
    float alphaa = 1;
    float modAngle = 0;
    float rexpand = 0; // time of "expand"
    bool rexpandOn = false;
    float turn = 0; // time of "turn"; not read
    bool turnOn = false;
    bool turnOn2 = false;
} state;

float square(float f) {
    return f * f;
}

// The cells around the picture, as far as a cube can get in all steps, and which of them are taken.
class Floor {
public:
    Floor(int width, int height)
        : mLeft(-32 - NUM_STEPS - 1),
          mTop(-16 - NUM_STEPS - 1),
          mWidth(width + 2 * (NUM_STEPS + 1)),
          mTaken(size_t(mWidth) * size_t(height + 2 * (NUM_STEPS + 1))) {}

    char& at(float x, float y) {
        return mTaken[size_t(int(y) - mTop) * size_t(mWidth) + size_t(int(x) - mLeft)];
    }

private:
    int mLeft, mTop, mWidth;
    std::vector<char> mTaken;
};

// The last move of a cube that is not undone yet, if it was made in `step`.
const Kub::Mod* moveOf(const Kub::Poxel& cube, int step) {
    if (cube.count <= 0)
        return nullptr;
    const Kub::Mod& mod = cube.mods[size_t(cube.count - 1)];
    return mod.step == step ? &mod : nullptr;
}

// Takes back what was done in the current step.
void undoStep() {
    for (Kub::Poxel& cube : state.poxel) {
        if (const Kub::Mod* mod = moveOf(cube, state.frame)) {
            cube.x -= mod->dx;
            cube.y -= mod->dy;
            --cube.count;
            cube.rot = Vector3f(0, 0, 0);
            cube.draw.x = cube.x;
            cube.draw.y = cube.y;
        }
    }
    --state.frame;
}

// The cubes that are in the middle of a step roll over an edge and lift.
void rollCubes() {
    const float t = state.fultimer;
    const float quarter = t * PI / 2.0f;
    for (Kub::Poxel& cube : state.poxel) {
        const Kub::Mod* mod = moveOf(cube, state.frame);
        if (mod == nullptr)
            continue;
        float x = cube.x, y = cube.y;
        if (int(mod->dx) > 0)
            x -= t, cube.rot = Vector3f(0, 0, quarter);
        else if (int(mod->dx) < 0)
            x += t, cube.rot = Vector3f(0, 0, -quarter);
        else if (int(mod->dy) > 0)
            y -= t, cube.rot = Vector3f(-quarter, 0, 0);
        else
            y += t, cube.rot = Vector3f(quarter, 0, 0);
        cube.draw = Vector3f(x, y, cube.amp * sinf(t * PI));
    }
}

} // namespace

Kub::Kub(Common*) {
    state = State();
    bindSpline("ilvo marsten", state.modAngle);
    bindSpline("alpha", state.alphaa);
    bindTrigger("turn2", [](float, const std::string&) { state.turnOn2 = true; });
    bindTrigger("turn", [](float time, const std::string&) {
        state.turnOn = true;
        state.turn = time;
    });
    bindTrigger("expand", [](float time, const std::string&) {
        state.rexpandOn = true;
        state.rexpand = time;
    });
}

const std::vector<Kub::Poxel>& Kub::poxels() {
    return state.poxel;
}

int Kub::currentFrame() {
    return state.frame;
}

void Kub::setup() {
    const am::Image image = loadPixels(*mDisplay, PICTURE);
    loadPicture(*image);
    mShade.loadFile(*mDisplay, "kub/shade.png", true);
    mProgram.linkFiles(*mDisplay, "kub/kub.vert", "kub/kub.frag");
    scatter(image->getWidth(), image->getHeight());
}

void Kub::loadPicture(const am::ImageObject& image) {
    state.poxel.clear();
    for (int row = 0; row < image.getHeight(); ++row) {
        for (int column = 0; column < image.getWidth(); ++column) {
            // Blue, green and red, each out of 256.
            const unsigned char* p =
                image.getData() + (size_t(row) * size_t(image.getWidth()) + size_t(column)) * 4;
            const Vector3f colour(float(p[2]) / 256.0f, float(p[1]) / 256.0f, float(p[0]) / 256.0f);
            if (colour.x < 0.05f && colour.y < 0.05f && colour.z < 0.05f)
                continue;
            checkBoxes(state.poxel.size(), PICTURE);
            Poxel cube;
            cube.x = float(column - 32);
            cube.y = float(row - 16);
            cube.col = colour;
            cube.draw = Vector3f(cube.x, cube.y, 0);
            state.poxel.push_back(cube);
        }
    }
    state.frame = 1;
}

// Slides cubes one cell at a time, mostly outward and wider in x than in y; rand() is never seeded, so that
// every run makes the same moves. An attempt to enter a taken cell, or to move twice in one step, is used up.
void Kub::scatter(int width, int height) {
    Floor floor(width, height);
    for (const Poxel& cube : state.poxel)
        floor.at(cube.x, cube.y) = 1;

    for (int step = 0; step < NUM_STEPS && !state.poxel.empty(); ++step) {
        const int attempts = step == 0 ? 12 : 20 + 8 * (step - 1);
        for (int attempt = 0; attempt < attempts; ++attempt) {
            Poxel& cube = state.poxel[size_t(rand()) % state.poxel.size()];
            const float cells[4][2] = {
                {cube.x + 1, cube.y}, {cube.x - 1, cube.y}, {cube.x, cube.y + 1}, {cube.x, cube.y - 1}};
            int chosen = 0;
            Vector3f p(0, 0, 0);
            if (rand() % 4 == 0) {
                chosen = rand() % 4;
            } else {
                float farthest = -1;
                for (int i = 0; i < 4; ++i) {
                    const float distance = sqrtf(square(0.5f * cells[i][0]) + square(cells[i][1]));
                    if (distance > farthest) {
                        farthest = distance;
                        chosen = i;
                        if (i < 3)
                            p = Vector3f(0.5f * cells[i][0], cells[i][1], 0);
                    }
                }
            }

            const float x = cells[chosen][0], y = cells[chosen][1];
            if (floor.at(x, y) != 0 || (!cube.mods.empty() && cube.mods.back().step == step))
                continue;
            if (cube.mods.empty())
                cube.expand = (0.9f * mRandom.uniform() + 0.1f) * (p.length() + 0.01f);
            cube.mods.push_back({x - cube.x, y - cube.y, step});
            floor.at(cube.x, cube.y) = 0;
            floor.at(x, y) = 1;
            cube.x = x;
            cube.y = y;
            cube.draw = Vector3f(x, y, 0);
            ++cube.count;
        }
    }
    state.frame = NUM_STEPS;
}

void Kub::update(float time, float delta, float progress) {
    state.fultimer += 4.5f * delta;
    if (time < 9.8f)
        state.fultimer = 0;
    while (state.fultimer > 1.0f) {
        if (state.frame < 0) { // all is undone: only the part of a step counts
            state.fultimer =
                std::isfinite(state.fultimer) ? state.fultimer - ceilf(state.fultimer) + 1.0f : 0.0f;
            break;
        }
        undoStep();
        state.fultimer -= 1.0f;
    }

    const float z = std::max(50.0f - time, 0.001f);
    const float q = state.rexpandOn ? 0.1f * (time - state.rexpand) : 0.0f;
    state.pd += 0.005f * delta;
    Vector3f eye(0, 1000.0f * square(sinf(state.pd * PI * 0.5f)), z), target(0, 0, 0);
    if (state.turnOn) {
        eye = Vector3f(0, 400, 0);
        target = Vector3f(400, 400, 0);
    }
    if (state.turnOn2) {
        eye = Vector3f(50, 1300, 50);
        target = Vector3f(0, 1350, 0);
    }
    const float a = square(sinf(state.modAngle));
    eye += Vector3f(0, 20, -1000) * a;
    target += Vector3f(0, -200, -1000) * a;
    setView(*mDisplay, Lens(), eye, target, 5.0f * a + q);

    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glEnable(GL_BLEND));
    rollCubes();

    // The floor: its top is the plane that the cubes stand on.
    mBatch.color(0.891f, 0.891f, 0.911f, state.alphaa);
    mBatch.box(Vector3f(0, -200.5f, 0), Vector3f(200, 200, 200));
    mBatch.flush();

    GL_CALL(glEnable(GL_TEXTURE_2D));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    mShade.bind();
    mProgram.bind();
    mProgram.set("alpha", state.alphaa);
    drawCubes(time, progress);
    mProgram.unbind();
    mShade.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    mDisplay->resetStates();
}

void Kub::drawCubes(float time, float progress) {
    const float since = time - state.rexpand;
    for (const Poxel& cube : state.poxel) {
        Matrix4x4Col transform;
        const Vector3f place(cube.draw.x, cube.draw.z, cube.draw.y);
        if (cube.rot == Vector3f(0, 0, 0)) // most of them lie still
            transform.setTranslation(place);
        else
            transform.buildPRS(place, Quatf(Eulerf(cube.rot)), Vector3f(1, 1, 1));
        Vector3f c = cube.col;
        float h = 0.5f;
        float b = -0.00075f;
        if (state.rexpandOn) {
            h = 0.5f + 5.0f * since * cube.expand;
            const float w = std::min(0.2f * since, 1.0f);
            const float l = 0.3f * c.x + 0.59f * c.y + 0.11f * c.z;
            c = Vector3f(l, l, 1.3f * l) * w + c * (1.0f - w);
            b = -0.0015f * h;
        }
        if (state.turnOn) {
            const float m = c.getMean();
            c = Vector3f(2.0f * m, 1.5f * m, m);
        }
        float opacity = b + 3.0f * progress;
        if (state.turnOn2) {
            const float m = c.getMean();
            c = Vector3f(m, 1.5f * m, m);
            const float again = c.getMean();
            c = Vector3f(again, 1.5f * again, again);
            opacity = 0.4f;
        }
        mBatch.setTransform(transform);
        mBatch.color(c, opacity);
        mBatch.box(Vector3f(0, 0, 0), Vector3f(0.5f, h, 0.5f));
    }
    mBatch.flush();
}

} // namespace zentrak::kindler
