#include "film/options.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace zentrak::film {

const char* const USAGE =
    "usage: zentrak-film [OPTION...] OUT.mp4          the whole show as a film; also .mkv, .mov, .webm, "
    ".gif\n"
    "       zentrak-film --still SECOND OUT.png       one picture\n"
    "       zentrak-film --frames FOLDER              one PNG per frame\n"
    "       zentrak-film --sheet SHEET.png            a contact sheet\n"
    "\n"
    "  --size WIDTHxHEIGHT   of the picture; that of the setup file if not given\n"
    "  --rate FRAMES         a second, 60 if not given\n"
    "  --from SECOND         start there, with the picture that playing up to there gives\n"
    "  --to SECOND           end there, instead of at the end of the show\n"
    "  --seed NUMBER         take away the effects' own chance: the same number gives the same film\n"
    "  --show FOLDER         of the show, instead of the current one\n"
    "  --virtual             use a virtual display even if there is a real one\n"
    "\n"
    "OUT, --frames and --sheet can be combined.\n";

namespace {

constexpr int MAX_SIDE = 8192;
constexpr int MAX_RATE = 1000;

template <class Number>
bool readWhole(const char* text, Number least, Number most, Number& number) {
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, number);
    return error == std::errc() && stop == end && number >= least && number <= most;
}

bool readSeconds(const char* text, double& seconds) {
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, seconds);
    return error == std::errc() && stop == end && std::isfinite(seconds) && seconds >= 0 && seconds < 1e6;
}

bool readSize(const std::string& text, int& width, int& height) {
    const size_t x = text.find('x');
    return x != std::string::npos && readWhole(text.substr(0, x).c_str(), 16, MAX_SIDE, width) &&
           readWhole(text.substr(x + 1).c_str(), 16, MAX_SIDE, height);
}

std::string absolute(const char* path) {
    return std::filesystem::absolute(path).string();
}

// Parses one option and its value. False if the value is invalid.
bool readOption(const std::string& name, const char* value, Options& options) {
    double seconds = 0;
    if (name == "--size")
        return readSize(value, options.width, options.height);
    if (name == "--rate")
        return readWhole(value, 1, MAX_RATE, options.rate);
    if (name == "--seed")
        return readWhole(value, uint32_t(0), UINT32_MAX, options.seed.emplace());
    if (name == "--from")
        return readSeconds(value, options.from);
    if (name == "--to" || name == "--still") {
        if (!readSeconds(value, seconds))
            return false;
        (name == "--to" ? options.to : options.still) = seconds;
        return true;
    }
    if (!*value)
        return false;
    if (name == "--frames")
        options.frames = absolute(value);
    else if (name == "--sheet")
        options.sheet = absolute(value);
    else if (name == "--show")
        options.show = value;
    return true;
}

bool takesValue(const std::string& name) {
    for (const char* option :
         {"--size", "--rate", "--from", "--to", "--seed", "--show", "--frames", "--sheet", "--still"})
        if (name == option)
            return true;
    return false;
}

// What is wrong with the combination of options; null if nothing is.
const char* findContradiction(const Options& options) {
    if (options.still &&
        (!options.frames.empty() || !options.sheet.empty() || options.to || options.from > 0))
        return "--still makes one picture; only --size, --rate, --seed and --show go with it";
    if (options.still && options.film.empty())
        return "--still needs the name of a picture";
    if (options.film.empty() && options.frames.empty() && options.sheet.empty())
        return "nothing to make: name a film, or give --still, --frames or --sheet";
    if (options.to && *options.to <= options.from)
        return "--to must be after --from";
    if (options.width & 1 || options.height & 1)
        return "the width and height of a film must be even";
    return nullptr;
}

} // namespace

std::optional<Options> readOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            options.help = true;
            return options;
        }
        if (argument == "--virtual") {
            options.onVirtualDisplay = true;
        } else if (takesValue(argument)) {
            if (++i == argc || !readOption(argument, argv[i], options)) {
                fprintf(stderr, "zentrak-film: %s can't be '%s'\n", argument.c_str(),
                        i < argc ? argv[i] : "");
                return std::nullopt;
            }
        } else if (argument[0] == '-' || argument.empty() || !options.film.empty()) {
            fprintf(stderr, "zentrak-film: unexpected argument '%s'\n", argument.c_str());
            return std::nullopt;
        } else {
            options.film = absolute(argv[i]);
        }
    }
    if (const char* const wrong = findContradiction(options)) {
        fprintf(stderr, "zentrak-film: %s\n", wrong);
        return std::nullopt;
    }
    if (options.still)
        options.stillFile.swap(options.film);
    return options;
}

} // namespace zentrak::film
