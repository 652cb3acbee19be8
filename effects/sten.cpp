#include "sten.h"

#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "ztk_system.h"

#include <cmath>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

const char* const SCENE = "sten/sten.o3d";

} // namespace

Sten::Sten(Common*) {}

Sten::~Sten() {
    removeMeshes(mMeshes);
}

void Sten::setup() {
    removeMeshes(mMeshes);
    mManager.clear();
    loadSceneFile(*mDisplay, mManager, SCENE);
    if (mManager.mScenes.empty())
        throw Exception("No scene in '%s'", SCENE);
    loadMeshes(*mDisplay, mManager, mMeshes);

    mTexture.loadFile(*mDisplay, "sten/sten.png", true);
    if (!mHeight.isLoaded()) {
        am::Image height = mDisplay->mArchiveManager->loadImage("sten/height.png", -1, true);
        filter(height);
        mHeight.setDisplay(mDisplay);
        mHeight.load(height, true);
        mHeight.init();
    }
    mProgram.linkFiles(*mDisplay, "sten/sten.vert", "sten/sten.frag");
}

// Offsets count in pixels of the flat array. They never leave the picture, whatever its size.
void Sten::filter(am::Image& image) {
    const int w = image->getWidth(), h = image->getHeight();
    unsigned char* pixels = image->getWriteData();
    if (!pixels)
        return;
    for (int i = 0; i < w * h; ++i)
        pixels[4 * i + 3] = pixels[4 * i + 2];
    const auto height = [pixels](int i) { return float(pixels[4 * i + 3]); };

    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int ox = -1, oy = -1;
            if (x == 0)
                ox = w - 1;
            if (x == w - 1)
                ox = 1 - w;
            if (y == h - 1)
                ox = 1 - h; // of x, and meant to
            if (y == 0)
                oy = h - 1;
            const int i = y * w + x;
            Vector3f n(height(i + ox) - height(i), height(i + oy) - height(i), 64.0f);
            n.normalize();
            unsigned char* pixel = pixels + 4 * i;
            pixel[2] = static_cast<unsigned char>(127.0f * n.x + 127.0f);
            pixel[1] = static_cast<unsigned char>(127.0f * n.y + 127.0f);
            pixel[0] = static_cast<unsigned char>(127.0f * n.z + 127.0f);
        }
}

void Sten::update(float time, float, float) {
    setClipSpace(*mDisplay);
    mBatch.begin(GL_QUADS);
    mBatch.color(1, 1, 1, 1);
    mBatch.vertex(-1, 1);
    mBatch.vertex(1, 1);
    mBatch.color(0, 0, 1, 1);
    mBatch.vertex(1, -1);
    mBatch.vertex(-1, -1);
    mBatch.end();
    mBatch.flush();

    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    mDisplay->setTransform(Matrix4x4Col());
    Matrix4x4Col project;
    project.setProject(PI / 3.0f, 1.0f, 0.1f, 5000.0f);
    mDisplay->setProject(project);
    setCamera(*mDisplay, Vector3f(4.0f * cosf(0.2f * time), 3.0f + 2.0f * sinf(2.0f * time), 0),
              Vector3f(0, 0, 0), PI);

    GL_CALL(glEnable(GL_ALPHA_TEST));
    GL_CALL(glAlphaFunc(GL_GREATER, 0.5));
    mProgram.bind();
    mProgram.set("texture", 0);
    mProgram.set("height", 1);
    GL_CALL(glActiveTexture(GL_TEXTURE0));
    mTexture.bind();
    GL_CALL(glActiveTexture(GL_TEXTURE1));
    mHeight.bind();
    mDisplay->setColor(1, 1, 1, 1);
    for (const auto& [name, mesh] : mMeshes)
        mesh->superDraw();

    mHeight.unbind();
    GL_CALL(glActiveTexture(GL_TEXTURE0));
    mTexture.unbind();
    mProgram.unbind();
    GL_CALL(glDisable(GL_ALPHA_TEST));
    mDisplay->setVBO(nullptr);
    mDisplay->setIBO(nullptr);
}

} // namespace zentrak::kindler
