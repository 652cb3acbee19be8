// A zip file, stored or deflated, with no password. Read only.
#pragma once

#include "am_archive.h"

namespace zentrak::am {

class ArchiveZIP : public ArchiveBase {
public:
    explicit ArchiveZIP(
        const std::string& path); // a file that is missing or not a zip makes an empty archive
    ~ArchiveZIP() override;

    // One leading "." and then one leading "/" or "\" of the name are dropped; case counts. Empty if the
    // entry is missing, encrypted or damaged. The entry of a folder, such as "sub/", is a file of no bytes.
    File read(const std::string& name) override;

    bool write(File file) override; // false, always

private:
    void* mZip = nullptr;    // the minizip handle; null if the file could not be opened
    unsigned long mSize = 0; // bytes of the zip file: no entry holds more compressed ones
};

} // namespace zentrak::am
