#pragma once

// The header is C: it has members named like a keyword of C++. Compilers warn of a macro with such
// a name outside the headers of the system.
#pragma GCC system_header

#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit
