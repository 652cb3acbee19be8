#include "dis_resource.h"

#include "am_archivemanager.h"
#include "ztk_system.h"

namespace zentrak::display {

Resource::Resource(DisplayGL* display, Mode mode) : mDisplay(display), mResourceMode(mode) {}

Resource::~Resource() = default;

bool Resource::canLoad() const {
    return mDisplay && mDisplay->mArchiveManager;
}

am::File Resource::loadFile(const std::string& name) {
    if (!canLoad())
        throw Exception("Display::Resource; This resource can not load files (when loading '%s')",
                        name.c_str());
    am::File file = mDisplay->mArchiveManager->readFile(name, -1);
    if (file.isNull())
        throw Exception("Display::Resource; File '%s' could not be read", name.c_str());
    return file;
}

// Throws unless images can be loaded.
static void checkCanLoadImage(const Resource& resource, const std::string& name) {
    if (!resource.canLoad())
        throw Exception("Display::Resource; This resource can not load files (when loading image '%s')",
                        name.c_str());
}

am::Image Resource::loadImage(const std::string& name, bool writable) {
    checkCanLoadImage(*this, name);
    return mDisplay->mArchiveManager->loadImage(name, -1, writable);
}

am::Image Resource::loadImage(const std::string& name, const unsigned char* data, int length) {
    checkCanLoadImage(*this, name);

    // A file that borrows the caller's bytes, and forgets them before it would free them.
    struct Borrowed {
        am::FileStructure* structure = new am::FileStructure;
        am::File file{structure};
        ~Borrowed() { structure->data = nullptr; }
    } borrowed;
    borrowed.structure->filename = name;
    if (data && length > 0) {
        borrowed.structure->data = const_cast<unsigned char*>(data);
        borrowed.structure->length = length;
    }
    return mDisplay->mArchiveManager->getImageManager()->loadImage(name, borrowed.file, true);
}

} // namespace zentrak::display
