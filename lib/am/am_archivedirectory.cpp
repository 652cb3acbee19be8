#include "am_archivedirectory.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace zentrak::am {

namespace {

// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return mFd >= 0; }
    int get() const { return mFd; }

    // False if the system could not write all that was given to it.
    bool close() {
        bool ok = mFd < 0 || ::close(mFd) == 0;
        mFd = -1;
        return ok;
    }

private:
    int mFd;
};

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// A name with a zero byte in it would be cut there by the system, and mean another file.
bool isWholeName(const std::string& name) {
    return name.find('\0') == std::string::npos;
}

// Reads until `data` holds `length` bytes or the file ends; the number of bytes read, or -1.
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

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// Follows symbolic links at the end of `path`, to a target that need not be there. Links that go in circles
// are left for the next call on the path to refuse.
std::string followLinks(std::string path) {
    constexpr int maxLinks = 40; // as many as the kernel follows
    for (int links = 0; links < maxLinks; ++links) {
        char target[PATH_MAX];
        ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length < 0)
            return path;
        std::string link(target, size_t(length));
        path = link[0] == '/' ? link : folderOf(path) + link;
    }
    return path;
}

// Creates a file of a name that nothing in `folder` has, for writing; its name goes to `name`.
int createTemporary(const std::string& folder, std::string& name) {
    constexpr int maxTries = 1000;
    for (int i = 0; i < maxTries; ++i) {
        name = folder + ".zentrak-" + std::to_string(::getpid()) + "-" + std::to_string(i) + ".tmp";
        int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

// Writes the bytes into the temporary file `fd` and gives it the owner and mode of `old`, if there is one.
// The bytes have to be on the disk before the old file's name points at them.
bool fill(int fd, const FileStructure& file, const struct stat* old) {
    if (!writeAll(fd, file.data, file.length))
        return false;
    if (!old)
        return true;
    bool owned = ::fchown(fd, old->st_uid, old->st_gid) == 0; // kept where the system lets us
    mode_t bits = old->st_mode & (owned ? 07777 : 0777);
    return ::fchmod(fd, bits) == 0 && ::fsync(fd) == 0;
}

} // namespace

// A "/" is appended in any case: "data/" becomes "data//", which names the same directory.
ArchiveDirectory::ArchiveDirectory(const std::string& directory) : path(directory + "/") {}

File ArchiveDirectory::read(const std::string& name) {
    if (!isWholeName(name))
        return File();
    Descriptor fd(::open((path + name).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!fd.isOpen() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return File();

    auto file = std::make_unique<FileStructure>();
    file->filename = name;
    file->data = new (std::nothrow) unsigned char[size_t(status.st_size)];
    if (!file->data)
        return File();
    file->length = readAll(fd.get(), file->data, status.st_size); // less if the file shrinks meanwhile
    if (file->length < 0)
        return File();
    return File(file.release());
}

bool ArchiveDirectory::write(File file) {
    if (file.isNull() || file->length < 0 || (file->length > 0 && !file->data) ||
        !isWholeName(file->filename))
        return false;
    std::string name = path + file->filename;
    std::string target = followLinks(name);

    // What is there must be a regular file that could be written in place. Opening does not wait for the
    // other end of a pipe.
    Descriptor old(::open(target.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (old.isOpen() ? ::fstat(old.get(), &status) != 0 || !S_ISREG(status.st_mode) : errno != ENOENT)
        return false;

    std::string temporaryName;
    int fd = createTemporary(folderOf(target), temporaryName);
    if (fd < 0) {
        if (!createFullDirectory(name))
            return false;
        fd = createTemporary(folderOf(target), temporaryName);
    }
    Descriptor temporary(fd);
    if (!temporary.isOpen())
        return false;

    // Renamed only when whole: at every moment the target is the old file or the new one.
    bool ok = fill(temporary.get(), *file, old.isOpen() ? &status : nullptr);
    ok = temporary.close() && ok;
    ok = ok && ::rename(temporaryName.c_str(), target.c_str()) == 0;
    if (!ok)
        ::unlink(temporaryName.c_str());
    return ok;
}

bool ArchiveDirectory::createFullDirectory(const std::string& path) {
    size_t i = path.find_first_not_of("./\\");
    for (; i < path.size(); ++i) // npos, when there is nothing else, is above the size
        if (isSeparator(path[i]) && ::mkdir(path.substr(0, i).c_str(), 0777) != 0 && errno != EEXIST)
            return false;
    return true;
}

} // namespace zentrak::am
