#include "audiere_memoryfile.h"

#include <algorithm>

namespace zentrak::audiere {

MemoryFile::MemoryFile(const void* data, int size)
    : mBytes(static_cast<const unsigned char*>(data), static_cast<const unsigned char*>(data) + size) {}

int MemoryFile::read(void* buffer, int size) {
    int count = std::clamp(size, 0, int(mBytes.size()) - mPosition);
    std::copy_n(mBytes.data() + mPosition, count, static_cast<unsigned char*>(buffer));
    mPosition += count;
    return count;
}

bool MemoryFile::seek(int position, SeekMode mode) {
    long from = mode == BEGIN ? 0 : mode == CURRENT ? mPosition : long(mBytes.size());
    long target = from + position;
    if (target < 0 || target > long(mBytes.size()))
        return false;
    mPosition = int(target);
    return true;
}

} // namespace zentrak::audiere
