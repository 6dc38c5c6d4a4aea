// A table of the algorithm library's operations, and the guard around each call of one: whatever the library
// throws ends there, and a Java exception that it leaves on the calling thread is cleared. Both are logged
// with the operation's name.
#pragma once

#include <jni.h>

#include <functional>
#include <memory>
#include <utility>

#include "algo_interface.h"

namespace orlu {

class AlgoGuardedTable {
public:
  // Gets a table from the provider; it is empty if there is no library. `javaVm` may be null: then no Java
  // exception is looked for.
  explicit AlgoGuardedTable(JavaVM* javaVm);
  AlgoGuardedTable(const AlgoGuardedTable&) = delete;
  AlgoGuardedTable& operator=(const AlgoGuardedTable&) = delete;

  const AlgoInterfaceCallbacks& operations() const { return mOperations; }

  // The calling thread's environment; null if it has none, or there is no VM.
  JNIEnv* environment() const;

  // Calls an operation that the library offers, on a thread whose environment is `env` (null if it has none).
  // Returns what the operation returns, or `failed` if it throws.
  template <typename Result, typename... Parameters, typename... Arguments>
  Result call(JNIEnv* env, const char* operation, const std::function<Result(Parameters...)>& callable,
              Result failed, Arguments&&... arguments) const {
    Result result = failed;
    try {
      result = callable(std::forward<Arguments>(arguments)...);
    } catch (...) {
      logThrew(operation);
    }
    clearLeftException(env, operation);
    return result;
  }

  // A new block, or null; logs if the library does not offer it.
  void* createBlock(AlgoMetadataKind kind) const;
  // Null is skipped.
  void destroyBlock(void* block) const;
  // The block's bytes; 0 if it is null or the library can't tell.
  unsigned sizeOf(void* block) const;
  AlgoMetadataEntry entryOf(void* parameterBlock) const;
  // Copies `size` bytes into the block or, at most, out of it. Returns 0, the library's own status, or -1 if
  // the block is null, or the operation missing or throwing.
  int setValue(JNIEnv* env, void* block, const char* section, const char* key, void* data,
               unsigned size) const;
  int getValue(JNIEnv* env, void* block, const char* section, const char* key, void* data,
               unsigned size) const;

private:
  static void logThrew(const char* operation);
  static void clearLeftException(JNIEnv* env, const char* operation);

  JavaVM* mJavaVm;
  AlgoInterfaceCallbacks mOperations;
};

// A visitor as the algorithm library gets it. What the caller's visitor refers to is gone when the operation
// returns, and Java's objects belong to the caller's thread; so it returns -1 on any other thread, and when
// the loan is over.
class LentVisitor {
public:
  // `visitor` is the caller's; it may be empty.
  explicit LentVisitor(const AlgoMetadataVisitor& visitor);
  LentVisitor(const LentVisitor&) = delete;
  LentVisitor& operator=(const LentVisitor&) = delete;
  // Ends the loan.
  ~LentVisitor();

  // What to hand over; empty when the caller's visitor is.
  AlgoMetadataVisitor get() const;

private:
  struct Loan;
  std::shared_ptr<Loan> mLoan;
};

}  // namespace orlu
