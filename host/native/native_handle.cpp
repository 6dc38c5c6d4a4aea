// libcutils.so: native handles.

#include <cutils/native_handle.h>
#include <unistd.h>

#include <cstdlib>

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

int native_handle_delete(native_handle_t* handle) {
  std::free(handle);
  return 0;
}

int native_handle_close(const native_handle_t* handle) {
  for (int i = 0; handle != nullptr && i < handle->numFds; ++i) close(handle->data[i]);
  return 0;
}
