// Protection against hostile shows.
#pragma once

namespace zentrak {

// For main(), once: limits what the process can do to the machine, whatever its files contain.
//
// Its memory is limited to half of the machine's (RLIMIT_DATA: heap and other private memory, including the
// OpenGL driver's), unless a limit is already set, as by `ulimit -d`, or the process already uses more, as
// with a sanitizer. It leaves no core file. A crash is reported on standard error before it ends the process,
// since a driver that gets no memory crashes; crash handlers that are already installed stay.
void boundProcess();

// The bound in bytes; 0 for none.
long getMemoryBound();

} // namespace zentrak
