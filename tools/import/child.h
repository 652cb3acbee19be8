// Runs work in a process of its own, so that a crash or an endless loop there does no harm here.
#pragma once

#include <functional>
#include <string>

namespace zentrak::importer {

// Returns the result of `work`. Throws std::runtime_error if `work` throws (with the same text), crashes, or
// takes more than `seconds` or `megabytes` (no limit on memory with sanitizers). What it prints on standard
// output is discarded.
std::string inChild(const std::function<std::string()>& work, int seconds, int megabytes);

} // namespace zentrak::importer
