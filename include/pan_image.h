// A picture.
#pragma once

#include "dis_texture.h"
#include "pan_control.h"

#include <memory>
#include <string>

namespace zentrak::panorama {

// As large as its area allows, centred and in its own proportions. Where the file is missing or can't be
// read, which is logged, a crossed-out frame is drawn instead.
class Image : public Control {
public:
    Image();
    ~Image() override;

    Control* clone() override; // a plain new one without a picture, owned by the caller

    void load(xml::IteratorConst& it) override; // "filename"
    void draw() override;

    // Reads the file, through the archives of the display. Returns whether there is a picture afterwards.
    bool setFilename(const std::string& filename);

    const std::string& getFilename() const { return mFilename; }
    bool hasPicture() const { return mTexture != nullptr; }

private:
    mathbase::Box2 getPlace() const; // of the picture, in window coordinates

    std::string mFilename;
    std::unique_ptr<display::Texture> mTexture; // null without a picture
};

} // namespace zentrak::panorama
