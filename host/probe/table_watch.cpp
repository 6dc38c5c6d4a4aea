#include "table_watch.h"

#include <cxxabi.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

#include "callables.h"

namespace orlu::probe {
namespace {

using Clock = std::chrono::steady_clock;

WatchedCall callOf(const char* operation) {
  WatchedCall call;
  call.operation = operation;
  call.number = nextCallNumber();
  return call;
}

int64_t nanosecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start).count();
}

// Returns the type of the current exception; "" for a non-C++ exception.
std::string thrownType() {
  const std::type_info* const type = abi::__cxa_current_exception_type();
  if (type == nullptr) return {};
  int status = 0;
  char* const name = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
  std::string text = name == nullptr ? type->name() : name;
  std::free(name);
  return text;
}

void reportThrown(TableObserver& observer, const WatchedCall& call, Clock::time_point start,
                  const char* what) noexcept {
  WatchedEnd end;
  end.nanoseconds = nanosecondsSince(start);
  end.kind = WatchedEnd::kThrew;
  end.thrown = thrownType();
  end.what = what == nullptr ? "" : what;
  observer.after(call, end);
}

WatchedEnd endOf(int64_t number) {
  WatchedEnd end;
  end.kind = WatchedEnd::kNumber;
  end.number = number;
  return end;
}

WatchedEnd endOf(void* handle) {
  WatchedEnd end;
  end.kind = WatchedEnd::kHandle;
  end.handle = handle;
  return end;
}

// Calls `body`. Reports an exception to the observer and rethrows it.
template <typename Body>
auto guarded(TableObserver& observer, const WatchedCall& call, Clock::time_point start, Body&& body) {
  try {
    return body();
  } catch (const std::exception& e) {
    reportThrown(observer, call, start, e.what());
    throw;
  } catch (...) {
    reportThrown(observer, call, start, nullptr);
    throw;
  }
}

template <typename Body>
auto watched(TableObserver& observer, const WatchedCall& call, Body&& body) {
  observer.before(call);
  const Clock::time_point start = Clock::now();
  if constexpr (std::is_void_v<decltype(body())>) {
    guarded(observer, call, start, body);
    WatchedEnd end;
    end.nanoseconds = nanosecondsSince(start);
    observer.after(call, end);
  } else {
    const auto result = guarded(observer, call, start, body);
    const int64_t nanoseconds = nanosecondsSince(start);
    WatchedEnd end = endOf(result);
    end.nanoseconds = nanoseconds;
    observer.after(call, end);
    return result;
  }
}

// Stores one wrapper for each cookie: a function that reports a callback and calls the caller's function.
class CookieBook {
public:
  static CookieBook& instance() {
    static CookieBook* const book = new CookieBook();
    return *book;
  }

  // Returns the wrapper's address, which the library gets instead of `cookie`. Returns `cookie` if it is 0 or
  // its function is empty. `process` is the number of the process() call that passes `cookie`.
  uint64_t replacement(uint64_t cookie, uint64_t process, TableObserver& observer) {
    const auto* const callback = reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie));
    if (callback == nullptr || !*callback) return cookie;
    const std::lock_guard<std::mutex> lock(mMutex);
    std::unique_ptr<Page>& page = mPages[cookie];
    if (page == nullptr) page = std::make_unique<Page>(cookie, observer);
    page->lastProcess = process;
    return reinterpret_cast<uintptr_t>(&page->function);
  }

private:
  struct Page {
    Page(uint64_t cookie, TableObserver& observer) {
      function = [this, cookie, &observer](const auto& data, const auto& extra, const auto& handles) {
        const CallbackArguments arguments = {cookie, data, extra, handles};
        WatchedCall call = callOf("callback");
        call.of = lastProcess;
        call.callback = &arguments;
        watched(observer, call, [&] {
          (*reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie)))(data, extra,
                                                                                         handles);
        });
      };
    }

    std::atomic<uint64_t> lastProcess{0};
    AlgoResultCallback function;
  };

  std::mutex mMutex;
  std::map<uint64_t, std::unique_ptr<Page>> mPages;
};

AlgoMetadataVisitor watchedVisitor(const AlgoMetadataVisitor& real, uint64_t of, bool downloads,
                                   TableObserver& observer) {
  if (!real) return nullptr;
  return [&observer, of, downloads, real](const char* section, const char* key, void* data, unsigned size) {
    const ValueArguments value = {section, key, data, size, downloads};
    WatchedCall call = callOf("visit");
    call.of = of;
    call.value = &value;
    return watched(observer, call, [&] { return real(section, key, data, size); });
  };
}

// Replaces callables with wrappers that report each call. `note` stores the arguments in the WatchedCall.
class TableWatcher {
public:
  explicit TableWatcher(TableObserver& observer) : mObserver(observer) {}

  template <typename Result, typename... Arguments, typename Note>
  void watch(std::function<Result(Arguments...)>& callable, const char* name, Note note) const {
    if (!callable) return;
    callable = [&observer = mObserver, name, note, real = callable](Arguments... arguments) -> Result {
      WatchedCall call = callOf(name);
      note(call, arguments...);
      return watched(observer, call, [&] { return real(arguments...); });
    };
  }

  void watchProcess(std::function<int(const AlgoProcessRecord&)>& callable) const {
    if (!callable) return;
    callable = [&observer = mObserver, real = callable](const AlgoProcessRecord& record) {
      WatchedCall call = callOf("process");
      call.process = &record;
      AlgoProcessRecord handedOn = record;
      handedOn.callbackCookie =
          CookieBook::instance().replacement(record.callbackCookie, call.number, observer);
      return watched(observer, call, [&] { return real(handedOn); });
    };
  }

  void watchVisits(std::function<int(void*, AlgoMetadataVisitor)>& callable, const char* name,
                   bool downloads) const {
    if (!callable) return;
    callable = [&observer = mObserver, name, downloads, real = callable](void* block,
                                                                         const AlgoMetadataVisitor& visitor) {
      WatchedCall call = callOf(name);
      call.block = &block;
      AlgoMetadataVisitor handedOn = watchedVisitor(visitor, call.number, downloads, observer);
      return watched(observer, call, [&] { return real(block, std::move(handedOn)); });
    };
  }

  void watchValue(std::function<int(void*, const char*, const char*, void*, unsigned)>& callable,
                  const char* name, bool isFilledIn) const {
    if (!callable) return;
    callable = [&observer = mObserver, name, isFilledIn, real = callable](
                   void* block, const char* section, const char* key, void* data, unsigned size) {
      const ValueArguments value = {section, key, data, size, isFilledIn};
      WatchedCall call = callOf(name);
      call.block = &block;
      call.value = &value;
      return watched(observer, call, [&] { return real(block, section, key, data, size); });
    };
  }

  void watchRaw(std::function<int(void*, const char*, unsigned)>& callable) const {
    if (!callable) return;
    callable = [&observer = mObserver, real = callable](void* block, const char* bytes, unsigned size) {
      const ValueArguments value = {nullptr, nullptr, bytes, size, false};
      WatchedCall call = callOf("setRaw");
      call.block = &block;
      call.value = &value;
      return watched(observer, call, [&] { return real(block, bytes, size); });
    };
  }

private:
  TableObserver& mObserver;
};

// Returns a `note` for callables with one argument: stores the argument's address in this field.
template <typename Field>
auto noteIn(Field WatchedCall::*field) {
  return [field](WatchedCall& call, const auto& argument) { call.*field = &argument; };
}

void watchMetadataOps(const TableWatcher& watcher, AlgoMetadataOps& ops) {
  watcher.watch(ops.createMetadata, "createMetadata", noteIn(&WatchedCall::kind));
  watcher.watch(ops.destroyMetadata, "destroyMetadata", noteIn(&WatchedCall::block));
  watcher.watch(ops.getSize, "getSize", noteIn(&WatchedCall::block));
  watcher.watchValue(ops.setValue, "setValue", false);
  watcher.watchValue(ops.getValue, "getValue", true);
  watcher.watchRaw(ops.setRaw);
  watcher.watch(ops.reserved, "metadataOps.reserved", [](WatchedCall&, void*) {});
  watcher.watchVisits(ops.paramAlgoUpdateToSystem, "paramAlgoUpdateToSystem", false);
  watcher.watchVisits(ops.paramSystemDownloadToAlgo, "paramSystemDownloadToAlgo", true);
}

}  // namespace

AlgoInterfaceCallbacks watchedTable(const AlgoInterfaceCallbacks& real, TableObserver& observer) {
  AlgoInterfaceCallbacks table = real;
  const TableWatcher watcher(observer);
  watcher.watch(table.init, "init", noteIn(&WatchedCall::init));
  watcher.watchProcess(table.process);
  watcher.watch(table.uninit, "uninit", noteIn(&WatchedCall::uninit));
  watcher.watch(table.getData, "getData", noteIn(&WatchedCall::getData));
  watcher.watch(table.reserved, "reserved", [](WatchedCall&, void*) {});
  watcher.watch(table.flush, "flush", noteIn(&WatchedCall::flush));
  watcher.watch(table.command, "command", noteIn(&WatchedCall::command));
  watcher.watch(table.createClient, "createClient", noteIn(&WatchedCall::createClient));
  watcher.watch(table.destroyClient, "destroyClient", noteIn(&WatchedCall::client));
  watchMetadataOps(watcher, table.metadataOps);
  watcher.watch(table.translateParamFile, "translateParamFile", noteIn(&WatchedCall::translateParamFile));
  return table;
}

uint64_t watchCall(TableObserver& observer, const char* operation, const std::function<void()>& body) {
  const WatchedCall call = callOf(operation);
  watched(observer, call, body);
  return call.number;
}

uint64_t nextCallNumber() {
  static std::atomic<uint64_t> calls{0};
  return ++calls;
}

std::vector<std::string> callableNames(const AlgoInterfaceCallbacks& table, bool offered) {
  std::vector<std::string> names;
  forEachCallable(table, [&](const char* name, const auto& callable) {
    if (static_cast<bool>(callable) == offered) names.emplace_back(name);
  });
  return names;
}

}  // namespace orlu::probe
