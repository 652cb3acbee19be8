// Reads any bytes as a particle file. Whatever loads must be writable, and its particles must move and die.

#include "fuzz.h"
#include "sparks_engine.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <cstdint>
#include <deque>
#include <string>

using namespace zentrak;
using fuzz::check;

namespace {

std::deque<sparks::EmitterInstance> load(const std::string& text) {
    xml::XmlParser document;
    document.parse(text);
    std::deque<sparks::EmitterInstance> instances;
    xml::IteratorConst it(&document, "instance");
    while (++it)
        instances.emplace_back().load(it);
    return instances;
}

std::string save(const std::deque<sparks::EmitterInstance>& instances) {
    xml::XmlParser document;
    document.setName("spark");
    xml::Iterator it(&document, "");
    for (const sparks::EmitterInstance& instance : instances)
        instance.save(it);
    std::string text;
    document.write(text, "");
    return text;
}

void play(std::deque<sparks::EmitterInstance>& instances) {
    sparks::Engine engine(nullptr);
    engine.isSetup = true; // there is no display for a texture
    for (sparks::EmitterInstance& instance : instances) {
        instance.engine = &engine;
        engine.active.push_back(&instance);
    }
    for (const float time : {1.0f, 1.001f, 1.002f, 9.0f}) {
        if (time > 2)
            engine.clear();
        engine.update(time);
        int alive = 0;
        for (const sparks::Spark* spark = engine.live; spark; spark = spark->next)
            ++alive;
        check(alive <= engine.allocated && engine.allocated <= sparks::Engine::MAX_ALLOCATED);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        std::deque<sparks::EmitterInstance> instances =
            load(std::string(reinterpret_cast<const char*>(data), size));
        save(instances);
        play(instances);
    } catch (const Exception&) {
    }
    return 0;
}
