// Reads a script file into the timeline.
#pragma once

#include "script_engine.h"
#include "xml_iterator.h"

namespace zentrak::script {

class LoadXML {
public:
    // Reads the plain file `filename` as loadMem does; false, with a log line, if it can't be opened or read.
    bool load(const char* filename, ScriptEngine& engine);
    // Appends the script of `size` bytes to `engine`. False, with a log line, for a root that is not "script"
    // and for a spline without keys: what was read before stays in the engine, but init is not called. Throws
    // what xml::XmlParser::parse throws.
    bool loadMem(const char* data, long size, ScriptEngine& engine);

    // Each reads one element into a fresh record. The record stays the caller's, whatever the result.
    bool loadEffect(xml::IteratorConst& element,
                    Effect* effect); // with all that is nested in it, however deep
    bool loadTrigger(xml::IteratorConst& element, Trigger* trigger);
    bool loadSpline(xml::IteratorConst& element, Spline* spline); // false without a key
};

} // namespace zentrak::script
