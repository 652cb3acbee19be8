#include "pan_panorama.h"

#include "am_archivemanager.h"
#include "dis_glcheck.h"
#include "pan_box.h"
#include "pan_button.h"
#include "pan_checkbox.h"
#include "pan_dropdown.h"
#include "pan_flow.h"
#include "pan_frame.h"
#include "pan_image.h"
#include "pan_label.h"
#include "pan_layoutstack.h"
#include "pan_menubar.h"
#include "pan_panel.h"
#include "pan_radiobutton.h"
#include "pan_scrollbars.h"
#include "pan_slider.h"
#include "pan_spline.h"
#include "pan_splineorg.h"
#include "pan_stat.h"
#include "pan_tabframe.h"
#include "pan_tabview.h"
#include "pan_textinput.h"
#include "pan_treeview.h"
#include "pan_window.h"
#include "ztk_system.h"

#include <climits>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

// Reads a document through the archives. Null if the file is missing; throws what the parser throws.
std::unique_ptr<xml::XmlParser> readDocument(display::DisplayGL* display, const std::string& name) {
    am::File file =
        display && display->mArchiveManager ? display->mArchiveManager->readFile(name) : am::File();
    if (file.isNull())
        return nullptr;
    auto document = std::make_unique<xml::XmlParser>();
    readNamed(name, [&] { document->parse(reinterpret_cast<const char*>(file->data), int(file->length)); });
    return document;
}

} // namespace

Panorama::Panorama(display::DisplayGL* owner) : Listener(owner) {
    srand(unsigned(time(nullptr)));
    mWorkspace.setDisplay(owner);
    onResize(0, 0);

    mFactory.addOnce<Button>();
    mFactory.addOnce<Checkbox>();
    mFactory.addOnce<Dropdown>();
    mFactory.addOnce<Flow>();
    mFactory.addOnce<Frame>();
    mFactory.addOnce<Image>();
    mFactory.addOnce<Label>();
    mFactory.addOnce<LayoutStack>();
    mFactory.addOnce<Menubar>();
    mFactory.addOnce<Panel>();
    mFactory.addOnce<RadioButton>();
    mFactory.addOnce<Scrollbars>();
    mFactory.addOnce<Slider>();
    mFactory.addOnce<Spline>();
    mFactory.addOnce<SplineOrg>();
    mFactory.addOnce<Stat>();
    mFactory.addOnce<TabFrame>();
    mFactory.addOnce<TabView>();
    mFactory.addOnce<TextInput>();
    mFactory.addOnce<TreeView>();
    mFactory.addOnce<Window>();
    mFactory.addOnce<Workspace>();
}

Panorama::~Panorama() = default;

void Panorama::load(std::string filename) {
    display::DisplayGL* owner = mWorkspace.getDisplay();
    const std::unique_ptr<xml::XmlParser> layout = readDocument(owner, filename);
    if (!layout)
        throw Exception("Could not find the file '%s'.", filename.c_str());
    if (layout->getName() != "panorama")
        return;
    xml::IteratorConst workspace = std::as_const(*layout).createIterator("workspace");
    while (++workspace) {
        mWorkspace.setDisplay(owner);
        const std::string& styleName = workspace->getValue("style");
        if (!styleName.empty()) {
            std::unique_ptr<xml::XmlParser> style = readDocument(owner, styleName);
            if (style && style->getName() != "panorama")
                return;
            if (style) {
                mStyleDocument = style.release();
                mWorkspace.loadStyle(mStyleDocument);
            } else {
                ZTK_LOG("warning", "app", "The style file '%s' of the layout '%s' is missing",
                        styleName.c_str(), filename.c_str());
            }
        }
        mWorkspace.load(workspace);
        onResize(1, 1);
    }
}

void Panorama::addControl(Control* control) {
    mWorkspace.addControl(control, -1);
}

void Panorama::setScale(float scale) {
    mScale = std::clamp(scale, 0.25f, 4.0f);
    onResize(0, 0);
}

Vector2f Panorama::getSize() const {
    const display::WindowMode& mode = mWorkspace.mDisplay->mWindowMode;
    return Vector2f(std::floor(float(mode.width) / mScale), std::floor(float(mode.height) / mScale));
}

int Panorama::send(Event& event, const display::Event& source, const char* type) {
    static_cast<display::Event&>(event) = source;
    event.type = type;
    event.mousePos = event.mousePos * (1 / mScale) + mViewOffset;
    event.mouseDelta = event.mouseDelta * (1 / mScale);
    if (mWorkspace.mDisplay)
        mWorkspace.mDisplay->setDirty(true);
    return dispatch(event);
}

int Panorama::dispatch(Event& event) {
    return mWorkspace.handleEvent(event);
}

int Panorama::onMouseDown(const display::MouseButtonEvent& source) {
    Event event;
    event.button = source.button;
    event.doubleClick = source.doubleClick;
    return send(event, source, "mousedown");
}

int Panorama::onMouseUp(const display::MouseButtonEvent& source) {
    if (source.button == display::MOUSE_RIGHT)
        mDragging = false;
    Event event;
    event.button = source.button;
    return send(event, source, "mouseup");
}

int Panorama::onMouseMove(const display::MouseMoveEvent& source) {
    static int lastX = INT_MIN, lastY = INT_MIN;
    const int x = int(source.mousePos.x), y = int(source.mousePos.y);
    if (x == lastX && y == lastY)
        return WHATEVER;
    lastX = x;
    lastY = y;
    if (mDragging)
        mViewOffset += source.mouseDelta;
    Event event;
    event.mouseDelta = source.mouseDelta;
    send(event, source, "mousemove");
    return WHATEVER;
}

int Panorama::onMouseWheel(const display::MouseMoveEvent& source) {
    Event event;
    event.wheelDelta = source.mouseDeltaWheel;
    return send(event, source, "mousewheel");
}

int Panorama::onKeyDown(const display::KeyEvent& source) {
    Event event;
    event.key = source.key;
    return send(event, source, "keydown");
}

int Panorama::onKeyUp(const display::KeyEvent& source) {
    Event event;
    event.key = source.key;
    return send(event, source, "keyup");
}

int Panorama::onCharDown(const display::CharEvent& source) {
    Event event;
    event.character = source.key;
    return send(event, source, "keychardown");
}

int Panorama::onCharUp(const display::CharEvent& source) {
    Event event;
    event.character = source.key;
    return send(event, source, "keycharup");
}

void Panorama::onResize(int, int) {
    if (!mWorkspace.mDisplay)
        return;
    const Vector2f size = getSize();
    mWorkspace.setArea(Box2(0, 0, size.x, size.y));
    mWorkspace.setMaximized(mWorkspace.getMaximized());
}

// A window that is no whole number of the interface's pixels keeps a rest at the right and below.
void Panorama::beginDraw() {
    const Vector2f size = getSize();
    mWorkspace.mRender.setupDraw(size, mViewOffset, 0);
    if (mScale != 1) {
        const int height = mWorkspace.mDisplay->mWindowMode.height, used = int(size.y * mScale);
        GL_CALL(glViewport(0, height - used, int(size.x * mScale), used));
    }
    GL_CALL(glEnable(GL_BLEND));
}

void Panorama::endDraw() {
    mWorkspace.mRender.flush();
    const display::WindowMode& mode = mWorkspace.mDisplay->mWindowMode;
    if (mScale != 1)
        GL_CALL(glViewport(0, 0, mode.width, mode.height));
}

void Panorama::onDraw() {
    if (!mWorkspace.mDisplay)
        return;
    beginDraw();
    for (const Ground& ground : mGround) {
        mWorkspace.mRender.setColor(ground.color, ground.color);
        mWorkspace.mRender.drawBox(shifted(ground.box, mViewOffset), 0);
    }
    mWorkspace.draw();
    endDraw();
}

} // namespace zentrak::panorama
