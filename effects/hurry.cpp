#include "hurry.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>

namespace zentrak::kindler {

using display::IBO;
using display::VertexP3N3T2;
using mathbase::Vector2f;
using mathbase::Vector3f;

namespace {

constexpr int NUM_SPRITES = 2500;
constexpr int NUM_VERTICES = 4 * NUM_SPRITES;
constexpr float CORE = 0.4f; // half its size
constexpr int BOLT_POINTS = 30;
constexpr float BOLT_LIFE = 2.0f; // seconds

} // namespace

Hurry::Hurry(Common*) : mVbo(nullptr), mIbo(nullptr) {
    bindTrigger("bolt", [this](float time, const std::string&) {
        mBolts.push_back({time, 1.0f, mRandom.unitSphere() * 5.5f});
    });
}

void Hurry::setup() {
    mVbo.setDisplay(mDisplay);
    mIbo.setDisplay(mDisplay);

    mVbo.setup(NUM_VERTICES, nullptr);
    mVbo.bind();
    VertexP3N3T2* vertex = mVbo.lock(true, false);
    if (!vertex)
        throw Exception("Hurry; Could not write the sprites' vertices");
    mSprites.clear();
    for (int i = 0; i < NUM_SPRITES; ++i) {
        const float r = 1.5f + 10.8f * mRandom.uniform();
        const float size = 0.4f + (1.3f + 0.3f * r - 0.4f) * mRandom.uniform();
        const float opacity = 0.2f + 0.5f * mRandom.uniform();
        const Vector3f position = mRandom.unitSphere() * r;
        for (const Vector2f& corner : {Vector2f(0, 0), Vector2f(1, 0), Vector2f(1, 1), Vector2f(0, 1)})
            *vertex++ = {position, Vector3f(size, opacity, 0), corner};
        mSprites.push_back({position, uint32_t(4 * i), 0});
    }
    mVbo.unlock();
    mVbo.unbind();
    mIbo.setResourceMode(IBO::STREAM);
    mIbo.setup(IBO::FORMAT_UINT32, NUM_VERTICES, nullptr);

    mTexture.loadFile(*mDisplay, "hurry/particle.png", true);
    mProgram.linkFiles(*mDisplay, "hurry/particle.vert", "hurry/particle.frag");
    mMaterial.setProgram(&mProgram);
    mMaterial.set("texture", static_cast<display::Texture*>(&mTexture));
}

Vector3f Hurry::evaluateNoise(const Vector3f& p) {
    return Vector3f(sinf(4.9834f * p.x), cosf(3.7f * p.x), sinf(5.434234f * p.z) - cosf(0.6f * p.y));
}

std::vector<uint32_t> Hurry::getOrder() const {
    std::vector<uint32_t> order;
    for (const HM& sprite : mSprites)
        order.push_back(sprite.vertex);
    return order;
}

void Hurry::update(float time, float, float) {
    mDisplay->resetStates();
    const float a = 0.1f * time;
    const Vector3f eye(1.5f * sinf(a), 0.5f * sinf(0.05f * time), 1.5f * cosf(a));
    const Vector3f target(0, 0.4f, 0);
    setView(*mDisplay, {PI / 2.0f, 0.1f, 1000.0f}, eye, target);

    GL_CALL(glEnable(GL_DEPTH_TEST));
    mDisplay->setColor(0.06f, 0, 0.04f, 1);
    mDisplay->drawBox(Vector3f(0, 0, 0), Vector3f(CORE, CORE, CORE));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    GL_CALL(glDepthMask(false));
    drawSprites(time, eye, target);
    drawBolts(time);
    GL_CALL(glDepthMask(true));
    GL_CALL(glDisable(GL_BLEND));
    mDisplay->resetStates();
}

// The sprites, the farthest first. Their vertices never change: the program turns each four into a sprite
// that faces the camera, and only the order is written again.
void Hurry::drawSprites(float time, const Vector3f& eye, const Vector3f& target) {
    const Vector3f axis = eye - target;
    for (HM& sprite : mSprites)
        sprite.distance = sprite.position.dot(axis);
    std::sort(mSprites.begin(), mSprites.end());

    mIbo.bind();
    if (auto* index = static_cast<uint32_t*>(mIbo.lock(true, false))) {
        for (const HM& sprite : mSprites)
            for (uint32_t corner = 0; corner < 4; ++corner)
                *index++ = sprite.vertex + corner;
        mIbo.unlock();
    }
    mIbo.unbind();

    const Vector3f colour(1, 0, 0.5f);
    const Billboard board(eye, target, 0.0f);
    mMaterial.set("cameraUp", board.up);
    mMaterial.set("cameraRight", board.right);
    mMaterial.set("lpos0", Vector3f(0, 1.5f, 0));
    mMaterial.set("lcol0", colour * (0.5f + 0.5f * sinf(10.0f * time)));
    mMaterial.set("lpos1", Vector3f(-1, 0.4f, 0));
    mMaterial.set("lcol1", colour * (0.5f + 0.5f * sinf(77.0f * time)));
    mDisplay->setVBO(&mVbo);
    mDisplay->setIBO(&mIbo);
    mMaterial.bind();
    mDisplay->draw(GL_QUADS, -1, 0, 0, 0);
    mMaterial.unbind();
    mDisplay->setVBO(nullptr);
    mDisplay->setIBO(nullptr);
    mTexture.unbind();
}

// From the core's surface to the target along a swaying line. A bolt fades from its first second on and ends
// after two.
void Hurry::drawBolts(float time) {
    GL_CALL(glDisable(GL_TEXTURE_2D));
    GL_CALL(glLineWidth(8));
    std::erase_if(mBolts, [=](const Bolt& bolt) { return !(BOLT_LIFE - (time - bolt.start) >= 0); });
    for (const Bolt& bolt : mBolts) {
        const float left = BOLT_LIFE - (time - bolt.start);
        mBatch.color(1, 1, 1, left * bolt.strength);
        Vector3f b = bolt.target.getNormalized() * CORE;
        const Vector3f step = (bolt.target - b) * (1.0f / 29.0f);
        mBatch.begin(GL_LINES);
        mBatch.vertex(b);
        for (int i = 0; i < BOLT_POINTS; ++i) {
            const Vector3f point = b + evaluateNoise(b + Vector3f(time, time, time)) * 0.1f;
            mBatch.vertex(point);
            mBatch.vertex(point);
            b += step;
        }
        mBatch.vertex(bolt.target);
        mBatch.end();
    }
    mBatch.flush();
}

} // namespace zentrak::kindler
