#include "am_archivezip.h"

#include <algorithm>
#include <cstring>
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
    if (start < name.size() && (name[start] == '/' || name[start] == '\\'))
        ++start;
    return name.substr(start);
}

// Directories have entries too; a name with a zero byte in it would be cut there, and mean another entry.
bool namesFile(const std::string& name) {
    return !name.empty() && name.back() != '/' && name.find('\0') == std::string::npos;
}

// Bytes that grow as they come, since the size that a header claims may be anything.
class Buffer {
public:
    Buffer(unsigned long claimed, unsigned long likely)
        : mClaimed(claimed),
          mCapacity(std::min(claimed, likely)),
          mData(new (std::nothrow) unsigned char[mCapacity]) {}

    // Makes room behind what is there; the number of bytes, 0 when there is no more to come or no memory.
    unsigned long room() {
        if (mLength == mCapacity && mCapacity < mClaimed)
            grow();
        return mData ? mCapacity - mLength : 0;
    }

    bool isGood() const { return mData != nullptr; }
    unsigned char* end() { return mData.get() + mLength; }
    void add(unsigned long count) { mLength += count; }
    unsigned long length() const { return mLength; }
    unsigned char* data() { return mData.get(); }
    unsigned char* release() { return mData.release(); }

private:
    void grow() {
        mCapacity = mCapacity < mClaimed / 2 ? mCapacity * 2 : mClaimed;
        std::unique_ptr<unsigned char[]> bigger(new (std::nothrow) unsigned char[mCapacity]);
        if (bigger)
            std::memcpy(bigger.get(), mData.get(), mLength);
        mData = std::move(bigger);
    }

    unsigned long mClaimed;
    unsigned long mCapacity;
    unsigned long mLength = 0;
    std::unique_ptr<unsigned char[]> mData;
};

// Reads the open entry to its end; false for damaged data and for a lack of memory.
bool readEntry(unzFile zip, Buffer& buffer) {
    constexpr unsigned long maxPiece = 1UL << 30; // what one call takes, and its result can say
    while (unsigned long room = buffer.room()) {
        int count = unzReadCurrentFile(zip, buffer.end(), unsigned(std::min(room, maxPiece)));
        if (count < 0)
            return false;
        if (count == 0)
            break;
        buffer.add(unsigned(count));
    }
    return buffer.isGood();
}

// The library checks the sum only of an entry that is as long as it says.
bool isChecksumGood(Buffer& buffer, const unz_file_info& info) {
    return buffer.length() == info.uncompressed_size ||
           crc32_z(0, buffer.data(), buffer.length()) == info.crc;
}

} // namespace

ArchiveZIP::ArchiveZIP(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) // a pipe would be waited for
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
    if (!mZip || !namesFile(entry) || unzLocateFile(mZip, entry.c_str(), 0) != UNZ_OK)
        return File();

    unz_file_info info{};
    char entryName[512];
    constexpr int encrypted = 1; // bit of the flags
    if (unzGetCurrentFileInfo(mZip, &info, entryName, sizeof entryName, nullptr, 0, nullptr, 0) != UNZ_OK ||
        (info.flag & encrypted) || unzOpenCurrentFilePassword(mZip, nullptr) != UNZ_OK)
        return File();

    // Most files pack to more than an eighth and are read into one array of their size.
    constexpr unsigned long least = 1UL << 16, ratio = 8;
    Buffer buffer(info.uncompressed_size, least + ratio * std::min(info.compressed_size, mSize));
    bool ok = buffer.isGood() && readEntry(mZip, buffer);
    ok = unzCloseCurrentFile(mZip) == UNZ_OK && ok;
    if (!ok || !isChecksumGood(buffer, info))
        return File();

    auto file = std::make_unique<FileStructure>();
    file->filename = name;
    file->length = long(buffer.length());
    file->data = buffer.release();
    return File(file.release());
}

bool ArchiveZIP::write(File) {
    return false;
}

} // namespace zentrak::am
