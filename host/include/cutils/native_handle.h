// Host stand-in for the platform's native handles (libcutils.so).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef struct native_handle {
  int version;  // sizeof(native_handle_t)
  int numFds;   // descriptors at &data[0]
  int numInts;  // integers at &data[numFds]
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wzero-length-array"
#elif defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#endif
  int data[0];  // numFds + numInts words
#if defined(__clang__)
#pragma clang diagnostic pop
#elif defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
} native_handle_t;

// Returns a handle with zeroed words; null if a count is negative or above 1024, or if memory runs out.
native_handle_t* native_handle_create(int numFds, int numInts);
// Frees the handle without closing its descriptors. Returns 0.
int native_handle_delete(native_handle_t* handle);
// Closes the handle's descriptors. Returns 0.
int native_handle_close(const native_handle_t* handle);

#ifdef __cplusplus
}
#endif
