// A directory on disk, with everything below it.
#pragma once

#include "am_archive.h"

namespace zentrak::am {

class ArchiveDirectory : public ArchiveBase {
public:
    explicit ArchiveDirectory(const std::string& directory); // appends a "/", also behind one that is there

    // Names go behind the base path as they are: ".." leads out of it. Only regular files are files: a
    // directory, a pipe or a device gives an empty pointer, at once.
    File read(const std::string& name) override;

    // Writes the file whole or not at all, creating the directories that it needs. A file that is there keeps
    // its mode, a symbolic link its target, and after any failure both are as they were.
    bool write(File file) override;

    // Creates every directory that `path` names before its last separator; true if they are all there.
    static bool createFullDirectory(const std::string& path);

    const std::string& getPath() const { return path; } // ends in "/"

private:
    std::string path;
};

} // namespace zentrak::am
