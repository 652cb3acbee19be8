// Programs that the film tool starts.
#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zentrak::film {

// Starts the program arguments[0], found by PATH, in a process group of its own: a Ctrl-C in the terminal
// does not reach it. Its standard input is the file descriptor `input` (nothing for -1), its standard output
// goes nowhere, and its standard error neither if `quiet`. `unwanted` is closed in it. A program that can't
// be started ends at once with the status 127.
pid_t startChild(const std::vector<std::string>& arguments, int input, bool quiet, int unwanted);

// Waits for its end; returns the exit status, or 128 plus the number of the signal that ended it.
int waitForChild(pid_t child);

} // namespace zentrak::film
