// The files of a show as the studio reads, writes and watches them. No graphics.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zentrak::studio {

// A script on disk, with its backup NAME.bak (the file as it was before the last save) and NAME.unsaved (work
// that was not saved when the program ended, however it ended). Each is written in one step: at every moment
// there is the old file or the new one.
class ScriptFile {
public:
    enum class Saved { YES, CHANGED_ON_DISK, FAILED };

    // `folder` without a separator at its end; `name` below it.
    ScriptFile(std::string folder, std::string name);

    const std::string& getName() const { return mName; }
    std::string getPath() const { return mFolder + "/" + mName; }

    std::optional<std::string> read() const; // none if it can't be read
    // Writes the file, unless something else than `known` is there and `overwrite` is not set.
    Saved save(const std::string& text, const std::string& known, bool overwrite);

    std::optional<std::string> readUnsaved() const;
    bool keepUnsaved(const std::string& text);
    void dropUnsaved();

private:
    std::string mFolder;
    std::string mName;

    std::optional<std::string> readNamed(const std::string& name) const;
    bool write(const std::string& name, const std::string& text) const;
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
