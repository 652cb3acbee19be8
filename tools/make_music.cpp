// Makes the music of the show: make_music FILE.ogg [BARS]
// The same bytes each time. With a number of bars it stops there, and fades out. make_music --stems FOLDER
// [BARS] writes the voices one by one instead, as they go into the mix.
#include "command/command.h"
#include "music/effects.h"
#include "music/performance.h"
#include "music/vorbis.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

using namespace zentrak::music;

namespace {

// How a voice goes into the mix: its level there, in the reverb and in the echo; the frequencies below and
// above which it is cut (0 for nowhere); how deep it ducks under the kick; how much wider it gets; and
// whether it is under the low-pass that moves.
struct Channel {
    const char* name;
    Track Stems::*track;
    float level, room, echo;
    float bottom, top, duck, wide;
    bool swept;
};

const Channel CHANNELS[] = {
    {"kick", &Stems::kick, 0.26f, 0.00f, 0.00f, 0, 0, 0, 1, false},
    {"snares", &Stems::snares, 0.52f, 0.12f, 0.00f, 120, 9500, 0, 1.3f, false},
    {"cymbals", &Stems::cymbals, 0.42f, 0.15f, 0.00f, 400, 9500, 0, 1.2f, false},
    {"bass", &Stems::bass, 0.25f, 0.00f, 0.00f, 0, 0, 0.75f, 1, false},
    {"chords", &Stems::chords, 0.27f, 0.26f, 0.00f, 130, 0, 0.70f, 1.5f, true},
    {"arpeggio", &Stems::arpeggio, 0.45f, 0.45f, 0.45f, 250, 0, 0.35f, 1, true},
    {"lead", &Stems::lead, 0.46f, 0.44f, 0.40f, 180, 0, 0, 1.2f, false},
    {"voices", &Stems::voices, 0.56f, 0.60f, 0.00f, 200, 0, 0.35f, 1.4f, false},
    {"answers", &Stems::answers, 0.44f, 0.60f, 0.60f, 200, 0, 0, 1, false},
    {"noise", &Stems::noise, 0.18f, 0.40f, 0.00f, 0, 9500, 0.5f, 1, false},
};

void process(Track& track, const Channel& channel, const std::vector<int>& kicks) {
    if (channel.bottom > 0)
        highPass(track, channel.bottom);
    if (channel.top > 0)
        lowPass(track, channel.top);
    if (channel.duck > 0)
        duck(track, kicks, channel.duck);
    if (channel.swept)
        sweepLowPass(track, lowPassRamps());
    if (channel.wide != 1)
        widen(track, channel.wide);
}

Track mixDown(Stems& stems) {
    const int FRAMES = stems.kick.frames();
    Track out(FRAMES), room(FRAMES), echoes(FRAMES);
    for (const Channel& channel : CHANNELS) {
        Track& track = stems.*channel.track;
        process(track, channel, stems.kicks);
        mix(out, track, channel.level);
        mix(room, track, channel.room);
        mix(echoes, track, channel.echo);
    }
    echo(room, echoes, 3 * STEP, 0.45f, 0.35f);
    echo(out, echoes, 3 * STEP, 0.45f, 0.36f);
    reverb(out, room, 2.4f, 0.17f);
    return out;
}

void master(Track& track, bool whole) {
    sweepHighPass(track, highPassRamps());
    automate(track, levelRamps());
    boost(track, 4200, 1.8f);
    saturate(track, 0.5f);
    highPass(track, 28);
    limit(track, 0.75f);
    fadeEnds(track, 441, whole ? 2 * BAR : BAR / 8);
}

void writeStems(const std::string& folder, int bars) {
    Stems stems = perform(bars);
    for (const Channel& channel : CHANNELS) {
        Track& track = stems.*channel.track;
        process(track, channel, stems.kicks);
        Track scaled(track.frames());
        mix(scaled, track, channel.level);
        writeVorbis(folder + "/" + channel.name + ".ogg", scaled, 0.4f, channel.name);
    }
}

} // namespace

int main(int argc, char** argv) {
    int bars = BARS;
    const bool STEMS = argc > 1 && std::strcmp(argv[1], "--stems") == 0;
    const int TARGET = STEMS ? 2 : 1; // the argument that names it
    if (argc <= TARGET || argc > TARGET + 2 || zentrak::command::hasOption(argc, argv, TARGET) ||
        (argc == TARGET + 2 && !zentrak::command::readNumber(argv[TARGET + 1], 1, BARS, bars))) {
        std::fprintf(stderr,
                     "usage: make_music FILE.ogg [BARS]           the first BARS, 1 to %d\n"
                     "       make_music --stems FOLDER [BARS]     each voice to a file of its own\n",
                     BARS);
        return 2;
    }
    try {
        if (STEMS) {
            writeStems(argv[TARGET], bars);
            return 0;
        }
        Stems stems = perform(bars);
        Track music = mixDown(stems);
        master(music, bars == BARS);
        writeVorbis(argv[TARGET], music, 0.5f, "zentrak");
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_music: %s\n", failure.what());
        return 1;
    }
    return 0;
}
