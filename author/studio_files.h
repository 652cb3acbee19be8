// The files of a show as the studio reads, writes and watches them. No graphics.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zentrak::studio {

// A script on disk, with its backup NAME.bak, the file as it was before the last save, and NAME.unsaved, the
// work of a studio that has not saved it yet. Each is written in one step: at every moment there is the old
// file or the new one.
//
// Several studios may work on one script: the second one keeps its work in NAME.unsaved-2, and so on. A
// studio holds a lock on its file, which ends with the process however that ends: what is not locked is an
// orphan.
class ScriptFile {
public:
    enum class Saved { YES, CHANGED_ON_DISK, FAILED };

    // `folder` without a separator at its end; `name` below it.
    ScriptFile(std::string folder, std::string name);
    ~ScriptFile(); // unsaved work stays on disk
    ScriptFile(const ScriptFile&) = delete;
    ScriptFile& operator=(const ScriptFile&) = delete;

    const std::string& getName() const { return mName; }
    std::string getPath() const { return mFolder + "/" + mName; }

    std::optional<std::string> read() const; // none if it can't be read
    std::optional<std::string> readBackup() const;
    // Writes the file, unless it is there with another text than `known`, which is not blank, and `overwrite`
    // is not set. A file that is there but can't be read stays as it is.
    Saved save(const std::string& text, const std::string& known, bool overwrite);

    // Keeps the work of this studio. The kernel has it when this returns, so that a killed process loses
    // nothing; it isn't synced to disk, which would hold up every edit.
    bool keepUnsaved(const std::string& text);
    void dropUnsaved();

    // The unsaved work of a studio that is gone; no other studio gets it as long as this one has it. None if
    // there is no such file.
    std::optional<std::string> takeOrphan();
    void dropOrphan(); // deletes what takeOrphan returned last

private:
    // A file with a lock.
    struct Locked {
        int fd = -1; // -1: none
        std::string path;
    };

    std::string mFolder;
    std::string mName;
    Locked mUnsaved;
    Locked mOrphan;

    std::optional<std::string> readNamed(const std::string& name) const;
    bool write(const std::string& name, const std::string& text) const;
    std::string getUnsavedPath(int number) const;
    static void close(Locked& file);
    static void drop(Locked& file);
};

// Finds out which files below a folder have changed. Hidden files and those that the studio writes itself
// beside the script are passed over.
class FolderWatch {
public:
    static constexpr size_t MOST = 20000; // files; more are not watched

    explicit FolderWatch(std::string folder);

    // The names below the folder of what was written, replaced, made or removed since the last call.
    std::vector<std::string> poll();

private:
    struct Mark {
        int64_t time = 0; // of the last change, nanoseconds
        uint64_t size = 0;
        uint64_t inode = 0;
        bool operator==(const Mark&) const = default;
    };

    std::string mFolder;
    std::map<std::string, Mark> mFiles;

    std::map<std::string, Mark> scan() const;
    void scanFolder(const std::string& below, int depth, std::map<std::string, Mark>& files) const;
};

} // namespace zentrak::studio
