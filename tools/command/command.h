// What the programs here share: what they are given, and how they say that it is none.
#pragma once

#include <cstddef>
#include <string>

namespace zentrak::command {

// Whether an argument is written as an option. None of the programs takes one for the name of a file, so that
// a
// "--help" asks for the usage and makes no file of that name; "./-x" is a file.
bool isOption(const char* argument);

// Whether any of the arguments from `first` on is one.
bool hasOption(int argc, char** argv, int first);

// A whole decimal number from `least` to `most`; false for all else.
bool readNumber(const char* argument, int least, int most, int& number);

// All of a file. False, with a line on the standard error stream that says why, where it can't be read.
bool readFile(const std::string& path, std::string& bytes);

// Writes a file, or over one. False, with a line on the standard error stream that says why, where that
// failed; what is there then stays.
bool writeFile(const std::string& path, const void* bytes, size_t count);

} // namespace zentrak::command
