#include "script_loadxml.h"

#include "xml_parser.h"
#include "ztk_system.h"
#include "ztk_text.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zentrak::script {

namespace {

// Loads a span without its children.
bool loadSpan(LoadXML& loader, xml::IteratorConst& element, Effect* effect) {
    effect->mName = element->getValue("name");
    effect->mEnabled = element->getValue("state") != "off";
    effect->mStart = float(toNumber(element->getValue("start")));
    effect->mEnd = float(toNumber(element->getValue("end")));

    xml::IteratorConst triggers = element.createIterator("trigger");
    while (++triggers) {
        auto trigger = std::make_unique<Trigger>();
        loader.loadTrigger(triggers, trigger.get());
        effect->mTriggers.push_back(trigger.get());
        trigger.release();
    }
    xml::IteratorConst splines = element.createIterator("spline");
    while (++splines) {
        auto spline = std::make_unique<Spline>();
        if (!loader.loadSpline(splines, spline.get())) {
            ZTK_LOG("error", "app", "The script's spline '%.100s' of effect '%.100s' has no keys",
                    spline->mName.c_str(), effect->mName.c_str());
            return false;
        }
        effect->mSplines.push_back(spline.get());
        spline.release();
    }
    return true;
}

} // namespace

bool LoadXML::load(const char* filename, ScriptEngine& engine) {
    std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(filename, "rb"), &fclose);
    std::string text;
    char block[65536];
    while (size_t size = file ? fread(block, 1, sizeof(block), file.get()) : 0)
        text.append(block, size);
    if (!file || ferror(file.get())) {
        ZTK_LOG("error", "app", "The script '%s' can't be read", filename);
        return false;
    }
    return readNamed(filename, [&] { return loadMem(text.data(), long(text.size()), engine); });
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
        engine.mEffects.push_back(effect.get());
        effect.release();
    }
    engine.init();
    return true;
}

bool LoadXML::loadEffect(xml::IteratorConst& element, Effect* effect) {
    struct Level {
        Effect* effect;
        xml::IteratorConst children;
    };
    if (!loadSpan(*this, element, effect))
        return false;
    std::vector<Level> levels{{effect, element.createIterator("effect")}};
    while (!levels.empty()) {
        Level& level = levels.back();
        if (!++level.children) {
            levels.pop_back();
            continue;
        }
        auto child = std::make_unique<Effect>();
        if (!loadSpan(*this, level.children, child.get())) {
            if (levels.size() > 1) { // its ancestors are incomplete too
                delete effect->mChildren.back();
                effect->mChildren.pop_back();
            }
            return false;
        }
        level.effect->mChildren.push_back(child.get());
        levels.push_back({child.release(), level.children.createIterator("effect")});
    }
    return true;
}

// A delay without a repeat is not read. A repeat without a delay gets a delay of 0.1 s.
bool LoadXML::loadTrigger(xml::IteratorConst& element, Trigger* trigger) {
    trigger->mName = element->getValue("name");
    trigger->mValue = element->getValue("value");
    trigger->mStart = float(toNumber(element->getValue("start")));
    trigger->mRepeat = 1;
    trigger->mDelay = 0;

    const std::string& repeat = element->getValue("repeat");
    if (!repeat.empty()) {
        const std::string& delay = element->getValue("delay");
        trigger->mRepeat = atoi(repeat.c_str());
        trigger->mDelay = float(toNumber(delay.empty() ? "0.1" : delay));
    }
    return true;
}

bool LoadXML::loadSpline(xml::IteratorConst& element, Spline* spline) {
    const std::string& type = element->getValue("type");
    spline->mName = element->getValue("name");
    // Before the keys, whose tangents depend on it.
    spline->mMode = type == "square" ? 0 : type == "smooth" ? 2 : 1;

    std::vector<mathbase::SplineBaseKey<float>> keys;
    xml::IteratorConst key = element.createIterator("key");
    while (++key)
        keys.push_back(
            {float(toNumber(key->getValue("time"))), float(toNumber(key->getValue("value"))), 0, 0});
    spline->setKeys(std::move(keys));
    return !spline->mKeys.empty();
}

} // namespace zentrak::script
