// The music of a film, decoded as in the show.
#pragma once

#include "am_file.h"
#include "audiere.h"

#include <string>

namespace zentrak::film {

class Sound {
public:
    // A null pointer, or a file that isn't music, gives silence.
    explicit Sound(const am::File& file);
    ~Sound();
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    double getLength() const; // seconds, 0 for silence

    // Writes the sound between two times, exact to the sample, to a temporary file that is deleted with this
    // object. Returns its name; empty for silence. Throws Exception if it can't be written.
    std::string writeFile(double from, double to);

private:
    audiere::RefPtr<audiere::SampleSource> mSource;
    int mChannels = 0, mRate = 0;
    std::string mFileName;
};

} // namespace zentrak::film
