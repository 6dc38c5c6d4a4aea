// Handlers of the calls that DescriptorWatch intercepts. watchedClose, watchedDuplicate and watchedUnmap
// replace the intercepted call and set errno as that call does. watchedUse only checks a call, and watchedMap
// only records one. `caller` is the return address of the intercepted call.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace orlu::conform {

// Returns whether calls from this address are watched. The kit's own calls never are.
bool isWatched(const void* caller);

int watchedClose(int fd, const void* caller);
// dup, dup2, dup3 and fcntl(F_DUPFD). `to` is -1 if the system chooses the number.
int watchedDuplicate(const char* call, int from, int to, int leastNumber, int flags, const void* caller);
// If the library has already closed `fd`, records a fault, sets errno and returns false.
bool watchedUse(const char* call, int fd, const void* caller);
// Records the mapping if `fd` is an image. A fixed mapping may lie inside a larger one.
void watchedMap(void* address, size_t size, int fd, bool isFixed, const void* caller);
int watchedUnmap(void* address, size_t size, const void* caller);

// The bare system calls.
int plainClose(int fd);
int plainDuplicate(int from, int to, int flags);
int plainFcntl(int fd, int command, void* argument);
void* plainMap(void* address, size_t size, int protection, int flags, int fd, off64_t offset);
int plainUnmap(void* address, size_t size);

}  // namespace orlu::conform
