#pragma once

// The header is C: it has members named like a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit
