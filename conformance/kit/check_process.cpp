// The check's process, and the one that waits for it.
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>

#include "check.h"

namespace orlu::conform {
namespace {

using Clock = std::chrono::steady_clock;

// What the process that waits can still read when the other is gone: the step, and the operation of each
// thread.
struct Trace {
  static constexpr int kThreads = 64;
  char step[256];
  char operations[kThreads][160];
};

Trace* gTrace = nullptr;
bool gEndsAtOnce = false;
int gReport = -1;  // in the check's process: where its words go

// A kind of word (F failed, S skipped, W warning, N note, E end), the text, and a zero. One write each, so
// that threads do not mix.
void send(char kind, const std::string& text) {
  if (gReport < 0) return;
  const std::string word = kind + text.substr(0, 2000);
  [[maybe_unused]] const ssize_t sent = write(gReport, word.c_str(), word.size() + 1);
}

void copyInto(char* to, size_t room, const std::string& text) {
  const size_t length = std::min(room - 1, text.size());
  std::memcpy(to, text.data(), length);
  to[length] = '\0';
}

char* ownOperation() {
  static std::atomic<int> threads{0};
  thread_local const int slot = threads++ % Trace::kThreads;
  return gTrace == nullptr ? nullptr : gTrace->operations[slot];
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
  // Runs what the library left for the process's end, and the leak check of a sanitizer.
  std::exit(0);  // NOLINT(concurrency-mt-unsafe)
}

struct Child {
  pid_t pid = -1;
  int words = -1;
  int output = -1;  // its standard output and error
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

// Reads words until the process closes its end, or the time is over. False then.
bool listen(int descriptor, std::chrono::seconds limit, std::string& words) {
  const Clock::time_point end = Clock::now() + limit;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd ready = {descriptor, POLLIN, 0};
    if (left <= 0 || poll(&ready, 1, static_cast<int>(left)) == 0) return false;
    char buffer[4096];
    const ssize_t got = read(descriptor, buffer, sizeof buffer);
    if (got <= 0) return true;
    words.append(buffer, static_cast<size_t>(got));
  }
}

// True when the check came to its end.
bool readWords(const std::string& words, Outcome& outcome) {
  bool ended = false;
  for (size_t begin = 0; begin < words.size();) {
    const std::string word = words.c_str() + begin;
    begin += word.size() + 1;
    const std::string text = word.substr(1);
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
      case 'N':
        outcome.notes.push_back(text);
        break;
      default:
        ended = true;
    }
  }
  return ended;
}

// What a sanitizer sums up, or else the last line.
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

std::string whereabouts() {
  std::string text = *gTrace->step == '\0' ? "" : std::string("; step: ") + gTrace->step;
  for (const char* operation : gTrace->operations) {
    if (*operation != '\0') text += std::string("; in ") + operation;
  }
  return text;
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

void step(const std::string& text) {
  if (gTrace != nullptr) copyInto(gTrace->step, sizeof gTrace->step, text);
}

Operation::Operation(const std::string& text) {
  char* const own = ownOperation();
  if (own == nullptr) return;
  mBefore = own;
  copyInto(own, sizeof gTrace->operations[0], text);
}

Operation::~Operation() {
  char* const own = ownOperation();
  if (own != nullptr) copyInto(own, sizeof gTrace->operations[0], mBefore);
}

testing::TestEventListener* newCheckListener() {
  return new CheckListener();
}

Outcome runApart(const Check& check) {
  Outcome outcome;
  const Clock::time_point start_ = Clock::now();
  void* const shared =
      mmap(nullptr, sizeof(Trace), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) return {Verdict::kFailed, {"no memory to share with the check"}, {}, {}, 0};
  gTrace = static_cast<Trace*>(shared);
  const Child child = start(check);
  std::string words;
  const bool inTime =
      child.pid > 0 && listen(child.words, std::chrono::seconds(options().limitSeconds), words);
  // The threads of one that hangs are of no interest any more.
  if (!inTime && child.pid > 0) kill(child.pid, SIGKILL);
  int status = -1;
  if (child.pid > 0) waitpid(child.pid, &status, 0);
  const bool ended = readWords(words, outcome);
  if (!inTime) {
    outcome.evidence.insert(
        outcome.evidence.begin(),
        "hangs: not done after " + std::to_string(options().limitSeconds) + " s" + whereabouts());
  } else if (!ended || status != 0) {
    const std::string output = lastOutput(child.output);
    outcome.evidence.insert(outcome.evidence.begin(),
                            (ended ? "when the check was over, " : "") + ending(status) +
                                (ended ? "" : whereabouts()) +
                                (output.empty() ? "" : "; its last words: " + output));
  }
  if (!inTime || !ended || status != 0) outcome.verdict = Verdict::kFailed;
  if (child.words >= 0) close(child.words);
  if (child.output >= 0) close(child.output);
  munmap(shared, sizeof(Trace));
  gTrace = nullptr;
  outcome.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  return outcome;
}

}  // namespace orlu::conform
