// What a program that plays strangers' shows asks of the system.
#pragma once

namespace zentrak {

// For main(), once: what the process may do to the machine, whatever the files hold.
// - It gets no more memory than half of the machine's (RLIMIT_DATA: its heap and other private memory, of
// which a
//   driver may take any amount). A limit that is set already, as by `ulimit -d`, stays.
// - It leaves no core file.
// - A crash is reported on standard error before it ends the process: an OpenGL driver that gets no memory
// crashes. A process that is over the bound already keeps its memory unbounded: a sanitizer maps terabytes.
// Handlers of crashes that are installed already stay.
void boundProcess();

// The bound in bytes; 0 for none.
long getMemoryBound();

} // namespace zentrak
