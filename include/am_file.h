// One whole file in memory.
#pragma once

#include "am_smartptr.h"

#include <string>

namespace zentrak::am {

struct FileStructure {
    std::string filename;          // as asked for, or as to be written
    long length = 0;               // bytes in `data`
    unsigned char* data = nullptr; // made with new[], owned; no zero byte at its end

    FileStructure() = default;
    FileStructure(const std::string& name, const void* bytes, long count); // copies `count` bytes
    ~FileStructure();
    FileStructure(const FileStructure&) = delete;
    FileStructure& operator=(const FileStructure&) = delete;
};

// Empty where there is no file; a file of no bytes is a pointer to a FileStructure of length 0.
using File = TSmartPtr<FileStructure, TRefCount<FileStructure>>;

} // namespace zentrak::am
