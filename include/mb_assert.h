// An assertion that fails under a given name.
#pragma once

#include <cassert>

// As assert, but the failure is reported under `text`, `file` and `line` instead of this place.
#define MB_ASSERT_AT(expression, text, file, line)                                                           \
    (bool(expression) ? void() : __assert_fail(text, file, line, __func__))
