// Maps GLFW 3 keys to GLFW 2 codes.
#pragma once

namespace zentrak::glfw2 {

// The code of a key (glfw2.h), or -1 for one that has none.
//   position  GLFW 3's name of the key, after its position on a US keyboard; -1 if it has none
//   name      what the key types unshifted on the keyboard's layout, UTF-8; null for nothing
// A key that types nothing in Latin-1 (a dead key, another alphabet) has the code of its position on a US
// keyboard, so that every layout can reach the letters of a shortcut.
int keyCode(int position, const char* name);

// The code of a key that types this Latin-1 character: its upper case, if that is Latin-1 too. -1 for other
// characters.
int characterCode(unsigned character);

} // namespace zentrak::glfw2
