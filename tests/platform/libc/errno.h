// This machine's <errno.h>, with `errno` defined through __errno(), as in Android's C library.
#pragma once
#include_next <errno.h>
extern "C" int* __errno(void);
#undef errno
#define errno (*__errno())
