// An assertion that fails under a given name.
#pragma once

#include <cassert>

// As assert, but the failure is reported with `text`, `file` and `line` instead of its own.
#define MB_ASSERT_AT(expression, text, file, line)                                                           \
    (bool(expression) ? void() : __assert_fail(text, file, line, __func__))
