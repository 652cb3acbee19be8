// zentrak-film: renders a show to a film, single pictures or a contact sheet. Every frame is drawn at its
// exact time, however slow the machine is.

#include "film/zentrak_film.h"
#include "effect_names.h"

using namespace zentrak;

namespace {

// The engine's own effects.
struct Effects {
    kindler::Common common;
    kindler::EffectSet set{common};

    explicit Effects(kindler::Kindler& kindler) {
        set.forEach([&](const char* name, kindler::Effect& effect) { kindler.addCallback(name, effect); });
    }
};

} // namespace

int main(int argc, char** argv) {
    return film::run(argc, argv,
                     [](kindler::Kindler& kindler) { return std::make_shared<Effects>(kindler); });
}
