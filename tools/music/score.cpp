#include "score.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

namespace zentrak::music {

namespace {

// Chords by name: the bass, and four voices with minimal movement.
const std::map<std::string, Chord> CHORDS = {
    {"Dm", {0, 0, 38, {57, 62, 65, 69}}},  {"Dm9", {0, 0, 38, {57, 62, 64, 65}}},
    {"Bb", {0, 0, 34, {58, 62, 65, 69}}},  {"Bb+", {0, 0, 34, {58, 62, 65, 70}}},
    {"F", {0, 0, 41, {57, 60, 65, 67}}},   {"F/A", {0, 0, 33, {57, 60, 65, 69}}},
    {"C", {0, 0, 36, {55, 60, 64, 67}}},   {"C+", {0, 0, 36, {60, 64, 67, 72}}},
    {"C/E", {0, 0, 40, {55, 60, 64, 67}}}, {"Gm", {0, 0, 43, {55, 58, 62, 65}}},
    {"Am", {0, 0, 33, {60, 64, 69, 72}}},  {"Asus", {0, 0, 33, {57, 62, 64, 69}}},
    {"A", {0, 0, 33, {57, 61, 64, 69}}},   {"B7", {0, 0, 35, {57, 63, 66, 71}}},
    {"Dm+", {0, 0, 38, {62, 65, 69, 74}}}, {"end", {0, 0, 38, {57, 62, 65, 69, 76}}},
};

// One bar each, or half a bar each for two joined by a comma.
const char* const HARMONY =
    // intro
    " Dm9  Dm9 Bb  Bb   Gm  Gm  Asus  A "
    // build
    " Dm   Bb  F   C    Gm  Bb+ C+    Asus,A "
    // main theme: eight bars, twice
    " Dm   Bb  F   C    Gm  Bb+ C+    Asus,A "
    " Dm   Bb  F   C/E  Gm  Bb+ C+    Asus,A "
    // break
    " Gm   Bb  F   C    Gm  Bb+ Dm    C  "
    " Bb+  C+  Asus A "
    // second theme, twice
    " Bb+  C   Dm  F/A  Bb+ C+  Am    Dm+ "
    " Bb+  C   Dm  F/A  Bb+ C+  Am    Asus,A "
    // rise
    " Gm   Gm  Asus A "
    // finale: the main theme, and once more the climb into it
    " Dm   Bb  F   C/E  Gm  Bb+ C+    Asus,B7 "
    " Dm   Bb  F   C/E  Gm  Bb+ C+    Asus,A "
    // outro
    " Bb+  C+  Gm  Asus,A "
    " Bb+  C+  Gm  Asus,A "
    " end  end end end ";

// The arrangement: one character per bar; blanks only separate the sections and their halves.
const Charts CHARTS = {
    //         intro    build    main theme       break        second theme     rise finale           outro
    /*kick */ "....hhhh fffffffs fffffffbfffffffs ............ fffffffbfffffffs fffs fffffffsfffffffs "
              "fffs....1...",
    /*clap */
    "........ ....cccr ccccccclcccccccr ........qqer ccccccclcccccccr qqer cccccccrcccccccr cccl........",
    /*hat  */
    "........ eeeessst oooooooxooooooox ....eeeesss. ooooooododdddddd ssss ooooooodddddddd. oox.........",
    /*crash*/
    "........ 1....... 1.......1....... 1........... 1.......1....... 1... 1.......1....... 1.......1...",
    /*bass */
    "........ ppppppps aaaaaaabaaaaaaab wwwwwwww.... rrrrrrrbrrrrrrrb pppp rrrrrrrbaaaaaaab aaabwwww1...",
    /*pad  */
    "45566778 55555555 4444444444444444 899999998765 4444444444444444 6666 5555555555555555 666655559999",
    /*saws */
    "........ ....2345 7777777788888888 ........2345 7777777788888888 4567 8888888899999999 9887....9...",
    /*arp  */
    "12233445 55666789 5555555566666666 344556677899 6666666666666666 6789 7777777788888888 76543322....",
};

// The hook: broken chords in three, three and two.
const char* const HOOK = "A4:3 D5:3 F5:2 E5:4 D5:4       | F5:3 D5:3 C5:2 D5:6 A4:2  | C5:3 F5:3 A5:2 G5:4 "
                         "F5:4 | G5:3 E5:3 D5:2 E5:8 | "
                         "Bb4:3 D5:3 G5:2 F5:4 D5:4      | F5:3 D5:3 F5:2 A5:6 G5:2  | G5:3 E5:3 C5:2 E5:4 "
                         "G5:4 | A5:8 G5:3 E5:3 C#5:2";

const char* const HOOK_AGAIN = "A4:3 D5:3 F5:2 E5:4 F5:2 E5:2  | F5:3 D5:3 C5:2 D5:4 F5:2 A5:2 | C6:3 A5:3 "
                               "F5:2 G5:4 A5:4 | G5:3 E5:3 D5:2 E5:8 | "
                               "Bb4:3 D5:3 G5:2 Bb5:4 A5:2 G5:2 | F5:3 D5:3 F5:2 A5:6 Bb5:2 | C6:3 G5:3 E5:2 "
                               "G5:4 C6:4 | A5:8 G5:3 E5:3 C#5:2";

const char* const HOOK_LIFTING = "A4:3 D5:3 F5:2 E5:4 D5:4       | F5:3 D5:3 C5:2 D5:6 A4:2  | C5:3 F5:3 "
                                 "A5:2 G5:4 F5:4 | G5:3 E5:3 D5:2 E5:8 | "
                                 "Bb4:3 D5:3 G5:2 F5:4 D5:4      | F5:3 D5:3 F5:2 A5:6 G5:2  | G5:3 E5:3 "
                                 "C5:2 E5:4 G5:4 | A5:8 A5:3 F#5:3 D#5:2";

const char* const SECOND =
    "D5:6 F5:6 Bb5:4                | A5:2 G5:6 E5:4 C5:4       | F5:6 A5:6 D6:4           | C6:4 A5:4 F5:2 "
    "G5:2 A5:4 | "
    "Bb5:6 A5:2 F5:4 D5:4           | E5:4 G5:4 C6:6 Bb5:2      | A5:6 E5:6 G5:4           | F5:4 E5:2 D5:10";

const char* const SECOND_AGAIN =
    "D5:6 F5:6 Bb5:4                | A5:2 G5:6 E5:4 C5:4       | F5:6 A5:6 D6:4           | C6:4 A5:4 F5:2 "
    "G5:2 A5:4 | "
    "D6:6 C6:2 Bb5:4 F5:4           | G5:4 C6:4 E6:6 D6:2       | C6:6 A5:6 E5:4           | D5:8 E5:4 C#5:4";

const char* const COUNTER =
    "F4:8 E4:8                      | D4:8 F4:8                 | A4:8 C5:8                | G4:8 E4:8 | "
    "Bb4:8 D5:8                     | D5:8 F5:8                 | E5:8 C5:8                | D5:8 C#5:8";

const char* const COUNTER_LIFTING =
    "F4:8 E4:8                      | D4:8 F4:8                 | A4:8 C5:8                | G4:8 E4:8 | "
    "Bb4:8 D5:8                     | D5:8 F5:8                 | E5:8 C5:8                | D5:8 D#5:8";

const char* const COUNTER_SECOND =
    "F4:8 D4:8                      | E4:8 G4:8                 | A4:8 F4:8                | A4:8 C5:8 | "
    "D5:8 Bb4:8                     | C5:8 E5:8                 | E5:8 C5:8                | A4:16";

// The hook from afar, before it is introduced.
const char* const OMEN = "-:16 | A4:3 D5:3 F5:2 E5:8     | -:16                      | F5:3 D5:3 C5:2 D5:8 | "
                         "-:16 | Bb4:3 D5:3 G5:2 F5:8    | -:16                      | -:16";

const char* const OMEN_NEARER =
    "A4:3 D5:3 F5:2 E5:8            | -:16                      | C5:3 F5:3 A5:2 G5:8      | -:16 | "
    "Bb4:3 D5:3 G5:2 F5:8           | F5:3 D5:3 F5:2 A5:8       | G5:3 E5:3 C5:2 E5:4 G5:4 | -:16";

const char* const BREAK =
    "D5:12 F5:4                     | F5:8 D5:8                 | C5:12 A4:4               | G4:16 | "
    "Bb4:12 D5:4                    | F5:8 G5:8                 | A5:12 G5:4               | E5:12 D5:2 E5:2 "
    "| "
    "F5:3 D5:3 F5:2 Bb5:8           | G5:3 E5:3 G5:2 C6:8       | D6:3 A5:3 E5:2 D5:8      | -:16";

const char* const FAREWELL =
    "F5:3 D5:3 F5:2 Bb5:8           | G5:3 E5:3 G5:2 C6:8       | D6:8 Bb5:4 G5:4          | A5:8 E5:4 C#5:4 "
    "| F5:3 D5:3 F5:2 Bb5:8 | G5:3 E5:3 G5:2 C6:8 | D6:8 Bb5:4 G5:4 | A5:8 E5:4 C#5:4 | "
    "D5:16                          | A5:3 D6:3 F6:2 E6:8       | -:16                     | -:16";

const std::vector<Line> LINES = {
    {0, Line::BELL, 0.55f, OMEN},
    {8, Line::PLUCK, 0.60f, OMEN_NEARER},
    {16, Line::LEAD, 0.85f, HOOK},
    {24, Line::LEAD, 1.00f, HOOK_AGAIN},
    {24, Line::COUNTER, 0.60f, COUNTER},
    {32, Line::BELL, 1.00f, BREAK},
    {44, Line::LEAD, 0.90f, SECOND},
    {52, Line::LEAD, 1.00f, SECOND_AGAIN},
    {52, Line::COUNTER, 0.60f, COUNTER_SECOND},
    {64, Line::LEAD, 1.00f, HOOK_LIFTING},
    {64, Line::COUNTER, 0.80f, COUNTER_LIFTING},
    {72, Line::LEAD, 1.05f, HOOK_AGAIN},
    {72, Line::COUNTER, 0.90f, COUNTER},
    {72, Line::BELL, 0.60f, HOOK},
    {80, Line::BELL, 0.90f, FAREWELL},
};

const std::vector<Rhythm> KICK = {
    {'h', "9.........5....."},                            // a heartbeat
    {'f', "9...9...9...9..."},                            // four on the floor
    {'b', "9...9...9...9.67"}, {'s', "9...9..........."}, // leaves room for a fill
    {'1', "9..............."},
};

const std::vector<Rhythm> CLAP = {
    {'c', "....9.......9..."}, {'l', "....9.......9.46"}, {'q', "2...3...3...4..."}, // an accelerating roll
    {'e', "3.3.4.4.4.5.5.5."}, {'r', "....7..5.6675789"},
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

// The digit is the loudness; the instrument chooses the octave.
const std::vector<Rhythm> BASS = {
    {'p', "6.5.6.5.6.5.6.5."},                                                       // a pulse
    {'a', "..8.8.8...8.8.87"},                                                       // between the kicks
    {'r', ".789.789.789.789"},                                                       // rolling
    {'b', "..8.8.8.8.79...."}, {'s', "8.7.8.7........."}, {'w', "5..............."}, // held
    {'1', "9..............."},
};

std::string withoutBlanks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

Charts readCharts() {
    Charts read = CHARTS;
    for (std::string* chart :
         {&read.kick, &read.clap, &read.hat, &read.crash, &read.bass, &read.pad, &read.saws, &read.arp}) {
        *chart = withoutBlanks(*chart);
        if (int(chart->size()) != BARS)
            throw std::runtime_error("a chart of " + std::to_string(chart->size()) + " bars: " + *chart);
    }
    return read;
}

int readPitch(const std::string& name) {
    static const std::map<char, int> WHITE_KEYS = {{'C', 0}, {'D', 2}, {'E', 4}, {'F', 5},
                                                   {'G', 7}, {'A', 9}, {'B', 11}};
    auto key = WHITE_KEYS.find(name.empty() ? ' ' : name[0]);
    if (key == WHITE_KEYS.end() || name.size() < 2)
        throw std::runtime_error("not a note: " + name);
    int accidental = name[1] == '#' ? 1 : name[1] == 'b' ? -1 : 0;
    return 12 * (name.back() - '0' + 1) + key->second + accidental;
}

} // namespace

int transposition(int bar) {
    return bar >= PEAK_BAR ? 2 : 0;
}

std::vector<Chord> harmony() {
    std::vector<Chord> chords;
    std::istringstream bars(HARMONY);
    std::string bar;
    int step = 0;
    while (bars >> bar) {
        int steps = bar.find(',') == std::string::npos ? STEPS_PER_BAR : STEPS_PER_BAR / 2;
        std::istringstream names(bar);
        std::string name;
        while (std::getline(names, name, ',')) {
            Chord chord = CHORDS.at(name);
            // The chord before the key change is written in the new key.
            int lift = transposition(step / STEPS_PER_BAR);
            chord.step = step;
            chord.steps = steps;
            chord.bass += lift;
            for (int& voice : chord.voices)
                voice += lift;
            chords.push_back(chord);
            step += steps;
        }
    }
    if (step != BARS * STEPS_PER_BAR)
        throw std::runtime_error("the harmony has " + std::to_string(step) + " steps");
    return chords;
}

const Charts& charts() {
    static const Charts read = readCharts();
    return read;
}

const std::vector<Line>& lines() {
    return LINES;
}

const char* strokes(const std::vector<Rhythm>& table, char name) {
    for (const Rhythm& rhythm : table)
        if (rhythm.name == name)
            return rhythm.strokes;
    return "................";
}

const std::vector<Rhythm>& kickRhythms() {
    return KICK;
}

const std::vector<Rhythm>& clapRhythms() {
    return CLAP;
}

const std::vector<Rhythm>& hatRhythms() {
    return HAT;
}

const std::vector<Rhythm>& openHatRhythms() {
    return OPEN_HAT;
}

const std::vector<Rhythm>& bassRhythms() {
    return BASS;
}

std::vector<Note> readLine(const std::string& text) {
    std::vector<Note> notes;
    std::istringstream words(text);
    std::string word;
    int step = 0;
    while (words >> word) {
        if (word == "|") {
            if (step % STEPS_PER_BAR != 0)
                throw std::runtime_error("a bar line in step " + std::to_string(step) + " of " + text);
            continue;
        }
        size_t colon = word.find(':');
        int steps = colon == std::string::npos ? 0 : std::atoi(word.c_str() + colon + 1);
        if (steps <= 0)
            throw std::runtime_error("no length: " + word);
        if (word[0] != '-')
            notes.push_back({step, steps, readPitch(word.substr(0, colon))});
        step += steps;
    }
    if (step % STEPS_PER_BAR != 0)
        throw std::runtime_error("a last bar that ends in step " + std::to_string(step) + " of " + text);
    return notes;
}

} // namespace zentrak::music
