#include "library.h"

#include "table_shape.h"

#include <dlfcn.h>

#include <cstring>
#include <memory>

namespace orlu::conform {
namespace {

constexpr char kEntryName[] = "AlgoInterfaceEntry";

std::string describe(const probe::WatchedCall& call) {
  std::string text(call.operation);
  if (call.value != nullptr) {
    const auto& value = *call.value;
    if (value.section != nullptr && value.key != nullptr) {
      text += std::string(" of ") + value.section + " " + value.key;
    }
    text += ", " + std::to_string(value.size) + " bytes";
  }
  if (call.process != nullptr) {
    text += " of request " + std::to_string(call.process->nativeReq) + ", type " +
            std::to_string(call.process->requestType);
  }
  return text;
}

// The running operations of this thread, outermost first. Visitors, and callbacks inside process(), may start
// further operations.
thread_local std::vector<std::unique_ptr<Operation>> tOperations;

}  // namespace

void CallObserver::before(const probe::WatchedCall& call) noexcept {
  tOperations.push_back(
      std::make_unique<Operation>(describe(call), operationName(std::string(call.operation))));
}

void CallObserver::after(const probe::WatchedCall& call, const probe::WatchedEnd& end) noexcept {
  tOperations.pop_back();
  std::string wrong;
  if (end.kind == probe::WatchedEnd::kThrew) {
    wrong = std::string(call.operation) + " threw " + (end.thrown.empty() ? "something" : end.thrown) +
            (end.what.empty() ? "" : " (" + end.what + ")");
  } else if (inspectThread != nullptr) {
    wrong = inspectThread();
    if (!wrong.empty()) wrong = std::string(call.operation) + " " + wrong;
  }
  if (!wrong.empty()) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mThrown.push_back(wrong);
  }
  if (call.process == nullptr) return;
  for (int64_t longest = mLongestProcess; end.nanoseconds > longest;) {
    if (mLongestProcess.compare_exchange_weak(longest, end.nanoseconds)) return;
  }
}

std::vector<std::string> CallObserver::thrown() const {
  const std::lock_guard<std::mutex> lock(mMutex);
  return mThrown;
}

Library* Library::open(std::string* error) {
  static Library* library = nullptr;
  if (library != nullptr) return library;
  step("opening " + options().library);
  void* const handle = dlopen(options().library.c_str(), RTLD_NOW);
  void* const entry = handle == nullptr ? nullptr : dlsym(handle, kEntryName);
  if (entry == nullptr) {
    if (error != nullptr) *error = dlerror();
    return nullptr;
  }
  step("");
  library = new Library(reinterpret_cast<Entry>(entry));
  return library;
}

const AlgoInterfaceCallbacks& Library::bareTable() {
  static const AlgoInterfaceCallbacks none;
  std::call_once(mFilled, [this] {
    fill(&mSpacious->table);
    const AlgoInterfaceCallbacks& table = mSpacious->table;
    mIsWhole = oddCallable(table).empty() && !probe::callableNames(table, true).empty();
    if (mIsWhole) mTable = probe::watchedTable(table, *mObserver);
  });
  return mIsWhole ? mSpacious->table : none;
}

const AlgoInterfaceCallbacks& Library::table() {
  bareTable();
  return mTable;
}

void Library::fill(AlgoInterfaceCallbacks* table) const {
  const Operation operation(kEntryName, operationName(kEntryName));
  try {
    mEntry(table);
  } catch (...) {
    ADD_FAILURE() << kEntryName << " threw";
  }
}

bool Library::isWhole() {
  bareTable();
  return mIsWhole;
}

}  // namespace orlu::conform
