// Work in a process of its own, so that a crash or an endless loop in it ends nothing else.
#pragma once

#include <functional>
#include <string>

namespace zentrak::importer {

// What `work` gives. Throws std::runtime_error: with the text of what `work` throws; or that it crashed,
// took more than `seconds`, or more than `megabytes` (not with sanitizers, which take more by themselves).
// What it prints on the standard output is dropped.
std::string inChild(const std::function<std::string()>& work, int seconds, int megabytes);

} // namespace zentrak::importer
