#include "am_file.h"

#include "ztk_system.h"

#include <cstring>

namespace zentrak::am {

void throwNullSmartPtr() {
    throw Exception("TSmartPtr::operator->() - Attempt to dereference (NULL)object!");
}

FileStructure::FileStructure(const std::string& name, const void* bytes, long count)
    : filename(name), length(count > 0 ? count : 0), data(new unsigned char[size_t(length)]) {
    if (length > 0)
        std::memcpy(data, bytes, size_t(length));
}

FileStructure::~FileStructure() {
    delete[] data;
    data = nullptr;
    length = 0;
}

} // namespace zentrak::am
