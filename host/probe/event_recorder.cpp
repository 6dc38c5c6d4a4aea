#include "event_recorder.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "call_fields.h"

namespace orlu::probe {
namespace {

constexpr int kVersion = 1;

// Restores errno. Otherwise, the probe's writes could change the value that the caller or the library sees.
class ErrnoKeeper {
public:
  ErrnoKeeper() : mErrno(errno) {}
  ErrnoKeeper(const ErrnoKeeper&) = delete;
  ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
  ~ErrnoKeeper() { errno = mErrno; }

private:
  int mErrno;
};

// Returns the size of a value: calls getValue with buffers larger than `size`, and counts the bytes that it
// writes. Returns -1 if getValue fails or fills a whole buffer.
int64_t valueSize(const EventRecorder::GetValue& real, void* block, const char* section, const char* key,
                  unsigned size) {
  constexpr unsigned kMore = 64;
  std::vector<uint8_t> first(size + kMore, 0x5A);
  std::vector<uint8_t> second(size + kMore, 0xA5);
  for (std::vector<uint8_t>* memory : {&first, &second}) {
    if (real(block, section, key, memory->data(), size + kMore) != 0) return -1;
  }
  size_t written = first.size();
  while (written > 0 && first[written - 1] != second[written - 1]) --written;
  return written == first.size() ? -1 : static_cast<int64_t>(written);
}

}  // namespace

EventRecorder::GetValue EventRecorder::measured(GetValue real) {
  if (!real) return real;
  return [this, real = std::move(real)](void* block, const char* section, const char* key, void* data,
                                        unsigned size) {
    const int result = real(block, section, key, data, size);
    if (result != 0 || !mFile.isOn() || section == nullptr || key == nullptr) return result;
    const ErrnoKeeper keeper;
    try {
      EventLine line("held");
      mFile.write(line.number("size", valueSize(real, block, section, key, size)).finish());
    } catch (...) {
      // The library threw, or no memory is left: the event is dropped.
    }
    return result;
  };
}

void EventRecorder::open() {
  mPixels.open();
  if (!mFile.open()) return;
  {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIntroduced.clear();
  }
  utsname system = {};
  uname(&system);
  EventLine line("header");
  line.text("format", "orlu-events").number("version", kVersion).text("clock", "CLOCK_MONOTONIC");
  line.number("pid", getpid()).text("machine", system.machine).number("pointerBits", 8 * sizeof(void*));
  line.text("probe", fileOf(reinterpret_cast<const void*>(&fileOf)));
  mFile.write(line.finish());
}

RealLibrary EventRecorder::load(const void* caller) {
  const std::string path = findRealLibrary(caller);
  const uint64_t number = nextCallNumber();
  mFile.write(EventLine("begin").call(number, "load").text("path", path).finish());
  const auto start = std::chrono::steady_clock::now();
  RealLibrary library = openRealLibrary(path);
  const std::chrono::nanoseconds duration = std::chrono::steady_clock::now() - start;
  EventLine end("end");
  end.call(number, "load").number("ns", duration.count()).number("result", library.entry == nullptr ? -1 : 0);
  if (library.entry == nullptr) end.text("stage", library.stage).text("error", library.error);
  mFile.write(end.finish());
  return library;
}

void EventRecorder::table(uint64_t entry, const AlgoInterfaceCallbacks& table) {
  if (!mFile.isOn()) return;
  EventLine line("table");
  line.number("n", static_cast<int64_t>(entry));
  line.texts("offered", callableNames(table, true)).texts("missing", callableNames(table, false));
  mFile.write(line.finish());
}

void EventRecorder::before(const WatchedCall& call) noexcept {
  if (!mFile.isOn()) return;
  const ErrnoKeeper keeper;
  try {
    mPixels.before(call);
    EventLine line("begin");
    line.call(call.number, call.operation);
    addInputs(line, call);
    addCallSite(line);
    mFile.write(line.finish());
  } catch (...) {
    // Out of memory: the event is dropped.
  }
}

void EventRecorder::after(const WatchedCall& call, const WatchedEnd& end) noexcept {
  if (!mFile.isOn()) return;
  const ErrnoKeeper keeper;
  try {
    EventLine line("end");
    line.call(call.number, call.operation);
    addOutputs(line, call, end);
    mFile.write(line.finish());
    mPixels.after(call, end);
  } catch (...) {
    // Out of memory: the event is dropped.
  }
}

void EventRecorder::addCallSite(EventLine& line) {
  const CallSite site = callSite(mModules);
  if (site.module == nullptr) return;
  introduce(*site.module);
  line.beginList("from");
  for (int i = 0; i < site.count; ++i) {
    line.place(site.module->name, site.addresses[i] - site.module->loadedAt);
  }
  line.endList();
}

void EventRecorder::introduce(const Module& module) {
  {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mIntroduced.insert(&module).second) return;
  }
  mFile.write(EventLine("module").text("name", module.name).text("path", module.path).finish());
}

}  // namespace orlu::probe
