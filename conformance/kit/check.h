// A check tests one rule that algorithm libraries must follow. It runs in its own process, so that a crash or
// a hang fails only this check.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "progress.h"

namespace orlu::conform {

struct Check {
  const char* name;
  const char* promise;  // the rule in one short sentence, for reports
  void (*run)();        // runs in the check's process; fails through HOLDS or GoogleTest's macros
};

// All checks, in the order in which they run.
const std::vector<Check>& allChecks();

// Fails the check unless the condition holds. The streamed text is the evidence; reports omit the condition.
#define HOLDS(condition)          \
  GTEST_AMBIGUOUS_ELSE_BLOCKER_   \
  if (condition) {                \
  } else /* NOLINT: in a macro */ \
    ADD_FAILURE()

// note() adds a remark to the check's result, and warn() adds a warning. Neither fails the check. Both are
// thread-safe.
void note(const std::string& text);
void warn(const std::string& text);
// Makes the check's process skip its exit handlers when the check has returned.
void endAtOnce();
// Exits the check's process now. Keeps the failures so far; reports the rest of the check as "not run:
// <why>".
[[noreturn]] void endNotTried(const std::string& why);
// Counts a missing callback. After two checks with missing callbacks, later checks wait for a shorter time.
void missCallback();

struct Options {
  std::string library;
  int patienceSeconds = 10;   // limit for each callback and each operation
  int limitSeconds = 120;     // per check
  int budgetSeconds = 110;    // for all checks; 0 for no limit
  double hostileSeconds = 3;  // duration of the check that passes random parameters
  double hammerSeconds = 3;   // duration of the check in which eight threads set values
  unsigned seed = 1;
  bool allowNoise = false;  // whether to only warn if equal requests get different outputs
  std::string jvm;          // path of libjvm.so
};

// The command-line options, read before the first check.
Options& options();

enum class Verdict { kPassed, kFailed, kSkipped };

struct Outcome {
  Verdict verdict = Verdict::kPassed;
  std::vector<std::string> evidence;  // why the check failed or was skipped
  std::vector<std::string> warnings;
  std::vector<std::string> notes;
  double seconds = 0;
};

// Reported for checks that are skipped because the time budget is used up; ./run conform then fails.
constexpr char kOutOfTime[] = "not run: the time for all checks is over (--budget)";

void startBudget();

// Runs the check in a child process and waits until it exits. Kills the child if it blocks in one operation,
// or exceeds its time limit or the time budget. Prints progress to standard error. Call this function while
// no other thread runs.
Outcome runApart(const Check& check);

// Sends a check's failures and its reason for skipping to the parent process. Install it once.
testing::TestEventListener* newCheckListener();

}  // namespace orlu::conform
