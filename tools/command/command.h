// Shared by the command-line programs: arguments and whole files.
#pragma once

#include <cstddef>
#include <string>

namespace zentrak::command {

// Does the argument look like an option? No program takes one for a file name: "--help" asks for the usage
// and creates no file of that name; "./-x" is a file.
bool isOption(const char* argument);

// Does any argument from `first` on look like an option?
bool hasOption(int argc, char** argv, int first);

// Parses a decimal integer from `least` to `most`; false for anything else.
bool readNumber(const char* argument, int least, int most, int& number);

// Reads a whole file. Returns false, after a line on standard error that says why, if it can't be read.
bool readFile(const std::string& path, std::string& bytes);

// Writes a file, or over one. False, with a line on the standard error stream that says why, where that
// failed; what is there then stays.
bool writeFile(const std::string& path, const void* bytes, size_t count);

} // namespace zentrak::command
