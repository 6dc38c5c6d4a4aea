// libcutils.so: native handles.

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMaxWords = 1024;

}  // namespace

native_handle_t* native_handle_create(int numFds, int numInts) {
  if (numFds < 0 || numInts < 0 || numFds > kMaxWords || numInts > kMaxWords) return nullptr;
  const size_t words = static_cast<size_t>(numFds) + static_cast<size_t>(numInts);
  auto* handle = static_cast<native_handle_t*>(std::calloc(1, sizeof(native_handle_t) + words * sizeof(int)));
  if (handle == nullptr) return nullptr;
  handle->version = static_cast<int>(sizeof(native_handle_t));
  handle->numFds = numFds;
  handle->numInts = numInts;
  return handle;
}

native_handle_t* native_handle_clone(const native_handle_t* handle) {
  native_handle_t* clone = native_handle_create(handle->numFds, handle->numInts);
  if (clone == nullptr) return nullptr;
  for (int i = 0; i < handle->numFds; ++i) {
    clone->data[i] = fcntl(handle->data[i], F_DUPFD_CLOEXEC, 0);
    if (clone->data[i] < 0) {
      clone->numFds = i;
      native_handle_close(clone);
      native_handle_delete(clone);
      return nullptr;
    }
  }
  std::memcpy(&clone->data[handle->numFds], &handle->data[handle->numFds],
              static_cast<size_t>(handle->numInts) * sizeof(int));
  return clone;
}

int native_handle_delete(native_handle_t* handle) {
  std::free(handle);
  return 0;
}

int native_handle_close(const native_handle_t* handle) {
  for (int i = 0; handle != nullptr && i < handle->numFds; ++i) close(handle->data[i]);
  return 0;
}
