// Extends this machine's <errno.h> by the variable's name in Android's C library.
#pragma once
#include_next <errno.h>
extern "C" int* __errno(void);
#undef errno
#define errno (*__errno())
