// The XKB protocol header, which names a structure member with a C++ keyword.
#pragma once

#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
