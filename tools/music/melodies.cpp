// The melodies. The piece has two themes. The hook, A D F E D in three, three and two, is heard in pieces
// first, then whole, in major and at half speed in the break, in diminution in the rise, and backwards at the
// end. The second theme is wide and slow, and joins the hook in the finale.
#include "score.h"

namespace zentrak::music {

namespace {

const char* const INTRO = R"(
    A5:16 | A4:3 D5:3 F5:10 |
    -:16  | F5:3 D5:3 C5:2 D5:8 |
    -:16  | Bb4:3 D5:3 G5:2 F5:8 |
    -:16  | A5:3 E5:3 C#5:2 -:8)";

const char* const INTRO_ANSWER = R"(
    -:16                | -:16 |
    A4:3 D5:3 F5:10     | -:16 |
    F5:3 D5:3 C5:2 D5:8 | -:16 |
    -:8 A4:3 D5:3 E5:2  | -:16)";

const char* const BUILD = R"(
    A4:3 D5:3 F5:2 E5:4 D5:4  | -:16 |
    F5:3 D5:3 C5:2 D5:8       | -:8 C5:3 F5:3 A5:2 |
    Bb4:3 D5:3 G5:2 F5:4 D5:4 | F5:3 D5:3 F5:2 A5:6 G5:2 |
    A5:3 E5:3 D5:2 E5:4 A5:4  | A5:3 C#6:3 E6:2 -:8)";

const char* const BUILD_ANSWER = R"(
    -:16               | -:8 A4:3 D5:3 F5:2 |
    -:16               | F5:3 C5:3 A4:2 -:8 |
    -:16               | -:16 |
    -:8 A4:3 D5:3 E5:2 | -:16)";

const char* const HOOK = R"(
    A4:3 D5:3 F5:2 E5:4 D5:4  | F5:3 D5:3 C5:2 D5:6 A4:2 |
    C5:3 F5:3 A5:2 G5:4 F5:4  | G5:3 E5:3 D5:2 E5:8 |
    Bb4:3 D5:3 G5:2 F5:4 D5:4 | F5:3 D5:3 F5:2 A5:6 G5:2 |
    G5:3 E5:3 C5:2 E5:4 G5:4  | A5:8 G5:3 E5:3 C#5:2)";

const char* const HOOK_ANSWER = R"(
    -:16 | -:10 F4:2 Bb4:2 D5:2 |
    -:16 | -:8 G4:3 C5:3 E5:2 |
    -:16 | -:10 D5:2 F5:2 Bb5:2 |
    -:16 | -:8 E5:3 C#5:3 A4:2)";

const char* const HOOK_VARIED = R"(
    A4:3 D5:3 F5:2 E5:4 F5:2 E5:2   | F5:3 D5:3 C5:2 D5:4 F5:2 A5:2 |
    C6:3 A5:3 F5:2 G5:4 A5:4        | G5:3 E5:3 D5:2 E5:4 G5:4 |
    Bb4:3 D5:3 G5:2 Bb5:4 A5:2 G5:2 | F5:3 A5:3 D6:2 A5:6 F5:2 |
    G5:3 Bb5:3 Eb6:2 Bb5:4 G5:4     | A5:8 E5:4 -:4)";

const char* const HOOK_VARIED_COUNTER = R"(
    F4:8 A4:8   | D4:8 F4:8 |
    A4:8 C5:8   | G4:8 C5:8 |
    Bb4:8 D5:8  | D5:8 F5:8 |
    Eb5:8 Bb4:8 | D5:8 C#5:4 -:4)";

// The hook in major, at half the speed, and the climb out of the break.
const char* const BREAK = R"(
    C5:6 F5:6 A5:4       | G5:8 E5:8 |
    F5:6 D5:6 A4:4       | D5:8 F5:8 |
    C5:6 F5:6 A5:4       | Bb5:8 A5:8 |
    D6:6 C6:2 Bb5:8      | G5:12 -:4 |
    F5:3 D5:3 F5:2 Bb5:8 | G5:3 E5:3 G5:2 C6:8 |
    D6:3 A5:3 E5:2 D5:8  | E5:4 C#5:4 -:8)";

const char* const BREAK_ANSWER = R"(
    -:16               | -:8 C5:3 E5:3 G5:2 |
    -:16               | -:8 D5:3 F5:3 Bb5:2 |
    -:16               | -:8 G5:3 D5:3 Bb4:2 |
    -:16               | -:8 E5:3 G5:3 C6:2 |
    -:8 F5:3 D5:3 F5:2 | -:8 G5:3 E5:3 G5:2 |
    -:8 A5:3 E5:3 D5:2 | -:16)";

const char* const SECOND = R"(
    D5:6 F5:6 Bb5:4      | A5:2 G5:6 E5:4 C5:4 |
    F5:6 A5:6 D6:4       | C6:4 A5:4 F5:2 G5:2 A5:4 |
    Bb5:6 A5:2 F5:4 D5:4 | E5:4 G5:4 C6:6 Bb5:2 |
    A5:6 E5:6 G5:4       | F5:4 E5:2 D5:10)";

const char* const SECOND_ANSWER = R"(
    -:16                 | -:10 G4:2 C5:2 E5:2 |
    -:16                 | -:16 |
    -:10 F4:2 Bb4:2 D5:2 | -:16 |
    -:8 C5:3 E5:3 A5:2   | -:6 A4:3 D5:3 F5:2 D5:2)";

const char* const SECOND_VARIED = R"(
    Bb4:2 D5:4 F5:6 Bb5:4 | C6:4 G5:6 E5:2 G5:4 |
    F5:6 A5:6 D6:4        | C6:4 A5:4 F5:2 G5:2 A5:4 |
    D6:6 Bb5:6 G5:4       | C6:6 A5:6 E5:4 |
    Bb5:4 D6:4 F6:6 E6:2  | E6:6 D6:2 C6:4 G5:4)";

const char* const SECOND_VARIED_COUNTER = R"(
    F4:8 D4:8  | E4:8 G4:8 |
    A4:8 F4:8  | A4:8 C5:8 |
    Bb4:8 D5:8 | C5:8 A4:8 |
    D5:8 F5:8  | G5:8 E5:8)";

// The first three notes of the hook, faster and faster.
const char* const RISE = R"(
    G4:3 Bb4:3 D5:2 G4:3 Bb4:3 D5:2         | Bb4:3 D5:3 F5:2 Bb4:3 D5:3 F5:2 |
    C5:2 E5:2 G5:2 C6:2 C5:2 E5:2 G5:2 C6:2 | C#5:1 E5:1 A5:1 C#6:1 C#5:1 E5:1 A5:1 C#6:1 C#5:1 E5:1 A5:1 C#6:1 -:4)";

const char* const FINALE = R"(
    A4:3 D5:3 F5:2 E5:4 D5:4  | F5:3 D5:3 C5:2 D5:6 A4:2 |
    C5:3 F5:3 A5:2 G5:4 F5:4  | G5:3 E5:3 D5:2 E5:4 G5:4 |
    Bb4:3 D5:3 G5:2 F5:4 D5:4 | F5:3 D5:3 F5:2 Bb5:6 A5:2 |
    G5:3 E5:3 C5:2 E5:4 G5:4  | A5:8 A5:3 F#5:3 -:2)";

// The second theme over the harmony of the hook.
const char* const FINALE_SECOND = R"(
    F4:6 A4:6 D5:4       | C5:2 Bb4:6 F4:4 D4:4 |
    A4:6 C5:6 F5:4       | E5:4 C5:4 G4:4 C5:4 |
    D5:6 C5:2 Bb4:4 G4:4 | F4:4 Bb4:4 D5:6 C5:2 |
    E5:6 C5:6 G4:4       | D5:8 D#5:6 -:2)";

// The hook above the second theme for four bars, then the other way round.
const char* const PEAK = R"(
    A4:3 D5:3 F5:2 E5:4 F5:2 E5:2 | F5:3 D5:3 C5:2 D5:4 F5:2 A5:2 |
    C6:3 A5:3 F5:2 G5:4 A5:4      | G5:3 E5:3 D5:2 E5:4 C6:4 |
    D5:6 F5:6 Bb5:4               | C6:2 G5:6 E5:4 G5:4 |
    F5:6 A5:6 D6:4                | E6:8 C#6:4 -:4)";

const char* const PEAK_SECOND = R"(
    D5:6 A5:6 F5:4           | Bb4:6 D5:6 F5:4 |
    F5:6 A5:6 C6:4           | C6:4 G5:4 E5:4 G5:4 |
    F4:3 D4:3 F4:2 Bb4:8     | G4:3 E4:3 G4:2 C5:8 |
    A4:3 D5:3 F5:2 E5:4 D5:4 | D5:8 C#5:4 -:4)";

const char* const PEAK_BELLS = R"(
    -:16                     | -:8 F5:3 D5:3 F5:2 |
    -:16                     | -:8 G5:3 C6:3 E6:2 |
    F5:3 D5:3 F5:2 Bb5:8     | G5:3 E5:3 G5:2 C6:8 |
    A5:3 D6:3 F6:2 E6:4 D6:4 | A5:3 E5:3 C#5:2 -:8)";

// The hook backwards, and at last alone.
const char* const OUTRO = R"(
    Bb5:4 C6:2 D6:4 Bb5:3 F5:3 | C6:4 D6:2 E6:4 C6:3 G5:3 |
    D5:4 E5:2 F5:4 D5:3 A4:3   | C5:16 |
    Bb4:3 D5:3 G5:2 F5:8       | -:16 |
    A4:3 D5:3 E5:2 A5:8        | A5:4 G5:2 E5:2 C#5:8 |
    A4:3 D5:3 F5:2 E5:8        | D5:16 |
    F5:3 D5:3 A4:10            | -:16)";

const char* const OUTRO_ANSWER = R"(
    -:16 | -:16 |
    -:16 | -:4 A4:4 G4:4 F4:4 |
    -:16 | D5:3 Bb4:3 G4:2 -:8 |
    -:16 | -:16)";

const std::vector<Line> LINES = {
    {0, Line::BELL, 0.55f, INTRO},           {0, Line::ANSWER, 0.30f, INTRO_ANSWER},
    {8, Line::REED, 0.45f, BUILD},           {8, Line::ANSWER, 0.55f, BUILD_ANSWER},
    {16, Line::LEAD, 0.95f, HOOK},           {16, Line::ANSWER, 0.70f, HOOK_ANSWER},
    {24, Line::LEAD, 1.05f, HOOK_VARIED},    {24, Line::COUNTER, 0.60f, HOOK_VARIED_COUNTER},
    {32, Line::BELL, 0.90f, BREAK},          {32, Line::ANSWER, 0.50f, BREAK_ANSWER},
    {44, Line::REED, 0.80f, SECOND},         {44, Line::ANSWER, 0.70f, SECOND_ANSWER},
    {52, Line::LEAD, 0.95f, SECOND_VARIED},  {52, Line::COUNTER, 0.65f, SECOND_VARIED_COUNTER},
    {60, Line::ANSWER, 0.90f, RISE},         {60, Line::REED, 0.50f, RISE},
    {64, Line::LEAD, 1.00f, FINALE},         {64, Line::REED, 0.65f, FINALE_SECOND},
    {72, Line::LEAD, 1.10f, PEAK},           {72, Line::CHOIR, 0.80f, PEAK_SECOND},
    {72, Line::BELL, 0.60f, PEAK_BELLS},     {80, Line::BELL, 0.90f, OUTRO},
    {80, Line::ANSWER, 0.50f, OUTRO_ANSWER},
};

} // namespace

const std::vector<Line>& lines() {
    return LINES;
}

} // namespace zentrak::music
