// Says what the loader of particle files passes over without a word: what is missing, what it does not know,
// and what is no number or colour.
//   check_particles FILE...     one line a finding; gives 1 if there are any, 2 if a file can't be read

#include "xml_parser.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

using namespace zentrak;

namespace {

const char* const ranges[] = {"speed",     "angle",     "color",    "energy", "energydecay", "size",
                              "sizedecay", "intensity", "rotation", "noise",  "mass",        "timeoffset"};

class Checker {
public:
    explicit Checker(const std::string& file) : mFile(file) {}

    int findings() const { return mFindings; }

    void document(const xml::XmlNode& root) {
        if (root.getName() != "spark") {
            say("", "the root is '" + root.getName() + "' and not 'spark': nothing is loaded");
            return;
        }
        std::set<std::string> names;
        bool                  any = false;
        for (const xml::XmlNode* child : root.children) {
            if (!isElement(*child))
                continue;
            if (child->getName() != "instance") {
                say("", "unknown tag '" + child->getName() + "' is ignored");
                continue;
            }
            any = true;
            const std::string& name = child->getValue("name");
            if (!names.insert(name).second)
                say(where(name), "a second instance of this name can't be found by it");
            instance(*child);
        }
        if (!any)
            say("", "no instance");
    }

private:
    static bool isElement(const xml::XmlTag& tag) { return tag.getType() == xml::XmlTag::Normal; }
    static bool isAnyOf(const std::string& name, std::initializer_list<const char*> names) {
        return std::find(names.begin(), names.end(), name) != names.end();
    }
    static std::string where(const std::string& instance) { return "instance '" + instance + "'"; }

    void say(const std::string& place, const std::string& what) {
        ++mFindings;
        printf("%s: %s%s%s\n", mFile.c_str(), place.c_str(), place.empty() ? "" : ": ", what.c_str());
    }

    void arguments(const std::string& place, const xml::XmlTag& tag,
                   std::initializer_list<const char*> known) {
        for (const xml::XmlTag::Argument& argument : tag.arguments)
            if (!isAnyOf(argument.name, known))
                say(place, "unknown argument '" + argument.name + "' of '" + tag.getName() + "' is ignored");
    }

    void instance(const xml::XmlNode& tag) {
        const std::string place = where(tag.getValue("name"));
        arguments(place, tag, {"name"});
        if (tag.getValue("name").empty())
            say(place, "no name");
        int emitters = 0;
        for (const xml::XmlNode* child : tag.children) {
            if (!isElement(*child))
                continue;
            if (child->getName() == "emitter") {
                ++emitters;
                const std::string& name = child->getValue("name");
                emitter(place + ", emitter " + (name.empty() ? std::to_string(emitters) : "'" + name + "'"),
                        *child);
            } else {
                say(place, "unknown tag '" + child->getName() + "' is ignored");
            }
        }
        if (!emitters)
            say(place, "no emitter: it gives off nothing");
    }

    // The number of a text in the way that the loader reads it. Says what it leaves out.
    long integer(const std::string& place, const xml::XmlTag& tag, const char* name, const char* ifMissing) {
        const std::string& text = tag.getValue(name);
        if (text.empty()) {
            say(place, std::string("no '") + name + "': " + ifMissing);
            return 0;
        }
        char*      end = nullptr;
        const long value = strtol(text.c_str(), &end, 0);
        if (*end)
            say(place, std::string("'") + name + "' of '" + text + "' is read as " + std::to_string(value));
        return value;
    }

    void emitter(const std::string& place, const xml::XmlNode& tag) {
        arguments(place, tag, {"name", "texture", "rate", "num"});
        const long num = integer(place, tag, "num", "it is 0, and the emitter emits nothing");
        if (num == 0 && !tag.getValue("num").empty())
            say(place, "'num' is 0: it emits nothing");
        const long rate = integer(place, tag, "rate", "it is 0, and the emitter emits nothing");
        if (rate <= 0 && !tag.getValue("rate").empty())
            say(place, "'rate' is not above 0: it emits nothing");
        if (rate > 1000000)
            say(place, "'rate' is above 1000000: the engine leaves particles out");
        const long texture = integer(place, tag, "texture", "it is 0");
        if (texture < 0 || texture > 7)
            say(place, "'texture' is not from 0 to 7");

        std::set<std::string> seen;
        for (const xml::XmlNode* child : tag.children) {
            if (!isElement(*child))
                continue;
            const std::string& name = child->getName();
            if (std::find(std::begin(ranges), std::end(ranges), name) == std::end(ranges))
                say(place, "unknown tag '" + name + "' is ignored");
            else if (!seen.insert(name).second)
                say(place, "a second '" + name + "' is ignored");
            else
                range(place, *child);
        }
    }

    void range(const std::string& place, const xml::XmlTag& tag) {
        arguments(place, tag, {"v1", "v2"});
        for (const char* bound : {"v1", "v2"}) {
            const std::string& text = tag.getValue(bound);
            const std::string  name = std::string("'") + bound + "' of '" + tag.getName() + "'";
            if (text.empty())
                say(place, "no " + name + ": it is 0");
            else if (tag.getName() == "color")
                color(place, name, text);
            else
                number(place, name, tag.getName(), text);
        }
    }

    void color(const std::string& place, const std::string& name, const std::string& text) {
        if (text.size() != 6 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            say(place, name + " is no colour of six hexadecimal digits: '" + text + "'");
    }

    void number(const std::string& place, const std::string& name, const std::string& tag,
                const std::string& text) {
        char*        end = nullptr;
        const double value = strtod(text.c_str(), &end);
        if (*end || end == text.c_str()) {
            char read[32];
            snprintf(read, sizeof read, "%g", value);
            say(place, name + " of '" + text + "' is read as " + read);
        }
        if (!std::isfinite(value))
            say(place, name + " is no finite number");
        else if (tag == "size" && value < 0.8)
            say(place, name + " is below 0.8: such a particle dies in its first step");
        else if (tag == "energy" && value < 0.1)
            say(place, name + " is below 0.1: such a particle dies in its first step");
        else if (tag == "noise" && (value < 0 || value > 1))
            say(place, name + " is not from 0 to 1");
    }

    std::string mFile;
    int         mFindings = 0;
};

// 0 for a file without findings, 1 for one with some, 2 for one that can't be read.
int check(const char* path) {
    std::ifstream      in(path, std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf())) {
        fprintf(stderr, "%s: can't be read\n", path);
        return 2;
    }
    xml::XmlParser document;
    try {
        document.parse(text.str());
    } catch (const Exception&) { // which has said what is wrong
        fprintf(stderr, "%s: is not XML\n", path);
        return 2;
    }
    Checker checker(path);
    checker.document(document);
    return checker.findings() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: check_particles FILE...\n");
        return 2;
    }
    int result = 0;
    for (int i = 1; i < argc; ++i)
        result = std::max(result, check(argv[i]));
    return result;
}
