// Tracker modules, rendered by libopenmpt: once through, in stereo.
#pragma once

#include "audiere_decodedsource.h"

#include <libopenmpt/libopenmpt.hpp>

namespace zentrak::audiere {

class ModuleSource : public DecodedSource {
public:
    // Null if the file is of another kind or empty.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override;

private:
    explicit ModuleSource(const std::vector<char>& bytes); // throws openmpt::exception
    ~ModuleSource() override = default;

    void skipTo(int position, int filterLength);

    openmpt::module mModule;
};

} // namespace zentrak::audiere
