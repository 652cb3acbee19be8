// Drawing what a batch has collected.
#include "dis_batch.h"
#include "dis_display.h"
#include "dis_glcheck.h"

#include <cassert>

namespace zentrak::display {

using mathbase::Matrix4x4Col;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr GLsizei SHORT_RUN = 24; // vertices inside the view that aren't worth a draw call of their own

bool isSeparate(GLenum mode) {
    return mode == GL_POINTS || mode == GL_LINES || mode == GL_TRIANGLES || mode == GL_QUADS;
}

} // namespace

// Reads what the shapes depend on.
void Batch::look() {
    mLooked = true;
    float current[4];
    if (!(mGiven & COLOR)) {
        GL_CALL(glGetFloatv(GL_CURRENT_COLOR, current));
        mColor = Vector4f(current[0], current[1], current[2], current[3]);
    }
    if (!(mGiven & TEXCOORD)) {
        GL_CALL(glGetFloatv(GL_CURRENT_TEXTURE_COORDS, current));
        mTexCoord = Vector2f(current[0], current[1]);
    }
    if (!(mGiven & NORMAL)) {
        GL_CALL(glGetFloatv(GL_CURRENT_NORMAL, current));
        mNormal = Vector3f(current[0], current[1], current[2]);
        transformNormal();
    }

    const DisplayGL& display = *DisplayGL::currentDisplay;
    mClip = display.getProject();
    mClip.multiplyFromRight(display.mCameraMatrix);
    mClip.multiplyFromRight(display.mTransformMatrix);

    GLint program = 0;
    if (GLEW_VERSION_2_0)
        GL_CALL(glGetIntegerv(GL_CURRENT_PROGRAM, &program));
    mCulls = program == 0;
    mSide = 0;
    if (!mCulls || !glIsEnabled(GL_CULL_FACE))
        return;
    GLint culled = GL_BACK, front = GL_CCW;
    GL_CALL(glGetIntegerv(GL_CULL_FACE_MODE, &culled));
    GL_CALL(glGetIntegerv(GL_FRONT_FACE, &front));
    if (culled == GL_FRONT_AND_BACK)
        return;
    mSide = (culled == GL_BACK) == (front == GL_CCW) ? 1.0f : -1.0f;
    mEye = eyeOf(mClip);
}

void Batch::draw() {
    DisplayGL& display = *DisplayGL::currentDisplay;
    VBO* const buffer = display.mCurrentVBO; // put aside: its arrays would be read too
    display.setVBO(nullptr);
    GL_CALL(glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT));
    if (GLEW_ARB_vertex_buffer_object)
        GL_CALL(glBindBufferARB(GL_ARRAY_BUFFER_ARB, 0));
    GL_CALL(glInterleavedArrays(GL_T2F_C4F_N3F_V3F, 0, mVertices.data()));
    for (size_t i = 0; i < mRuns.size();) {
        const GLenum mode = mRuns[i].mode;
        mFirsts.clear();
        mCounts.clear();
        bool grows = false; // the last range, by what has to be clipped
        for (; i < mRuns.size() && mRuns[i].mode == mode; ++i) {
            const bool clipped = isSeparate(mode) && (!mRuns[i].inside || mRuns[i].count < SHORT_RUN);
            if (clipped && grows) {
                mCounts.back() += mRuns[i].count;
            } else {
                mFirsts.push_back(mRuns[i].first);
                mCounts.push_back(mRuns[i].count);
            }
            grows = clipped;
        }
        GL_CALL(glMultiDrawArrays(mode, mFirsts.data(), mCounts.data(), GLsizei(mCounts.size())));
    }
    GL_CALL(glPopClientAttrib());
    display.setVBO(buffer);
}

void Batch::flush() {
    assert(mMode == NO_MODE);
    struct Emptied {
        Batch& batch;
        ~Emptied() { batch.clear(); }
    } emptied{*this};
    if (!mVertices.empty())
        draw();
    if (mLooked || mGiven & COLOR)
        GL_CALL(glColor4f(mColor.x, mColor.y, mColor.z, mColor.w));
    if (mLooked || mGiven & TEXCOORD)
        GL_CALL(glTexCoord2f(mTexCoord.x, mTexCoord.y));
    if (mLooked || mGiven & NORMAL)
        GL_CALL(glNormal3f(mNormal.x, mNormal.y, mNormal.z));
}

} // namespace zentrak::display
