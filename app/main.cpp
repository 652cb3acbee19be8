// The show: the driver, the effects and their names.

#include "border.h"
#include "clear.h"
#include "cloud.h"
#include "credits.h"
#include "cubejox.h"
#include "face.h"
#include "grand.h"
#include "greet.h"
#include "grid.h"
#include "kin_main.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "spark.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <cstdio>
#include <exception>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

// The effects come after the driver, so that they are destroyed while its window is still open.
void show() {
    Kindler kindler;
    kindler.setup();

    Common common;
    Clear clear;
    clear.color1 = mathbase::Vector4f(0.051f, 0.051f, 0.051f, 0);
    clear.color2 = mathbase::Vector4f(0, 0, 0, 0);
    clear.type = "gradient";
    Border border(&common);
    Kub kub(&common);
    Xor xor_(&common);
    Rund rund(&common);
    Vul vul(&common);
    Cubejox cubejox(&common);
    WaxOn waxon(&common);
    Overlay overlay(&common);
    Spark spark(&common);
    Greet greet(&common);
    Grand grand(&common);
    Credits creditsCode(&common, "code");
    Credits creditsTracking(&common, "tracking");
    Credits creditsGraphics(&common, "graphics");
    Credits creditsBitching(&common, "bitching");
    Credits creditsMoonpulse(&common, "moonpulse");
    Credits creditsZaplin(&common, "zaplin");
    Credits creditsOrvo(&common, "orvo");
    Credits creditsQark(&common, "qark");
    Grid grid(&common);
    Face face(&common);
    Tunnel tunnel(&common);
    Cloud cloud(&common);

    kindler.addCallback("clear", clear);
    kindler.addCallback("credits_code", creditsCode);
    kindler.addCallback("credits_tracking", creditsTracking);
    kindler.addCallback("credits_graphics", creditsGraphics);
    kindler.addCallback("credits_bitching", creditsBitching);
    kindler.addCallback("credits_moonpulse", creditsMoonpulse);
    kindler.addCallback("credits_zaplin", creditsZaplin);
    kindler.addCallback("credits_orvo", creditsOrvo);
    kindler.addCallback("credits_qark", creditsQark);
    kindler.addCallback("cubejox", cubejox);
    kindler.addCallback("border", border);
    kindler.addCallback("greet", greet);
    kindler.addCallback("grand", grand);
    kindler.addCallback("grid", grid);
    kindler.addCallback("face", face);
    kindler.addCallback("kub", kub);
    kindler.addCallback("rund", rund);
    kindler.addCallback("tunnel", tunnel);
    kindler.addCallback("cloud", cloud);
    kindler.addCallback("xor", xor_);
    kindler.addCallback("vul", vul);
    kindler.addCallback("waxon", waxon);
    kindler.addCallback("overlay", overlay);
    kindler.addCallback("spark", spark);

    kindler.run();
}

} // namespace

int main() {
    setvbuf(stdout, nullptr, _IOLBF, 0); // a log in a file is complete however the program ends
    zentrak::keepFreedMemory();
    try {
        show();
    } catch (std::exception& e) {
        zentrak::ztk_print("error: %s\n", e.what());
    }
    return 0;
}
