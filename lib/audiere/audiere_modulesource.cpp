#include "audiere_modulesource.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <ostream>
#include <vector>

namespace zentrak::audiere {

namespace {

constexpr int SAMPLE_RATE = 48000;
constexpr int SKIP_FRAMES = 1024;               // rendered and discarded per call
constexpr int LEAD_IN = 4096;                   // frames of full quality before a position
constexpr int LONGEST_SKIP = 900 * SAMPLE_RATE; // about a second of work for a plain module

std::vector<char> readAll(File& file) {
    file.seek(0, File::END);
    std::vector<char> bytes(size_t(file.tell()));
    file.seek(0, File::BEGIN);
    bytes.resize(size_t(file.read(bytes.data(), int(bytes.size()))));
    return bytes;
}

// Discards libopenmpt's messages.
std::ostream& nowhere() {
    static std::ostream stream(nullptr);
    return stream;
}

} // namespace

RefPtr<SampleSource> ModuleSource::open(const RefPtr<File>& file) {
    try {
        RefPtr<ModuleSource> source = new ModuleSource(readAll(*file));
        if (source->mLength > 0)
            return source.get();
    } catch (const std::exception&) { // not a module
    }
    return nullptr;
}

ModuleSource::ModuleSource(const std::vector<char>& bytes)
    : mModule(bytes, nowhere(), {{"play.at_end", "stop"}}) {
    double frames = std::round(mModule.get_duration_seconds() * SAMPLE_RATE);
    mLength = int(std::clamp(frames, 0.0, double(INT_MAX)));
}

void ModuleSource::getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) {
    channelCount = 2;
    sampleRate = SAMPLE_RATE;
    sampleFormat = SF_F32;
}

// The length is that of the score; if rendering ends earlier, the rest is silent.
int ModuleSource::read(int frameCount, void* buffer) {
    size_t wanted = size_t(std::max(std::min(frameCount, mLength - mPosition), 0));
    float* out = static_cast<float*>(buffer);
    size_t done = 0;
    while (done < wanted) {
        size_t count = mModule.read_interleaved_stereo(SAMPLE_RATE, wanted - done, out + 2 * done);
        if (count == 0)
            break;
        done += count;
    }
    std::fill(out + 2 * done, out + 2 * wanted, 0.0f);
    mPosition += int(wanted);
    return int(wanted);
}

// Only rendering from the start is sample-exact: libopenmpt's own seek lands on a row, up to a tenth of a
// second away, and loses the notes still ringing. So everything before the position is rendered and
// discarded, without interpolation until shortly before it, which takes a millisecond or two per second of
// music. Only very long skips use that seek.
void ModuleSource::setPosition(int position) {
    position = std::clamp(position, 0, mLength);
    if (position == mLength) {
        mPosition = mLength; // nothing is read there
        return;
    }
    if (position < mPosition) {
        mModule.set_position_seconds(0);
        mPosition = 0;
    }
    if (position - mPosition > LONGEST_SKIP) {
        double start = double(position - 10 * SAMPLE_RATE) / SAMPLE_RATE;
        mPosition = int(std::lround(mModule.set_position_seconds(start) * SAMPLE_RATE));
        mPosition = std::min(mPosition, position);
    }
    skipTo(position - LEAD_IN, 1);
    skipTo(position, 0);
}

// Renders and discards. filterLength is libopenmpt's: 1 for no interpolation, 0 for its default.
void ModuleSource::skipTo(int position, int filterLength) {
    float dropped[2 * SKIP_FRAMES];
    mModule.set_render_param(openmpt::module::RENDER_INTERPOLATIONFILTER_LENGTH, filterLength);
    while (mPosition < position)
        read(std::min(position - mPosition, SKIP_FRAMES), dropped);
}

} // namespace zentrak::audiere
