#include "am_archivemanager.h"

#include "am_archivedirectory.h"
#include "am_archivezip.h"
#include "am_text.h"
#include "ztk_system.h"

#include <utility>

namespace zentrak::am {

namespace {

const char cProtocolMark[] = "://";
const size_t cProtocolMarkLength = sizeof cProtocolMark - 1;

// Where "://" follows the first word of `path`, or npos.
size_t findProtocol(const std::string& path) {
    for (size_t i = 0; i < path.size() && !isSeparator(path[i]); ++i)
        if (path.compare(i, cProtocolMarkLength, cProtocolMark) == 0)
            return i;
    return std::string::npos;
}

// The extension of the last component with its dot, or nothing. Because of the dot it is never "zip": a zip
// file is only added by its protocol.
std::string findType(const std::string& path) {
    size_t i = path.find_last_of("./\\");
    return i != std::string::npos && path[i] == '.' ? path.substr(i) : std::string();
}

} // namespace

ArchiveManager::ArchiveManager() : mImageManager(new ImageManager()) {}

ArchiveManager::~ArchiveManager() = default;

int ArchiveManager::addArchive(const std::string& path) {
    if (path.empty())
        return -1;
    std::string name = path;
    std::string type;
    size_t protocol = findProtocol(path);
    if (protocol != std::string::npos) {
        name = path.substr(protocol + cProtocolMarkLength);
        type = path.substr(0, protocol);
        if (name.empty()) // "zip://" alone names no archive
            return -1;
    } else {
        type = findType(path);
    }
    type = toLower(type);

    if (type.empty())
        return add(std::make_unique<ArchiveDirectory>(name));
    if (type == "zip") {
        ZTK_LOG("log", "app", "Adding zip: %s", path.c_str());
        return add(std::make_unique<ArchiveZIP>(name));
    }
    return -1;
}

// Returns the index.
int ArchiveManager::add(std::unique_ptr<ArchiveBase> archive) {
    mArchives.push_back(std::move(archive));
    return int(mArchives.size()) - 1;
}

// Null if there is no such archive.
ArchiveBase* ArchiveManager::archiveAt(int archive) const {
    return archive >= 0 && size_t(archive) < mArchives.size() ? mArchives[size_t(archive)].get() : nullptr;
}

// Reading the requested archive as well costs one more read: the order of addition still decides.
File ArchiveManager::readFile(const std::string& name, int archive) {
    if (mRecorder)
        mRecorder->push_back(name);
    File file;
    if (ArchiveBase* asked = archiveAt(archive))
        file = asked->read(name);
    for (const auto& each : mArchives) {
        file = each->read(name);
        if (!file.isNull())
            break;
    }
    return file;
}

bool ArchiveManager::writeFile(File file, int archive) {
    ArchiveBase* target = archiveAt(archive == -1 ? 0 : archive);
    return target && target->write(file);
}

bool ArchiveManager::writeImage(const std::string& name, Image& image) {
    File file = mImageManager->encodeImage(name, image);
    ArchiveBase* target = archiveAt(0);
    return !file.isNull() && target && target->writeWithoutLinks(file);
}

Image ArchiveManager::loadImage(const std::string& name, int archive, bool writable) {
    File file = readFile(name, archive);
    if (file.isNull())
        throw Exception("loadImage, File not found (%s)", name.c_str());
    return mImageManager->loadImage(name, file, writable);
}

void ArchiveManager::flush(int archive) {
    if (archive < 0)
        for (const auto& each : mArchives)
            each->flush();
    else if (ArchiveBase* one = archiveAt(archive))
        one->flush();
}

bool ArchiveManager::writeAllToArchive(const std::string&) {
    return true;
}

} // namespace zentrak::am
