// The music of the show: the score, the sound of the instruments, and the file.
#include "music/effects.h"
#include "music/instruments.h"
#include "music/score.h"
#include "support.h"

#include "audiere.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <numeric>
#include <set>
#include <sstream>
#include <stdexcept>

using namespace zentrak::music;
using namespace zentrak::test;

namespace {

// A whole Vorbis file, decoded: two interleaved channels.
std::vector<float> decode(const std::string& path) {
    using namespace zentrak::audiere;
    std::string bytes = readFile(path);
    RefPtr<SampleSource> source =
        AdrOpenSampleSourceFromFile(AdrCreateMemoryFile(bytes.data(), int(bytes.size())), 0);
    if (!source) {
        ADD_FAILURE() << "cannot decode " << path;
        return {};
    }
    std::vector<float> samples(size_t(2 * source->getLength()));
    EXPECT_EQ(source->read(source->getLength(), samples.data()), source->getLength());
    return samples;
}

const std::vector<float>& show() {
    static const std::vector<float> samples = decode(sourcePath("data/music/zentrak.ogg"));
    return samples;
}

// The show's loudness by EBU R 128, as ffmpeg measures it.
struct Loudness {
    std::vector<double> momentary; // LUFS, of the 400 ms before every tenth of a second
    double integrated = 0, range = 0, truePeak = 0;

    // The mean of some bars.
    double of(int bar, int bars) const {
        double sum = 0;
        size_t first = size_t(10 * barTime(bar)) + 4,
               end = std::min(momentary.size(), size_t(10 * barTime(bar + bars)));
        for (size_t i = first; i < end; ++i)
            sum += std::pow(10, momentary.at(i) / 10);
        return 10 * std::log10(sum / double(end - first));
    }
};

double numberAfter(const std::string& text, const std::string& key) {
    size_t at = text.find(key);
    return at == std::string::npos ? 1000 : std::atof(text.c_str() + at + key.size());
}

const Loudness& loudness() {
    static const Loudness measured = [] {
        Loudness result;
        std::istringstream text(runCommand("ffmpeg -hide_banner -nostats -i '" +
                                           sourcePath("data/music/zentrak.ogg") +
                                           "' -af ebur128=peak=true -f null - 2>&1")
                                    .second);
        std::string line, summary;
        while (std::getline(text, line))
            if (line.find(" M:") != std::string::npos)
                result.momentary.push_back(numberAfter(line, " M:"));
            else if (line.find(" Summary:") != std::string::npos)
                summary.assign(std::istreambuf_iterator<char>(text), {});
        result.integrated = numberAfter(summary, "I:");
        result.range = numberAfter(summary, "LRA:");
        result.truePeak = numberAfter(summary, "Peak:");
        return result;
    }();
    return measured;
}

// The notes of the melodies that sound in a step: line and pitch.
std::vector<std::pair<size_t, int>> notesAt(int step) {
    std::vector<std::pair<size_t, int>> sounding;
    for (size_t i = 0; i < lines().size(); ++i) {
        int at = step - lines()[i].bar * STEPS_PER_BAR;
        for (const Note& note : readLine(lines()[i].text))
            if (note.step <= at && at < note.step + note.steps)
                sounding.push_back({i, note.pitch + transposition(step / STEPS_PER_BAR)});
    }
    return sounding;
}

Chord chordAt(int step) {
    for (const Chord& chord : harmony())
        if (step < chord.step + chord.steps)
            return chord;
    throw std::out_of_range("no chord");
}

// In any octave.
bool isSemitone(int pitch, int other) {
    int distance = std::abs(pitch - other) % 12;
    return distance == 1 || distance == 11;
}

// The level of a frequency in a mono sound.
double strength(const std::vector<float>& samples, int first, int count, double frequency) {
    double re = 0, im = 0;
    for (int i = 0; i < count; ++i) {
        double window = 0.5 - 0.5 * std::cos(2 * M_PI * i / count);
        double angle = 2 * M_PI * frequency * i / RATE;
        re += window * samples[size_t(first + i)] * std::cos(angle);
        im += window * samples[size_t(first + i)] * std::sin(angle);
    }
    return std::sqrt(re * re + im * im);
}

// The strongest semitone between two pitches, inclusive.
int strongestPitch(const std::vector<float>& samples, int low, int high) {
    int best = 0;
    double most = -1;
    for (int pitch = low; pitch <= high; ++pitch) {
        double now = strength(samples, RATE / 10, RATE / 2, pitchToFrequency(float(pitch)));
        if (now > most) {
            most = now;
            best = pitch;
        }
    }
    return best;
}

} // namespace

// The score
// --------------------------------------------------------------------------------------------------------

TEST(Score, SectionsFollowOneAnotherToTheEnd) {
    int bar = 0;
    for (const Section& section : SECTIONS) {
        EXPECT_EQ(section.bar, bar) << section.name;
        bar += section.bars;
    }
    EXPECT_EQ(bar, BARS);
    EXPECT_NEAR(barTime(BARS), 175.238, 0.001);
}

TEST(Score, HarmonyFillsEveryStep) {
    int step = 0;
    for (const Chord& chord : harmony()) {
        EXPECT_EQ(chord.step, step);
        step += chord.steps;
        EXPECT_TRUE(std::is_sorted(chord.voices.begin(), chord.voices.end()));
        EXPECT_LT(chord.bass, chord.voices.front());
    }
    EXPECT_EQ(step, BARS * STEPS_PER_BAR);
}

TEST(Score, MelodiesStayWithinThePieceAndInTheirRange) {
    for (const Line& line : lines()) {
        std::vector<Note> notes = readLine(line.text);
        ASSERT_FALSE(notes.empty());
        EXPECT_LE(line.bar * STEPS_PER_BAR + notes.back().step + notes.back().steps, BARS * STEPS_PER_BAR);
        for (const Note& note : notes) {
            EXPECT_GE(note.pitch, 60);
            EXPECT_LE(note.pitch, 90);
        }
    }
}

// At least two thirds of the notes on the beats belong to the current chord; the others are passing notes.
TEST(Score, MelodiesBelongToTheHarmony) {
    std::vector<Chord> chords = harmony();
    for (const Line& line : lines()) {
        int within = 0, all = 0;
        for (const Note& note : readLine(line.text)) {
            int step = line.bar * STEPS_PER_BAR + note.step;
            int lift = transposition(step / STEPS_PER_BAR);
            if (note.step % 4 != 0)
                continue;
            auto chord = std::find_if(chords.begin(), chords.end(), [&](const Chord& candidate) {
                return step < candidate.step + candidate.steps;
            });
            bool found = (note.pitch + lift - chord->bass) % 12 == 0;
            for (int voice : chord->voices)
                found = found || (note.pitch + lift - voice) % 12 == 0;
            within += found;
            ++all;
        }
        EXPECT_GE(3 * within, 2 * all) << "bar " << line.bar << ": " << within << " of " << all;
    }
}

// A semitone between a melody and a note of the chord that it does not double, or between two melodies, is
// for passing notes.
TEST(Score, HardlyAnyBeatHasAClash) {
    int clashes = 0, notes = 0;
    for (int beat = 0; beat < 4 * BARS; ++beat) {
        std::vector<std::pair<size_t, int>> sounding = notesAt(4 * beat);
        const Chord chord = chordAt(4 * beat);
        for (const auto& [line, pitch] : sounding) {
            ++notes;
            bool doubled = (pitch - chord.bass) % 12 == 0, near = isSemitone(pitch, chord.bass);
            for (int voice : chord.voices) {
                doubled = doubled || (pitch - voice) % 12 == 0;
                near = near || isSemitone(pitch, voice);
            }
            clashes += near && !doubled;
            for (const auto& [other, against] : sounding)
                EXPECT_FALSE(line < other && isSemitone(pitch, against)) << "bar " << beat / 4;
        }
    }
    EXPECT_GT(notes, 400);
    EXPECT_LE(100 * clashes, 3 * notes) << clashes << " of " << notes;
}

TEST(Score, ChartsNameRhythmsThatExist) {
    const std::string REST = "................";
    for (const char* layer : {"kick", "snare", "hat", "shaker", "ride", "toms", "stabs", "figure"})
        for (char name : chart(layer))
            if (name != '.') {
                EXPECT_NE(rhythm(layer, name), REST) << layer << ' ' << name;
                EXPECT_EQ(std::strlen(rhythm(layer, name)), 16u) << layer << ' ' << name;
            }
    for (char name : chart("bass"))
        if (name != '.') {
            const BassRhythm& bass = bassRhythm(name);
            EXPECT_EQ(bass.name, name);
            for (int step = 0; step < STEPS_PER_BAR; ++step)
                EXPECT_EQ(bass.strokes[step] == '.', bass.pitches[step] == '.') << name << ' ' << step;
        }
    for (const char* layer : {"crash", "swell", "tone", "pad", "choir", "saws", "arp"})
        EXPECT_EQ(chart(layer).find_first_not_of(".0123456789"), std::string::npos) << layer;
}

// No two phrases of eight bars have the same melodies or the same arrangement.
TEST(Score, NoPhraseIsRepeated) {
    const int PHRASES[] = {0, 8, 16, 24, 32, 44, 52, 64, 72, 80};
    std::set<std::string> melodies, arrangements;
    for (int bar : PHRASES) {
        std::string melody, arrangement;
        for (int step = bar * STEPS_PER_BAR; step < (bar + 8) * STEPS_PER_BAR; ++step)
            for (const auto& [line, pitch] : notesAt(step))
                melody += std::to_string(lines()[line].instrument) + ':' + std::to_string(pitch) + ' ';
        for (const char* layer : {"kick", "snare", "hat", "bass", "saws", "stabs", "figure"})
            arrangement += chart(layer).substr(size_t(bar), 8) + ' ';
        EXPECT_TRUE(melodies.insert(melody).second) << bar;
        EXPECT_TRUE(arrangements.insert(arrangement).second) << bar;
    }
}

TEST(Score, ReadsNotesAndRests) {
    std::vector<Note> notes = readLine("A4:3 C#5:5 -:4 Bb3:4 | D6:16");
    ASSERT_EQ(notes.size(), 4u);
    EXPECT_EQ(notes[0].pitch, 69);
    EXPECT_EQ(notes[1].pitch, 73);
    EXPECT_EQ(notes[1].step, 3);
    EXPECT_EQ(notes[1].steps, 5);
    EXPECT_EQ(notes[2].pitch, 58);
    EXPECT_EQ(notes[2].step, 12);
    EXPECT_EQ(notes[3].pitch, 86);
    EXPECT_EQ(notes[3].step, 16);
}

TEST(Score, RefusesBarsThatDoNotAddUpAndInvalidNotes) {
    EXPECT_THROW(readLine("A4:3 D5:3 | D5:16"), std::runtime_error);
    EXPECT_THROW(readLine("A4:15"), std::runtime_error);
    EXPECT_THROW(readLine("H4:16"), std::runtime_error);
    EXPECT_THROW(readLine("A:16"), std::runtime_error);
    EXPECT_THROW(readLine("A4"), std::runtime_error);
    EXPECT_THROW(readLine("A4:0 A4:16"), std::runtime_error);
}

// The instruments
// ---------------------------------------------------------------------------------------------------

TEST(Instruments, PlayThePitchThatTheyAreGiven) {
    for (int pitch : {57, 64, 69, 74}) {
        Track leadTrack(RATE), sawTrack(RATE), bellTrack(RATE), padTrack(RATE), counterTrack(RATE),
            bassTrack(RATE), reedTrack(RATE), choirTrack(RATE);
        lead(leadTrack, 0, RATE, pitch, pitch, 1);
        saws(sawTrack, 0, RATE, pitch, 1, 0.1f);
        bell(bellTrack, 0, RATE, pitch, 1);
        pad(padTrack, 0, RATE, pitch, 1, 0.3f);
        counter(counterTrack, 0, RATE, pitch, 1);
        bass(bassTrack, 0, RATE, pitch - 24, 1, 0.2f);
        reed(reedTrack, 0, RATE, pitch, pitch, 1);
        choir(choirTrack, 0, RATE, pitch, 1, 0.3f);
        EXPECT_EQ(strongestPitch(leadTrack.left, pitch - 6, pitch + 6), pitch);
        EXPECT_EQ(strongestPitch(sawTrack.left, pitch - 11, pitch + 11), pitch);
        EXPECT_EQ(strongestPitch(bellTrack.left, pitch - 11, pitch + 11), pitch);
        EXPECT_EQ(strongestPitch(reedTrack.left, pitch - 6, pitch + 6), pitch);
        EXPECT_EQ(strongestPitch(choirTrack.left, pitch - 6, pitch + 6), pitch);
        EXPECT_EQ(strongestPitch(padTrack.left, pitch - 11, pitch + 11), pitch);
        EXPECT_EQ(strongestPitch(counterTrack.left, pitch - 11, pitch + 11), pitch);
        EXPECT_EQ(strongestPitch(bassTrack.left, pitch - 35, pitch - 13), pitch - 24);
    }
}

// Its two saws never cancel each other out.
TEST(Instruments, AReedHoldsItsNote) {
    Track track(3 * RATE);
    reed(track, 0, 3 * RATE, 74, 74, 1);
    for (const std::vector<float>* side : {&track.left, &track.right}) {
        double least = 1e9, most = 0;
        for (int window = 10; window < 60; ++window) {
            auto at = side->begin() + window * RATE / 20;
            double power = std::inner_product(at, at + RATE / 20, at, 0.0);
            least = std::min(least, power);
            most = std::max(most, power);
        }
        EXPECT_LT(most, 4 * least);
    }
}

TEST(Instruments, EndWithoutAStep) {
    const int AT = 4 * RATE;
    auto expectSmooth = [&](const char* name, auto play) {
        Track track(6 * RATE);
        play(track);
        auto last =
            std::find_if(track.left.rbegin(), track.left.rend(), [](float sample) { return sample != 0; });
        ASSERT_NE(last, track.left.rend()) << name;
        EXPECT_LT(std::fabs(*last), 0.003f) << name;
    };
    expectSmooth("kick", [&](Track& track) { kick(track, AT, 1); });
    expectSmooth("clap", [&](Track& track) { clap(track, AT, 1); });
    expectSmooth("hat", [&](Track& track) { hat(track, AT, 1, false); });
    expectSmooth("open hat", [&](Track& track) { hat(track, AT, 1, true); });
    expectSmooth("snare", [&](Track& track) { snare(track, AT, 1); });
    expectSmooth("shaker", [&](Track& track) { shaker(track, AT, 1, 0); });
    expectSmooth("ride", [&](Track& track) { ride(track, AT, 1); });
    expectSmooth("swell", [&](Track& track) { swell(track, 0, RATE, 1); });
    expectSmooth("tom", [&](Track& track) { tom(track, AT, 1, 45, 0); });
    expectSmooth("crash", [&](Track& track) { crash(track, RATE, 1); });
    expectSmooth("riser", [&](Track& track) { riser(track, 0, RATE, 1); });
    expectSmooth("fall", [&](Track& track) { fall(track, 0, RATE, 1); });
    expectSmooth("boom", [&](Track& track) { boom(track, RATE, 1); });
    expectSmooth("bass", [&](Track& track) { bass(track, 0, RATE, 40, 1, 1); });
    expectSmooth("pad", [&](Track& track) { pad(track, 0, RATE, 60, 1, 1); });
    expectSmooth("saws", [&](Track& track) { saws(track, 0, RATE, 60, 1, 1); });
    expectSmooth("pluck", [&](Track& track) { pluck(track, 0, STEP, 60, 1, 1, 0); });
    expectSmooth("bell", [&](Track& track) { bell(track, 0, RATE, 60, 1); });
    expectSmooth("lead", [&](Track& track) { lead(track, 0, RATE, 60, 60, 1); });
    expectSmooth("reed", [&](Track& track) { reed(track, 0, RATE, 60, 60, 1); });
    expectSmooth("choir", [&](Track& track) { choir(track, 0, RATE, 60, 1, 1); });
    expectSmooth("counter", [&](Track& track) { counter(track, 0, RATE, 60, 1); });
}

TEST(Effects, TheLimiterKeepsTheCeilingAndLeavesTheRestAlone) {
    Track track(RATE);
    for (int i = 0; i < RATE; ++i) {
        float level = i > 20000 && i < 22000 ? 3.0f : 0.3f;
        track.add(i, level * std::sin(0.1f * float(i)), 0.1f);
    }
    Track before = track;
    limit(track, 0.8f);
    for (int i = 0; i < RATE; ++i) {
        ASSERT_LE(std::fabs(track.left[size_t(i)]), 0.8f);
        if (i < 19000) {
            ASSERT_NEAR(track.left[size_t(i)], before.left[size_t(i)], 1e-5);
        }
    }
    EXPECT_NEAR(track.left[40000], before.left[40000], 0.05);
}

TEST(Effects, TheEchoComesBackAfterItsTimeOnEachSide) {
    Track send(RATE), heard(RATE);
    send.add(100, 1, 1);
    echo(heard, send, 5000, 0.5f, 1);
    auto loudest = [](const std::vector<float>& side) {
        return int(std::max_element(side.begin(), side.end()) - side.begin());
    };
    EXPECT_EQ(loudest(heard.left), 5100);
    EXPECT_NEAR(loudest(heard.right), 10100, 10);
}

TEST(Effects, TheRoomDiesAwayInItsTime) {
    Track send(4 * RATE), heard(4 * RATE);
    Noise noise(1);
    for (int i = 0; i < RATE / 2; ++i)
        send.add(i, noise.next(), noise.next());
    reverb(heard, send, 2.0f, 1);
    auto energy = [&](int second) {
        return std::inner_product(heard.left.begin() + second * RATE,
                                  heard.left.begin() + (second + 1) * RATE,
                                  heard.left.begin() + second * RATE, 0.0);
    };
    EXPECT_GT(energy(1), 0);
    double fall = 10 * std::log10(energy(2) / energy(1)); // 30 dB a second, and more in the treble
    EXPECT_LT(fall, -25);
    EXPECT_GT(fall, -60);
}

// The file
// -----------------------------------------------------------------------------------------------------------

TEST(ShowMusic, LastsAsLongAsTheScore) {
    EXPECT_EQ(show().size(), 2u * BARS * BAR);
}

TEST(ShowMusic, IsAsLoudAsOtherMusicAndNotClipped) {
    EXPECT_GE(loudness().integrated, -16);
    EXPECT_LE(loudness().integrated, -12);
    EXPECT_LE(loudness().truePeak, -1);
    EXPECT_GT(loudness().truePeak, -3);
    EXPECT_GE(loudness().range, 6);
}

TEST(ShowMusic, HasNoOffset) {
    double left = 0, right = 0;
    for (size_t i = 0; i < show().size(); i += 2) {
        left += show()[i];
        right += show()[i + 1];
    }
    EXPECT_LT(std::fabs(left) / double(show().size() / 2), 0.0005);
    EXPECT_LT(std::fabs(right) / double(show().size() / 2), 0.0005);
}

TEST(ShowMusic, BeginsAndEndsWithoutAClick) {
    for (size_t i = 0; i < 40; ++i) {
        EXPECT_LT(std::fabs(show()[i]), 0.002f) << i;
        EXPECT_LT(std::fabs(show()[show().size() - 1 - i]), 0.002f) << i;
    }
}

TEST(ShowMusic, GrowsToThePeakAndRestsInTheBreak) {
    auto of = [](int bar, int bars) { return loudness().of(bar, bars); };
    double finale = of(64, 8), peak = of(PEAK_BAR, 8);
    EXPECT_LT(of(0, 8), finale - 6);
    EXPECT_LT(of(8, 8), of(16, 8));
    EXPECT_LT(of(16, 8), of(24, 8));
    EXPECT_LT(of(32, 8), finale - 4);
    EXPECT_LT(of(44, 16), finale);
    EXPECT_LT(of(60, 4), finale);
    EXPECT_LT(of(80, 8), finale - 2);
    EXPECT_LT(of(91, 1), -30);
    for (int bar = 0; bar < BARS; ++bar)
        EXPECT_LT(of(bar, 1), peak + 1) << bar;
    for (int bar = 0; bar + 8 <= PEAK_BAR; ++bar)
        EXPECT_LT(of(bar, 8), peak - 1) << bar;
}

// The level rises most within 5 ms of the beat, wherever the bass drum plays one.
TEST(ShowMusic, IsOnTheBeat) {
    const int BLOCK = RATE / 1000, AROUND = 20; // ms
    auto level = [](int block) {
        double sum = 1e-3;
        for (int i = block * BLOCK; i < (block + 3) * BLOCK; ++i)
            sum += std::fabs(double(show()[size_t(2 * i + 2)]) - show()[size_t(2 * i)]);
        return sum;
    };
    int beats = 0, there = 0;
    for (int beat = 4; beat < 4 * BARS; ++beat) {
        char stroke = rhythm("kick", chart("kick")[size_t(beat / 4)])[beat % 4 * 4];
        if (stroke != '9')
            continue;
        int at = beat * BEAT / BLOCK, best = 0;
        double most = 0;
        for (int i = -AROUND; i < AROUND; ++i) {
            double rise = level(at + i + 1) / level(at + i);
            if (rise > most) {
                most = rise;
                best = i + 2; // the last millisecond of the three is the one that has come in
            }
        }
        ++beats;
        there += std::abs(best) <= 5;
    }
    EXPECT_GT(beats, 150);
    EXPECT_GE(100 * there, 93 * beats) << there << " of " << beats;
}

TEST(ShowMusic, HasItsBassInTheMiddleAndTheRestWide) {
    Filter lowLeft, lowRight;
    lowLeft.set(120, 0.3f);
    lowRight.set(120, 0.3f);
    double lowMiddle = 0, lowSide = 0, middle = 0, side = 0;
    for (size_t i = 0; i < show().size(); i += 2) {
        float left = show()[i], right = show()[i + 1];
        float bassLeft = lowLeft.low(left), bassRight = lowRight.low(right);
        lowMiddle += (bassLeft + bassRight) * (bassLeft + bassRight);
        lowSide += (bassLeft - bassRight) * (bassLeft - bassRight);
        middle += (left + right) * (left + right);
        side += (left - right) * (left - right);
    }
    EXPECT_LT(lowSide, 0.01 * lowMiddle);
    EXPECT_GT(side, 0.1 * middle);
    EXPECT_LT(side, 0.5 * middle);
}

TEST(ShowMusic, IsWhatTheProgramMakesAndTheSameEachTime) {
    const int LENGTH = 3;
    TempDir folder;
    std::string once = folder.file("once.ogg"), again = folder.file("again.ogg");
    std::string bars = " " + std::to_string(LENGTH);
    ASSERT_EQ(runCommand(std::string(MAKE_MUSIC) + " " + once + bars).first, 0);
    ASSERT_EQ(runCommand(std::string(MAKE_MUSIC) + " " + again + bars).first, 0);
    EXPECT_EQ(readFile(once), readFile(again));
    std::vector<float> part = decode(once);
    ASSERT_EQ(part.size(), 2u * LENGTH * BAR);
    for (size_t i = 0; i < 2u * (LENGTH - 1) * BAR; ++i)
        ASSERT_NEAR(part[i], show()[i], 0.01) << i / 2;
}

TEST(ShowMusic, TheProgramWritesTheVoicesOneByOne) {
    TempDir folder;
    ASSERT_EQ(runCommand(MAKE_MUSIC " --stems " + folder.path() + " 1").first, 0);
    for (const char* name :
         {"kick", "snares", "cymbals", "bass", "chords", "arpeggio", "lead", "voices", "answers", "noise"})
        EXPECT_EQ(decode(folder.file(std::string(name) + ".ogg")).size(), 2u * BAR) << name;
    std::vector<float> lead = decode(folder.file("lead.ogg")), kick = decode(folder.file("kick.ogg"));
    EXPECT_GT(std::inner_product(lead.begin(), lead.end(), lead.begin(), 0.0), 1);
    EXPECT_EQ(std::inner_product(kick.begin(), kick.end(), kick.begin(), 0.0), 0); // not in the first bar
}

TEST(ShowMusic, TheProgramReportsErrors) {
    TempDir folder;
    for (const char* arguments : {"", " --help", " x.ogg 0", " x.ogg -3", " x.ogg 3x", " x.ogg 999", " a b c",
                                  " --stems", " --stems . 0"}) {
        const auto [status, text] = runCommand("cd " + folder.path() + " && " MAKE_MUSIC + arguments);
        EXPECT_EQ(status, 2) << arguments;
        EXPECT_EQ(text.find("usage: make_music FILE.ogg [BARS]"), 0u) << arguments << text;
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())); // nothing extra
    EXPECT_EQ(runCommand(std::string(MAKE_MUSIC) + " /no/such/folder/x.ogg 1"),
              (std::pair<int, std::string>(1, "make_music: cannot write /no/such/folder/x.ogg\n")));
}
