#include "studio_preview.h"

#include "script_loadxml.h"

namespace zentrak::studio {

Preview::Preview(display::DisplayGL& display, const Document& document, double length)
    : mGui(&display, &mEngine) {
    const std::string& text = document.getText();
    script::LoadXML().loadMem(text.data(), long(text.size()), mEngine);
    mGui.mDemoLength = float(length);
    mGui.setup();
    mGui.mPanorama.mWorkspace.findControl("main")->setVisible(true);
}

} // namespace zentrak::studio
