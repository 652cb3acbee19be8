// Reads any bytes as a zip file, and the corpus's entries out of it. Entries must be as long as they claim.

#include "am_archivezip.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace zentrak::am;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    int file = memfd_create("zip", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != ssize_t(size))
        abort();
    ArchiveZIP zip("/proc/self/fd/" + std::to_string(file));
    for (const char* name :
         {"hello.txt", "empty.txt", "sub/", "sub/rgba.png", "./sub/deep.txt", "long.txt", ""}) {
        File read = zip.read(name);
        if (read.isNull())
            continue;
        if (read->length < 0 || read->filename != name)
            abort();
        volatile unsigned sum = 0;
        for (long i = 0; i < read->length; ++i)
            sum = sum + read->data[i];
    }
    close(file);
    return 0;
}
