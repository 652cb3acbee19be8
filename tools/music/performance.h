// Plays the score with the instruments.
#pragma once

#include "score.h"
#include "synth.h"

namespace zentrak::music {

// The voices by their processing, before any effect. The toms are with the kick.
struct Stems {
    explicit Stems(int frames);

    Track kick, snares, cymbals, bass, chords, arpeggio, lead, voices, answers, noise;
    std::vector<int> kicks; // the frames of the bass drum, under which others duck
};

// The first bars of the piece.
Stems perform(int bars);

} // namespace zentrak::music
