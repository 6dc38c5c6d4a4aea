#include "store_hammer.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>

#include "scene.h"

namespace orlu::conform {
namespace {

constexpr int kThreads = 8;
constexpr int kKeys = 8;  // keys of each thread in the shared block
constexpr double kDefaultSeconds = 3;
// Maximum number of rounds for the default time. Each round has a new shared block, because threads collide
// more often in a small block.
constexpr int kRounds = 1000;
// Minimum number of rounds for the default time. All of them run, even if that takes longer: fewer rounds
// might not reveal a missing lock.
constexpr int kFewestRounds = 200;
constexpr size_t kLarge = 6000;  // bytes: copying them takes long enough to be interrupted
constexpr char kOfAll[] = "set_by_all_threads";

// setBare() and getBare() bypass the observer, because its overhead would keep the threads from colliding.
int setBare(void* block, const std::string& key, const std::string& bytes) {
  return call(-1, Library::open()->bareTable().metadataOps.setValue, block, kParameter, key.c_str(),
              static_cast<void*>(const_cast<char*>(bytes.data())), static_cast<unsigned>(bytes.size()));
}

std::string getBare(void* block, const std::string& key, size_t size) {
  std::string bytes(size, '\0');
  const int status = call(-1, Library::open()->bareTable().metadataOps.getValue, block, kParameter,
                          key.c_str(), static_cast<void*>(bytes.data()), static_cast<unsigned>(bytes.size()));
  return status == 0 ? bytes : "";
}

// Every 130 us, pauses the thread that created this object, even inside the library, so that other threads
// run. This reveals a missing lock even on one processor.
class Interruptions {
public:
  Interruptions() {
    struct sigaction action = {};
    action.sa_handler = [](int) {
      const int error = errno;
      const timespec moment = {0, 20'000};
      nanosleep(&moment, nullptr);
      errno = error;
    };
    action.sa_flags = SA_RESTART;
    sigaction(SIGURG, &action, nullptr);
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGURG;
    event._sigev_un._tid = static_cast<pid_t>(syscall(SYS_gettid));
    mIsMade = timer_create(CLOCK_MONOTONIC, &event, &mTimer) == 0;
    const itimerspec interval = {
        {0, 130'000},
        {0, 130'000}
    };
    if (mIsMade) timer_settime(mTimer, 0, &interval, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  ~Interruptions() {
    if (mIsMade) timer_delete(mTimer);
  }

private:
  timer_t mTimer = {};
  bool mIsMade;
};

// wait() returns when all threads have called it.
class Barrier {
public:
  void wait() {
    const int turn = mTurn;
    if (++mArrived == kThreads) {
      mArrived = 0;
      ++mTurn;
    } else {
      while (mTurn == turn) std::this_thread::yield();
    }
  }

private:
  std::atomic<int> mArrived{0};
  std::atomic<int> mTurn{0};
};

// Counts values that were read and differ from the expected value. Describes the first such value.
struct Wrong {
  int count = 0;
  std::string first;

  void expect(const std::string& key, const std::string& wanted, const std::string& seen) {
    if (seen == wanted) return;
    if (count++ > 0) return;
    first = key + " must have " + std::to_string(wanted.size()) + " bytes of value " +
            std::to_string(static_cast<unsigned char>(wanted[0])) +
            (seen.empty() ? ", but is missing" : ", but has other bytes");
  }
  void add(const Wrong& other) {
    if (count == 0) first = other.first;
    count += other.count;
  }
};

struct Hammer {
  Barrier barrier;
  void* shared = nullptr;  // the block of the current round
  int rounds = 0;
  bool isDone = false;
  Wrong wrong[kThreads];

  // In sorted order, keys of different threads alternate. In a map, each entry is therefore next to entries
  // of other threads.
  static std::string key(int number, int thread) {
    return std::to_string(number) + "_of_thread_" + std::to_string(thread);
  }
  static std::string bytes(int round, int number, int thread, size_t size) {
    return std::string(size, static_cast<char>(round * 64 + number * kThreads + thread));
  }

  // Sets the thread's own keys and the common key in the shared block, and checks each value. Then creates a
  // block, sets and checks one value in it, and destroys this block.
  void strike(int round, int thread) {
    Wrong& own = wrong[thread];
    for (int i = 0; i < kKeys; ++i) {
      const std::string small = bytes(round, i, thread, 8);
      setBare(shared, key(i, thread), small);
      own.expect(key(i, thread), small, getBare(shared, key(i, thread), small.size()));
    }
    setBare(shared, kOfAll, bytes(round, 0, thread, kLarge));
    const std::string seen = getBare(shared, kOfAll, kLarge);
    // May be any thread's value, but not a mixture.
    own.expect(kOfAll, std::string(kLarge, seen.empty() ? '\0' : seen[0]), seen);
    const auto& ops = Library::open()->bareTable().metadataOps;
    void* const block = call<void*>(nullptr, ops.createMetadata, kParameterBlock);
    const std::string small = bytes(round, 0, thread, 8);
    setBare(block, "own", small);
    own.expect("own", small, getBare(block, "own", small.size()));
    callPlain(ops.destroyMetadata, block);
  }

  // Runs on the first thread. Creates the shared block of each round, and checks it at the end of the round.
  // The other threads wait during both.
  void lead() {
    const std::chrono::duration<double> time(options().hammerSeconds);
    const auto end = std::chrono::steady_clock::now() + time;
    const double share = time.count() / kDefaultSeconds;
    const auto goesOn = [&] {
      return rounds < kFewestRounds * share || std::chrono::steady_clock::now() < end;
    };
    for (; rounds < kRounds * share && goesOn(); ++rounds) {
      const Block block;
      shared = block.handle();
      barrier.wait();
      strike(rounds, 0);
      barrier.wait();
      for (int thread = 0; thread < kThreads; ++thread) {
        for (int i = 0; i < kKeys; ++i) {
          wrong[0].expect(key(i, thread), bytes(rounds, i, thread, 8), getBare(shared, key(i, thread), 8));
        }
      }
    }
    isDone = true;
    barrier.wait();
  }

  void follow(int thread) {
#ifndef __SANITIZE_THREAD__  // ThreadSanitizer finds races without interruptions, and delays signals
    const Interruptions interruptions;
#endif
    for (;;) {
      barrier.wait();
      if (isDone) return;
      strike(rounds, thread);
      barrier.wait();
    }
  }
};

}  // namespace

void hammerStore() {
  step(
      "eight threads use one block, and blocks of their own; "
      "a crash here usually means a map without a lock");
  Hammer hammer;
  std::vector<std::thread> threads;
  for (int i = 1; i < kThreads; ++i) threads.emplace_back([&hammer, i] { hammer.follow(i); });
  hammer.lead();
  for (std::thread& thread : threads) thread.join();
  Wrong all;
  for (const Wrong& one : hammer.wrong) all.add(one);
  const int values = hammer.rounds * kThreads * (2 * kKeys + 2);
  HOLDS(all.count == 0) << "eight threads use the store at once and must read whole values that were set: "
                        << all.count << " of " << values << " values are wrong, the first: " << all.first
                        << "; usual cause: the map of a block, or of all blocks, has no lock";
  note("8 threads, " + std::to_string(values) + " values in " + std::to_string(hammer.rounds) + " rounds");
}

}  // namespace orlu::conform
