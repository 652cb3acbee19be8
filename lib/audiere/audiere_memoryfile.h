// A file in memory.
#pragma once

#include "audiere.h"

#include <vector>

namespace zentrak::audiere {

class MemoryFile : public File {
public:
    MemoryFile(const void* data, int size); // copies

    int read(void* buffer, int size) override;
    bool seek(int position, SeekMode mode) override;
    int tell() override { return mPosition; }

private:
    std::vector<unsigned char> mBytes;
    int mPosition = 0; // 0 to the number of bytes
};

} // namespace zentrak::audiere
