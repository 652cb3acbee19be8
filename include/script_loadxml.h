// Reads a script file into the timeline.
#pragma once

#include "script_engine.h"
#include "xml_iterator.h"

namespace zentrak::script {

class LoadXML {
public:
    // Effects nested deeper than this fail the load.
    static constexpr int MAX_DEPTH = 256;

    // Reads the plain file `filename`; false when it can't be opened or read, else as loadMem.
    bool load(const char* filename, ScriptEngine& engine);
    // Appends the script of `size` bytes to `engine`. False, with a log line, on a root that is not "script",
    // on a spline without keys and on too deep a nest: what was read before stays in the engine, but without
    // init. Throws what xml::XmlParser::parse throws.
    bool loadMem(const char* data, long size, ScriptEngine& engine);

    // Each reads one element into a fresh record. The record stays the caller's, whatever the result.
    bool loadEffect(xml::IteratorConst& element, Effect* effect);
    bool loadTrigger(xml::IteratorConst& element, Trigger* trigger);
    bool loadSpline(xml::IteratorConst& element, Spline* spline); // false without a key

private:
    bool loadEffect(xml::IteratorConst& element, Effect* effect, int depth);
};

} // namespace zentrak::script
