// A directory on disk, with everything below it.
#pragma once

#include "am_archive.h"

namespace zentrak::am {

class ArchiveDirectory : public ArchiveBase {
public:
    explicit ArchiveDirectory(const std::string& directory); // a "/" is always appended

    // The name is appended to the base path as it is: ".." leads out of it. Only regular files count: a
    // directory, a pipe or a device gives an empty pointer, without waiting for it.
    File read(const std::string& name) override;

    // Creates the directories that the name needs. A file that is there is replaced in one step, so that
    // after a failure it is as it was, and keeps its mode; a symbolic link keeps its target. Where the folder
    // takes no new file, or the file is a mount of its own, it is overwritten in place instead.
    bool write(File file) override;

    // A link of the file's own name is replaced by the file.
    bool writeWithoutLinks(File file) override;

    // Creates every directory that `path` names before its last separator; true if all exist then.
    static bool createFullDirectory(const std::string& path);

    const std::string& getPath() const { return path; } // ends in "/"

private:
    std::string path;
};

} // namespace zentrak::am
