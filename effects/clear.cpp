#include "clear.h"

#include "dis_display.h"
#include "dis_resource.h"
#include "mb_matrix4x4col.h"
#include "ztk_system.h"

namespace zentrak::kindler {

using mathbase::Vector4f;

void Clear::executeTrigger(float, const std::string& name, const std::string& value) {
    ztk_print("name: %s, value: %s\n", name.c_str(), value.c_str());
    if (name == "type")
        type = value;
    if (name == "color") {
        if (value == "white") {
            color1 = Vector4f(1, 1, 1, 1);
            color2 = Vector4f(0.8f, 0.8f, 0.8f, 1);
        }
        if (value == "black")
            color1 = Vector4f(0, 0, 0, 0);
        if (value == "cubejox_black")
            color1 = mDisplay->hex2vec("0c0c0c");
        if (value == "cubejox_orange")
            color1 = mDisplay->hex2vec("FFD974");
        if (value == "dark_blue")
            color1 = Vector4f(0.0546875f, 0.19140625f, 0.30859375f, 0);
        if (value == "dark_gray")
            color1 = Vector4f(0.1f, 0.1f, 0.1f, 0);
    }
}

void Clear::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alpha = value;
}

/*
 * The gradient blends over what is there, so that below an alpha of 1 the last frame shines through.
 */
void Clear::update(float, float, float) {
    GL_CALL(glClearDepth(1.0));
    if (type == "gradient") {
        mathbase::Matrix4x4Col identity;
        identity.setIdentity();
        mDisplay->setProject(identity);
        GL_CALL(glEnable(GL_BLEND));
        mBatch.begin(GL_QUADS);
        mBatch.color(1, 1, 1, alpha);
        mBatch.vertex(-1, 1);
        mBatch.vertex(1, 1);
        mBatch.color(0.8f, 0.8f, 0.8f, alpha);
        mBatch.vertex(1, -1);
        mBatch.vertex(-1, -1);
        mBatch.end();
        mBatch.flush();
        GL_CALL(glDisable(GL_BLEND));
        GL_CALL(glClear(GL_DEPTH_BUFFER_BIT));
    } else {
        GL_CALL(glClearColor(color1.x, color1.y, color1.z, color1.w));
        GL_CALL(glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    }
}

} // namespace zentrak::kindler
