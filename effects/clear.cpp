#include "clear.h"

#include "dis_display.h"
#include "dis_resource.h"
#include "mb_matrix4x4col.h"
#include "ztk_system.h"

namespace zentrak::kindler {

using mathbase::Vector4f;

namespace {

struct Color {
    const char* name;
    Vector4f rgba;
};

const Color colors[] = {
    {"white", Vector4f(1, 1, 1, 1)},
    {"black", Vector4f(0, 0, 0, 0)},
    {"cubejox_black", display::DisplayGL::hex2vec("0c0c0c")},
    {"cubejox_orange", display::DisplayGL::hex2vec("FFD974")},
    {"dark_blue", Vector4f(0.0546875f, 0.19140625f, 0.30859375f, 0)},
    {"dark_gray", Vector4f(0.1f, 0.1f, 0.1f, 0)},
};

} // namespace

Clear::Clear() {
    bindSpline("alpha", alpha);
    bindTrigger("type", TriggerNames::WORDS, {"gradient", "flat"},
                [this](float, const std::string& value) { type = value; });
    std::vector<const char*> names;
    for (const Color& color : colors)
        names.push_back(color.name);
    bindTrigger("color", TriggerNames::WORDS, names,
                [this](float, const std::string& value) { setColor(value); });
}

void Clear::setColor(const std::string& name) {
    for (const Color& color : colors)
        if (name == color.name)
            color1 = color.rgba;
    if (name == "white")
        color2 = Vector4f(0.8f, 0.8f, 0.8f, 1);
}

void Clear::executeTrigger(float time, const std::string& name, const std::string& value) {
    ztk_print("name: %s, value: %s\n", name.c_str(), value.c_str());
    ScriptedEffect::executeTrigger(time, name, value);
}

// The gradient is blended: below an alpha of 1 the last frame shines through.
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
