// One particle.
#pragma once

#include "mb_random.h"
#include "mb_vector3.h"

namespace zentrak::sparks {

struct Spark {
    mathbase::Vector3f position; // world units
    mathbase::Vector3f velocity; // world units per second
    float mass = 0;              // above 0.01 it falls
    float intensity = 0;         // factor of its alpha
    float energy = 0;            // alpha, above 1 as 1; below 0.1 it dies
    float energydecay = 0;       // per second: energy falls by e^(-energydecay * t)
    float size = 0;              // world units; below 0.8 it dies
    float sizedecay = 0;         // per second
    float rotation = 0;          // unused
    mathbase::Vector3f colour;   // red, green, blue, 0 to 1
    float noise = 0;             // 0 to 1: how much of its alpha a flicker takes
    float time = 0;              // when it was added, on the clock of the display
    float timeoffset = 0;        // seconds from then on during which it is not drawn
    Spark* next = nullptr;       // in the engine's lists; not owned
    int texture = 0;             // cell of the strip of sprites
};

// A generator of random numbers that starts from the processor time used so far.
mathbase::Random clockRandom();

} // namespace zentrak::sparks
