// An OpenGL whose memory is used up at a chosen call. The program that links this has functions of its own in
// front of the driver's, and in front of those that GLEW looks up.
#pragma once

namespace zentrak::test {

// The `number`th call from now on that allocates fails, counted from 1; 0 for none. It does nothing: names
// stay as they were, what is returned is 0, and GL_OUT_OF_MEMORY is pending. A shader doesn't compile, a
// program doesn't link.
void refuseGl(int number);

bool wasGlRefused(); // since then

// Whether the functions that are linked belong to another OpenGL than those of the window, without a context:
// there are no strings.
void separateGl(bool separate);

} // namespace zentrak::test
