// libandroid.so: shared memory.

#include <android/sharedmem.h>
#include <android/sharedmem_jni.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "java_object.h"

int ASharedMemory_create(const char* name, size_t size) {
  const int fd = memfd_create(name == nullptr ? "none" : name, MFD_CLOEXEC);
  if (fd < 0) return -errno;
  if (ftruncate(fd, static_cast<off_t>(size)) == 0) return fd;
  const int error = errno;
  close(fd);
  return -error;
}

size_t ASharedMemory_getSize(int fd) {
  // Only memory files and files on a tmpfs have seals. Other regular files, pipes and sockets get size 0.
  if (fcntl(fd, F_GET_SEALS) < 0) return 0;
  struct stat status = {};
  if (fstat(fd, &status) != 0) return 0;
  return static_cast<size_t>(status.st_size);
}

int ASharedMemory_dupFromJava(JNIEnv* env, jobject sharedMemory) {
  if (!orlu::host::isInstanceOf(env, sharedMemory, "android/os/SharedMemory")) return -1;
  const jfieldID field = orlu::host::fieldOf(env, sharedMemory, "mFd", "I");
  if (field == nullptr) return -1;
  const int fd = env->GetIntField(sharedMemory, field);
  return fd < 0 ? -1 : fcntl(fd, F_DUPFD_CLOEXEC, 0);
}
