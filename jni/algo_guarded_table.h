// The algorithm library's table of operations with a guard around each call. The guard catches whatever the
// library throws and clears any Java exception that the library leaves on the calling thread. It logs both
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
  // Gets a table from the provider; the table stays empty if there is no library. If `javaVm` is null, the
  // guard does not check for Java exceptions.
  explicit AlgoGuardedTable(JavaVM* javaVm);
  AlgoGuardedTable(const AlgoGuardedTable&) = delete;
  AlgoGuardedTable& operator=(const AlgoGuardedTable&) = delete;

  const AlgoInterfaceCallbacks& operations() const { return mOperations; }

  // The calling thread's environment; null if the thread is not attached or there is no VM.
  JNIEnv* environment() const;

  // Calls an operation that the library offers. `env` is the calling thread's environment or null. Returns
  // the operation's result, or `failed` if it throws.
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

  // Returns a new block or null. Logs an error if the library does not offer the operation.
  void* createBlock(AlgoMetadataKind kind) const;
  // Ignores null.
  void destroyBlock(void* block) const;
  // Returns the block's size in bytes; 0 if the block is null or the library can't report the size.
  unsigned sizeOf(void* block) const;
  AlgoMetadataEntry entryOf(void* parameterBlock) const;
  // setValue() copies `size` bytes from `data` into the block. getValue() copies at most `size` bytes from
  // the block to `data`. Both return the library's status (0: success), or -1 if the block is null or the
  // operation is missing or throws.
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

// Wraps the caller's visitor for the algorithm library. The caller's visitor refers to data that is gone when
// the operation returns, and Java objects in that data belong to the caller's thread. The wrapper therefore
// returns -1 on any other thread and after the loan ends.
class LentVisitor {
public:
  // Borrows `visitor`, which may be empty.
  explicit LentVisitor(const AlgoMetadataVisitor& visitor);
  LentVisitor(const LentVisitor&) = delete;
  LentVisitor& operator=(const LentVisitor&) = delete;
  // Ends the loan.
  ~LentVisitor();

  // The wrapper to pass to the library; empty if the caller's visitor is empty.
  AlgoMetadataVisitor get() const;

private:
  struct Loan;
  std::shared_ptr<Loan> mLoan;
};

}  // namespace orlu
