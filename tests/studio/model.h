// Shared by the tests of the studio: a script to work on, and a document as the player reads it.
#pragma once

#include "script_loadxml.h"
#include "studio_document.h"

#include <gtest/gtest.h>
#include <string>

namespace zentrak::test {

// Everything that a script may contain, as people write it: comments, blank lines, both kinds of quotes,
// attributes in any order, and elements that the player ignores.
inline const char* const SCRIPT = R"(<?xml version="1.0"?>
<!-- A show. -->
<script>
	<tempo bpm="120" beats="4" start="0"/>
	<!-- Intro -->
	<effect name="clear" start="0" end="10.50">
		<trigger name='type'  value="gradient"/>
		<spline type="smooth" name="alpha">
			<key time="0" value="0"/> <!-- dark -->
			<key value="1" time="4"/>
		</spline>
	</effect>

	<effect name="waxon" start="4" end="20" state="off">
		<trigger name="which" value="vaddr" start="0"/>
		<effect name="grid" start="1" end="16">
			<trigger name="shot" start="2" repeat="4" delay="0.5"/>
			<spline name="alpha" type="linear"><key time="0" value="0"/><key time="8" value="1"/></spline>
		</effect>
		<effect   start=2 end=5 name=rund />
	</effect>
	<!-- Finale -->
	<unknown thing="1"/>
	<effect name="overlay" start="12" end="14"/>
	<bookmark name="drop" time="12"/>
</script>
<!-- after the end -->
)";

// The spans of a document as the player reads the text, one line for each value.
inline void describe(const script::Effect& effect, int depth, std::string& out) {
    const auto line = [&](const std::string& text) { out += std::string(size_t(depth), ' ') + text + "\n"; };
    const auto number = [](float value) { return std::to_string(value); };
    line("span " + effect.mName + " " + number(effect.mStart) + " " + number(effect.mEnd) +
         (effect.mEnabled ? " on" : " off"));
    for (const script::Trigger* trigger : effect.mTriggers)
        line("trigger " + trigger->mName + " " + trigger->mValue + " " + number(trigger->mStart) + " " +
             std::to_string(trigger->mRepeat) + " " + number(trigger->mDelay));
    for (const script::Spline* spline : effect.mSplines) {
        line("spline " + spline->mName + " " + std::to_string(spline->mMode));
        for (const auto& key : spline->mKeys)
            line(" key " + number(key.time) + " " + number(key.value));
    }
    for (const script::Effect* child : effect.mChildren)
        describe(*child, depth + 1, out);
}

// A text as the player reads it; "refused" if it doesn't load.
inline std::string readByPlayer(const std::string& text) {
    script::ScriptEngine engine;
    try {
        if (!script::LoadXML().loadMem(text.data(), long(text.size()), engine))
            return "refused";
    } catch (const std::exception&) {
        return "refused";
    }
    std::string out;
    for (const script::Effect* effect : engine.mEffects)
        describe(*effect, 0, out);
    return out;
}

// The same from the elements of a document.
inline std::string readByDocument(const studio::Document& document, int parent = 0, int depth = 0) {
    using studio::Kind;
    std::string triggers, splines, spans;
    const std::string indent(size_t(depth > 0 ? depth - 1 : 0), ' ');
    for (int i = parent + 1; i < document[parent].next; i = document[i].next) {
        const studio::Element& element = document[i];
        if (element.kind == Kind::TRIGGER)
            triggers += indent + "trigger " + element.name + " " + element.value + " " +
                        std::to_string(element.start) + " " + std::to_string(element.repeat) + " " +
                        std::to_string(element.delay) + "\n";
        if (element.kind == Kind::SPLINE) {
            script::Spline curve;
            for (int k = i + 1; k < element.next; k = document[k].next)
                if (document[k].kind == Kind::KEY)
                    curve.addKey({document[k].start, document[k].number, 0, 0});
            if (curve.mKeys.empty())
                return "refused";
            splines += indent + "spline " + element.name + " " + std::to_string(element.mode) + "\n";
            for (const auto& key : curve.mKeys)
                splines +=
                    indent + " key " + std::to_string(key.time) + " " + std::to_string(key.value) + "\n";
        }
        if (element.kind == Kind::SPAN) {
            const std::string inner = readByDocument(document, i, depth + 1);
            if (inner == "refused")
                return inner;
            spans += std::string(size_t(depth), ' ') + "span " + element.name + " " +
                     std::to_string(element.start) + " " + std::to_string(element.end) +
                     (element.enabled ? " on" : " off") + "\n" + inner;
        }
    }
    return triggers + splines + spans;
}

// Everything read from a document; except for `ids`, two documents of one text are equal.
inline std::string dump(const studio::Document& document, bool ids) {
    std::string out;
    for (const studio::Element& e : document.getElements()) {
        for (const size_t number :
             {size_t(e.kind), size_t(e.parent + 1), size_t(e.next), e.from, e.tagTo, e.contentTo, e.to,
              size_t(e.closed), size_t(e.enabled), size_t(e.mode), size_t(e.beats)})
            out += std::to_string(number) + " ";
        for (const float number : {e.start, e.end, e.number, e.delay, float(e.repeat)})
            out += std::to_string(number) + " ";
        out += e.name + "|" + e.value + (ids ? "#" + std::to_string(e.id) : "") + "\n";
    }
    return out;
}

} // namespace zentrak::test
