// All named files of the program: an ordered list of archives, searched from first to last.
#pragma once

#include "am_archive.h"
#include "am_image.h"
#include "am_imagemanager.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::am {

class ArchiveManager {
public:
    ArchiveManager();
    ~ArchiveManager();
    ArchiveManager(const ArchiveManager&) = delete;
    ArchiveManager& operator=(const ArchiveManager&) = delete;

    // Adds a directory ("data", "./", "a.b/c") or a zip file ("zip://data.zip" and no other form); the index
    // of the new archive, or -1 for anything else. A missing archive is added anyway, and has no files.
    int addArchive(const std::string& path);

    // The file from the first archive that has it; `archive` is ignored. Empty if none has it.
    File readFile(const std::string& name, int archive = -1);

    // Writes into the archive with that index, or the first one for -1. False if there is no such archive, it
    // is a zip, or the file could not be written whole.
    bool writeFile(File file, int archive = -1);

    // Encodes by the name's extension and writes to the first archive, but neither outside it nor through a
    // symbolic link. False if no codec writes that extension or the file could not be written. Throws for a
    // null image and for one held by the image cache.
    bool writeImage(const std::string& name, Image& image);

    // Reads and decodes. `writable` false: shared through the cache, read-only. True: the caller's own.
    // Throws "loadImage, File not found (%s)", and what ImageManager::loadImage throws.
    Image loadImage(const std::string& name, int archive, bool writable);

    void flush(int archive); // a negative index flushes every archive

    bool writeAllToArchive(const std::string& path); // does nothing and returns true

    // From now on adds the name of every file that is requested to `names`, which remains the caller's; null
    // ends that.
    void setRecorder(std::vector<std::string>* names) { mRecorder = names; }

    ImageManager* getImageManager() const { return mImageManager.get(); } // owned by this manager

private:
    ArchiveBase* archiveAt(int archive) const;
    int add(std::unique_ptr<ArchiveBase> archive);

    std::vector<std::unique_ptr<ArchiveBase>> mArchives; // in order of addition
    std::vector<std::string>* mRecorder = nullptr;       // not owned
    std::unique_ptr<ImageManager> mImageManager;
};

} // namespace zentrak::am
