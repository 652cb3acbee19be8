// The rhythms that the charts name by a letter, one bar each.
#include "score.h"

#include <map>

namespace zentrak::music {

namespace {

const std::vector<Rhythm> KICK = {
    {'h', "9.........5....."},                                                       // a heartbeat
    {'2', "9.......9......."}, {'f', "9...9...9...9..."},                            // four on the floor
    {'k', "9...9...9..69..."}, {'t', "9...9...9...9.67"}, {'n', "9.....7...9....."}, // a broken beat
    {'m', "9.....7...9..7.6"}, {'g', "9.7.9.7.9.7.9.7."}, {'z', "9...9...9......."}, // stops for a breath
    {'1', "9..............."},
};

const std::vector<Rhythm> SNARE = {
    {'c', "....9.......9..."}, {'g', "....9..3.3..9..2"}, {'l', "....9.......9.46"},
    {'b', "....9..2.4..9..3"}, {'d', "....9..3..4.9.46"}, {'p', "....9..3.3..9.35"},
    {'q', "3...3...4...4..."}, {'e', "4.4.5.5.5.5.6.6."}, {'S', "4456455656675678"}, // an accelerating roll
    {'R', "567867896789...."}, {'r', "....9..5.667...."},                            // into a breath
};

const std::vector<Rhythm> HAT = {
    {'e', "..5...5...5...5."}, {'s', "3.5.3.5.3.5.3.5."}, {'t', "3.5.3.5.3.53555."},
    {'o', "5274527452745274"}, {'x', "527452745274...."}, {'d', "6375637563756375"},
};

const std::vector<Rhythm> OPEN_HAT = {
    {'o', "..6...6...6...6."},
    {'x', "..6...6...6....."},
    {'d', "..7...7...7..7.6"},
};

const std::vector<Rhythm> SHAKER = {
    {'s', "3152315231523152"},
    {'w', "5263526352635264"},
};

const std::vector<Rhythm> RIDE = {
    {'o', "..5...5...5...5."},
    {'q', "6...5...6...5..."},
    {'e', "6.4.6.4.6.4.6.45"},
};

// From the highest tom to the lowest, from left to right.
const std::vector<Rhythm> TOMS = {
    {'a', "........6.67...."}, {'b', "........5.66.678"}, {'c', "......6.6.67.789"},
    {'d', "........5..6..78"}, {'e', "..5..6..7..8...."},
};

const std::vector<Rhythm> STABS = {
    {'q', "9...9...9...9..."},
    {'t', "9..9..9.9..9..9."}, // three, three and two
    {'o', "..9...9...9...9."},
    {'h', "9.......9......."},
};

const std::vector<Rhythm> FIGURES = {
    {'s', "0...2...4.3...5."}, {'S', "0.2.4.2.5.3.4.2."}, {'u', "0241352463574253"},
    {'v', "4635241357463524"}, {'w', "7.53.42.7.53.424"}, {'x', "0123456776543212"},
};

const std::vector<BassRhythm> BASS = {
    {'p', "6.5.6.5.6.5.6.5.", "0.0.0.0.0.0.0.0.", 1.5f}, // a pulse
    {'P', "6.5.6.5.6.5.6.57", "0.0.0.0.0.0.0.oo", 1.2f}, //
    {'a', "..8.8.8...8.8.87", "..0.0.0...0.0.0o", 1.1f}, // between the kicks
    {'m', "..8.8.8...8.8.87", "..0.0.o...0.f.0o", 1.1f}, //
    {'b', "..8.8.8.8.79....", "..0.0.o.f.0o....", 1.0f}, //
    {'r', ".567.567.567.567", ".00o.00o.00o.00o", 0.9f}, // rolling
    {'R', ".567.567.567.567", ".0fo.0fo.0fo.0of", 0.9f}, //
    {'q', ".567.567.57.6...", ".00o.00o.fo.0...", 0.9f}, //
    {'v', "..67.567..67.767", "..0o.00o..fo.ofo", 0.9f}, //
    {'s', "8.7.8.7.8.......", "0.0.0.o.0.......", 1.5f}, // stops for a breath
    {'z', "..8.8.8.9.8.....", "..0.0.o.0.0.....", 1.0f}, //
    {'w', "5...............", "0...............", 16},   // held
    {'1', "9...............", "0...............", 64},   //
};

const char* const REST = "................";

} // namespace

const char* rhythm(const std::string& layer, char name) {
    static const std::map<std::string, const std::vector<Rhythm>&> LAYERS = {
        {"kick", KICK}, {"snare", SNARE}, {"hat", HAT},     {"open hat", OPEN_HAT}, {"shaker", SHAKER},
        {"ride", RIDE}, {"toms", TOMS},   {"stabs", STABS}, {"figure", FIGURES},
    };
    for (const Rhythm& candidate : LAYERS.at(layer))
        if (candidate.name == name)
            return candidate.strokes;
    return REST;
}

const BassRhythm& bassRhythm(char name) {
    static const BassRhythm SILENT = {'.', REST, REST, 1};
    for (const BassRhythm& rhythm : BASS)
        if (rhythm.name == name)
            return rhythm;
    return SILENT;
}

} // namespace zentrak::music
