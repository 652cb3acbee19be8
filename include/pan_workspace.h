// The root of a tree of controls: the window as they see it.
#pragma once

#include "pan_control.h"
#include "pan_render.h"
#include "xml_parser.h"

namespace zentrak::panorama {

class Workspace : public Control {
public:
    display::DisplayGL* mDisplay = nullptr; // not owned
    Render mRender;                         // the one of the whole tree
    Context* mContext = nullptr;            // the open menu, or null; not owned
    bool mContextFresh = true;              // it was opened by the click that is going on
    xml::XmlParser* mStyle = nullptr;       // the style document, or null; owned

    Workspace();
    ~Workspace() override;

    Control* clone() override; // without display and style; owned by the caller
    display::DisplayGL* getDisplay() override;
    Render* getRender() override;
    xml::IteratorConst getStyle(const std::string& name) override;
    void setContext(Context* context) override;
    void resetContext() override;
    mathbase::Box2 getWorldClipArea(bool child) override; // the limit of the tree's coordinates
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override;
    void draw() override; // an open menu over all else

    void setDisplay(display::DisplayGL* display); // and loads the font, the first time
    void loadStyle(xml::XmlParser* style);        // takes the document over; the old one goes

    Control* getCapture() const { return mCapture; } // who has the mouse (Control::captureMouse), or null

private:
    friend class Control;

    void setCapture(Control* control, int button);
    void endCapture();
    int handleCaptured(Event& event);
    bool isOverChild(const mathbase::Vector2f& position) const;

    Control* mCapture = nullptr;
    int mCaptureButton = 0;   // that has to be released
    bool mHoverStale = false; // the last move went to the capture alone
};

} // namespace zentrak::panorama
