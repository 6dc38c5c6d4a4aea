#include "progress.h"

#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>

#include "check.h"

namespace orlu::conform {
namespace {

using Clock = std::chrono::steady_clock;

struct Slot {
  std::atomic<bool> isTaken;
  char text[160];
  char name[48];               // empty for operations that are not timed
  std::atomic<int64_t> since;  // start of the operation, in ticks of Clock
};

struct Progress {
  static constexpr int kThreads = 64;
  char step[256];
  Slot slots[kThreads];
};

Progress* gProgress = nullptr;
thread_local int tCallbacks = 0;

std::set<std::string>& hangs() {
  static std::set<std::string> hangs;
  return hangs;
}

template <size_t Room>
void copyInto(char (&to)[Room], const std::string& text) {
  const size_t length = std::min(Room - 1, text.size());
  std::memcpy(to, text.data(), length);
  to[length] = '\0';
}

// A thread's own slot, until the thread exits. Null if all slots are taken or progress is not shared.
struct OwnSlot {
  Slot* slot = nullptr;

  OwnSlot() {
    if (gProgress == nullptr) return;
    for (Slot& each : gProgress->slots) {
      if (each.isTaken.exchange(true)) continue;
      slot = &each;
      return;
    }
  }
  OwnSlot(const OwnSlot&) = delete;
  OwnSlot& operator=(const OwnSlot&) = delete;
  ~OwnSlot() {
    if (slot == nullptr || gProgress == nullptr) return;
    *slot->text = '\0';
    *slot->name = '\0';
    slot->isTaken = false;
  }
};

Slot* ownSlot() {
  thread_local const OwnSlot own;
  return own.slot;
}

void write(Slot& slot, const std::string& text, const std::string& name) {
  slot.since = Clock::now().time_since_epoch().count();
  copyInto(slot.text, text);
  copyInto(slot.name, name);
}

}  // namespace

bool shareProgress() {
  void* const shared =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) return false;
  gProgress = static_cast<Progress*>(shared);
  return true;
}

void unshareProgress() {
  munmap(gProgress, sizeof(Progress));
  gProgress = nullptr;
}

void step(const std::string& text) {
  if (gProgress != nullptr) copyInto(gProgress->step, text);
}

std::string currentStep() {
  return gProgress == nullptr ? "" : gProgress->step;
}

std::string whereabouts() {
  std::string text = *gProgress->step == '\0' ? "" : std::string("; step: ") + gProgress->step;
  for (const Slot& slot : gProgress->slots) {
    if (*slot.text != '\0') text += std::string("; in ") + slot.text;
  }
  return text;
}

std::string overdueOperation(std::chrono::seconds limit) {
  const int64_t latest = (Clock::now() - limit).time_since_epoch().count();
  for (const Slot& slot : gProgress->slots) {
    if (*slot.name != '\0' && slot.since < latest) return slot.name;
  }
  return "";
}

void noteHang(const std::string& operation) {
  hangs().insert(operation);
}

Operation::Operation(const std::string& text, const std::string& name) {
  if (!name.empty() && hangs().count(name) != 0) endNotTried(name + " hangs");
  Slot* const own = ownSlot();
  if (own == nullptr) return;
  mText = own->text;
  mName = own->name;
  write(*own, text, name);
}

Operation::~Operation() {
  Slot* const own = ownSlot();
  if (own != nullptr) write(*own, mText, mName);
}

CallbackScope::CallbackScope() {
  ++tCallbacks;
}

CallbackScope::~CallbackScope() {
  --tCallbacks;
}

std::string operationName(const std::string& operation) {
  return operation + (tCallbacks > 0 ? " inside a callback" : "");
}

}  // namespace orlu::conform
