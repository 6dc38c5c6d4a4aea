// A check: one promise that an algorithm library has to keep, tried in a process of its own, so that a crash
// or a hang is a failure with a name.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "progress.h"

namespace orlu::conform {

struct Check {
  const char* name;
  const char* promise;  // in a few words, for people
  void (*run)();        // in the check's own process; says what is wrong with HOLDS or gtest's own macros
};

// All of them, in the order in which they run.
const std::vector<Check>& allChecks();

// Fails the check unless the condition holds; what is streamed in is the evidence, all that people read.
#define HOLDS(condition)         \
  GTEST_AMBIGUOUS_ELSE_BLOCKER_  \
  if (condition) {               \
  } else /* NOLINT: a macro's */ \
    ADD_FAILURE()

// Said beside the verdict: what was seen, and what is not wrong yet unwelcome. Any thread may call these.
void note(const std::string& text);
void warn(const std::string& text);
// The check's process ends when the check does, without taking anything down.
void endAtOnce();
// Ends the check's process now: what it has found so far stands, the rest was "not tried: <why>".
[[noreturn]] void endNotTried(const std::string& why);
// A callback did not come. Later checks wait for less long, once two checks have waited in vain.
void missCallback();

struct Options {
  std::string library;
  int patienceSeconds = 10;  // with a callback
  int limitSeconds = 120;    // for each check
  int budgetSeconds = 110;   // for all of them; 0 for no limit
  double hostileSeconds = 3;
  unsigned seed = 1;
  bool allowNoise = false;  // outputs of one request may differ: a warning
  std::string jvm;          // libjvm.so
};

// What the command line says; set once, before the first check.
Options& options();

enum class Verdict { kPassed, kFailed, kSkipped };

struct Outcome {
  Verdict verdict = Verdict::kPassed;
  std::vector<std::string> evidence;  // of a failure or a skip
  std::vector<std::string> warnings;
  std::vector<std::string> notes;
  double seconds = 0;
};

// Why a check is skipped when the time for all checks is over. The command fails then.
constexpr char kOutOfTime[] = "not tried: the time for all checks is over (--budget)";

// The time for all checks begins anew.
void startBudget();

// Runs the check in a child process and waits for it, for the time limit at most, and until the time for all
// checks is over. Reports progress on standard error. Must be called inside a test, with no other thread
// running.
Outcome runApart(const Check& check);

// Sends what a check fails and skips with to the process that waits for it; installed once.
testing::TestEventListener* newCheckListener();

}  // namespace orlu::conform
