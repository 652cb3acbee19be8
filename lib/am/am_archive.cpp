#include "am_archive.h"

#include "ztk_system.h"

namespace zentrak::am {

ArchiveBase::~ArchiveBase() = default;

void ArchiveBase::flush() {}

bool ArchiveBase::writeWithoutLinks(File) {
    return false;
}

void ArchiveBase::reportLength(const std::string& name) {
    ZTK_LOG("error", "am", "'%s' is longer than %ld bytes and is not read", name.c_str(), MAX_LENGTH);
}

} // namespace zentrak::am
