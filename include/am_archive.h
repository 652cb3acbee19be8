// What an archive can do: give a file by its name, and take one.
#pragma once

#include "am_file.h"

#include <string>

namespace zentrak::am {

class ArchiveBase {
public:
    ArchiveBase() = default;
    ArchiveBase(const ArchiveBase&) = delete;
    ArchiveBase& operator=(const ArchiveBase&) = delete;
    virtual ~ArchiveBase();

    virtual File read(const std::string& name) = 0; // the whole file, or an empty pointer if there is none
    virtual bool write(File file) = 0;              // under its `filename`; false if nothing was written
    virtual void flush();                           // does nothing
};

} // namespace zentrak::am
