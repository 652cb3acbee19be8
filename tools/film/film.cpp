#include "film/zentrak_film.h"

#include "am_imagecodecpng.h"
#include "command/command.h"
#include "command/virtual_display.h"
#include "film/encoder.h"
#include "film/options.h"
#include "film/player.h"
#include "film/sheet.h"
#include "film/sound.h"
#include "mb_random.h"
#include "ztk_process.h"
#include "ztk_system.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <unistd.h>

namespace zentrak::film {

namespace {

// Seconds to draw before a picture for it to be complete: some effects fade and draw over earlier frames.
constexpr double LEAD = 5;

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int) {
    interrupted = 1;
}

// Percent done and time left, on standard error if that is a terminal.
class Progress {
public:
    explicit Progress(long frames) : mFrames(frames) {}

    ~Progress() {
        if (mShown)
            fputc('\n', stderr);
    }

    void show(long done) {
        const Clock::time_point now = Clock::now();
        if (!mTerminal || (mShown && now - mLast < std::chrono::milliseconds(200) && done < mFrames))
            return;
        mLast = now;
        mShown = true;
        const double spent = std::chrono::duration<double>(now - mStart).count();
        const long left = std::lround(spent / double(std::max(1L, done)) * double(mFrames - done));
        const int filled = int(40 * done / mFrames);
        fprintf(stderr, "\r[%.*s%.*s] %3ld %%  %ld:%02ld left ", filled,
                "########################################", 40 - filled,
                "........................................", 100 * done / mFrames, left / 60, left % 60);
        fflush(stderr);
    }

private:
    using Clock = std::chrono::steady_clock;

    long mFrames;
    bool mTerminal = isatty(STDERR_FILENO) != 0;
    bool mShown = false;
    Clock::time_point mStart = Clock::now(), mLast;
};

void writePicture(const std::string& path, am::Image& picture) {
    unsigned char* data = nullptr;
    unsigned long length = 0;
    const bool encoded = am::ImageCodecPNG().encodeImage(&data, &length, *picture);
    const std::unique_ptr<unsigned char[]> owner(data);
    if (!encoded || !command::writeFile(path, data, length))
        throw Exception("zentrak-film: can't write '%s'", path.c_str());
}

std::string frameName(const std::string& folder, long frame) {
    char name[32];
    snprintf(name, sizeof name, "/%06ld.png", frame);
    return folder + name;
}

// What to make of the frames.
struct Outputs {
    std::unique_ptr<Encoder> film;
    std::unique_ptr<Sheet> sheet;
    std::string frames;
    std::string still;

    // Whether a frame within the range is needed as a picture.
    bool wants(long frame) const {
        return film || !frames.empty() || !still.empty() || (sheet && sheet->wants(frame));
    }

    void add(long frame, long first, double time, am::Image& picture) const {
        if (film)
            film->add(picture);
        if (!frames.empty())
            writePicture(frameName(frames, frame - first), picture);
        if (sheet && sheet->wants(frame))
            sheet->add(picture, time);
        if (!still.empty())
            writePicture(still, picture);
    }
};

// Plays from the start of the show to `last`, and passes on the frames from `first` on. False if the viewer
// has stopped it.
bool play(Player& player, long first, long last, int rate, const Outputs& outputs) {
    const long lead = std::lround(LEAD * rate);
    const auto isNear = [&](long frame) {
        for (long ahead = std::max(frame, first); ahead < std::min(frame + lead, last); ++ahead)
            if (outputs.wants(ahead))
                return true;
        return false;
    };
    Progress progress(last);
    while (player.getNextFrame() < last) {
        const long frame = player.getNextFrame();
        const bool wanted = frame >= first && outputs.wants(frame);
        if (!player.playFrame(wanted || isNear(frame)) || interrupted)
            return false;
        if (wanted)
            outputs.add(frame, first, double(frame) / rate, player.grab());
        progress.show(frame + 1);
    }
    return true;
}

int makeFilm(const Options& options, const MakeEffects& makeEffects) {
    std::error_code error;
    std::filesystem::current_path(options.show, error);
    if (error)
        throw Exception("zentrak-film: can't enter '%s': %s", options.show.c_str(), error.message().c_str());
    std::optional<command::VirtualDisplay> screen; // outlives the window
    if (options.seed)
        mathbase::fixRandomStart(*options.seed);
    Player player(options.rate);
    player.setup();
    if (!player.mDisplayEnabled)
        throw Exception("zentrak-film: the setup file has no display element: there is nothing to see");
    const std::shared_ptr<void> effects = makeEffects(player);

    if (options.onVirtualDisplay || command::VirtualDisplay::isNeeded())
        screen.emplace(std::max(options.width, player.mWidth), std::max(options.height, player.mHeight));
    player.open(options.width, options.height);

    Sound sound(player.mArchives.readFile(player.mMusicFile, -1));
    const double length = sound.getLength() > 0 ? sound.getLength() : double(player.mScript.mScriptLength);
    const double from = options.still.value_or(options.from);
    const long first = std::lround(from * options.rate);
    const long end = std::lround(std::min(options.to.value_or(length), 1e6) * options.rate);
    const long last = options.still ? first + 1 : end;
    if (last <= first)
        throw Exception("zentrak-film: the show ends at %.3f seconds", length);

    Outputs outputs;
    outputs.still = options.stillFile;
    outputs.frames = options.frames;
    if (!options.frames.empty())
        std::filesystem::create_directories(options.frames);
    if (!options.sheet.empty())
        outputs.sheet = std::make_unique<Sheet>(first, last, player.getWidth(), player.getHeight());
    if (!options.film.empty())
        outputs.film = std::make_unique<Encoder>(
            options.film, sound.writeFile(double(first) / options.rate, double(last) / options.rate),
            player.getWidth(), player.getHeight(), options.rate);

    const bool whole = play(player, first, last, options.rate, outputs);
    if (outputs.film)
        outputs.film->finish();
    if (whole && outputs.sheet && !outputs.sheet->write(options.sheet))
        return 1;
    if (!whole)
        fprintf(stderr, "zentrak-film: stopped after %.2f seconds of the show\n",
                double(player.getNextFrame()) / options.rate);
    return whole ? 0 : 130;
}

} // namespace

int run(int argc, char** argv, const MakeEffects& makeEffects) {
    boundProcess();
    const std::optional<Options> options = readOptions(argc, argv);
    if (!options || options->help) {
        fputs(USAGE, options ? stdout : stderr);
        return options ? 0 : 2;
    }
    struct sigaction action = {};
    action.sa_handler = interrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);
    try {
        return makeFilm(*options, makeEffects);
    } catch (const std::exception& error) {
        fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

} // namespace zentrak::film
