#include "script_loadxml.h"

#include "xml_parser.h"
#include "ztk_system.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace zentrak::script {

namespace {

float toFloat(const std::string& text) {
    return float(atof(text.c_str()));
}

} // namespace

bool LoadXML::load(const char* filename, ScriptEngine& engine) {
    std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(filename, "rb"), &fclose);
    if (!file)
        return false;
    std::string text;
    char block[65536];
    while (size_t size = fread(block, 1, sizeof(block), file.get()))
        text.append(block, size);
    if (ferror(file.get()))
        return false;
    return loadMem(text.data(), long(text.size()), engine);
}

bool LoadXML::loadMem(const char* data, long size, ScriptEngine& engine) {
    if (size < 0 || size > INT_MAX)
        return false;
    xml::XmlParser parser;
    parser.parse(data, int(size));
    if (parser.getName() != "script") {
        ZTK_LOG("error", "app", "The script's root is '%.100s' and not 'script'", parser.getName().c_str());
        return false;
    }
    xml::IteratorConst it = static_cast<const xml::XmlParser&>(parser).createIterator("effect");
    while (++it) {
        auto effect = std::make_unique<Effect>();
        if (!loadEffect(it, effect.get()))
            return false;
        engine.mEffects.push_back(effect.release());
    }
    engine.init();
    return true;
}

bool LoadXML::loadEffect(xml::IteratorConst& element, Effect* effect) {
    return loadEffect(element, effect, 1);
}

/*
 * A span with all that is in it. The nest is bounded, since the show walks it by recursion.
 */
bool LoadXML::loadEffect(xml::IteratorConst& element, Effect* effect, int depth) {
    effect->mName = element->getValue("name");
    effect->mEnabled = element->getValue("state") != "off";
    effect->mStart = toFloat(element->getValue("start"));
    effect->mEnd = toFloat(element->getValue("end"));

    xml::IteratorConst triggers = element.createIterator("trigger");
    while (++triggers) {
        auto trigger = std::make_unique<Trigger>();
        loadTrigger(triggers, trigger.get());
        effect->mTriggers.push_back(trigger.release());
    }
    xml::IteratorConst splines = element.createIterator("spline");
    while (++splines) {
        auto spline = std::make_unique<Spline>();
        if (!loadSpline(splines, spline.get())) {
            ZTK_LOG("error", "app", "The script's spline '%.100s' of effect '%.100s' has no keys",
                    spline->mName.c_str(), effect->mName.c_str());
            return false;
        }
        effect->mSplines.push_back(spline.release());
    }
    xml::IteratorConst children = element.createIterator("effect");
    while (++children) {
        if (depth == MAX_DEPTH) {
            ZTK_LOG("error", "app", "The script's effects are nested more than %d deep", MAX_DEPTH);
            return false;
        }
        auto child = std::make_unique<Effect>();
        if (!loadEffect(children, child.get(), depth + 1))
            return false;
        effect->mChildren.push_back(child.release());
    }
    return true;
}

/*
 * A delay without a repeat is not read. A repeat without a delay gets a tenth of a second.
 */
bool LoadXML::loadTrigger(xml::IteratorConst& element, Trigger* trigger) {
    trigger->mName = element->getValue("name");
    trigger->mValue = element->getValue("value");
    trigger->mStart = toFloat(element->getValue("start"));
    trigger->mRepeat = 1;
    trigger->mDelay = 0;

    const std::string& repeat = element->getValue("repeat");
    if (!repeat.empty()) {
        const std::string& delay = element->getValue("delay");
        trigger->mRepeat = atoi(repeat.c_str());
        trigger->mDelay = toFloat(delay.empty() ? "0.1" : delay);
    }
    return true;
}

/*
 * The mode comes before the keys: tangents are made under it.
 */
bool LoadXML::loadSpline(xml::IteratorConst& element, Spline* spline) {
    const std::string& type = element->getValue("type");
    spline->mName = element->getValue("name");
    spline->mMode = type == "square" ? 0 : type == "smooth" ? 2 : 1;

    bool added = false;
    xml::IteratorConst keys = element.createIterator("key");
    while (++keys) {
        spline->addKey({toFloat(keys->getValue("time")), toFloat(keys->getValue("value")), 0, 0});
        added = true;
    }
    return added;
}

} // namespace zentrak::script
