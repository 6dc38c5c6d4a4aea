// Host stand-in for the NDK's shared memory (libandroid.so).
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Creates a memory file of `size` bytes. Returns its descriptor, which the caller must close. On failure,
// returns a negative errno.
int ASharedMemory_create(const char* name, size_t size);
// Returns the size of the memory in bytes; 0 if `fd` does not refer to shared memory.
size_t ASharedMemory_getSize(int fd);

#ifdef __cplusplus
}
#endif
