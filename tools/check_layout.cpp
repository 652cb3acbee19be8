// Reports what the loader of layout and style files ignores silently: unknown types, attributes and words,
// bad numbers and colours, classes without a style, and missing controls that the timeline editor looks up by
// name.
//   zentrak-check-layout [--editor] FILE...
// Prints one line per finding. Exits with 1 if there are any, 2 if a file can't be read.
//
// A file with a "workspace" is a layout: its style and pictures are looked for in its own folder, and the
// style is checked along with it. Any other file is a style. With --editor a layout must hold what the editor
// needs.

#include "check/document.h"
#include "command/command.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::check;

namespace {

using Words = std::vector<const char*>;

bool contains(const Words& words, const std::string& word) {
    return std::any_of(words.begin(), words.end(), [&](const char* w) { return word == w; });
}

// An element that may appear below a control, with its own attributes.
struct Part {
    const char* name;
    Words attributes;
    bool nests;   // may hold parts of its own kind
    bool control; // also read as a control, with the common attributes and children
};

// A type of control: what it reads in addition to the common attributes.
struct Type {
    const char* name;
    Words attributes;
    std::vector<Part> parts;
};

const Words commonAttributes = {"id", "hidden", "visible", "class"};
const Words commonChildren = {"child", "area", "color"};

const Part boxOption = {"option", {"name", "checked"}, false, false};
const Part key = {"item", {"x", "y"}, false, false};

// In the order in which the toolkit registers them.
const Type types[] = {
    {"button", {"caption", "toggled"}, {}},
    {"checkbox", {"name"}, {boxOption}},
    {"dropdown", {}, {{"option", {"id", "name", "default"}, false, false}}},
    {"flow", {"direction"}, {}},
    {"frame", {}, {}},
    {"image", {"filename"}, {}},
    {"label", {"text", "align", "valign"}, {}},
    {"layoutstack", {"direction"}, {}},
    {"menubar", {"caption"}, {{"item", {"caption"}, true, true}}},
    {"panel", {"caption"}, {}},
    {"radiobutton", {"name"}, {boxOption}},
    {"scrollbar", {"direction"}, {}},
    {"slider", {"direction", "min", "max", "size", "percent"}, {}},
    {"spline", {"type"}, {key}},
    {"splineorg", {"type"}, {key}},
    {"stat", {}, {}},
    {"tabframe", {"caption"}, {}},
    {"tabview", {}, {}},
    {"textinput", {"text", "type", "inactive"}, {}},
    {"treeview", {"size", "text"}, {{"item", {"id", "text", "size"}, true, false}}},
    {"window", {"caption"}, {}},
    {"workspace", {"style"}, {}},
    {"timeruler", {}, {}}, // the editor's own
};

const Type* typeOf(const std::string& name) {
    for (const Type& type : types)
        if (name == type.name)
            return &type;
    return nullptr;
}

// The words that an attribute accepts; attributes not listed here accept anything.
struct Choice {
    const char* type; // null for any type
    const char* attribute;
    Words words;
    const char* otherwise; // what any other word means
};

const Choice choices[] = {
    {"scrollbar", "direction", {"horisontal", "vertical"}, "both bars are kept"},
    {nullptr, "direction", {"horisontal", "vertical"}, "it is taken for 'vertical'"},
    {"label", "align", {"left", "center", "right"}, "it is taken for 'left'"},
    {"label", "valign", {"top", "middle", "bottom"}, "it is taken for 'top'"},
    {"textinput", "type", {"numeric", "password"}, "any text is taken"},
    {"spline", "type", {"square", "linear", "smooth"}, "it is ignored"},
    {"splineorg", "type", {"square", "linear", "smooth"}, "it is ignored"},
    {nullptr, "hidden", {"true", "false"}, "it is ignored"},
    {nullptr, "visible", {"true", "false"}, "it is ignored"},
    {nullptr, "toggled", {"true", "false"}, "it is ignored"},
    {nullptr, "inactive", {"true", "false"}, "it is ignored"},
    {nullptr, "checked", {"true", "false"}, "it is ignored"},
    {nullptr, "default", {"true", "false"}, "it is ignored"},
    {nullptr, "maximized", {"true", "false"}, "it is ignored"},
};

const Words numbers = {"x", "y", "width", "height", "w", "h", "size", "percent", "min", "max"};

// The controls that the editor looks up, and their types; null for any.
struct Needed {
    const char* name;
    const char* type;
    const char* use;
};

const Needed needed[] = {
    {"main", nullptr, "the container that Tab shows and hides"},
    {"effects", nullptr, "the container of the rows"},
    {"timeslider", "slider", "what scrolls the timeline"},
    {"fps_stat", "stat", "the graph of the frame rate"},
    {"fps", "label", "the frame rate in figures"},
};

// Checks the elements of one document.
class Checker : public Findings {
public:
    using Findings::Findings;

    // `type` is that of a control or style; null for a style with a name of its own, which may have the
    // attributes of all types. `inFlow`: the control is a child of a flow.
    void control(const xml::XmlNode& node, const Type* type, bool inFlow) {
        const std::string name = "'" + node.getName() + "'";
        if (mDepth == deepest) {
            say(node, name + " stands too deep to be looked into");
            return;
        }
        ++mDepth;
        for (const xml::XmlTag::Argument& argument : node.arguments)
            if (!contains(commonAttributes, argument.name) && !hasAttribute(type, argument.name))
                say(node, "unknown attribute '" + argument.name + "' of " + name);
            else
                value(node, type ? type->name : "", argument);
        if (!inFlow && node.getValue("hidden") == "true" && node.getValue("visible") == "true")
            say(node, name + " is both 'hidden' and 'visible': it is hidden");
        eachElement(node, [&](const xml::XmlNode& child) {
            if (child.getName() == "area")
                area(child, inFlow);
            else if (child.getName() == "color")
                color(child);
            else if (child.getName() == "child")
                children(child, type && std::string(type->name) == "flow");
            else if (const Part* found = partOf(type, child.getName()))
                part(child, *found, type ? type->name : "");
            else if (typeOf(child.getName()))
                say(child,
                    "a '" + child.getName() + "' that stands in " + name + " without a 'child' round it");
            else
                say(child, "unknown element '" + child.getName() + "' in " + name);
        });
        if (type && std::string(type->name) == "slider")
            range(node);
        --mDepth;
    }

    // Called for every control in a 'child', before its contents.
    virtual void found(const xml::XmlNode&) {}

protected:
    ~Checker() = default;

private:
    static bool hasAttribute(const Type* type, const std::string& name) {
        return std::any_of(std::begin(types), std::end(types), [&](const Type& each) {
            return (!type || type == &each) && contains(each.attributes, name);
        });
    }

    static const Part* partOf(const Type* type, const std::string& name) {
        for (const Type& each : types)
            if (!type || type == &each)
                for (const Part& part : each.parts)
                    if (name == part.name)
                        return &part;
        return nullptr;
    }

    void children(const xml::XmlNode& node, bool inFlow) {
        for (const xml::XmlTag::Argument& argument : node.arguments)
            say(node, "unknown attribute '" + argument.name + "' of 'child'");
        eachElement(node, [&](const xml::XmlNode& child) {
            const Type* type = typeOf(child.getName());
            if (!type) {
                say(child, "unknown type '" + child.getName() + "': it is left out");
                return;
            }
            found(child);
            control(child, type, inFlow);
        });
    }

    void part(const xml::XmlNode& node, const Part& part, const char* type) {
        if (mDepth == deepest) {
            say(node, "'" + node.getName() + "' stands too deep to be looked into");
            return;
        }
        ++mDepth;
        for (const xml::XmlTag::Argument& argument : node.arguments)
            if (!contains(part.attributes, argument.name) &&
                !(part.control && contains(commonAttributes, argument.name)))
                say(node, "unknown attribute '" + argument.name + "' of '" + node.getName() + "'");
            else
                value(node, type, argument);
        eachElement(node, [&](const xml::XmlNode& child) {
            if (part.nests && child.getName() == part.name)
                this->part(child, part, type);
            else if (part.control && child.getName() == "color")
                color(child);
            else if (!(part.control && contains(commonChildren, child.getName())))
                say(child, "unknown element '" + child.getName() + "' in '" + node.getName() + "'");
        });
        --mDepth;
    }

    void value(const xml::XmlNode& node, const std::string& type, const xml::XmlTag::Argument& argument) {
        const std::string& text = argument.value;
        const std::string name = "'" + argument.name + "' of '" + node.getName() + "'";
        if (text.empty()) {
            if (argument.name != "text" && argument.name != "caption")
                say(node, name + " is empty: it is ignored");
            return;
        }
        for (const Choice& choice : choices) {
            if (argument.name != choice.attribute || (choice.type && type != choice.type))
                continue;
            if (contains(choice.words, text))
                return;
            const bool misspelt = argument.name == "direction" && text == "horizontal";
            say(node, name +
                          (misspelt ? " is 'horizontal', and the word is 'horisontal': "
                                    : " of '" + text + "' is no word for it: ") +
                          choice.otherwise);
            return;
        }
        if (contains(numbers, argument.name))
            number(node, name, text);
    }

    static double numberOf(const xml::XmlNode& node, const char* name) {
        return atof(node.getValue(name).c_str());
    }

    void range(const xml::XmlNode& node) {
        if (!node.getValue("min").empty() && !node.getValue("max").empty() &&
            numberOf(node, "min") == numberOf(node, "max"))
            say(node, "'min' and 'max' of 'slider' are the same: it has one value");
        if (!node.getValue("percent").empty() &&
            !(numberOf(node, "percent") >= 0 && numberOf(node, "percent") <= 1))
            say(node, "'percent' of 'slider' is not from 0 to 1");
    }

    void area(const xml::XmlNode& node, bool inFlow) {
        Words known = {"x", "y", "width", "height", "w", "h", "maximized"};
        for (const xml::XmlTag::Argument& argument : node.arguments) {
            if (argument.name == "size" || argument.name == "percent")
                if (!inFlow)
                    say(node, "'" + argument.name + "' of 'area' has a meaning only in a 'flow'");
                else
                    value(node, "", argument);
            else if (!contains(known, argument.name))
                say(node, "unknown attribute '" + argument.name + "' of 'area'");
            else
                value(node, "", argument);
        }
        for (const auto& side : {std::pair("width", "w"), std::pair("height", "h")}) {
            const bool both = !node.getValue(side.first).empty() && !node.getValue(side.second).empty();
            if (both)
                say(node, std::string("'") + side.first + "' and '" + side.second + "' of 'area' add up");
            if (!inFlow && node.getValue("maximized") != "true" &&
                !(numberOf(node, side.first) + numberOf(node, side.second) > 0))
                say(node, std::string("an 'area' without a '") + side.first + "' is not seen");
        }
        eachElement(node, [&](const xml::XmlNode& child) {
            say(child, "unknown element '" + child.getName() + "' in 'area'");
        });
    }

    void color(const xml::XmlNode& node) {
        for (const xml::XmlTag::Argument& argument : node.arguments)
            if (!contains({"name", "first", "second"}, argument.name))
                say(node, "unknown attribute '" + argument.name + "' of 'color'");
        const std::string& name = node.getValue("name");
        const size_t dot = name.find('.');
        if (dot == std::string::npos || !contains({"back", "caption", "text"}, name.substr(0, dot)) ||
            !contains({"border", "color", "highlight", "pushed", "inactive"}, name.substr(dot + 1)))
            say(node, "'" + name + "' is no name of a 'color'");
        for (const char* which : {"first", "second"}) {
            const std::string& text = node.getValue(which);
            if ((text.size() != 6 && text.size() != 8) ||
                text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
                say(node, std::string("'") + which +
                              "' of 'color' is no colour of six or eight hexadecimal digits: '" + text + "'");
        }
    }

    static constexpr int deepest = 1000; // nested elements

    int mDepth = 0;
};

// A style file as seen by the layout that uses it.
class StyleChecker final : public Checker {
public:
    using Checker::Checker;

    // `used` holds the classes of the layout; null if no layout is known.
    void document(const std::set<std::string>* used) {
        const xml::XmlNode& root = mDocument.root();
        if (root.getName() != "panorama") {
            say(root, "the root is '" + root.getName() + "' and not 'panorama': nothing is loaded");
            return;
        }
        eachElement(root, [&](const xml::XmlNode& style) {
            if (!mNames.insert(style.getName()).second)
                say(style, "a second style '" + style.getName() + "'");
            const Type* type = typeOf(style.getName());
            if (!type && used && !used->count(style.getName()))
                say(style, "'" + style.getName() + "' is neither a type nor a class that is used");
            control(style, type, false);
        });
    }

    bool has(const std::string& name) const { return mNames.count(name) != 0; }

private:
    std::set<std::string> mNames;
};

class LayoutChecker final : public Checker {
public:
    using Checker::Checker;

    // False if the style can't be read.
    bool document(bool editor) {
        const xml::XmlNode& root = mDocument.root();
        bool readable = true;
        eachElement(root, [&](const xml::XmlNode& child) {
            if (child.getName() != "workspace") {
                say(child, "unknown element '" + child.getName() + "' in 'panorama'");
                return;
            }
            mUses.clear();
            mClasses.clear();
            control(child, typeOf("workspace"), false);
            readable &= style(child);
        });
        if (editor)
            names();
        return readable;
    }

    int styleFindings() const { return mStyleFindings; }

private:
    void found(const xml::XmlNode& node) override {
        const std::string& id = node.getValue("id");
        if (!id.empty() && !mControls.emplace(id, &node).second)
            say(node, "a second control named '" + id + "' can't be found by it");
        const std::string& group = node.getValue("class");
        if (!group.empty()) {
            mUses.push_back(&node);
            mClasses.insert(group);
        }
        const std::string& picture = node.getValue("filename");
        if (node.getName() == "image" && !picture.empty() && !std::ifstream(mDocument.folder() + picture))
            say(node, "the picture '" + picture + "' is not there");
    }

    // Checks the style of a workspace, and that it has a style for each class.
    bool style(const xml::XmlNode& workspace) {
        const std::string& name = workspace.getValue("style");
        if (name.empty()) {
            say(workspace, "the workspace has no 'style'");
            return true;
        }
        Document document;
        if (!document.read(mDocument.folder() + name)) {
            say(workspace, "the style '" + name + "' can't be read");
            return false;
        }
        StyleChecker checker(document);
        checker.document(&mClasses);
        mStyleFindings += checker.count();
        for (const xml::XmlNode* use : mUses)
            if (!checker.has(use->getValue("class")))
                say(*use, "no style for the class '" + use->getValue("class") + "'");
        return true;
    }

    void names() {
        for (const Needed& each : needed) {
            const auto control = mControls.find(each.name);
            const std::string name = std::string("'") + each.name + "'";
            if (control == mControls.end())
                say(mDocument.root(), "no control " + name + ", " + each.use);
            else if (each.type && control->second->getName() != each.type)
                say(*control->second, name + ", " + each.use + ", is no '" + each.type + "'");
        }
    }

    std::map<std::string, const xml::XmlNode*> mControls; // by name, the first of each
    std::vector<const xml::XmlNode*> mUses;               // controls with a class
    std::set<std::string> mClasses;
    int mStyleFindings = 0;
};

// Returns 0 without findings, 1 with some, 2 if the file can't be read.
int checkFile(const char* path, bool editor) {
    Document document;
    if (!document.read(path))
        return 2;
    const std::vector<xml::XmlNode*>& children = document.root().children;
    const bool layout = document.root().getName() == "panorama" &&
                        std::any_of(children.begin(), children.end(), [](const xml::XmlNode* child) {
                            return isElement(*child) && child->getName() == "workspace" &&
                                   (!child->getValue("style").empty() || ++child->createIterator("child"));
                        });
    if (layout || editor) {
        LayoutChecker checker(document);
        if (document.root().getName() != "panorama") {
            checker.say(document.root(), "the root is '" + document.root().getName() +
                                             "' and not 'panorama': nothing is loaded");
            return 1;
        }
        const bool readable = checker.document(editor);
        return readable ? checker.count() + checker.styleFindings() ? 1 : 0 : 2;
    }
    StyleChecker checker(document);
    checker.document(nullptr);
    return checker.count() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool editor = argc > 1 && !strcmp(argv[1], "--editor");
    const int first = editor ? 2 : 1;
    if (argc <= first || command::hasOption(argc, argv, first)) {
        fprintf(stderr, "usage: zentrak-check-layout [--editor] FILE...\n");
        return 2;
    }
    int result = 0;
    for (int i = first; i < argc; ++i)
        result = std::max(result, checkFile(argv[i], editor));
    return result;
}
