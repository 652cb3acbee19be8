// A place that files are read from by name, and perhaps written to.
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

    // The longest file, in bytes. One that claims to be longer is logged and counts as missing.
    static constexpr long MAX_LENGTH = 1L << 30;

    virtual File read(const std::string& name) = 0; // the whole file, or an empty pointer if there is none
    virtual bool write(File file) = 0;              // under its `filename`; false if nothing was written
    virtual void flush();                           // does nothing

    // Writes as write() does, but neither outside the archive nor through a symbolic link: false for an
    // absolute name, for one with "..", and where one of its folders is a link. False by default.
    virtual bool writeWithoutLinks(File file);

protected:
    static void reportLength(const std::string& name); // logs that the file is longer than MAX_LENGTH
};

} // namespace zentrak::am
