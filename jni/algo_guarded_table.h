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
  // Gets a table from the provider; it is empty when there is no library. `javaVm`, which may be null, is
  // where Java exceptions are looked for.
  explicit AlgoGuardedTable(JavaVM* javaVm);
  AlgoGuardedTable(const AlgoGuardedTable&) = delete;
  AlgoGuardedTable& operator=(const AlgoGuardedTable&) = delete;

  const AlgoInterfaceCallbacks& operations() const { return mOperations; }

  // What the callable returns, or `failed` when it throws. The callable must be offered.
  template <typename Result, typename... Parameters, typename... Arguments>
  Result call(const char* operation, const std::function<Result(Parameters...)>& callable, Result failed,
              Arguments&&... arguments) const {
    Result result = failed;
    try {
      result = callable(std::forward<Arguments>(arguments)...);
    } catch (...) {
      logThrew(operation);
    }
    clearLeftException(operation);
    return result;
  }

  // A new block, or null; a failure to offer it is logged.
  void* createBlock(AlgoMetadataKind kind) const;
  // Null is skipped.
  void destroyBlock(void* block) const;
  // The block's bytes; 0 when they can't be asked for.
  unsigned sizeOf(void* block) const;
  AlgoMetadataEntry entryOf(void* parameterBlock) const;

private:
  static void logThrew(const char* operation);
  void clearLeftException(const char* operation) const;

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
