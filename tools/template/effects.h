// The effects of the demo: all of the engine's, and those of its own.
#pragma once

#include "effect_names.h"
#include "kin_main.h"
#include "model.h"
#include "petals.h"

struct Effects {
    zentrak::kindler::Common common;
    zentrak::kindler::EffectSet engine{common};
    Model model;
    Petals petals;

    explicit Effects(zentrak::kindler::Kindler& kindler) {
        engine.forEach([&](const char* name, auto& effect) { kindler.addCallback(name, effect); });
        kindler.addCallback("model", model); // its name in script.xml
        kindler.addCallback("petals", petals);
    }
};
