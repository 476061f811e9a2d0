// The XKB protocol header, which names a structure member with a C++ keyword.
#pragma once

#define explicit explicit_ // NOLINT(clang-diagnostic-keyword-macro)
#include <xcb/xkb.h>
#undef explicit
