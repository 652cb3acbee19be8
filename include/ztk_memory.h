// How the program treats its heap.
#pragma once

namespace zentrak {

// For main(), once: has the heap keep what is freed, for the next frame. Software OpenGL allocates megabytes
// in each frame and frees them at its end; by default the C library gives them back, and the kernel has to
// clear every page again: up to a tenth of a frame.
void keepFreedMemory();

} // namespace zentrak
