// Asserts that our headers agree with the platform's. Both are in one translation unit: the platform's names
// are global; tests/platform/check.sh puts ours into the namespace `ours`.
#pragma once

#include <cstddef>
#include <type_traits>

namespace agreement {

// Type is T with our types replaced by the platform's types of the same name (see OPAQUE and RECORD).
template <typename T>
struct Platform {
  using Type = T;
};
template <typename T>
using PlatformType = typename Platform<T>::Type;
template <typename T>
struct Platform<T*> {
  using Type = PlatformType<T>*;
};
template <typename T>
struct Platform<const T> {
  using Type = const PlatformType<T>;
};
template <typename Result, typename... Parameters>
struct Platform<Result(Parameters...)> {
  using Type = PlatformType<Result>(PlatformType<Parameters>...);
};
template <typename Result, typename... Parameters>
struct Platform<Result(Parameters..., ...)> {
  using Type = PlatformType<Result>(PlatformType<Parameters>..., ...);
};

}  // namespace agreement

// Use these macros at global scope. OPAQUE only maps our type to the platform's. RECORD also compares size
// and alignment; use FIELD to compare a field's offset and type.
#define OPAQUE(our, platform)       \
  template <>                       \
  struct agreement::Platform<our> { \
    using Type = platform;          \
  }
#define RECORD(name)          \
  OPAQUE(ours::name, ::name); \
  static_assert(sizeof(ours::name) == sizeof(::name) && alignof(ours::name) == alignof(::name), #name)
#define FIELD_AS(our, platform, field)                                                                    \
  static_assert(offsetof(our, field) == offsetof(platform, field), #field " is at another offset");       \
  static_assert(std::is_same_v<agreement::PlatformType<decltype(our::field)>, decltype(platform::field)>, \
                #field " has another type")
#define FIELD(record, field) FIELD_AS(ours::record, ::record, field)
#define FUNCTION(name)                                                                           \
  static_assert(std::is_same_v<agreement::PlatformType<decltype(ours::name)>, decltype(::name)>, \
                #name " has another type")
#define CONSTANT(name) \
  static_assert(static_cast<long>(ours::name) == static_cast<long>(::name), #name " has another value")
