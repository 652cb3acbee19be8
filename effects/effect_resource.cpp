#include "effect_resource.h"

#include "dis_display.h"

namespace zentrak::kindler {

void EffectTexture::loadFile(display::DisplayGL& display, const std::string& name, bool mipmaps) {
    if (isLoaded())
        return;
    setDisplay(&display);
    load(name, mipmaps);
    init();
}

void EffectProgram::linkFiles(display::DisplayGL& display, const std::string& vertexFile,
                              const std::string& fragmentFile) {
    if (mLinkedContext == display.mContextCount)
        return;
    setDisplay(&display);
    link(vertexFile, fragmentFile);
    mLinkedContext = display.mContextCount;
}

} // namespace zentrak::kindler
