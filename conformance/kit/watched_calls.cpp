// Replaces functions of the C library for all code in the kit's process, except under sanitizers.
#include "watched_calls.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

namespace orlu::conform {

int plainClose(int fd) {
  return static_cast<int>(syscall(SYS_close, fd));
}

int plainDuplicate(int from, int to, int flags) {
  return static_cast<int>(syscall(SYS_dup3, from, to, flags));
}

int plainFcntl(int fd, int command, void* argument) {
#ifdef SYS_fcntl64
  return static_cast<int>(syscall(SYS_fcntl64, fd, command, argument));
#else
  return static_cast<int>(syscall(SYS_fcntl, fd, command, argument));
#endif
}

void* plainMap(void* address, size_t size, int protection, int flags, int fd, off64_t offset) {
#ifdef SYS_mmap2
  constexpr off64_t kUnit = 4096;  // mmap2's unit of offsets, whatever the page size
  if (offset % kUnit != 0) {
    errno = EINVAL;
    return MAP_FAILED;
  }
  return reinterpret_cast<void*>(
      syscall(SYS_mmap2, address, size, protection, flags, fd, static_cast<unsigned long>(offset / kUnit)));
#else
  return reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, fd, offset));
#endif
}

int plainUnmap(void* address, size_t size) {
  return static_cast<int>(syscall(SYS_munmap, address, size));
}

}  // namespace orlu::conform

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// The replacements have other names in C++, because the C library's headers declare the replaced functions
// differently.
#define INSTEAD_OF(name) __asm__(#name) __attribute__((visibility("default"), used))
#define CALLER __builtin_return_address(0)

using namespace orlu::conform;

namespace {

void* map(void* address, size_t size, int protection, int flags, int fd, off64_t offset, const void* caller) {
  const bool isOfFile = (flags & MAP_ANONYMOUS) == 0 && fd >= 0 && isWatched(caller);
  if (isOfFile && !watchedUse("mmap", fd, caller)) return MAP_FAILED;
  void* const mapped = plainMap(address, size, protection, flags, fd, offset);
  if (isOfFile && mapped != MAP_FAILED) watchedMap(mapped, size, fd, (flags & MAP_FIXED) != 0, caller);
  return mapped;
}

int control(int fd, int command, void* argument, const void* caller) {
  if (!isWatched(caller)) return plainFcntl(fd, command, argument);
  if (command != F_DUPFD && command != F_DUPFD_CLOEXEC) {
    return watchedUse("fcntl", fd, caller) ? plainFcntl(fd, command, argument) : -1;
  }
  const auto least = static_cast<int>(reinterpret_cast<intptr_t>(argument));
  return watchedDuplicate("fcntl", fd, -1, least, command == F_DUPFD_CLOEXEC ? O_CLOEXEC : 0, caller);
}

}  // namespace

extern "C" {

int orluClose(int fd) INSTEAD_OF(close);
int orluDup(int fd) INSTEAD_OF(dup);
int orluDup2(int from, int to) INSTEAD_OF(dup2);
int orluDup3(int from, int to, int flags) INSTEAD_OF(dup3);
int orluFcntl(int fd, int command, ...) INSTEAD_OF(fcntl);
int orluFcntl64(int fd, int command, ...) INSTEAD_OF(fcntl64);
void* orluMmap(void* address, size_t size, int protection, int flags, int fd, off_t offset) INSTEAD_OF(mmap);
void* orluMmap64(void* address, size_t size, int protection, int flags, int fd, off64_t offset)
    INSTEAD_OF(mmap64);
int orluMunmap(void* address, size_t size) INSTEAD_OF(munmap);

int orluClose(int fd) {
  return fd >= 0 && isWatched(CALLER) ? watchedClose(fd, CALLER) : plainClose(fd);
}

int orluDup(int fd) {
  if (isWatched(CALLER)) return watchedDuplicate("dup", fd, -1, 0, 0, CALLER);
  return plainFcntl(fd, F_DUPFD, nullptr);
}

int orluDup2(int from, int to) {
  if (from == to) return plainFcntl(from, F_GETFD, nullptr) < 0 ? -1 : to;
  return isWatched(CALLER) ? watchedDuplicate("dup2", from, to, 0, 0, CALLER) : plainDuplicate(from, to, 0);
}

int orluDup3(int from, int to, int flags) {
  return isWatched(CALLER) ? watchedDuplicate("dup3", from, to, 0, flags, CALLER)
                           : plainDuplicate(from, to, flags);
}

int orluFcntl(int fd, int command, ...) {
  va_list list;
  va_start(list, command);
  void* const argument = va_arg(list, void*);
  va_end(list);
  return control(fd, command, argument, CALLER);
}

int orluFcntl64(int fd, int command, ...) {
  va_list list;
  va_start(list, command);
  void* const argument = va_arg(list, void*);
  va_end(list);
  return control(fd, command, argument, CALLER);
}

void* orluMmap(void* address, size_t size, int protection, int flags, int fd, off_t offset) {
  return map(address, size, protection, flags, fd, offset, CALLER);
}

void* orluMmap64(void* address, size_t size, int protection, int flags, int fd, off64_t offset) {
  return map(address, size, protection, flags, fd, offset, CALLER);
}

int orluMunmap(void* address, size_t size) {
  return isWatched(CALLER) ? watchedUnmap(address, size, CALLER) : plainUnmap(address, size);
}

}  // extern "C"

#endif
