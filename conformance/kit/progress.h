// The progress of the process that runs a check: the check's step and the operation of each thread. The
// progress is in memory shared with the parent process, so it survives a crash and shows which operation
// hangs.
#pragma once

#include <chrono>
#include <string>

namespace orlu::conform {

// Allocates the memory of the progress, shared with processes started from now on. Returns false if the
// allocation fails.
bool shareProgress();
void unshareProgress();

// Sets the check's current step, which becomes evidence if the process dies or hangs.
void step(const std::string& text);
std::string currentStep();
// The step and all running operations, for evidence: "; step: the first 50 requests; in flush".
std::string whereabouts();

// Returns the name of an operation that has been running for longer than `limit`; "" if there is none.
std::string overdueOperation(std::chrono::seconds limit);
// Notes that an operation hangs. In processes started from now on, a check that starts this operation stops
// and reports "not run".
void noteHang(const std::string& operation);

// The current operation of this thread. Only operations of the library have a name; they are timed and must
// return. While a nested operation runs, its text and name replace those of the outer operation.
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

// Marks this thread as running a callback of the library. Operations inside callbacks have their own names,
// because some operations hang only there.
class CallbackScope {
public:
  CallbackScope();
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
  ~CallbackScope();
};
// Returns the operation's name; during a CallbackScope, with " inside a callback" appended.
std::string operationName(const std::string& operation);

}  // namespace orlu::conform
