#include "score.h"

#include <map>
#include <sstream>
#include <stdexcept>

namespace zentrak::music {

namespace {

// Chords by name: the bass, and four voices with minimal movement.
const std::map<std::string, Chord> CHORDS = {
    {"Dm", {0, 0, 38, {57, 62, 65, 69}}},      {"Dm9", {0, 0, 38, {57, 62, 64, 65}}},
    {"Dm/C", {0, 0, 36, {57, 62, 65, 69}}},    {"Dm/F", {0, 0, 41, {57, 62, 65, 69}}},
    {"Dm+", {0, 0, 38, {62, 65, 69, 74}}},     {"Eb", {0, 0, 39, {58, 63, 67, 70}}},
    {"F", {0, 0, 41, {57, 60, 65, 67}}},       {"F/A", {0, 0, 33, {57, 60, 65, 69}}},
    {"Gm", {0, 0, 43, {55, 58, 62, 65}}},      {"Gm9", {0, 0, 43, {57, 58, 62, 65}}},
    {"Am", {0, 0, 33, {60, 64, 69, 72}}},      {"Asus", {0, 0, 33, {57, 62, 64, 69}}},
    {"A", {0, 0, 33, {57, 61, 64, 69}}},       {"A/C#", {0, 0, 37, {57, 61, 64, 69}}},
    {"Bb", {0, 0, 34, {58, 62, 65, 69}}},      {"Bb+", {0, 0, 34, {58, 62, 65, 70}}},
    {"B7", {0, 0, 35, {57, 63, 66, 71}}},      {"C", {0, 0, 36, {55, 60, 64, 67}}},
    {"C+", {0, 0, 36, {60, 64, 67, 72}}},      {"C/E", {0, 0, 40, {55, 60, 64, 67}}},
    {"end", {0, 0, 38, {57, 62, 65, 69, 76}}},
};

// One bar each, or half a bar each for two joined by a comma.
const char* const HARMONY = R"(
    Dm9  Dm9   Bb   Bb     Gm9 Gm9   Asus A
    Dm   Dm/C  Bb   F/A    Gm  Bb+   Asus A
    Dm   Bb    F    C      Gm  Bb+   C+   Asus,A
    Dm   Bb    F    C/E    Gm  Dm/F  Eb   Asus,A
    F    C/E   Dm   Bb     F/A Gm9   Bb+  C
    Bb+  C+    Asus A
    Bb+  C     Dm   F/A    Bb+ C+    Am   Dm+
    Bb+  C     Dm   F/A    Gm  Am    Bb+  C+
    Gm   Bb    C    A/C#
    Dm   Bb    F    C/E    Gm  Bb+   C+   Asus,B7
    Dm   Bb    F    C/E    Bb+ C+    Dm   Asus,A
    Bb+  C+    Dm   F/A    Gm  Gm    Asus A
    end  end   end  end)";

// The arrangement, one character a bar: a letter is a rhythm of rhythms.cpp, a digit a level or brightness, a
// point silence. The groups are the halves of the sections:
//       intro    build    main theme        break         second theme      rise finale            outro
const char* const CHARTS = R"(
kick     ....hhhh 2222fffz fffffftt fffkfffz ........ .... nnnmnnnm fffkfffk ffgz ffffffft fffkfffz fffkhhhh 1...
snare    ........ ....cccr cccgcccl cgcgcgcr ........ .... bbbbbbbl gcgcgcgd qeSR cgcgcgcr pgpgpgpr ccc..... ....
hat      ........ eeeessst oooooxoo ooooooox ........ ..es sssssssx oooooood eest ooooooox dddddddx oox..... ....
shaker   ........ ........ ........ ssssssss ....ssss wwww wwwwwwww ........ .... ssssssss wwwwwwww ........ ....
ride     ........ ........ ........ ........ ........ .... ........ oooooooo .... ........ eeeeeeeq ........ ....
toms     ........ .......a .......b .......a ........ ..e. .......c .......d .... .......c .......a ...e.... ....
crash    ........ 5....... 9....... 9....... 5....... .... 9....... 8....... 4... 9....... 9...9... 6....... 5...
swell    .......4 ...3...8 .......5 .......3 .......3 ...9 .......5 .......4 ...9 .......8 ...4...4 .......5 ....
bass     ....wwww ppppPPPs aaaamaab mmmammmz wwwwwwww .... rrrrrrrq RRRRRRRq ppP. rrrRrrrb vvvvvvvz aaaawwww 1...
tone     ....1111 23456787 55556666 66667777 22222222 .... 66666667 77777778 3456 66777777 88888888 65432221 2...
pad      34455667 44444444 33333333 44444444 66666666 7766 33333333 44444444 6666 44444444 55555555 66666677 9...
choir    ........ ........ ........ ........ 44445555 6678 ........ ....4444 .... 44445555 66666666 66655544 5...
saws     ........ ....2345 66666666 77777777 ........ ..34 66666666 77777777 3456 77777777 99999999 7654.... ....
stabs    ........ ....qqqq qqqqqqqt ttttqqqq ........ ..hh oooooooq qqqqqqqq qqqt qqqtqqqt ttqtttqt qqqq.... ....
arp      12233445 44555666 44445555 55556666 33334444 5678 55555555 66666666 5678 66666666 77777777 54433221 1...
figure   ssssssss uuuuuuuu uuuuuuuu vvvvvvvv ssssSSSS uuuu wwwwwwww vvvvvvvv uuuu wwwvwwwv xxxxxxxx SSSSssss s...)";

const std::vector<Ramp> LOW_PASS = {
    {0, 8, 500, 5000},     {8, 15.5f, 900, 12000},   {16, 20, 6000, 16000}, {30, 32, 16000, 1500},
    {32, 40, 3000, 5000},  {40, 43.5f, 1200, 14000}, {44, 52, 5000, 16000}, {60, 64, 2500, 16000},
    {80, 88, 14000, 1500}, {88, 92, 2500, 400},
};

const std::vector<Ramp> HIGH_PASS = {
    {14, 16, 25, 250},
    {40, 44, 25, 180},
    {60, 64, 25, 500},
};

const std::vector<Ramp> LEVELS = {
    {0, 8, 0.55f, 0.78f},   {8, 16, 0.78f, 0.95f},  {16, 32, 0.86f, 0.86f}, {32, 40, 0.56f, 0.56f},
    {40, 44, 0.50f, 0.76f}, {44, 52, 0.78f, 0.78f}, {52, 60, 0.82f, 0.84f}, {60, 64, 0.7f, 0.9f},
    {64, 72, 0.9f, 0.9f},   {72, 80, 1.0f, 1.0f},   {80, 88, 0.85f, 0.55f}, {88, 92, 0.6f, 0.6f},
};

const std::vector<Breath> BREATHS = {
    {15, 12}, {31, 12}, {43, 8}, {63, 12}, {71, 14}, {79, 12},
};

std::map<std::string, std::string> readCharts() {
    std::map<std::string, std::string> read;
    std::istringstream lines(CHARTS);
    std::string line, layer, bars;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        words >> layer;
        while (words >> bars)
            read[layer] += bars;
    }
    for (const auto& [name, chart] : read)
        if (int(chart.size()) != BARS)
            throw std::runtime_error(name + " has " + std::to_string(chart.size()) + " bars");
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

const std::string& chart(const std::string& layer) {
    static const std::map<std::string, std::string> CHART_OF = readCharts();
    return CHART_OF.at(layer);
}

const std::vector<Ramp>& lowPassRamps() {
    return LOW_PASS;
}

const std::vector<Ramp>& highPassRamps() {
    return HIGH_PASS;
}

const std::vector<Ramp>& levelRamps() {
    return LEVELS;
}

const std::vector<Breath>& breaths() {
    return BREATHS;
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
