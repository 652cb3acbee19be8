// The music of a film, decoded by the sound library that plays it in the show.
#pragma once

#include "am_file.h"
#include "audiere.h"

#include <string>

namespace zentrak::film {

class Sound {
public:
    explicit Sound(const am::File& file); // an empty pointer, or a file that is no music, gives silence
    ~Sound();
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    double getLength() const; // seconds, 0 for silence

    // Writes the sound from one time to another, exact to the sample, into a temporary file that lives as
    // long as this. Returns its name; empty for silence. Throws Exception if it can't be written.
    std::string writeFile(double from, double to);

private:
    audiere::RefPtr<audiere::SampleSource> mSource;
    int mChannels = 0, mRate = 0;
    std::string mFileName;
};

} // namespace zentrak::film
