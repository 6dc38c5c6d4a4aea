// Runs each check in a child process, and waits for the child in the parent process.
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>

#include "check.h"
#include "printable.h"

namespace orlu::conform {
namespace {

using Clock = std::chrono::steady_clock;

bool gEndsAtOnce = false;
int gReport = -1;  // pipe to the parent process; -1 in the parent

// Sends a message: its kind (F failed, S skipped, W warning, N note, C callback missed, E end), its text and
// a zero byte. A message is a single write, so that messages of different threads don't mix.
void send(char kind, const std::string& text) {
  if (gReport < 0) return;
  const std::string word = kind + text.substr(0, 2000);
  [[maybe_unused]] const ssize_t sent = write(gReport, word.c_str(), word.size() + 1);
}

class CheckListener : public testing::EmptyTestEventListener {
  void OnTestPartResult(const testing::TestPartResult& part) override {
    std::string text = part.message();
    for (const char* prefix : {"Failed\n", "Skipped\n", "\n"}) {
      if (text.rfind(prefix, 0) == 0) text.erase(0, std::strlen(prefix));
    }
    if (part.failed()) send('F', text);
    if (part.skipped()) send('S', text);
  }
};

[[noreturn]] void runHere(const Check& check) {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  try {
    check.run();
  } catch (const std::exception& e) {
    send('F', std::string("the check itself threw: ") + e.what());
  }
  send('E', "");
  if (gEndsAtOnce) _exit(0);
  // Runs the library's exit handlers and a sanitizer's leak check.
  std::exit(0);  // NOLINT(concurrency-mt-unsafe)
}

struct Child {
  pid_t pid = -1;
  int words = -1;
  int output = -1;  // the child's standard output and error
};

Child start(const Check& check) {
  int ends[2];
  Child child;
  child.output = memfd_create("output", MFD_CLOEXEC);
  if (child.output < 0 || pipe2(ends, O_CLOEXEC) != 0) return child;
  child.pid = fork();
  if (child.pid == 0) {
    gReport = ends[1];
    close(ends[0]);
    dup2(child.output, STDOUT_FILENO);
    dup2(child.output, STDERR_FILENO);
    runHere(check);
  }
  close(ends[1]);
  child.words = ends[0];
  return child;
}

Clock::time_point gStarted = Clock::now();
constexpr std::chrono::seconds kSilence{2};   // before the first line of progress
constexpr std::chrono::seconds kProgress{5};  // between lines of progress
constexpr std::chrono::milliseconds kLook{200};
// After this many checks with a missing callback, the patience drops to 1 s.
constexpr int kPatientChecks = 2;
int gMissingChecks = 0;

Clock::time_point budgetEnd() {
  const int budget = options().budgetSeconds;
  return budget == 0 ? Clock::time_point::max() : gStarted + std::chrono::seconds(budget);
}

// Appends the child's messages to `words` until the child closes the pipe; then returns "". If the child
// blocks or takes too long, returns the reason for giving up the check.
std::string listen(const Check& check, int descriptor, std::string& words) {
  const Clock::time_point start_ = Clock::now();
  const Clock::time_point limit = start_ + std::chrono::seconds(options().limitSeconds);
  Clock::time_point progress = start_ + kSilence;
  for (;;) {
    pollfd ready = {descriptor, POLLIN, 0};
    if (poll(&ready, 1, static_cast<int>(kLook.count())) > 0) {
      char buffer[4096];
      const ssize_t got = read(descriptor, buffer, sizeof buffer);
      if (got <= 0) return "";
      words.append(buffer, static_cast<size_t>(got));
      continue;
    }
    const Clock::time_point now = Clock::now();
    const auto patience = std::chrono::seconds(std::max(options().patienceSeconds, 2));
    const std::string overdue = overdueOperation(patience);
    if (!overdue.empty()) {
      noteHang(overdue);
      return overdue + " hangs: it has not returned after " + std::to_string(patience.count()) +
             " s; usual cause: it waits for a counter that an early return does not decrement, or for its "
             "own thread";
    }
    if (now > limit) return "hangs: not finished after " + std::to_string(options().limitSeconds) + " s";
    if (now > budgetEnd()) {
      return "not finished within the time for all checks, " + std::to_string(options().budgetSeconds) +
             " s (--budget)";
    }
    if (now < progress) continue;
    progress = now + kProgress;
    std::fprintf(stderr, "        %-12s%.0f s: %s\n", check.name,
                 std::chrono::duration<double>(now - start_).count(), currentStep().c_str());
  }
}

// Returns true if the check finished.
bool readWords(const std::string& words, Outcome& outcome) {
  bool ended = false;
  for (size_t begin = 0; begin < words.size();) {
    const std::string word = words.c_str() + begin;
    begin += word.size() + 1;
    const std::string text = probe::printable(word.substr(1));
    switch (word[0]) {
      case 'F':
        outcome.verdict = Verdict::kFailed;
        outcome.evidence.push_back(text);
        break;
      case 'S':
        if (outcome.verdict == Verdict::kPassed) outcome.verdict = Verdict::kSkipped;
        outcome.evidence.push_back(text);
        break;
      case 'W':
        outcome.warnings.push_back(text);
        break;
      case 'C':
        if (++gMissingChecks == kPatientChecks) options().patienceSeconds = 1;
        break;
      case 'N':
        outcome.notes.push_back(text);
        break;
      default:
        ended = true;
    }
  }
  return ended;
}

// Returns the first line with a sanitizer's summary or runtime error, else the last line that is not blank.
std::string lastOutput(int descriptor) {
  std::ifstream output("/proc/self/fd/" + std::to_string(descriptor));
  std::string last;
  for (std::string line; std::getline(output, line);) {
    const bool isSummary =
        line.rfind("SUMMARY: ", 0) == 0 || line.find("runtime error: ") != std::string::npos;
    if (isSummary) return line;
    if (line.find_first_not_of(' ') != std::string::npos) last = line;
  }
  return last;
}

std::string ending(int status) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the kit has one thread; libraries run in processes of their own
  if (WIFSIGNALED(status)) return std::string("the process ended: ") + strsignal(WTERMSIG(status));
  return "the process ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

Options& options() {
  static Options options;
  return options;
}

void note(const std::string& text) {
  send('N', text);
}

void warn(const std::string& text) {
  send('W', text);
}

void endAtOnce() {
  gEndsAtOnce = true;
}

void endNotTried(const std::string& why) {
  send('S', "not run: " + why);
  send('E', "");
  _exit(0);
}

void missCallback() {
  static std::atomic<bool> isReported{false};
  if (!isReported.exchange(true)) send('C', "");
}

void startBudget() {
  gStarted = Clock::now();
}

testing::TestEventListener* newCheckListener() {
  return new CheckListener();
}

Outcome runApart(const Check& check) {
  Outcome outcome;
  const Clock::time_point start_ = Clock::now();
  if (start_ > budgetEnd()) return {Verdict::kSkipped, {kOutOfTime}, {}, {}, 0};
  if (!shareProgress()) return {Verdict::kFailed, {"can't share memory with the check"}, {}, {}, 0};
  const Child child = start(check);
  std::string words;
  const std::string late = child.pid > 0 ? listen(check, child.words, words) : "can't be started";
  // A hanging process can't clean up.
  if (!late.empty() && child.pid > 0) kill(child.pid, SIGKILL);
  int status = -1;
  if (child.pid > 0) waitpid(child.pid, &status, 0);
  const bool ended = readWords(words, outcome);
  if (!late.empty()) {
    outcome.evidence.insert(outcome.evidence.begin(), late + whereabouts());
  } else if (!ended || status != 0) {
    const std::string output = lastOutput(child.output);
    outcome.evidence.insert(outcome.evidence.begin(),
                            (ended ? "after the check, " : "") + ending(status) +
                                (ended ? "" : whereabouts()) +
                                (output.empty() ? "" : "; last output: " + probe::printable(output)));
  }
  if (!late.empty() || !ended || status != 0) outcome.verdict = Verdict::kFailed;
  if (child.words >= 0) close(child.words);
  if (child.output >= 0) close(child.output);
  unshareProgress();
  outcome.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  return outcome;
}

}  // namespace orlu::conform
