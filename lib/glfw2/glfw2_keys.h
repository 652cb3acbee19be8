// The codes of GLFW 2 for the keys of GLFW 3.
#pragma once

namespace zentrak::glfw2 {

// The code of a key (glfw2.h), or -1 for one that has none.
//   position  GLFW 3's name of the key, by where it is on a US board; -1 where it has none
//   name      what the key types unshifted on the keyboard's layout, UTF-8; null for nothing
// A key whose layout gives it nothing in Latin-1 (a dead key, another alphabet) has the code of its place on
// a US board, so that the letters of a shortcut can be reached on every layout.
int keyCode(int position, const char* name);

// The code of a key that types a character of Latin-1: its upper case where that is in Latin-1 too. -1 for
// others.
int characterCode(unsigned character);

} // namespace zentrak::glfw2
