// Reports what the show ignores silently in its script: unknown effects, spans that are never active,
// triggers that never fire, anything past the end, and what makes the whole script fail to load.
//   zentrak-check-script [--length SECONDS] FILE...
// Prints one line per finding. Exits with 1 if there are any, 2 if a file can't be read.
//
// --length is the length of the music: nothing is seen after it. Each file is checked on its own.

#include "check/document.h"
#include "command/command.h"
#include "effect_names.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::check;
using kindler::EffectNames;
using kindler::TriggerNames;

namespace {

using Words = std::vector<const char*>;

// Tolerance in seconds for times that were rounded to a few digits.
constexpr double SLACK = 0.001;
constexpr int MAX_DEPTH = 256; // of the checker, not of the show

bool contains(const Words& words, const std::string& word) {
    return std::any_of(words.begin(), words.end(), [&](const char* w) { return word == w; });
}

// Edit distance: the number of letters to insert, delete, change or swap with the next to turn one word into
// the other.
size_t distance(const std::string& one, const std::string& other) {
    std::vector<std::vector<size_t>> d(one.size() + 1, std::vector<size_t>(other.size() + 1));
    for (size_t y = 0; y <= one.size(); ++y) {
        for (size_t x = 0; x <= other.size(); ++x) {
            if (!y || !x) {
                d[y][x] = y + x;
                continue;
            }
            const bool same = one[y - 1] == other[x - 1];
            d[y][x] = std::min({d[y - 1][x] + 1, d[y][x - 1] + 1, d[y - 1][x - 1] + !same});
            if (y > 1 && x > 1 && one[y - 1] == other[x - 2] && one[y - 2] == other[x - 1])
                d[y][x] = std::min(d[y][x], d[y - 2][x - 2] + 1);
        }
    }
    return d[one.size()][other.size()];
}

// The known word most like `word`, or null if none is close.
const char* likely(const Words& words, const std::string& word) {
    const char* best = nullptr;
    size_t least = std::min<size_t>(3, word.size());
    if (word.size() > 100)
        return nullptr;
    for (const char* each : words) {
        const size_t now = distance(word, each);
        if (now < least) {
            least = now;
            best = each;
        }
    }
    return best;
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

// " (perhaps 'WORD')", or nothing.
std::string perhaps(const Words& words, const std::string& word) {
    const char* const best = likely(words, word);
    return best ? " (perhaps " + quoted(best) + ")" : std::string();
}

std::string seconds(double time) {
    char text[32];
    snprintf(text, sizeof text, "%g", time);
    return text;
}

const EffectNames* namesOf(const std::string& effect) {
    for (const EffectNames& each : kindler::effectNames())
        if (effect == each.name)
            return &each;
    return nullptr;
}

const Words& allEffects() {
    static const Words names = [] {
        Words result;
        for (const EffectNames& each : kindler::effectNames())
            result.push_back(each.name);
        return result;
    }();
    return names;
}

// The time something runs, from `start` up to but excluding `end`; never if that is not above `start`.
struct Window {
    double start, end;
    bool empty() const { return !(end > start); }
};

class ScriptChecker final : public Findings {
public:
    using Findings::Findings;

    void document(double length) {
        const xml::XmlNode& root = mDocument.root();
        if (root.getName() != "script") {
            say(root, "the root is " + quoted(root.getName()) + " and not 'script': nothing is loaded");
            return;
        }
        attributes(root, {});
        bool any = false;
        elements(root, {"effect", "bookmark", "tempo"}, [&](const xml::XmlNode& child) {
            if (child.getName() != "effect") {
                note(child);
                return;
            }
            any = true;
            effect(child, {0, length}, nullptr, 1);
        });
        if (!any)
            say(root, "no 'effect': nothing plays");
    }

private:
    // Notes that the studio keeps with a show and the player ignores.
    void note(const xml::XmlNode& node) {
        const bool tempo = node.getName() == "tempo";
        attributes(node, tempo ? Words{"bpm", "beats", "start"} : Words{"name", "time"});
        for (const char* name : {"bpm", "beats", "start", "time"})
            get(node, name);
    }

    void attributes(const xml::XmlNode& node, const Words& known) {
        for (const xml::XmlTag::Argument& argument : node.arguments)
            if (!contains(known, argument.name))
                say(node, "unknown attribute " + quoted(argument.name) + " of " + quoted(node.getName()) +
                              " is ignored" + perhaps(known, argument.name));
    }

    // Calls `visit` for each child element with a known name.
    void elements(const xml::XmlNode& node, const Words& known,
                  const std::function<void(const xml::XmlNode&)>& visit) {
        eachElement(node, [&](const xml::XmlNode& child) {
            if (contains(known, child.getName()))
                visit(child);
            else
                say(child, "unknown element " + quoted(child.getName()) + " in " + quoted(node.getName()) +
                               " is ignored" + perhaps(known, child.getName()));
        });
    }

    // A time or a value; 0 if it is missing, as in the loader.
    double get(const xml::XmlNode& node, const char* name) {
        const std::string& text = node.getValue(name);
        return text.empty() ? 0 : number(node, quoted(name) + " of " + quoted(node.getName()), text);
    }

    // The same for a required attribute.
    double need(const xml::XmlNode& node, const char* name) {
        if (node.getValue(name).empty())
            say(node, "no " + quoted(name) + " of " + quoted(node.getName()) + ": it is 0");
        return get(node, name);
    }

    // `inside` is when the parent runs, in its own time; a null parent is the show itself. For a parent that
    // never runs there has been a finding already.
    void effect(const xml::XmlNode& node, const Window& inside, const xml::XmlNode* parent, int depth) {
        if (depth > MAX_DEPTH) {
            say(node, "effects are nested more than " + std::to_string(MAX_DEPTH) +
                          " deep: what is further in is not checked");
            return;
        }
        attributes(node, {"name", "state", "start", "end"});
        const EffectNames* const names = name(node);
        const Window given = {get(node, "start"), need(node, "end")};
        const Window runs = {std::max(given.start, inside.start), std::min(given.end, inside.end)};
        state(node);
        if (!inside.empty())
            place(node, given, inside, parent);

        const Window local = {runs.start - given.start, runs.end - given.start};
        std::set<std::string> splines;
        elements(node, {"trigger", "spline", "effect"}, [&](const xml::XmlNode& child) {
            if (child.getName() == "trigger") {
                trigger(child, local, names);
            } else if (child.getName() == "spline") {
                if (!splines.insert(child.getValue("name")).second)
                    say(child, "a second spline " + quoted(child.getValue("name")) + " overrides the first");
                spline(child, given.end - given.start, names);
            } else {
                effect(child, local, &node, depth + 1);
            }
        });
    }

    // The effect that draws a span. Null for one that only groups, with a finding unless that can be
    // intended.
    const EffectNames* name(const xml::XmlNode& node) {
        const std::string& name = node.getValue("name");
        const EffectNames* const names = namesOf(name);
        if (names)
            return names;
        bool told = false, nested = false;
        for (const xml::XmlNode* child : node.children) {
            told |= child->getName() == "trigger" || child->getName() == "spline";
            nested |= child->getName() == "effect";
        }
        const std::string guess = perhaps(allEffects(), name);
        if (told)
            say(node,
                "no effect is named " + quoted(name) + guess + ": its triggers and splines are ignored");
        else if (!nested)
            say(node, "no effect is named " + quoted(name) + guess + ": the span does nothing");
        else if (!guess.empty())
            say(node, "no effect is named " + quoted(name) + guess + ": the span only groups");
        return nullptr;
    }

    void state(const xml::XmlNode& node) {
        const std::string& state = node.getValue("state");
        if (!state.empty() && state != "on" && state != "off")
            say(node, "'state' of " + quoted(state) + " is neither 'on' nor 'off': the span is on");
    }

    // Checks where a span lies in its parent, which runs `inside` in its own time.
    void place(const xml::XmlNode& node, const Window& given, const Window& inside,
               const xml::XmlNode* parent) {
        const std::string around = parent ? "its parent " + quoted(parent->getValue("name")) : "the show";
        if (given.empty()) {
            say(node, "the span is never active: its 'end' of " + seconds(given.end) +
                          " is not above its 'start' of " + seconds(given.start));
        } else if (given.start >= inside.end) {
            say(node, "the span is never active: it starts at " + seconds(given.start) + ", and " + around +
                          " ends at " + seconds(inside.end));
        } else if (given.end <= inside.start) {
            say(node, "the span is never active: it ends at " + seconds(given.end) + ", and " + around +
                          " starts at " + seconds(inside.start));
        } else {
            if (given.start < inside.start - SLACK)
                say(node, "the span starts at " + seconds(given.start) + ", before " + around + " at " +
                              seconds(inside.start));
            if (parent && given.end > inside.end + SLACK)
                say(node, "the span ends at " + seconds(given.end) + ", after " + around + " at " +
                              seconds(inside.end));
        }
    }

    // `runs` is when the span runs, in its own time.
    void trigger(const xml::XmlNode& node, const Window& runs, const EffectNames* names) {
        attributes(node, {"name", "value", "start", "repeat", "delay"});
        elements(node, {}, [](const xml::XmlNode&) {});
        const std::string& name = node.getValue("name");
        const std::string& repeat = node.getValue("repeat");
        const double start = get(node, "start");
        double count = 1, delay = 0;
        if (repeat.empty()) {
            if (!node.getValue("delay").empty())
                say(node,
                    "'delay' without 'repeat' is not read: the trigger " + quoted(name) + " fires once");
        } else {
            count = integer(node, "repeat", repeat);
            delay = node.getValue("delay").empty() ? 0.1 : get(node, "delay");
        }
        if (names && !names->anyTrigger)
            value(node, *names);
        if (runs.empty() || !names)
            return;
        if (count < 1)
            say(node, "the trigger " + quoted(name) + " never fires: its 'repeat' is " + seconds(count));
        else if (!(start < runs.end))
            say(node, "the trigger " + quoted(name) + " never fires: it is due at " + seconds(start) +
                          ", and its span runs to " + seconds(runs.end));
        else if (delay > 0 && start + (count - 1) * delay >= runs.end)
            say(node, "the trigger " + quoted(name) + " fires " +
                          seconds(std::ceil((runs.end - start) / delay)) + " times and not " +
                          seconds(count) + ": its span runs to " + seconds(runs.end));
        else if (count > 1 && delay <= 0)
            say(node, "the trigger " + quoted(name) + " fires " + seconds(count) +
                          " times at once: its 'delay' is " + seconds(delay));
    }

    // Parses a number of firings as atoi does.
    double integer(const xml::XmlNode& node, const char* name, const std::string& text) {
        char* end = nullptr;
        const long value = strtol(text.c_str(), &end, 10);
        if (*end || end == text.c_str())
            say(node, quoted(name) + " of " + quoted(node.getName()) + " of " + quoted(text) +
                          " is read as " + std::to_string(value));
        return double(value);
    }

    // Checks that the effect knows a trigger, and its value.
    void value(const xml::XmlNode& node, const EffectNames& names) {
        const std::string& name = node.getValue("name");
        const std::string& value = node.getValue("value");
        Words known;
        for (const TriggerNames& each : names.triggers) {
            known.push_back(each.name);
            if (name != each.name)
                continue;
            const std::string place = "the trigger " + quoted(name) + " of " + quoted(names.name);
            if (each.use == TriggerNames::UNUSED) {
                if (!value.empty())
                    say(node, place + " looks at no value: " + quoted(value) + " is ignored");
            } else if (!contains(each.words, value)) {
                say(node, place + " knows no " + quoted(value) + perhaps(each.words, value) +
                              (each.use == TriggerNames::TARGET ? ": the show ends there" : ""));
            }
            return;
        }
        say(node, quoted(names.name) + " answers to no trigger " + quoted(name) + perhaps(known, name));
    }

    // `length` is that of the span.
    void spline(const xml::XmlNode& node, double length, const EffectNames* names) {
        attributes(node, {"name", "type"});
        const std::string& name = node.getValue("name");
        const std::string& type = node.getValue("type");
        if (names && !contains(names->splines, name))
            say(node, quoted(names->name) + " answers to no spline " + quoted(name) +
                          perhaps(names->splines, name));
        const Words types = {"square", "linear", "smooth"};
        if (!type.empty() && !contains(types, type))
            say(node,
                "'type' of " + quoted(type) + " is none" + perhaps(types, type) + ": the spline is linear");
        bool any = false;
        elements(node, {"key"}, [&](const xml::XmlNode& key) {
            any = true;
            attributes(key, {"time", "value"});
            const double time = need(key, "time");
            need(key, "value");
            elements(key, {}, [](const xml::XmlNode&) {});
            if (length > 0 && time > length + SLACK)
                say(key, "the key at " + seconds(time) + " of the spline " + quoted(name) +
                             " lies past the end of its span, which is " + seconds(length) + " long");
            else if (time < -SLACK)
                say(key, "the key at " + seconds(time) + " of the spline " + quoted(name) +
                             " lies before the start of its span");
        });
        if (!any)
            say(node, "the spline " + quoted(name) + " has no keys: the whole script fails to load");
    }
};

// Returns 0 without findings, 1 with some, 2 if the file can't be read.
int checkFile(const char* path, double length) {
    Document document;
    if (!document.read(path))
        return 2;
    ScriptChecker checker(document);
    checker.document(length);
    return checker.count() ? 1 : 0;
}

int usage() {
    fprintf(stderr, "usage: zentrak-check-script [--length SECONDS] FILE...\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    double length = std::numeric_limits<double>::infinity();
    int first = 1;
    if (argc > 2 && !strcmp(argv[1], "--length")) {
        char* end = nullptr;
        length = strtod(argv[2], &end);
        if (*end || end == argv[2] || !(length > 0))
            return usage();
        first = 3;
    }
    if (argc <= first || command::hasOption(argc, argv, first))
        return usage();
    int result = 0;
    for (int i = first; i < argc; ++i)
        result = std::max(result, checkFile(argv[i], length));
    return result;
}
