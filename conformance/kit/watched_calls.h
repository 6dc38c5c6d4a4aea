// What DescriptorWatch makes of a call that the library made. Each does the call's work, and sets errno as it
// does. `caller` is the address that the call returns to.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace orlu::conform {

// Whether calls are looked at. Those of the kit itself never are.
bool isWatched(const void* caller);

int watchedClose(int fd, const void* caller);
// dup, dup2 and dup3, and fcntl with F_DUPFD; `to` is -1 where the number is the system's choice.
int watchedDuplicate(const char* call, int from, int to, int leastNumber, int flags, const void* caller);
// False, with errno, for a number that the library has closed.
bool watchedUse(const char* call, int fd, const void* caller);
// A mapping that was made of a descriptor. One at a fixed place may lie in a larger one.
void watchedMap(void* address, size_t size, int fd, bool isFixed, const void* caller);
int watchedUnmap(void* address, size_t size, const void* caller);

// The system calls themselves.
int plainClose(int fd);
int plainDuplicate(int from, int to, int flags);
int plainFcntl(int fd, int command, void* argument);
void* plainMap(void* address, size_t size, int protection, int flags, int fd, off64_t offset);
int plainUnmap(void* address, size_t size);

}  // namespace orlu::conform
