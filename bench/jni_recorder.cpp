#include "jni_recorder.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "jni_functions.h"

namespace orlu::bench {
namespace {

thread_local JniRecorder* gRecorder = nullptr;

// The argument types of every method that was looked up in this or an earlier recording, for example "LI" for
// an object and an integer. Method ids stay valid while their classes are loaded.
std::unordered_map<jmethodID, std::string>& shapes() {
  static std::unordered_map<jmethodID, std::string> all;
  return all;
}

// Returns one letter per argument: L for objects, J for jlong, D for jfloat and jdouble, I for other types.
std::string argumentTypes(const char* signature) {
  std::string types;
  for (const char* at = signature + 1; *at != ')'; ++at) {
    const bool isArray = *at == '[';
    while (*at == '[') ++at;
    if (*at == 'L') at = std::strchr(at, ';');
    const char letter = *at;
    if (isArray || letter == ';') {
      types += 'L';
    } else if (letter == 'F' || letter == 'D') {
      types += 'D';
    } else {
      types += letter == 'J' ? 'J' : 'I';
    }
  }
  return types;
}

Shape shapeOf(const std::string& types) {
  static const std::pair<const char*, Shape> kShapes[] = {
      {"",      Shape::kNone        },
      {"L",     Shape::kObject      },
      {"LL",    Shape::kObjectObject},
      {"LI",    Shape::kObjectInt   },
      {"I",     Shape::kInt         },
      {"J",     Shape::kLong        },
      {"D",     Shape::kReal        },
      {"IJIJL", Shape::kReport      },
  };
  for (const auto& [name, shape] : kShapes) {
    if (types == name) return shape;
  }
  return Shape::kUnknown;
}

[[noreturn]] void cannotRecord(const char* name, const char* why) {
  std::fprintf(stderr, "%s can't be recorded: %s\n", name, why);
  std::abort();
}

template <typename T>
constexpr bool kIsObject = std::is_convertible_v<T, jobject>;
template <typename T>
constexpr bool kIsId = std::is_same_v<T, jmethodID> || std::is_same_v<T, jfieldID>;
// True for pointers to strings, buffers and isCopy flags.
template <typename T>
constexpr bool kIsMemory = std::is_pointer_v<T> && !kIsObject<T> && !kIsId<T>;

constexpr size_t kNoRegion = ~size_t{0};

// Converts a recorded value back to an argument.
template <typename T>
T argument(void** slots, const RecordedValue& value) {
  if constexpr (std::is_same_v<T, jmethodID>) {
    return value.method;
  } else if constexpr (std::is_same_v<T, jfieldID>) {
    return value.field;
  } else if constexpr (std::is_pointer_v<T>) {
    return static_cast<T>(slots[value.slot]);
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value.real);
  } else {
    return static_cast<T>(value.integer);
  }
}

template <typename Result>
void keep(void** slots, uint32_t slot, Result result) {
  if constexpr (std::is_pointer_v<Result> && !kIsId<Result>) {
    slots[slot] = const_cast<std::remove_const_t<std::remove_pointer_t<Result>>*>(result);
  }
}

}  // namespace

struct RecorderFunctions {
  // Makes the call, and records it unless it is made inside another recorded call.
  template <typename Function, typename Note>
  static auto made(Function&& function, Note&& note) {
    JniRecorder& recorder = *gRecorder;
    if (recorder.mIsInside) return function();
    recorder.mIsInside = true;
    if constexpr (std::is_void_v<decltype(function())>) {
      function();
      recorder.mIsInside = false;
      note(recorder, nullptr);
    } else {
      const auto result = function();
      recorder.mIsInside = false;
      note(recorder, result);
      return result;
    }
  }

  static void add(JniRecorder& recorder, const char* name, RecordedCall& call) {
    recorder.mRecording.mCalls.push_back(call);
    ++recorder.mRecording.mCounts[name];
  }

  // Assigns a slot to the result. A returned object is a local reference, except the result of NewGlobalRef.
  template <typename Result>
  static void noteResult(JniRecorder& recorder, RecordedCall& call, Result result, bool isLocal) {
    call.result = kNullSlot;
    if constexpr (std::is_pointer_v<Result> && !kIsId<Result>) {
      call.result = recorder.mRecording.addSlot(nullptr);
      if (result == nullptr) return;
      recorder.mSlots[result] = call.result;
      if (kIsObject<Result> && isLocal) recorder.madeReference();
    }
  }

  // A JNI function that calls no Java method. Its C++ type defines the types of its arguments.
  template <auto Member>
  struct Plain;

  template <typename Result, typename... Arguments,
            Result (JNICALL* JNINativeInterface_::*Member)(JNIEnv*, Arguments...)>
  struct Plain<Member> {
    static inline const char* name = nullptr;

    static Result JNICALL call(JNIEnv* env, Arguments... arguments) {
      return made([&] { return (gRecorder->mFunctions.original().*Member)(env, arguments...); },
                  [&](JniRecorder& recorder, auto result) { note(recorder, result, arguments...); });
    }

    template <typename Answer>
    static void note(JniRecorder& recorder, Answer result, Arguments... arguments) {
      RecordedCall call = {};
      call.repeat = repeat;
      [[maybe_unused]] const size_t size = bytesBehind(arguments...);
      [[maybe_unused]] RecordedValue* next = call.arguments;
      (noteArgument(recorder, *next++, arguments, size), ...);
      if constexpr (std::is_same_v<Answer, jmethodID>) noteShape(result, arguments...);
      noteReferences(recorder, arguments...);
      if constexpr (!std::is_void_v<Result>) {
        noteResult(recorder, call, result, std::strcmp(name, "NewGlobalRef") != 0);
      }
      add(recorder, name, call);
    }

    // For a Set...Region function, returns the number of bytes that it reads from its buffer, possibly 0. For
    // all other functions, returns kNoRegion.
    static size_t bytesBehind(Arguments... arguments) {
      if constexpr (sizeof...(Arguments) == 4) {
        const auto all = std::make_tuple(arguments...);
        using Last = std::tuple_element_t<3, decltype(all)>;
        if constexpr (std::is_same_v<std::tuple_element_t<2, std::tuple<Arguments...>>, jsize> &&
                      std::is_pointer_v<std::tuple_element_t<3, std::tuple<Arguments...>>>) {
          return static_cast<size_t>(std::get<2>(all)) * sizeof(*std::declval<Last>());
        }
      }
      return kNoRegion;
    }

    template <typename T>
    static void noteArgument(JniRecorder& recorder, RecordedValue& value, T argument, size_t size) {
      if constexpr (std::is_same_v<T, jmethodID>) {
        value.method = argument;
      } else if constexpr (std::is_same_v<T, jfieldID>) {
        value.field = argument;
      } else if constexpr (kIsObject<T>) {
        value.slot = recorder.objectSlot(argument);
      } else if constexpr (std::is_same_v<T, const char*>) {
        value.slot = recorder.textSlot(argument);
      } else if constexpr (kIsMemory<T>) {
        value.slot =
            size != kNoRegion ? recorder.mRecording.addBytes(argument, size) : recorder.slotOf(argument);
        if (value.slot == kNullSlot && argument != nullptr) cannotRecord(name, "unknown memory");
      } else if constexpr (std::is_floating_point_v<T>) {
        value.real = argument;
      } else {
        value.integer = argument;  // NOLINT(bugprone-signed-char-misuse): a jbyte is a number
      }
    }

    static void noteShape(jmethodID id, jclass, const char*, const char* signature) {
      if (id != nullptr) shapes()[id] = argumentTypes(signature);
    }

    static void noteReferences([[maybe_unused]] JniRecorder& recorder,
                               [[maybe_unused]] Arguments... arguments) {
      // Forgets the slot of released memory: the VM may reuse the address.
      if (std::strncmp(name, "Release", 7) == 0) (giveBack(recorder, arguments), ...);
      if constexpr (sizeof...(Arguments) == 1) {
        if (std::strcmp(name, "DeleteLocalRef") == 0) recorder.freedReference();
        if (std::strcmp(name, "PushLocalFrame") == 0) recorder.mFrames.push_back(recorder.mReferences);
        if (std::strcmp(name, "PopLocalFrame") == 0) {
          recorder.mReferences = recorder.mFrames.back();
          recorder.mFrames.pop_back();
        }
      }
    }

    template <typename T>
    static void giveBack([[maybe_unused]] JniRecorder& recorder, [[maybe_unused]] T argument) {
      if constexpr (kIsMemory<T>) recorder.mSlots.erase(argument);
    }

    static void repeat(JNIEnv* env, void** slots, const RecordedCall& call) {
      again(env, slots, call, std::index_sequence_for<Arguments...>());
    }
    template <size_t... Index>
    static void again(JNIEnv* env, [[maybe_unused]] void** slots, const RecordedCall& call,
                      std::index_sequence<Index...>) {
      const auto function = env->functions->*Member;
      if constexpr (std::is_void_v<Result>) {
        function(env, argument<Arguments>(slots, call.arguments[Index])...);
      } else {
        keep(slots, call.result, function(env, argument<Arguments>(slots, call.arguments[Index])...));
      }
    }
  };

  // A JNI function that calls a Java method. The signature of that method defines the types of its arguments.
  template <auto Member>
  struct Method;

  template <typename Result, typename Target,
            Result (JNICALL* JNINativeInterface_::*Member)(JNIEnv*, Target, jmethodID, va_list)>
  struct Method<Member> {
    static inline const char* name = nullptr;

    static Result JNICALL call(JNIEnv* env, Target target, jmethodID method, va_list list) {
      va_list copy;
      va_copy(copy, list);
      RecordedCall recorded = {};
      if (!gRecorder->mIsInside) noteArguments(*gRecorder, recorded, target, method, copy);
      va_end(copy);
      return made([&] { return (gRecorder->mFunctions.original().*Member)(env, target, method, list); },
                  [&](JniRecorder& recorder, auto result) {
                    if constexpr (!std::is_void_v<Result>) noteResult(recorder, recorded, result, true);
                    add(recorder, name, recorded);
                  });
    }

    static void noteArguments(JniRecorder& recorder, RecordedCall& call, Target target, jmethodID method,
                              va_list list) {
      const auto found = shapes().find(method);
      if (found == shapes().end()) cannotRecord(name, "the method was never looked up");
      call.repeat = repeat;
      call.shape = shapeOf(found->second);
      if (call.shape == Shape::kUnknown) cannotRecord(name, found->second.c_str());
      call.arguments[0].slot = recorder.objectSlot(target);
      RecordedValue* next = &call.arguments[1];
      for (const char type : found->second) {
        if (type == 'L') {
          next++->slot = recorder.objectSlot(va_arg(list, jobject));
        } else if (type == 'D') {
          next++->real = va_arg(list, double);
        } else {
          next++->integer = type == 'J' ? va_arg(list, jlong) : va_arg(list, jint);
        }
      }
      next->method = method;
    }

    // Calls the JNI function with a va_list, as the library's own calls do.
    static Result listed(JNIEnv* env, Target target, jmethodID method, ...) {
      va_list list;
      va_start(list, method);
      if constexpr (std::is_void_v<Result>) {
        (env->functions->*Member)(env, target, method, list);
        va_end(list);
      } else {
        const Result result = (env->functions->*Member)(env, target, method, list);
        va_end(list);
        return result;
      }
    }

    static void repeat(JNIEnv* env, void** slots, const RecordedCall& call) {
      if constexpr (std::is_void_v<Result>) {
        again(env, slots, call);
      } else {
        keep(slots, call.result, again(env, slots, call));
      }
    }
    static Result again(JNIEnv* env, void** slots, const RecordedCall& call) {
      const auto target = static_cast<Target>(slots[call.arguments[0].slot]);
      const RecordedValue* const a = &call.arguments[1];
      const auto object = [&](size_t i) { return static_cast<jobject>(slots[a[i].slot]); };
      const auto integer = [&](size_t i) { return static_cast<jint>(a[i].integer); };
      switch (call.shape) {
        case Shape::kObject:
          return listed(env, target, a[1].method, object(0));
        case Shape::kObjectObject:
          return listed(env, target, a[2].method, object(0), object(1));
        case Shape::kObjectInt:
          return listed(env, target, a[2].method, object(0), integer(1));
        case Shape::kInt:
          return listed(env, target, a[1].method, integer(0));
        case Shape::kLong:
          return listed(env, target, a[1].method, a[0].integer);
        case Shape::kReal:
          return listed(env, target, a[1].method, a[0].real);
        case Shape::kReport:
          return listed(env, target, a[5].method, integer(0), a[1].integer, integer(2), a[3].integer,
                        object(4));
        default:
          return listed(env, target, a[0].method);
      }
    }
  };
};

JniRecorder::JniRecorder(JNIEnv* env, JniRecording& recording) : mFunctions(env), mRecording(recording) {
  gRecorder = this;
  JNINativeInterface_& table = mFunctions.table();
#define X(function)                                                            \
  RecorderFunctions::Plain<& JNINativeInterface_::function>::name = #function; \
  table.function = RecorderFunctions::Plain<&JNINativeInterface_::function>::call;
  ORLU_JNI_PLAIN
#undef X
#define X(function)                                                             \
  RecorderFunctions::Method<& JNINativeInterface_::function>::name = #function; \
  table.function = RecorderFunctions::Method<&JNINativeInterface_::function>::call;
  ORLU_JNI_METHODS
#undef X
}

JniRecorder::~JniRecorder() {
  gRecorder = nullptr;
}

uint32_t JniRecorder::slotOf(const void* value) const {
  const auto found = mSlots.find(value);
  return found == mSlots.end() ? kNullSlot : found->second;
}

// Returns the object's slot. An object without a slot existed before the recording and outlives it; such an
// object gets a new slot.
uint32_t JniRecorder::objectSlot(void* object) {
  if (object == nullptr) return kNullSlot;
  const uint32_t known = slotOf(object);
  if (known != kNullSlot) return known;
  return mSlots[object] = mRecording.addSlot(object);
}

// Returns the string's slot if the VM lent the string. Otherwise copies the string into a new slot.
uint32_t JniRecorder::textSlot(const char* text) {
  if (text == nullptr) return kNullSlot;
  const uint32_t lent = slotOf(text);
  return lent != kNullSlot ? lent : mRecording.addBytes(text, std::strlen(text) + 1);
}

void JniRecorder::madeReference() {
  if (++mReferences > mRecording.mMostReferences) mRecording.mMostReferences = mReferences;
}

void JniRecorder::freedReference() {
  --mReferences;
}

}  // namespace orlu::bench
