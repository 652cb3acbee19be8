// The base of everything that lives in the OpenGL context.
#pragma once

#include "am_file.h"
#include "am_image.h"
#include "dis_display.h"
#include "dis_glcheck.h"

#include <string>

namespace zentrak::display {

// Ties an object to its display, and gives it files through the display's archive manager, which is looked up
// at each load. It may be made before the window is open: OpenGL objects come later.
class Resource {
public:
    // How its data will be used.
    enum Mode : int {
        STATIC = 0, // written once, drawn often
        STREAM = 1, // written and drawn about as often
        DYNAMIC = 2 // rewritten now and then
    };

    Resource(DisplayGL* display, Mode mode); // the display is not owned, and may be null: then it never loads
    virtual ~Resource();

    DisplayGL* getDisplay() { return mDisplay; }
    const DisplayGL* getDisplay() const { return mDisplay; }
    void setDisplay(DisplayGL* display) { mDisplay = display; }
    void setResourceMode(Mode mode) { mResourceMode = mode; }
    Mode getResourceMode() const { return mResourceMode; }

    bool canLoad() const; // it has a display, and that an archive manager

    // A whole file. Throws "Display::Resource; This resource can not load files (when loading '%s')" if it
    // cannot load, and "Display::Resource; File '%s' could not be read" if there is none.
    am::File loadFile(const std::string& name);

    // A picture by its name: shared and read-only, or private and writable. Throws "Display::Resource; This
    // resource can not load files (when loading image '%s')" if it cannot load, and what
    // ArchiveManager::loadImage throws.
    am::Image loadImage(const std::string& name, bool writable);

    // A picture from `length` bytes in memory, which remain the caller's; the name's extension selects the
    // format. It is private and writable: bytes in memory need not be those of the file of that name. Throws
    // as above.
    am::Image loadImage(const std::string& name, const unsigned char* data, int length);

protected:
    DisplayGL* mDisplay; // not owned
    Mode mResourceMode;
};

} // namespace zentrak::display
