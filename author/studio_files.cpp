#include "studio_files.h"

#include "am_archivedirectory.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zentrak::studio {

namespace {

constexpr int MAX_DEPTH = 16; // of folders: links may go in circles
constexpr const char* BACKUP = ".bak";
constexpr const char* UNSAVED = ".unsaved";

constexpr int MOST_STUDIOS = 64; // that work on one script

bool isOwn(const std::string& name) {
    return name.ends_with(BACKUP) || name.find(UNSAVED) != std::string::npos || name.ends_with("~") ||
           name.ends_with(".tmp");
}

bool writeAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += count > 0 ? size_t(count) : 0;
    }
    return true;
}

// Whether `path` is still the file that is open as `fd`.
bool isSameFile(int fd, const std::string& path) {
    struct stat open {
    }, named{};
    return fstat(fd, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

ScriptFile::ScriptFile(std::string folder, std::string name)
    : mFolder(std::move(folder)), mName(std::move(name)) {}

ScriptFile::~ScriptFile() {
    close(mUnsaved);
    close(mOrphan);
}

std::optional<std::string> ScriptFile::readNamed(const std::string& name) const {
    const am::File file = am::ArchiveDirectory(mFolder).read(name);
    if (file.isNull())
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(file->data), size_t(file->length));
}

bool ScriptFile::write(const std::string& name, const std::string& text) const {
    return am::ArchiveDirectory(mFolder).write(
        am::File(new am::FileStructure(name, text.data(), long(text.size()))));
}

std::optional<std::string> ScriptFile::read() const {
    return readNamed(mName);
}

std::optional<std::string> ScriptFile::readBackup() const {
    return readNamed(mName + BACKUP);
}

ScriptFile::Saved ScriptFile::save(const std::string& text, const std::string& known, bool overwrite) {
    const std::optional<std::string> there = read();
    std::error_code none;
    if (!there && std::filesystem::exists(getPath(), none))
        return Saved::FAILED; // what can't be read can't be kept as the backup
    const bool blank = !there || there->find_first_not_of(" \t\r\n") == std::string::npos;
    if (!blank && *there != known && !overwrite)
        return Saved::CHANGED_ON_DISK;
    if (there && *there != text && !write(mName + BACKUP, *there))
        return Saved::FAILED;
    return write(mName, text) ? Saved::YES : Saved::FAILED;
}

// Unsaved work

std::string ScriptFile::getUnsavedPath(int number) const {
    return getPath() + UNSAVED + (number == 1 ? "" : "-" + std::to_string(number));
}

void ScriptFile::close(Locked& file) {
    if (file.fd >= 0)
        ::close(file.fd); // and with it the lock
    file = Locked();
}

void ScriptFile::drop(Locked& file) {
    if (file.fd >= 0)
        unlink(file.path.c_str());
    close(file);
}

// Into a new file, which is locked before it gets the name. The first time a name that nobody has is taken.
bool ScriptFile::keepUnsaved(const std::string& text) {
    const std::string temporary = getPath() + UNSAVED + "." + std::to_string(getpid()) + ".tmp";
    Locked made{::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666), mUnsaved.path};
    bool kept = made.fd >= 0 && flock(made.fd, LOCK_EX | LOCK_NB) == 0 && writeAll(made.fd, text);
    if (kept && mUnsaved.fd >= 0) {
        kept = rename(temporary.c_str(), made.path.c_str()) == 0;
    } else if (kept) {
        kept = false;
        for (int number = 1; number <= MOST_STUDIOS && !kept; ++number) {
            made.path = getUnsavedPath(number);
            kept = link(temporary.c_str(), made.path.c_str()) == 0;
        }
        unlink(temporary.c_str());
    }
    if (!kept) {
        unlink(temporary.c_str());
        close(made);
        return false;
    }
    close(mUnsaved);
    mUnsaved = std::move(made);
    return true;
}

void ScriptFile::dropUnsaved() {
    drop(mUnsaved);
}

std::optional<std::string> ScriptFile::takeOrphan() {
    close(mOrphan);
    for (int number = 1; number <= MOST_STUDIOS; ++number) {
        const std::string path = getUnsavedPath(number);
        Locked found{::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC), path};
        // Between the opening and the lock its studio may have replaced or deleted it.
        if (found.fd >= 0 && path != mUnsaved.path && flock(found.fd, LOCK_EX | LOCK_NB) == 0 &&
            isSameFile(found.fd, path)) {
            mOrphan = std::move(found);
            return readNamed(path.substr(mFolder.size() + 1));
        }
        close(found);
    }
    return std::nullopt;
}

void ScriptFile::dropOrphan() {
    drop(mOrphan);
}

FolderWatch::FolderWatch(std::string folder) : mFolder(std::move(folder)), mFiles(scan()) {}

std::map<std::string, FolderWatch::Mark> FolderWatch::scan() const {
    std::map<std::string, Mark> files;
    scanFolder("", 0, files);
    return files;
}

void FolderWatch::scanFolder(const std::string& below, int depth, std::map<std::string, Mark>& files) const {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir((mFolder + "/" + below).c_str()), &closedir);
    if (!folder || depth > MAX_DEPTH)
        return;
    while (const dirent* entry = readdir(folder.get())) {
        const std::string name = entry->d_name;
        struct stat status {};
        if (name[0] == '.' || isOwn(name) || files.size() >= MOST ||
            stat((mFolder + "/" + below + name).c_str(), &status) != 0)
            continue;
        if (S_ISDIR(status.st_mode))
            scanFolder(below + name + "/", depth + 1, files);
        else if (S_ISREG(status.st_mode))
            files[below + name] = {int64_t(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec,
                                   uint64_t(status.st_size), uint64_t(status.st_ino)};
    }
}

std::vector<std::string> FolderWatch::poll() {
    std::map<std::string, Mark> now = scan();
    std::vector<std::string> changed;
    for (const auto& [name, mark] : now)
        if (const auto before = mFiles.find(name); before == mFiles.end() || before->second != mark)
            changed.push_back(name);
    for (const auto& [name, mark] : mFiles)
        if (!now.contains(name))
            changed.push_back(name);
    mFiles = std::move(now);
    return changed;
}

} // namespace zentrak::studio
