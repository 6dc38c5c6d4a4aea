// Parameters as real requests have them, and several threads at the store and at the images at once.
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>

#include "checks.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr size_t kLongest = 120;  // letters of a name
constexpr int kThreads = 8;
constexpr int kRounds = 1500;
// Of each thread, on a loaded machine: fewer rounds then, instead of a check that seems to hang.
constexpr std::chrono::seconds kMostHammering{2};

struct Entry {
  std::string section;
  std::string key;
  std::string bytes;
};

// Bytes that no other entry has.
std::string distinct(size_t number, size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(number * 37 + i * 11 + (number >> 3));
  return bytes;
}

// All names of the service's, and more: long ones, each a beginning of the next, or with another last letter.
std::vector<Entry> allEntries() {
  std::vector<Entry> entries;
  for (const ParameterSize& row : kParameters) {
    entries.push_back({row.section, row.key, distinct(entries.size() + 1, std::max<size_t>(row.size, 1))});
  }
  std::string key = "conform_key_with_a_long_beginning";
  for (size_t i = 0; entries.size() < kMostValues; ++i) {
    if (i % 2 == 0 && key.size() < kLongest) key += static_cast<char>('a' + i % 26);
    const std::string last = i % 2 == 0 ? "" : std::string(1, static_cast<char>('A' + i % 26));
    const char* const section = i % 3 == 0 ? kControl : kParameter;
    entries.push_back({section, key + last + (key.size() < kLongest ? "" : std::to_string(i)),
                       distinct(entries.size() + 1, 1 + i % 300)});
  }
  return entries;
}

std::string wrongValue(const Block& block, const Entry& entry) {
  std::string seen(entry.bytes.size(), '\x5A');
  const int status = block.get(entry.section.c_str(), entry.key.c_str(), seen.data(), seen.size());
  const std::string what = entry.section + " " + entry.key + ", " + std::to_string(seen.size()) + " bytes, ";
  if (status != 0) return what + "is not found: getValue returned " + std::to_string(status);
  return seen == entry.bytes ? "" : what + "has the bytes of another value";
}

std::string wrongValues(const Block& block, const std::vector<Entry>& entries) {
  size_t wrong = 0;
  std::string first;
  for (const Entry& entry : entries) {
    const std::string text = wrongValue(block, entry);
    if (text.empty()) continue;
    if (wrong++ == 0) first = text;
  }
  return wrong == 0
             ? ""
             : std::to_string(wrong) + " of " + std::to_string(entries.size()) + " are wrong; " + first;
}

// A callable without this side's watching, which would keep the threads apart.
int setBare(void* block, const std::string& key, int& value) {
  return call(-1, Library::open()->bareTable().metadataOps.setValue, block, kParameter, key.c_str(),
              static_cast<void*>(&value), static_cast<unsigned>(sizeof value));
}

int getBare(void* block, const std::string& key, int& value) {
  return call(-1, Library::open()->bareTable().metadataOps.getValue, block, kParameter, key.c_str(),
              static_cast<void*>(&value), static_cast<unsigned>(sizeof value));
}

// Interrupts the thread that made it at odd moments, inside the library too, and lets others run: what has no
// lock shows then on a machine with one processor as well.
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

// What a thread found wrong with its values.
struct Wrong {
  int values = 0;  // looked at
  int count = 0;
  std::string first;
};

// Sets and reads keys of its own, new ones and one that is set again, in a block of its own and in a shared
// one.
Wrong hammer(int thread, void* shared, const std::atomic<bool>& isStarted) {
  Wrong wrong;
  const Block own;
  // Names of all threads lie beside one another in any order that a store may have.
  const std::string end = "_of_thread_" + std::to_string(thread);
  const auto expect = [&](void* block, const std::string& key, int value) {
    int seen = -1;
    ++wrong.values;
    if (getBare(block, key, seen) == 0 && seen == value) return;
    if (wrong.count++ == 0)
      wrong.first = key + " was set to " + std::to_string(value) + ", and is " + std::to_string(seen);
  };
  while (!isStarted) std::this_thread::yield();
#ifndef __SANITIZE_THREAD__  // which sees races without, and holds signals back
  const Interruptions interruptions;
#endif
  const auto deadline = std::chrono::steady_clock::now() + kMostHammering;
  int rounds = 0;
  for (; rounds < kRounds && std::chrono::steady_clock::now() < deadline; ++rounds) {
    for (void* block : {own.handle(), shared}) {
      const std::string key = "key_" + std::to_string(rounds) + end;
      setBare(block, key, rounds);
      setBare(block, end, rounds);
      expect(block, key, rounds);
      expect(block, end, rounds);
    }
  }
  for (int round = 0; round < rounds; ++round) expect(shared, "key_" + std::to_string(round) + end, round);
  return wrong;
}

// Adds the number of values that were looked at to `values`.
void hammerStore(int& values) {
  step("eight threads at blocks of their own and at one that they share");
  const Block shared;
  std::atomic<bool> isStarted{false};
  std::vector<Wrong> wrong(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] { wrong[static_cast<size_t>(i)] = hammer(i, shared.handle(), isStarted); });
  }
  isStarted = true;
  for (std::thread& thread : threads) thread.join();
  Wrong all;
  for (const Wrong& one : wrong) {
    if (all.count == 0) all.first = one.first;
    all.count += one.count;
    all.values += one.values;
  }
  values += all.values;
  HOLDS(all.count == 0) << "eight threads at the store at once must each read what they set: " << all.count
                        << " of " << all.values << " values are wrong, the first: " << all.first
                        << "; usually the map of a block, or of all blocks, has no lock";
}

// A client with pictures of its own, which must not be mixed with others'.
struct Painter {
  static constexpr size_t kPictures = 6;
  static constexpr ImageShape kShape = {kFormatNv21, 640, 480, 0, 0, false};

  Client client;
  Inbox inbox;
  std::vector<std::unique_ptr<Image>> inputs;
  std::vector<std::unique_ptr<Image>> outputs;
  std::vector<std::unique_ptr<Block>> blocks;

  explicit Painter(int filler) {
    for (size_t i = 0; i < kPictures; ++i) {
      inputs.push_back(std::make_unique<Image>(kShape, filler + static_cast<int>(i)));
      outputs.push_back(std::make_unique<Image>(kShape, 99));
      blocks.push_back(std::make_unique<Block>());
    }
  }
  void paint(bool waitsForEach) {
    for (size_t i = 0; i < kPictures; ++i) {
      Request request;
      request.nativeReq = i + 1;
      request.inputs = {inputs[i].get()};
      request.outputs = {outputs[i].get()};
      submit(client, inbox, *blocks[i], request);
      if (waitsForEach) inbox.waitFor(i + 1);
    }
    for (size_t i = 0; i < kPictures; ++i) {
      HOLDS(inbox.waitFor(i + 1)) << kNoCallback << "request " << i + 1 << " of several at once";
    }
  }
};

void paintAtOnce() {
  std::vector<std::unique_ptr<Painter>> alone;
  std::vector<std::unique_ptr<Painter>> together;
  for (int i = 0; i < 4; ++i) {
    step("the pictures of client " + std::to_string(i) + ", one after another");
    alone.push_back(std::make_unique<Painter>(i * 10));
    alone.back()->paint(true);
    together.push_back(std::make_unique<Painter>(i * 10));
  }
  step("the pictures of four clients at once");
  std::vector<std::thread> threads;
  threads.reserve(together.size());
  for (const auto& painter : together) threads.emplace_back([&painter] { painter->paint(false); });
  for (std::thread& thread : threads) thread.join();
  size_t different = 0;
  for (size_t client = 0; client < together.size(); ++client) {
    for (size_t i = 0; i < Painter::kPictures; ++i) {
      if (alone[client]->outputs[i]->bytes() != together[client]->outputs[i]->bytes()) ++different;
    }
  }
  const std::string text =
      "the outputs of requests at once must be those of the same requests one after another: " +
      std::to_string(different) + " of 24 differ; usually workers share a buffer";
  if (different > 0 && options().allowNoise) return warn(text);
  HOLDS(different == 0) << text;
}

}  // namespace

void checkKeys() {
  OPEN_LIBRARY(library);
  const std::vector<Entry> entries = allEntries();
  Block block;
  step("setting " + std::to_string(entries.size()) + " values on one thread");
  for (const Entry& entry : entries) block.set(entry.section.c_str(), entry.key.c_str(), entry.bytes);
  step("reading them on another");
  std::string wrong;
  std::thread([&] { wrong = wrongValues(block, entries); }).join();
  HOLDS(wrong.empty()) << "a block must keep " << entries.size() << " values, names of up to " << kLongest
                       << " letters compared whole: " << wrong
                       << "; usually names are cut to a fixed length, or the values are in a fixed array";
  note(std::to_string(entries.size()) + " values, " + std::to_string(std::size(kParameters)) +
       " of them the service's own");
}

void checkThreads() {
  OPEN_LIBRARY(library);
  int values = 0;
  hammerStore(values);
  paintAtOnce();
  note("8 threads, " + std::to_string(values) + " values; 24 pictures at once");
}

}  // namespace orlu::conform
