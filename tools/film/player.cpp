#include "film/player.h"

#include "am_videofile.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "dis_key.h"
#include "glfw2.h"
#include "ztk_system.h"

namespace zentrak::film {

Player::Player(int rate) : mRate(rate) {
    mNoSound = true;
}

Player::~Player() {
    mSetupDone = false; // nothing is saved
}

void Player::open(int width, int height) {
    delete mVideo; // a dump from the setup file
    mVideo = nullptr;
    mNoListener = false;
    openDisplay(width > 0 ? width : mWidth, height > 0 ? height : mHeight, false, "zentrak-film");
    mSize[0] = mDisplay->mWindowMode.width;
    mSize[1] = mDisplay->mWindowMode.height;
    if (mSize[0] & 1 || mSize[1] & 1)
        throw Exception("zentrak-film: the width and the height of a film are even numbers, not %dx%d: see "
                        "--size",
                        mSize[0], mSize[1]);
    mDisplay->setFps(display::DisplayGL::FPS_DELTA, float(mRate));
    glfw2::glfwSwapInterval(0);
    loadEffects();
    mPicture.assign(new am::ImageObject);
    mPicture->resize(mSize[0], mSize[1]);
}

bool Player::playFrame(bool seen) {
    mSeen = seen;
    const bool more = mDisplay->update();
    ++mNext;
    return more;
}

void Player::onDraw() {
    const display::WindowMode& window = mDisplay->mWindowMode;
    if (window.width != mSize[0] || window.height != mSize[1])
        throw Exception(
            "zentrak-film: the window has become %dx%d: it has to stay %dx%d (--virtual draws on a "
            "display of its own)",
            window.width, window.height, mSize[0], mSize[1]);
    const bool discard = !mSeen && display::DisplayGL::hasExtension("GL_VERSION_3_0");
    if (discard)
        GL_CALL(glEnable(GL_RASTERIZER_DISCARD));
    mScript.update(float(double(mNext) / mRate));
    if (discard)
        GL_CALL(glDisable(GL_RASTERIZER_DISCARD));
    if (mSeen)
        mDisplay->getScreenShot(mPicture);
}

am::Image& Player::grab() {
    return mPicture;
}

int Player::onKeyDown(const display::KeyEvent& event) {
    return event.key == display::KEY_ESC ? QUIT : WHATEVER;
}

} // namespace zentrak::film
