// The base of all effects, and the record that they share.
#pragma once

#include "dis_fbo.h"
#include "dis_texture.h"
#include "script_callback.h"

#include <map>
#include <string>

namespace zentrak::display {
class DisplayGL;
}

namespace zentrak::kindler {

// A callback of the timeline that draws. It is constructed before there is a window, so its constructor must
// not use OpenGL; setup() loads all that it needs. Every function may throw Exception, which ends the show.
class Effect : public script::Callback {
public:
    display::DisplayGL* mDisplay = nullptr; // not owned; set just before setup()
    std::string mName;                      // under which it is registered

    // Called once, with the window open, for every registered effect in ascending order of their names.
    virtual void setup() {}
};

// The named render targets through which an effect passes a picture to another.
struct Common {
    // Both start without a display: call setDisplay() first.
    struct FBOData {
        display::FBO mFbo{nullptr};
        display::Texture mTexture{nullptr}; // attached to mFbo
    };

    std::map<std::string, FBOData*> mFbos; // owned by the effects that put them there
};

} // namespace zentrak::kindler
