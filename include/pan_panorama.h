// A tree of controls in the window: it receives the display's events and draws once a frame.
#pragma once

#include "dis_listener.h"
#include "pan_controlfactory.h"
#include "pan_workspace.h"

#include <string>

namespace zentrak::panorama {

class Panorama : public display::Listener {
public:
    Workspace mWorkspace;                     // the root
    xml::XmlParser* mStyleDocument = nullptr; // the workspace's, which owns it
    ControlFactory mFactory;
    bool mDragging = false;         // moves pan the view; nothing sets it
    mathbase::Vector2f mViewOffset; // pixels, added to the mouse and taken off the picture

    // Boxes drawn below all controls, in pixels of the window; the view offset does not move them.
    struct Ground {
        mathbase::Box2 box;
        mathbase::Vector4f color;
    };
    std::vector<Ground> mGround;

    // Joins the display, whose window has to be open: the font is loaded here. Registers all types of
    // controls.
    explicit Panorama(display::DisplayGL* display);
    ~Panorama() override;

    // Pixels of the window in one of the interface, 0.25 to 4; 1 at first. All that controls know is in
    // pixels of the interface.
    void setScale(float scale);
    float getScale() const { return mScale; }
    mathbase::Vector2f getSize() const; // of the window, in whole pixels of the interface

    // Reads a layout file, and the style files that it names, through the display's archives; what was there
    // stays. Throws "Could not find the file '%s'.", and what the XML parser throws.
    void load(std::string filename);

    void addControl(Control* control); // to the workspace, which owns it from then on

    // They answer whether the event hit a control: BLOCK, or else WHATEVER. A move never blocks.
    int onMouseUp(const display::MouseButtonEvent& event) override;
    int onMouseDown(const display::MouseButtonEvent& event) override;
    int onMouseMove(const display::MouseMoveEvent& event) override;
    int onMouseWheel(const display::MouseMoveEvent& event) override;
    int onKeyDown(const display::KeyEvent& event) override;
    int onKeyUp(const display::KeyEvent& event) override;
    int onCharDown(const display::CharEvent& event) override;
    int onCharUp(const display::CharEvent& event) override;
    void onResize(int oldWidth, int oldHeight) override;
    void onDraw() override;

protected:
    // Every event goes through here, with the mouse in pixels of the interface: to the workspace. 1 for a
    // hit.
    virtual int dispatch(Event& event);
    void beginDraw(); // what is drawn with the workspace's Render is in pixels of the interface until endDraw
    void endDraw();

private:
    float mScale = 1;

    int send(Event& event, const display::Event& source, const char* type);
};

} // namespace zentrak::panorama
