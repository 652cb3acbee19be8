// Child processes of the film tool.
#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zentrak::film {

// Starts the program arguments[0], found by PATH, in its own process group: Ctrl-C in the terminal does not
// reach it. Standard input is the file descriptor `input` (empty for -1); standard output is discarded, and
// so is standard error if `quiet`. `unwanted` is closed in the child. A program that can't be started exits
// immediately with status 127.
pid_t startChild(const std::vector<std::string>& arguments, int input, bool quiet, int unwanted);

// Waits for the child to end; returns its exit status, or 128 plus the number of the signal that ended it.
int waitForChild(pid_t child);

} // namespace zentrak::film
