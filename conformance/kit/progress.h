// What a check's process is doing, in memory that the process which waits for it shares: the step, and the
// operation of each thread. It outlives a crash, and it shows which operation hangs.
#pragma once

#include <chrono>
#include <string>

namespace orlu::conform {

// Shares memory with the processes that are started from now on. False if there is none.
bool shareProgress();
void unshareProgress();

// What the check is doing; it is the evidence when the process ends or hangs.
void step(const std::string& text);
std::string currentStep();
// The step and all operations, for evidence: "; step: the first 50 requests; in flush".
std::string whereabouts();

// The operation that has not returned for so long; "" if there is none.
std::string overdueOperation(std::chrono::seconds limit);
// Operations known to hang, in the processes that are started from now on: a check that calls one is over,
// and reports "not tried".
void noteHang(const std::string& operation);

// The operation that this thread is in. The library's own operations have a name: they are timed, and must
// return. Nested ones replace the text until they end.
class Operation {
public:
  explicit Operation(const std::string& text, const std::string& name = "");
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
  ~Operation();

private:
  std::string mText;
  std::string mName;
};

// This thread is in a callback of the library's: an operation that hangs there may well work elsewhere.
class CallbackScope {
public:
  CallbackScope();
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
  ~CallbackScope();
};
// "flush" or "flush inside a callback".
std::string operationName(const std::string& operation);

}  // namespace orlu::conform
