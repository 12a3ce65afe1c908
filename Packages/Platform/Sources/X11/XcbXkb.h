#pragma once

// The header of xcb's keyboard extension names a field with a word that is a keyword in C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
