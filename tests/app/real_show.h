// The show in data/ with the effects that draw most of it, for a driver inside a test.
#pragma once

#include "border.h"
#include "clear.h"
#include "credits.h"
#include "cubejox.h"
#include "grid.h"
#include "kin_main.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "support.h"
#include "waxon.h"
#include "xor.h"

#include <string>

namespace zentrak::test {

inline std::string realScript() {
    return readFile(sourcePath("data/script.xml"));
}

class RealEffects {
public:
    // The effects must outlive the driver's run.
    explicit RealEffects(kindler::Kindler& kindler) {
        clear.type = "gradient";
        kindler.addCallback("clear", clear);
        kindler.addCallback("border", border);
        kindler.addCallback("credits_code", credits);
        kindler.addCallback("cubejox", cubejox);
        kindler.addCallback("grid", grid);
        kindler.addCallback("kub", kub);
        kindler.addCallback("overlay", overlay);
        kindler.addCallback("rund", rund);
        kindler.addCallback("waxon", waxon);
        kindler.addCallback("xor", xor_);
    }

private:
    kindler::Common common;
    kindler::Clear clear;
    kindler::Border border{&common};
    kindler::Kub kub{&common};
    kindler::Xor xor_{&common};
    kindler::Rund rund{&common};
    kindler::Cubejox cubejox{&common};
    kindler::WaxOn waxon{&common};
    kindler::Overlay overlay{&common};
    kindler::Credits credits{&common, "code"};
    kindler::Grid grid{&common};
};

} // namespace zentrak::test
