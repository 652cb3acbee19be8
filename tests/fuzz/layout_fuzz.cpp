// Reads any bytes as a layout file that is its own style file, then sends mouse and key events to the result.
// Sliders must stay within their ranges, and selections must exist.

#include "dis_key.h"
#include "fuzz.h"
#include "mb_random.h"
#include "pan_button.h"
#include "pan_checkbox.h"
#include "pan_controlfactory.h"
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
#include "pan_workspace.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

using namespace zentrak;
using fuzz::check;
using namespace zentrak::panorama;

namespace {

template <class... Types>
bool addTypes() {
    (controlFactory.addControlType(new Types), ...);
    return true;
}

void examine(Control& control) {
    if (auto* slider = dynamic_cast<Slider*>(&control)) {
        const float position = slider->mPosition.get(true);
        check(position >= 0 && position <= 1);
    } else if (auto* tree = dynamic_cast<TreeView*>(&control)) {
        check(tree->getSelected() == -1 || tree->getItem(tree->getSelected()));
        check(tree->getRowCount() <= tree->getItemCount());
    } else if (auto* dropdown = dynamic_cast<Dropdown*>(&control)) {
        check(dropdown->getSelected() < dropdown->getOptionCount());
    } else if (auto* input = dynamic_cast<TextInput*>(&control)) {
        check(input->getCaret() <= input->getText().size() && input->getAnchor() <= input->getText().size());
    }
    for (Control* child : control.mControls)
        examine(*child);
}

// A few hundred events, determined by the bytes.
void play(Workspace& root, const uint8_t* data, size_t size) {
    static const char* const types[] = {"mousemove",  "mousedown", "mousemove",   "mouseup",
                                        "mousewheel", "keydown",   "keychardown", "keyup"};
    static const int keys[] = {
        display::KEY_UP,    display::KEY_DOWN,  display::KEY_LEFT,      display::KEY_RIGHT,
        display::KEY_HOME,  display::KEY_END,   display::KEY_BACKSPACE, display::KEY_DEL,
        display::KEY_ENTER, display::KEY_SPACE, display::KEY_ESC,       display::KEY_INSERT,
        display::KEY_a,     display::KEY_c,     display::KEY_v,         display::KEY_x};
    uint32_t state = 2166136261u;
    for (size_t i = 0; i < size; ++i)
        state = (state ^ data[i]) * 16777619u;
    mathbase::Random random(state);
    const auto next = [&random](uint32_t below) { return (random.draw() >> 8) % below; };
    mathbase::Vector2f place;
    for (int i = 0; i < 300; ++i) {
        Event event;
        event.type = types[next(8)];
        const mathbase::Vector2f before = place;
        if (event.type == "mousemove")
            place = mathbase::Vector2f(float(next(420)) - 10.0f, float(next(320)) - 10.0f);
        event.mousePos = place;
        event.mouseDelta = before - place;
        event.button = next(4) ? 0 : 1;
        event.doubleClick = next(5) == 0;
        event.wheelDelta = float(next(9)) - 4.0f;
        event.control = next(3) ? 0 : int(next(1024));
        event.key = keys[next(16)];
        event.character = int(next(300));
        root.handleEvent(event);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool known = addTypes<Button, Checkbox, Dropdown, Flow, Frame, Image, Label, LayoutStack,
                                       Menubar, Panel, RadioButton, Scrollbars, Slider, Spline, SplineOrg,
                                       Stat, TabFrame, TabView, TextInput, TreeView, Window, Workspace>();
    check(known);

    auto document = std::make_unique<xml::XmlParser>();
    auto style = std::make_unique<xml::XmlParser>();
    try {
        const std::string text(reinterpret_cast<const char*>(data), size);
        document->parse(text);
        style->parse(text);
    } catch (const Exception&) {
        return 0;
    }
    Workspace root;
    root.setArea(mathbase::Box2(0, 0, 400, 300));
    root.loadStyle(style.release());
    xml::IteratorConst workspace = std::as_const(*document).createIterator("workspace");
    while (++workspace)
        root.load(workspace);
    root.setArea(mathbase::Box2(0, 0, 400, 300));
    examine(root);
    play(root, data, size);
    examine(root);
    return 0;
}
