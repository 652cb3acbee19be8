#include "audiere.h"

#include "audiere_device.h"
#include "audiere_memoryfile.h"
#include "audiere_modulesource.h"
#include "audiere_mpegsource.h"
#include "audiere_sndfilesource.h"
#include "audiere_stream.h"
#include "audiere_vorbissource.h"

#include <cstring>

namespace zentrak::audiere {

RefPtr<AudioDevice> AdrOpenDevice(const char* name, const char*) {
    const bool any = !name || !*name || std::strcmp(name, "autodetect") == 0;
    return OpenALDevice::open(any ? nullptr : name).get();
}

RefPtr<File> AdrCreateMemoryFile(const void* data, int size) {
    if (size < 0 || (!data && size > 0))
        return nullptr;
    return new MemoryFile(data, size);
}

// The most reliably recognised formats first, modules and MP3 last.
RefPtr<SampleSource> AdrOpenSampleSourceFromFile(const RefPtr<File>& file, int format) {
    if (!file || format != 0)
        return nullptr;
    for (auto open : {VorbisSource::open, SndfileSource::open, ModuleSource::open, MpegSource::open})
        if (RefPtr<SampleSource> source = open(file))
            return source;
    return nullptr;
}

// Every device comes from AdrOpenDevice.
RefPtr<OutputStream> AdrOpenSound(const RefPtr<AudioDevice>& device, const RefPtr<SampleSource>& source,
                                  bool) {
    if (!device || !source)
        return nullptr;
    return OpenALStream::open(static_cast<OpenALDevice*>(device.get()), source);
}

} // namespace zentrak::audiere
