// Loading a control, and all controls in it, from a layout file.
#include "pan_control.h"
#include "pan_controlfactory.h"
#include "pan_flow.h"
#include "pan_number.h"
#include "ztk_system.h"

#include <algorithm>
#include <memory>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector4f;

namespace {

constexpr size_t MAX_STYLED = 20000; // controls made by the styles of one layout

// The style elements being loaded, and how many controls they have made: a style that contains a control of
// its own kind would never end, and a chain of styles that each contain two of the next would grow
// exponentially.
std::vector<const xml::XmlTag*> loadingStyles;
size_t styledControls = 0;
int loadDepth = 0;

struct LoadScope {
    LoadScope() {
        if (loadDepth++ == 0)
            styledControls = 0;
    }
    ~LoadScope() { --loadDepth; }
};

void loadStyle(Control& control, xml::IteratorConst& style) {
    const xml::XmlTag* tag = style.operator->();
    if (std::find(loadingStyles.begin(), loadingStyles.end(), tag) != loadingStyles.end()) {
        ZTK_LOG("warning", "app", "The style '%.100s' holds a control of its own style",
                tag->getName().c_str());
        return;
    }
    struct Scope {
        explicit Scope(const xml::XmlTag* tag) { loadingStyles.push_back(tag); }
        ~Scope() { loadingStyles.pop_back(); }
    } scope(tag);
    control.load(style);
}

ColorSet* paletteOf(Control& control, const std::string& name) {
    return name == "back"      ? &control.mBack
           : name == "caption" ? &control.mCaption
           : name == "text"    ? &control.mText
                               : nullptr;
}

ColorPair* pairOf(ColorSet& set, const std::string& name) {
    return name == "border"      ? &set.border
           : name == "color"     ? &set.color
           : name == "highlight" ? &set.highlight
           : name == "pushed"    ? &set.pushed
           : name == "inactive"  ? &set.inactive
                                 : nullptr;
}

void loadArea(Control& control, xml::IteratorConst& it) {
    float x = 0, y = 0, width = 0, height = 0, w = 0, h = 0;
    readNumber(it->getValue("x"), x);
    readNumber(it->getValue("y"), y);
    readNumber(it->getValue("width"), width);
    readNumber(it->getValue("height"), height);
    readNumber(it->getValue("w"), w);
    readNumber(it->getValue("h"), h);
    const Box2 area(x, y, width + x + w, height + y + h);

    control.setMaximized(false);
    if (it->getValue("maximized") == "true") {
        control.setMaximized(true);
        control.mSavedArea = area; // where it goes back to
    }
    control.setArea(area);
}

void loadColor(Control& control, xml::IteratorConst& it) {
    const std::string& name = it->getValue("name");
    const size_t dot = name.find('.');
    if (dot == std::string::npos)
        return;
    ColorSet* palette = paletteOf(control, name.substr(0, dot));
    ColorPair* pair = palette ? pairOf(*palette, name.substr(dot + 1)) : nullptr;
    if (!pair)
        return;
    pair->first = control.hex2vec(it->getValue("first"));
    pair->second = control.hex2vec(it->getValue("second"));
}

// How much of a flow a child takes.
void loadFlowSize(Flow& flow, Control* child, xml::IteratorConst& it) {
    xml::IteratorConst area = it.createIterator("area");
    while (++area) {
        if (!area->getValue("size").empty())
            flow.setSize(child, float(toNumber(area->getValue("size"))));
        if (!area->getValue("percent").empty())
            flow.setPercent(child, float(toNumber(area->getValue("percent"))));
    }
}

void loadChild(Control& parent, xml::IteratorConst& it) {
    const std::string& type = it->getName();
    if (!loadingStyles.empty() && styledControls++ >= MAX_STYLED) {
        if (styledControls == MAX_STYLED + 1) // logged once
            ZTK_LOG("error", "app", "The styles hold more than %zu controls: '%.100s' and more are left out",
                    MAX_STYLED, type.c_str());
        return;
    }
    std::unique_ptr<Control> made(controlFactory.create(type));
    if (!made) {
        ZTK_LOG("log", "app", " -> Control type '%s' not found", type.c_str());
        return;
    }
    parent.addControl(made.get(), -1);
    if (made->mParent != &parent) // too deep
        return;
    Control* control = made.release();

    const std::string& styleClass = it->getValue("class");
    xml::IteratorConst style = parent.getStyle(styleClass.empty() ? type : styleClass);
    if (++style)
        loadStyle(*control, style);
    control->load(it);
    if (Flow* flow = dynamic_cast<Flow*>(&parent))
        loadFlowSize(*flow, control, it);
}

void loadChildren(Control& control, xml::IteratorConst& it) {
    xml::IteratorConst list = it.createIterator("child");
    while (++list) {
        xml::IteratorConst child = list.createIterator("");
        while (++child)
            if (child->getType() == xml::XmlTag::Normal)
                loadChild(control, child);
    }
}

} // namespace

// A character that isn't a digit is a 0, including the "#" that the display's colours may begin with.
Vector4f Control::hex2vec(const std::string& text) {
    if (text.empty() || text[0] != '#')
        return display::DisplayGL::hex2vec(text);
    return display::DisplayGL::hex2vec("0" + text.substr(1));
}

void Control::load(xml::IteratorConst& it) {
    LoadScope scope;
    mName = it->getValue("id");
    mVisible = it->getValue("hidden") != "true" && it->getValue("visible") != "false";
    loadChildren(*this, it);

    setMaximized(true);
    xml::IteratorConst area = it.createIterator("area");
    while (++area)
        loadArea(*this, area);
    xml::IteratorConst color = it.createIterator("color");
    while (++color)
        loadColor(*this, color);
}

} // namespace zentrak::panorama
