// Opens any bytes in the studio's document: a script, or the unsaved work that is found beside one. What the
// studio opens the player must read alike, whatever is edited; and what is taken back must leave the same
// bytes.

#include "fuzz.h"
#include "mb_random.h"
#include "script_loadxml.h"
#include "studio_document.h"
#include "ztk_system.h"

#include <optional>

using namespace zentrak;
using studio::Document;
using studio::Element;
using studio::Kind;

namespace {

bool opens(Document& document, const std::string& text) {
    try {
        document.load(text);
        return true;
    } catch (const Exception&) {
        return false;
    }
}

bool same(float a, float b) {
    return a == b || (a != a && b != b);
}

// Spans, triggers and splines in the player's tree and in the document's.
void compare(const std::vector<script::Effect*>& spans, const Document& document, int parent) {
    size_t span = 0;
    for (int i = parent + 1; i < document[parent].next; i = document[i].next) {
        const Element& element = document[i];
        if (element.kind != Kind::SPAN)
            continue;
        fuzz::check(span < spans.size());
        const script::Effect& effect = *spans[span++];
        fuzz::check(effect.mName == element.name && effect.mEnabled == element.enabled &&
                    same(effect.mStart, element.start) && same(effect.mEnd, element.end));
        size_t trigger = 0, spline = 0;
        for (int j = i + 1; j < element.next; j = document[j].next) {
            if (document[j].kind == Kind::TRIGGER)
                fuzz::check(effect.mTriggers.at(trigger)->mName == document[j].name &&
                            effect.mTriggers.at(trigger++)->mRepeat == document[j].repeat);
            if (document[j].kind == Kind::SPLINE)
                fuzz::check(effect.mSplines.at(spline++)->mName == document[j].name);
        }
        fuzz::check(trigger == effect.mTriggers.size() && spline == effect.mSplines.size());
        compare(effect.mChildren, document, i);
    }
    fuzz::check(span == spans.size());
}

// Every element lies in its parent and after the one before it.
void checkPositions(const Document& document) {
    const std::string& text = document.getText();
    for (int i = 0; i < document.getSize(); ++i) {
        const Element& e = document[i];
        fuzz::check(e.from < e.tagTo && e.tagTo <= e.contentTo && e.contentTo <= e.to && e.to <= text.size());
        fuzz::check(document.find(e.id) == i && e.next > i && e.next <= document.getSize());
        if (i > 0) {
            const Element& parent = document[e.parent];
            fuzz::check(e.parent < i && e.from >= parent.tagTo && e.to <= parent.contentTo);
        }
        document.getElementText(i);
        document.getOrigin(i);
        document.getLine(e.from);
    }
    document.getTempo();
}

void checkAgainstPlayer(const Document& document) {
    script::ScriptEngine engine;
    bool loads = false;
    try {
        loads = script::LoadXML().loadMem(document.getText().data(), long(document.getText().size()), engine);
    } catch (const Exception&) {
        fuzz::check(false);
    }
    fuzz::check(loads == document.getProblems().empty());
    if (loads)
        compare(engine.mEffects, document, 0);
}

std::optional<Document::Change> anyEdit(const Document& document, mathbase::Random& random) {
    static const char* const names[] = {"name", "start", "end", "value", "state", "repeat"};
    static const char* const values[] = {"1.5", "", "it's \"so\"", "a>b</effect>", "two\nlines", "--", "off"};
    static const char* const elements[] = {"<effect name=\"new\"/>", "<trigger name=\"t\"/>",
                                           "<spline name=\"s\">\n\t<key time=\"0\" value=\"1\"/>\n</spline>",
                                           "<!-- note -->"};
    const auto next = [&random](size_t below) { return (random.draw() >> 8) % below; };
    const int at = int(next(size_t(document.getSize())));
    const Kind kind = document[at].kind;
    switch (next(3)) {
    case 0:
        if (kind == Kind::OTHER || kind == Kind::SECTION)
            return std::nullopt;
        return document.setAttribute(at, names[next(std::size(names))], values[next(std::size(values))]);
    case 1:
        return at > 0 ? std::optional(document.erase(at)) : std::nullopt;
    default:
        if (kind != Kind::SPAN && kind != Kind::ROOT)
            return std::nullopt;
        return document.insert(at, -1, elements[next(std::size(elements))]);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Document document;
    if (!opens(document, text))
        return 0;
    fuzz::check(document.getText() == text);
    checkPositions(document);
    checkAgainstPlayer(document);

    uint32_t seed = 2166136261u;
    for (size_t i = 0; i < size; ++i)
        seed = (seed ^ data[i]) * 16777619u;
    mathbase::Random random(seed);
    std::vector<std::vector<Document::Change>> undo;
    for (int i = 0; i < 8; ++i) {
        std::optional<Document::Change> change = anyEdit(document, random);
        if (!change)
            continue;
        const std::string before = document.getText();
        try {
            undo.push_back(document.apply({*change}));
        } catch (const Exception&) {
            fuzz::check(document.getText() == before);
            continue;
        }
        checkPositions(document);
        checkAgainstPlayer(document);
    }
    for (; !undo.empty(); undo.pop_back())
        document.apply(undo.back());
    fuzz::check(document.getText() == text);
    return 0;
}
