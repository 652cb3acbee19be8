// Shared by the command-line programs: arguments and whole files.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zentrak::command {

// Does the argument look like an option? No program takes one for a file name: "--help" prints the usage
// and creates no file of that name; "./-x" is a file.
bool isOption(const char* argument);

// Does any argument from `first` on look like an option?
bool hasOption(int argc, char** argv, int first);

// Passes each option to `readOption`: its name, its value and whether it has one ("--name=value"). Collects
// the other arguments in `files`. Returns false, after a line on standard error, for an option that
// `readOption` rejects by returning false or throwing std::exception; and if there are no files or more than
// `most`.
using ReadOption = std::function<bool(const std::string& name, const std::string& value, bool hasValue)>;
bool readArguments(int argc, char** argv, const char* program, const ReadOption& readOption, size_t most,
                   std::vector<std::string>& files);

// Like printf, into a string; cut at 511 bytes.
std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// Parses a decimal integer from `least` to `most`; false for anything else.
bool readNumber(const char* argument, int least, int most, int& number);

// Reads a whole file. Returns false, after a line on standard error that says why, if it can't be read.
bool readFile(const std::string& path, std::string& bytes);

// Writes or overwrites a file. Returns false, after a line on standard error that says why, if that fails; a
// partial file is left.
bool writeFile(const std::string& path, const void* bytes, size_t count);

} // namespace zentrak::command
