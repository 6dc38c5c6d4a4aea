// Extends this machine's <errno.h> by the name that Android's C library uses for the variable.
#pragma once
#include_next <errno.h>
extern "C" int* __errno(void);
#undef errno
#define errno (*__errno())
