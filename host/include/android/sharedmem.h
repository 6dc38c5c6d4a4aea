// Host stand-in for the NDK's shared memory (libandroid.so).
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Makes a memory file of `size` bytes; the caller closes the descriptor. Negative errno on failure.
int ASharedMemory_create(const char* name, size_t size);
// Bytes behind the descriptor; 0 when it is none.
size_t ASharedMemory_getSize(int fd);

#ifdef __cplusplus
}
#endif
