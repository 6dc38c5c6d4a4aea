// Adds to this machine's <errno.h> how Android's C library names the variable.
#pragma once
#include_next <errno.h>
extern "C" int* __errno(void);
#undef errno
#define errno (*__errno())
