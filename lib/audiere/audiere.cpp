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
    bool any = !name || !*name || std::strcmp(name, "autodetect") == 0;
    return OpenALDevice::adopt(alcOpenDevice(any ? nullptr : name), nullptr).get();
}

RefPtr<File> AdrCreateMemoryFile(const void* data, int size) {
    if (size < 0 || (!data && size > 0))
        return nullptr;
    return new MemoryFile(data, size);
}

// The marks of modules are weaker than those before them, and MP3 has next to none: hence the order.
RefPtr<SampleSource> AdrOpenSampleSourceFromFile(const RefPtr<File>& file, int format) {
    if (!file || format != 0)
        return nullptr;
    for (auto open : {VorbisSource::open, SndfileSource::open, ModuleSource::open, MpegSource::open})
        if (RefPtr<SampleSource> source = open(file))
            return source;
    return nullptr;
}

// The device can be no other than one from AdrOpenDevice.
RefPtr<OutputStream> AdrOpenSound(const RefPtr<AudioDevice>& device, const RefPtr<SampleSource>& source,
                                  bool) {
    if (!device || !source)
        return nullptr;
    return OpenALStream::open(static_cast<OpenALDevice*>(device.get()), source);
}

} // namespace zentrak::audiere
