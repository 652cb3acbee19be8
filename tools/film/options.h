// The command line of zentrak-film.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zentrak::film {

struct Options {
    std::string film;            // the film to write, or empty
    std::string frames;          // a folder for one PNG per frame, or empty
    std::string sheet;           // a contact sheet to write, or empty
    std::string stillFile;       // the picture of --still
    std::optional<double> still; // seconds
    int width = 0, height = 0;   // pixels; 0 for the size in the setup file
    int rate = 60;               // frames a second
    double from = 0;             // seconds
    std::optional<double> to;    // seconds; the end of the show if not given
    std::optional<uint32_t> seed;
    std::string show = "."; // the folder of the show
    bool onVirtualDisplay = false;
    bool help = false;
};

// Parses the arguments. Output paths come out absolute, so that they survive a change of directory. Returns
// nothing, after a line on standard error that says why, if they are invalid.
std::optional<Options> readOptions(int argc, char** argv);

extern const char* const USAGE;

} // namespace zentrak::film
