#include "am_archive.h"

namespace zentrak::am {

ArchiveBase::~ArchiveBase() = default;

void ArchiveBase::flush() {}

} // namespace zentrak::am
