#include "studio_files.h"

#include "am_archivedirectory.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zentrak::studio {

namespace {

constexpr int MAX_DEPTH = 16; // of folders: links may go in circles
constexpr const char* BACKUP = ".bak";
constexpr const char* UNSAVED = ".unsaved";

bool isOwn(const std::string& name) {
    return name.ends_with(BACKUP) || name.ends_with(UNSAVED) || name.ends_with("~") || name.ends_with(".tmp");
}

} // namespace

ScriptFile::ScriptFile(std::string folder, std::string name)
    : mFolder(std::move(folder)), mName(std::move(name)) {}

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

ScriptFile::Saved ScriptFile::save(const std::string& text, const std::string& known, bool overwrite) {
    const std::optional<std::string> there = read();
    if (there && *there != known && !overwrite)
        return Saved::CHANGED_ON_DISK;
    if (there && *there != text && !write(mName + BACKUP, *there))
        return Saved::FAILED;
    return write(mName, text) ? Saved::YES : Saved::FAILED;
}

std::optional<std::string> ScriptFile::readUnsaved() const {
    return readNamed(mName + UNSAVED);
}

bool ScriptFile::keepUnsaved(const std::string& text) {
    return write(mName + UNSAVED, text);
}

void ScriptFile::dropUnsaved() {
    unlink((getPath() + UNSAVED).c_str());
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
