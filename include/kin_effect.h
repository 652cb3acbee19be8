// What every effect of the show is, and the one record that they share.
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

// A callback of the timeline that draws. It is built before there is a window: its constructor must not touch
// graphics, and all that it needs is loaded in setup(). Problems that it can't go on from are thrown as
// Exception, from anywhere.
class Effect : public script::Callback {
public:
    display::DisplayGL* mDisplay = nullptr; // not owned; set just before setup()
    std::string mName;                      // the name that it is registered under

    // Once, with the window open, for every registered effect in ascending order of the names.
    virtual void setup() {}
};

// The named render targets through which one effect hands a picture to another.
struct Common {
    // Both are made without a display: setDisplay() comes before all else.
    struct FBOData {
        display::FBO mFbo{nullptr};
        display::Texture mTexture{nullptr}; // attached to mFbo
    };

    std::map<std::string, FBOData*> mFbos; // owned by the effects that put them there
};

} // namespace zentrak::kindler
