#include "am_archivedirectory.h"

#include "am_text.h"
#include "ztk_system.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zentrak::am {

namespace {

// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mFd, other.mFd);
        return *this;
    }

    bool isOpen() const { return mFd >= 0; }
    int get() const { return mFd; }

    // False if the system could not write everything.
    bool close() {
        bool ok = mFd < 0 || ::close(mFd) == 0;
        mFd = -1;
        return ok;
    }

private:
    int mFd;
};

// Reads until `data` holds `length` bytes or the file ends. Returns the number of bytes read, or -1.
long readAll(int fd, unsigned char* data, long length) {
    long done = 0;
    while (done < length) {
        ssize_t count = ::read(fd, data + done, size_t(length - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        done += count;
    }
    return done;
}

bool writeAll(int fd, const unsigned char* data, long length) {
    while (length > 0) {
        ssize_t count = ::write(fd, data, size_t(length));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        data += count;
        length -= count;
    }
    return true;
}

// Follows symbolic links at the end of `path`; the target need not exist. Empty for a cycle of links.
std::string followLinks(std::string path) {
    constexpr int maxLinks = 40; // as many as the kernel follows
    for (int links = 0; links < maxLinks; ++links) {
        char target[PATH_MAX];
        ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length < 0)
            return path;
        std::string link(target, size_t(length));
        path = link[0] == '/' ? link : folderOf(path).append(link);
    }
    return std::string();
}

Descriptor openFolder(const std::string& path) {
    return Descriptor(::open(path.empty() ? "." : path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// Opens the folder of `name`, relative to `base`, and creates what is missing of it. Follows no link below
// `base`.
Descriptor openFolderWithoutLinks(const std::string& base, const std::string& name) {
    Descriptor folder = openFolder(base);
    const std::string parents = folderOf(name);
    for (size_t start = 0, end; (end = parents.find('/', start)) != std::string::npos; start = end + 1) {
        const std::string part = parents.substr(start, end - start);
        if (part.empty())
            continue;
        ::mkdirat(folder.get(), part.c_str(), 0777);
        folder =
            Descriptor(::openat(folder.get(), part.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    return folder;
}

// Creates a file under an unused name in `folder` and returns the name in `name`.
Descriptor createTemporary(int folder, std::string& name) {
    constexpr int maxTries = 1000;
    for (int i = 0; i < maxTries; ++i) {
        name = ".zentrak-" + std::to_string(::getpid()) + "-" + std::to_string(i) + ".tmp";
        int fd = ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return Descriptor(fd);
    }
    return Descriptor(-1);
}

// Writes the bytes into the temporary file `fd` and gives it the owner and mode of `old`, if there is one.
// The bytes have to be on disk before the old name points at them.
bool fill(int fd, const FileStructure& file, const struct stat* old) {
    if (!writeAll(fd, file.data, file.length))
        return false;
    if (!old)
        return true;
    bool owned = ::fchown(fd, old->st_uid, old->st_gid) == 0; // if we are allowed to
    mode_t bits = old->st_mode & (owned ? 07777 : 0777);
    return ::fchmod(fd, bits) == 0 && ::fsync(fd) == 0;
}

// Reserves space for all bytes before the first of the old ones is overwritten, so that a full disk leaves
// the file as it is.
bool writeInPlace(int fd, const FileStructure& file, off_t oldLength) {
    if (file.length > oldLength && ::posix_fallocate(fd, 0, file.length) != 0) {
        if (::ftruncate(fd, oldLength) != 0)
            ZTK_LOG("error", "am", "'%s' can't be cut to its old length", file.filename.c_str());
        return false;
    }
    return writeAll(fd, file.data, file.length) && ::ftruncate(fd, file.length) == 0 && ::fsync(fd) == 0;
}

// Writes the file as `name` in `folder`; a link of that name is replaced.
bool replaceFile(int folder, const std::string& name, const FileStructure& file) {
    // An existing target must be a regular file that we may write. O_NONBLOCK: opening a pipe must not wait
    // for its other end.
    constexpr int flags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | O_NOFOLLOW;
    Descriptor old(::openat(folder, name.c_str(), flags));
    struct stat status {};
    if (old.isOpen() ? ::fstat(old.get(), &status) != 0 || !S_ISREG(status.st_mode)
                     : errno != ENOENT && errno != ELOOP)
        return false;

    std::string temporaryName;
    Descriptor temporary = createTemporary(folder, temporaryName);
    if (temporary.isOpen()) {
        // Renamed only when complete: the target is always either the old file or the new one.
        bool full = fill(temporary.get(), file, old.isOpen() ? &status : nullptr);
        full = temporary.close() && full;
        if (full && ::renameat(folder, temporaryName.c_str(), folder, name.c_str()) == 0)
            return true;
        ::unlinkat(folder, temporaryName.c_str(), 0);
        if (!full)
            return false;
    }
    // The folder takes no new file, or the file is a mount point.
    return old.isOpen() && writeInPlace(old.get(), file, status.st_size);
}

bool isWritable(const File& file) {
    return !file.isNull() && file->length >= 0 && (file->length == 0 || file->data) &&
           isWholeName(file->filename);
}

} // namespace

// "data/" becomes "data//", which names the same directory.
ArchiveDirectory::ArchiveDirectory(const std::string& directory) : path(directory + "/") {}

File ArchiveDirectory::read(const std::string& name) {
    if (!isWholeName(name))
        return File();
    Descriptor fd(::open((path + name).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!fd.isOpen() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return File();
    if (status.st_size > MAX_LENGTH) {
        reportLength(path + name);
        return File();
    }

    auto file = std::make_unique<FileStructure>();
    file->filename = name;
    file->data = new (std::nothrow) unsigned char[size_t(status.st_size)];
    if (!file->data)
        return File();
    file->length = readAll(fd.get(), file->data, status.st_size); // less if the file has shrunk
    if (file->length < 0)
        return File();
    return File(file.release());
}

bool ArchiveDirectory::write(File file) {
    if (!isWritable(file))
        return false;
    const std::string name = path + file->filename;
    const std::string target = followLinks(name);
    if (target.empty())
        return false;
    Descriptor folder = openFolder(folderOf(target));
    if (!folder.isOpen() && createFullDirectory(name))
        folder = openFolder(folderOf(target));
    return folder.isOpen() && replaceFile(folder.get(), baseOf(target), *file);
}

bool ArchiveDirectory::writeWithoutLinks(File file) {
    if (!isWritable(file) || !staysInFolder(file->filename))
        return false;
    Descriptor folder = openFolderWithoutLinks(path, file->filename);
    return folder.isOpen() && replaceFile(folder.get(), baseOf(file->filename), *file);
}

bool ArchiveDirectory::createFullDirectory(const std::string& path) {
    size_t i = path.find_first_not_of("./\\");
    for (; i < path.size(); ++i) // skipped if i is npos
        if (isSeparator(path[i]) && ::mkdir(path.substr(0, i).c_str(), 0777) != 0 && errno != EEXIST)
            return false;
    return true;
}

} // namespace zentrak::am
