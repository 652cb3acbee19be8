#include "photon.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

#include <cmath>

namespace zentrak::kindler {

using display::FBO;
using display::Texture;
using mathbase::Vector3f;

namespace {

constexpr int TARGET_SIZE = 256; // pixels
constexpr int NUM_PHOTONS = 15000;

} // namespace

Vector3f Photon::PointLight::eval(const Vector3f& p) const {
    const Vector3f d = p - pos;
    return col * (1.0f / d.dot(d));
}

Photon::Photon(Common*) {}

Photon::~Photon() {
    clearScene();
}

void Photon::clearScene() {
    for (Light* light : mLights)
        delete light;
    for (Material* material : mMaterials)
        delete material;
    mLights.clear();
    mMaterials.clear();
    mScene.instances.clear();
    mPrimitives.clear();
}

void Photon::addSphere(const Vector3f& centre, float radius, Material* material) {
    mPrimitives.push_back(std::make_unique<trace::PrimSphere>(centre, radius, material));
    mScene.instances.push_back({mPrimitives.back().get()});
}

void Photon::setup() {
    clearScene();
    setupScene();
    if (mFbo.attachments.empty()) {
        mFbo.setDisplay(mDisplay);
        mTexture.setDisplay(mDisplay);
        mTexture.setup(-1, -1, Texture::CHAN_DEFAULT, Texture::FORMAT_DEFAULT, Texture::TARGET_DEFAULT);
        mFbo.setup(TARGET_SIZE, TARGET_SIZE, true);
        mFbo.attach(FBO::COLOR0, &mTexture);
    }
    mTexture.bind();
    mTexture.setRepeat(false);
    mTexture.unbind();
    mFbo.bind();
    GL_CALL(glClearColor(0, 0, 0, 0));
    GL_CALL(glClear(GL_COLOR_BUFFER_BIT));
    mFbo.unbind();
}

void Photon::setupScene() {
    for (const Vector3f& color : {Vector3f(1, 0.6f, 0.6f), Vector3f(0.1f, 1, 0), Vector3f(0.1f, 0.1f, 1),
                                  Vector3f(1, 1, 1), Vector3f(1, 0.1f, 1)})
        mMaterials.push_back(new Material(color));
    addSphere(Vector3f(-3, 2.1f, 0), 2.3f, mMaterials[0]);
    addSphere(Vector3f(3, 2.1f, 0), 2.3f, mMaterials[1]);
    addSphere(Vector3f(0, -140, 5), 140, mMaterials[2]); // the ground
    mLights.push_back(new PointLight(Vector3f(5, 8, 0), Vector3f(10, 10, 10)));
}

void Photon::update(float time, float delta, float) {
    mDisplay->resetStates();
    mFbo.bind();
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    setClipSpace(*mDisplay);
    mBatch.color(0, 0, 0, 0.12f);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();

    const float r = 9.0f + 6.0f * sinf(0.01f * time);
    const Vector3f eye(r * sinf(0.3f * time), 4, r * cosf(0.3f * time));
    for (Light* light : mLights)
        if (auto* point = dynamic_cast<PointLight*>(light)) {
            point->pos.x = 7.0f * sinf(0.15f * time);
            point->pos.z = 7.0f * cosf(0.15f * time);
        }
    setView(*mDisplay, {PI / 2.0f, 0.1f, 1000.0f}, eye, Vector3f(0, 1.5f, 0));
    drawPhotons(NUM_PHOTONS, delta, eye);

    mFbo.unbind();
    GL_CALL(glDisable(GL_BLEND));
    mTexture.bind();
    setClipSpace(*mDisplay);
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mBatch.color(1, 1, 1, 1);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mTexture.unbind();
}

// Nothing is between the point and the eye. The direction is not of unit length, so that the spheres hide
// more than they should: this is intended.
bool Photon::isSeen(const Vector3f& point, const Vector3f& eye) const {
    const Vector3f way = eye - point;
    for (const trace::PrimScene::Instance& instance : mScene.instances)
        if (instance.primitive->traceShadow(point, way, 0.0f, 1.0f))
            return false;
    return true;
}

void Photon::drawPhotons(int count, float, const Vector3f& eye) {
    GL_CALL(glPointSize(6));
    mBatch.begin(GL_POINTS);
    for (const Light* each : mLights) {
        const auto* light = dynamic_cast<const PointLight*>(each);
        if (!light)
            continue;
        const Vector3f power = light->col * (500.0f / (float(count) * float(mLights.size())));
        for (int i = 0; i < count; ++i) {
            const Vector3f direction = mRandom.unitSphere();
            trace::Intersection hit;
            if (!mScene.trace(hit, light->pos, direction, 0.0001f, 1e20f))
                continue;
            if (!(hit.nor.dot(direction) < 0))
                continue;
            if (!isSeen(hit.position + hit.nor * 0.01f, eye))
                continue;
            const auto* material = static_cast<const Material*>(hit.material);
            mBatch.color(power * material->color * 5.0f, 0.3f);
            mBatch.vertex(hit.position);
        }
    }
    mBatch.end();
    mBatch.flush();
}

} // namespace zentrak::kindler
