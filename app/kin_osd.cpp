// The viewer's keys and the progress bar.

#include "dis_batch.h"
#include "dis_glcheck.h"
#include "dis_key.h"
#include "kin_main.h"
#include "mb_matrix4x4col.h"

#include <GL/glew.h>
#include <algorithm>
#include <cstdio>

namespace zentrak::kindler {

// A seek sets mOsdTime to the time reached; T resets it to the time before.
int Kindler::onKeyDown(const display::KeyEvent& event) {
    const bool ctrl = event.control & (display::KEYMOD_LCTRL | display::KEYMOD_RCTRL);
    const bool alt = event.control & (display::KEYMOD_LALT | display::KEYMOD_RALT);

    switch (event.key) {
    case display::KEY_ESC:
    case display::KEY_q:
        return QUIT;
    case display::KEY_LEFT:
        setTime(std::max(0.0f, mRawTime - 5.0f));
        break;
    case display::KEY_RIGHT:
        setTime(std::max(0.0f, mRawTime + 5.0f));
        break;
    case display::KEY_p:
        printf("%f\n", double(mRawTime));
        break;
    case display::KEY_SPACE:
        mPaused = !mPaused;
        mPausedTime = mRawTime;
        mOsdTime = mRawTime;
        if (hasSound()) {
            if (mPaused)
                mMusic.mStream->stop();
            else
                mMusic.mStream->play();
            mMusic.mPaused = mPaused;
        }
        if (!mPaused)
            mClock.setTime(mPausedTime);
        break;
    case display::KEY_t:
        if (ctrl) {
            mStartTime = mTime;
        } else {
            if (alt)
                mStartTime = 0;
            setTime(std::max(0.0f, mStartTime));
        }
        mOsdTime = mRawTime;
        break;
    case display::KEY_m:
        mMuted = !mMuted;
        if (hasSound())
            mMusic.mStream->setVolume(mMuted ? 0.0f : 1.0f);
        break;
    case display::KEY_o:
        if (ctrl) {
            mOsdShow = !mOsdShow;
        } else {
            if (mOsdTime + mOsdDelay > mRawTime)
                mOsdLocation = (mOsdLocation + 1) % 3;
            mOsdTime = mRawTime;
        }
        break;
    default:
        break;
    }
    return WHATEVER;
}

// Draws a bar for the whole show with a green marker at the start time and a white one at the current time,
// either of which may lie outside the bar.
void Kindler::drawOsd() {
    mathbase::Matrix4x4Col identity;
    identity.setIdentity();
    mDisplay->setProject(identity);
    mDisplay->setCamera(identity);
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glLineWidth(1.0));

    const float y = float(mOsdLocation - 1) * -0.93137258f;
    const float start = 2 * mStartTime / mDemoLength * 0.98f - 0.98f;
    const float now = 2 * mTime / mDemoLength * 0.98f - 0.98f;

    mOsd.color(0, 0, 0, 0.6f);
    mOsd.rect(-0.98f, y - 0.03f, 0.98f, y + 0.03f);
    mOsd.color(0, 1, 0, 0.6f);
    mOsd.rect(start, y - 0.028f, start + 0.005f, y + 0.028f);
    mOsd.color(1, 1, 1, 0.8f);
    mOsd.rect(now, y - 0.028f, now + 0.005f, y + 0.028f);

    mOsd.color(0, 0, 0, 1);
    mOsd.begin(GL_LINE_STRIP);
    mOsd.vertex(-0.98f, y - 0.03f);
    mOsd.vertex(0.98f, y - 0.03f);
    mOsd.vertex(0.98f, y + 0.03f);
    mOsd.vertex(-0.98f, y + 0.03f);
    mOsd.vertex(-0.98f, y - 0.03f);
    mOsd.end();
    mOsd.flush();
}

} // namespace zentrak::kindler
