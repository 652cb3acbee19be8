// Reports what the loader of particle files ignores silently: missing and unknown elements, and bad numbers
// and colours.
//   zentrak-check-particles FILE...
// Prints one line per finding. Exits with 1 if there are any, 2 if a file can't be read.

#include "check/document.h"
#include "command/command.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <set>
#include <string>

using namespace zentrak;
using namespace zentrak::check;

namespace {

const char* const ranges[] = {"speed",     "angle",     "color",    "energy", "energydecay", "size",
                              "sizedecay", "intensity", "rotation", "noise",  "mass",        "timeoffset"};

class ParticleChecker : public Findings {
public:
    using Findings::Findings;

    void document() {
        const xml::XmlNode& root = mDocument.root();
        if (root.getName() != "spark") {
            say(root, "the root is '" + root.getName() + "' and not 'spark': nothing is loaded");
            return;
        }
        std::set<std::string> names;
        bool any = false;
        eachElement(root, [&](const xml::XmlNode& child) {
            if (child.getName() != "instance") {
                say(child, "unknown tag '" + child.getName() + "' is ignored");
                return;
            }
            any = true;
            if (!names.insert(child.getValue("name")).second)
                say(child, "a second instance '" + child.getValue("name") + "' can't be found by its name");
            instance(child);
        });
        if (!any)
            say(root, "no instance");
    }

private:
    void arguments(const xml::XmlNode& node, std::initializer_list<const char*> known) {
        for (const xml::XmlTag::Argument& argument : node.arguments)
            if (std::find(known.begin(), known.end(), argument.name) == known.end())
                say(node, "unknown argument '" + argument.name + "' of '" + node.getName() + "' is ignored");
    }

    void instance(const xml::XmlNode& node) {
        arguments(node, {"name"});
        if (node.getValue("name").empty())
            say(node, "the instance has no name");
        bool any = false;
        eachElement(node, [&](const xml::XmlNode& child) {
            if (child.getName() != "emitter") {
                say(child, "unknown tag '" + child.getName() + "' is ignored");
                return;
            }
            any = true;
            emitter(child);
        });
        if (!any)
            say(node, "the instance has no emitter: it gives off nothing");
    }

    // Parses a number as the loader does, and reports what that ignores.
    long integer(const xml::XmlNode& node, const char* name, const char* ifMissing) {
        const std::string& text = node.getValue(name);
        if (text.empty()) {
            say(node, std::string("no '") + name + "': " + ifMissing);
            return 0;
        }
        char* end = nullptr;
        const long value = strtol(text.c_str(), &end, 0);
        if (*end)
            say(node, std::string("'") + name + "' of '" + text + "' is read as " + std::to_string(value));
        return value;
    }

    void emitter(const xml::XmlNode& node) {
        arguments(node, {"name", "texture", "rate", "num"});
        const long num = integer(node, "num", "it is 0, and the emitter emits nothing");
        if (num == 0 && !node.getValue("num").empty())
            say(node, "'num' is 0: the emitter emits nothing");
        const long rate = integer(node, "rate", "it is 0, and the emitter emits nothing");
        if (rate <= 0 && !node.getValue("rate").empty())
            say(node, "'rate' is not above 0: the emitter emits nothing");
        if (rate > 1000000)
            say(node, "'rate' is above 1000000: the engine leaves particles out");
        const long texture = integer(node, "texture", "it is 0");
        if (texture < 0 || texture > 7)
            say(node, "'texture' is not from 0 to 7");

        std::set<std::string> seen;
        eachElement(node, [&](const xml::XmlNode& child) {
            const std::string& name = child.getName();
            if (std::find(std::begin(ranges), std::end(ranges), name) == std::end(ranges))
                say(child, "unknown tag '" + name + "' is ignored");
            else if (!seen.insert(name).second)
                say(child, "a second '" + name + "' is ignored");
            else
                range(child);
        });
    }

    void range(const xml::XmlNode& node) {
        arguments(node, {"v1", "v2"});
        for (const char* bound : {"v1", "v2"}) {
            const std::string& text = node.getValue(bound);
            const std::string name = std::string("'") + bound + "' of '" + node.getName() + "'";
            if (text.empty())
                say(node, "no " + name + ": it is 0");
            else if (node.getName() == "color")
                color(node, name, text);
            else
                value(node, name, number(node, name, text));
        }
    }

    void color(const xml::XmlNode& node, const std::string& name, const std::string& text) {
        if (text.size() != 6 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            say(node, name + " is no colour of six hexadecimal digits: '" + text + "'");
    }

    void value(const xml::XmlNode& node, const std::string& name, double value) {
        const std::string& kind = node.getName();
        if (kind == "size" && value < 0.8)
            say(node, name + " is below 0.8: such a particle dies in its first step");
        else if (kind == "energy" && value < 0.1)
            say(node, name + " is below 0.1: such a particle dies in its first step");
        else if (kind == "noise" && (value < 0 || value > 1))
            say(node, name + " is not from 0 to 1");
    }
};

// Returns 0 without findings, 1 with some, 2 if the file can't be read.
int checkFile(const char* path) {
    Document document;
    if (!document.read(path))
        return 2;
    ParticleChecker checker(document);
    checker.document();
    return checker.count() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || command::hasOption(argc, argv, 1)) {
        fprintf(stderr, "usage: zentrak-check-particles FILE...\n");
        return 2;
    }
    int result = 0;
    for (int i = 1; i < argc; ++i)
        result = std::max(result, checkFile(argv[i]));
    return result;
}
