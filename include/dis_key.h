// Key codes, modifier masks and mouse buttons as the display's events carry them.
#pragma once

namespace zentrak::display {

// Printable keys use their character codes; letters are the upper-case ASCII codes under lower-case names.
// The special keys are above KEY_SPECIAL. A code without a name here arrives as -1.
enum Key : int {
    KEY_UNKNOWN = 0,
    KEY_BACKSPACE = 8,
    KEY_TAB = 9,
    KEY_CLEAR = 12,
    KEY_ENTER = 13,
    KEY_PAUSE = 19,
    KEY_ESCAPE = 27,
    KEY_SPACE = 32,

    KEY_EXCLAIM = 33,    // !
    KEY_QUOTEDBL = 34,   // "
    KEY_HASH = 35,       // #
    KEY_DOLLAR = 36,     // $
    KEY_PERCENT = 37,    // %
    KEY_AMPERSAND = 38,  // &
    KEY_QUOTE = 39,      // '
    KEY_LEFTPAREN = 40,  // (
    KEY_RIGHTPAREN = 41, // )
    KEY_ASTERISK = 42,   // *
    KEY_PLUS = 43,       // +
    KEY_COMMA = 44,      // ,
    KEY_MINUS = 45,      // -
    KEY_PERIOD = 46,     // .
    KEY_SLASH = 47,      // /

    KEY_0 = 48,
    KEY_1 = 49,
    KEY_2 = 50,
    KEY_3 = 51,
    KEY_4 = 52,
    KEY_5 = 53,
    KEY_6 = 54,
    KEY_7 = 55,
    KEY_8 = 56,
    KEY_9 = 57,

    KEY_COLON = 58,     // :
    KEY_SEMICOLON = 59, // ;
    KEY_LESS = 60,      // <
    KEY_EQUALS = 61,    // =
    KEY_GREATER = 62,   // >
    KEY_QUESTION = 63,  // ?
    KEY_AT = 64,        // @

    KEY_a = 65,
    KEY_b = 66,
    KEY_c = 67,
    KEY_d = 68,
    KEY_e = 69,
    KEY_f = 70,
    KEY_g = 71,
    KEY_h = 72,
    KEY_i = 73,
    KEY_j = 74,
    KEY_k = 75,
    KEY_l = 76,
    KEY_m = 77,
    KEY_n = 78,
    KEY_o = 79,
    KEY_p = 80,
    KEY_q = 81,
    KEY_r = 82,
    KEY_s = 83,
    KEY_t = 84,
    KEY_u = 85,
    KEY_v = 86,
    KEY_w = 87,
    KEY_x = 88,
    KEY_y = 89,
    KEY_z = 90,

    KEY_LEFTBRACKET = 91, // [
    KEY_BACKSLASH = 92,
    KEY_RIGHTBRACKET = 93, // ]
    KEY_CARET = 94,        // ^
    KEY_UNDERSCORE = 95,   // _
    KEY_BACKQUOTE = 96,    // `
    KEY_DELETE = 127,

    KEY_SPECIAL = 256,
    KEY_ESC = 257,
    KEY_F1 = 258,
    KEY_F2 = 259,
    KEY_F3 = 260,
    KEY_F4 = 261,
    KEY_F5 = 262,
    KEY_F6 = 263,
    KEY_F7 = 264,
    KEY_F8 = 265,
    KEY_F9 = 266,
    KEY_F10 = 267,
    KEY_F11 = 268,
    KEY_F12 = 269,
    KEY_F13 = 270,
    KEY_F14 = 271,
    KEY_F15 = 272,
    KEY_F16 = 273,
    KEY_F17 = 274,
    KEY_F18 = 275,
    KEY_F19 = 276,
    KEY_F20 = 277,
    KEY_F21 = 278,
    KEY_F22 = 279,
    KEY_F23 = 280,
    KEY_F24 = 281,
    KEY_F25 = 282,
    KEY_UP = 283,
    KEY_DOWN = 284,
    KEY_LEFT = 285,
    KEY_RIGHT = 286,
    KEY_LSHIFT = 287,
    KEY_RSHIFT = 288,
    KEY_LCTRL = 289,
    KEY_RCTRL = 290,
    KEY_LALT = 291,
    KEY_RALT = 292,
    KEY_INSERT = 293,
    KEY_DEL = 294,
    KEY_PAGEUP = 295,
    KEY_PAGEDOWN = 296,
    KEY_HOME = 297,
    KEY_END = 298,
    KEY_KP_0 = 299,
    KEY_KP_1 = 300,
    KEY_KP_2 = 301,
    KEY_KP_3 = 302,
    KEY_KP_4 = 303,
    KEY_KP_5 = 304,
    KEY_KP_6 = 305,
    KEY_KP_7 = 306,
    KEY_KP_8 = 307,
    KEY_KP_9 = 308,
    KEY_KP_DIVIDE = 309,
    KEY_KP_MULTIPLY = 310,
    KEY_KP_SUBTRACT = 311,
    KEY_KP_ADD = 312,
    KEY_KP_DECIMAL = 313,
    KEY_KP_EQUAL = 314,
    KEY_KP_ENTER = 315,

    KEY_LAST = 316
};

// Bits of Event::control. The two lock bits are declared and never set.
enum KeyMod : int {
    KEYMOD_NONE = 0,
    KEYMOD_LSHIFT = 1,
    KEYMOD_RSHIFT = 2,
    KEYMOD_LCTRL = 64,
    KEYMOD_RCTRL = 128,
    KEYMOD_LALT = 256,
    KEYMOD_RALT = 512,
    KEYMOD_NUMLOCK = 4096,
    KEYMOD_CAPSLOCK = 8192
};

enum MouseButton : int { MOUSE_LEFT = 0, MOUSE_RIGHT = 1, MOUSE_MIDDLE = 2 };

} // namespace zentrak::display
