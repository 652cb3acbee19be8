#include "ztk_memory.h"

#include <malloc.h>

namespace zentrak {

void keepFreedMemory() {
    mallopt(M_MMAP_THRESHOLD, 32 << 20); // the largest value that glibc accepts
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    mallopt(M_TOP_PAD, 16 << 20);
}

} // namespace zentrak
