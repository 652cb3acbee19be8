#include "am_archivezip.h"

#include "am_text.h"

#include <algorithm>
#include <memory>
#include <minizip/unzip.h>
#include <new>
#include <sys/stat.h>
#include <zlib.h>

namespace zentrak::am {

namespace {

// Drops one leading ".", then one leading separator: "./a", "/a" and ".a" all become "a".
std::string cleanName(const std::string& name) {
    size_t start = 0;
    if (start < name.size() && name[start] == '.')
        ++start;
    if (start < name.size() && isSeparator(name[start]))
        ++start;
    return name.substr(start);
}

// Reads the open entry to its end or until `room` is full. Returns the number of bytes, or -1 for damaged
// data.
long readEntry(unzFile zip, unsigned char* data, unsigned long room) {
    unsigned long done = 0;
    while (done < room) {
        int count = unzReadCurrentFile(zip, data + done, unsigned(room - done));
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        done += unsigned(count);
    }
    return long(done);
}

} // namespace

ArchiveZIP::ArchiveZIP(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) // opening a pipe would block
        return;
    mSize = static_cast<unsigned long>(status.st_size);
    mZip = unzOpen(path.c_str());
}

ArchiveZIP::~ArchiveZIP() {
    if (mZip)
        unzClose(mZip);
}

File ArchiveZIP::read(const std::string& name) {
    std::string entry = cleanName(name);
    if (!mZip || entry.empty() || !isWholeName(entry) || unzLocateFile(mZip, entry.c_str(), 0) != UNZ_OK)
        return File();

    unz_file_info info{};
    char entryName[512];
    if (unzGetCurrentFileInfo(mZip, &info, entryName, sizeof entryName, nullptr, 0, nullptr, 0) != UNZ_OK)
        return File();

    // The header may claim any size, but deflate packs no better than 1032 to 1.
    constexpr unsigned long ratio = 1032;
    const unsigned long room =
        std::min(info.uncompressed_size, ratio * std::min(info.compressed_size, mSize));
    if (room > static_cast<unsigned long>(MAX_LENGTH)) {
        reportLength(name);
        return File();
    }
    constexpr unsigned long encrypted = 1; // flag bit
    if ((info.flag & encrypted) || unzOpenCurrentFilePassword(mZip, nullptr) != UNZ_OK)
        return File();

    auto file = std::make_unique<FileStructure>();
    file->filename = name;
    file->data = new (std::nothrow) unsigned char[room];
    file->length = file->data ? readEntry(mZip, file->data, room) : -1;
    bool ok = unzCloseCurrentFile(mZip) == UNZ_OK && file->length >= 0;
    // The library verifies the checksum only of an entry that is as long as it claims.
    const unsigned long length = static_cast<unsigned long>(file->length);
    ok = ok && (length == info.uncompressed_size || crc32_z(0, file->data, length) == info.crc);
    return ok ? File(file.release()) : File();
}

bool ArchiveZIP::write(File) {
    return false;
}

} // namespace zentrak::am
