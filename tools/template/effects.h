// The effects of the demo: all of the engine's, and its own.
#pragma once

#include "effect_names.h"
#include "kin_main.h"
#include "petals.h"

struct Effects {
    zentrak::kindler::Common common;
    zentrak::kindler::EffectSet engine{common};
    Petals petals;

    explicit Effects(zentrak::kindler::Kindler& kindler) {
        engine.forEach([&](const char* name, auto& effect) { kindler.addCallback(name, effect); });
        kindler.addCallback("petals", petals); // its name in script.xml
    }
};
