// Checks of the library's entry, of the tables that it fills in, and of the records passed to it.
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

#include "callables.h"
#include "checks.h"
#include "scene.h"
#include "table_shape.h"

namespace orlu::conform {
namespace {

// A callable that the service requires, and the consequence if it is missing.
struct Need {
  const char* callable;
  const char* cost;
};
constexpr Need kNeeds[] = {
    {"createClient",    "no client is created; every operation gets a null client"                          },
    {"destroyClient",   "the resources of a client are never released"                                      },
    {"init",            "clients are never initialised"                                                     },
    {"process",         "no request is processed: synchronous ones take 10 seconds and have default results"},
    {"uninit",          "clients are never uninitialised"                                                   },
    {"flush",           "a client is destroyed with requests in flight"                                     },
    {"command",         "requests can't be aborted, and the service can't announce its end"                 },
    {"createMetadata",  "there are no parameters and no results"                                            },
    {"destroyMetadata", "every request leaks its blocks"                                                    },
    {"getSize",         "no request is submitted"                                                           },
    {"setValue",        "the algorithms get no parameters"                                                  },
    {"getValue",        "there are no results"                                                              },
    {"setRaw",          "the algorithms get no camera metadata"                                             },
};

template <typename Table>
bool offers(const Table& table, const std::string& name) {
  bool offered = false;
  probe::forEachCallable(table, [&](const char* callable, const auto& function) {
    if (name == callable) offered = static_cast<bool>(function);
  });
  return offered;
}

std::string join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

// A table between guard bytes. Destroy it only if looksWhole(): destroying a faulty table would crash.
struct GuardedTable {
  static constexpr size_t kGuard = 512;
  static constexpr unsigned char kPattern = 0xC3;

  unsigned char before[kGuard];
  AlgoInterfaceCallbacks table;
  unsigned char after[kGuard];

  GuardedTable() {
    std::memset(before, kPattern, kGuard);
    std::memset(after, kPattern, kGuard);
  }
  static size_t touched(const unsigned char (&guard)[kGuard]) {
    size_t count = 0;
    for (unsigned char byte : guard) count += byte == kPattern ? 0 : 1;
    return count;
  }
};

// Fails the check and returns false if the entry wrote outside the table, or if the table has another layout
// than AlgoInterfaceCallbacks (known only with libstdc++). Does not call or destroy the callables.
bool looksWhole(const GuardedTable& guarded) {
  bool whole = true;
  const auto hold = [&whole](bool condition, const std::string& evidence) {
    if (!condition) ADD_FAILURE() << evidence;
    whole = whole && condition;
  };
  const size_t behind = GuardedTable::touched(guarded.after);
  hold(GuardedTable::touched(guarded.before) == 0, "the entry writes before the table");
  hold(behind == 0, "the entry changes " + std::to_string(behind) + " bytes after the table, which has " +
                        std::to_string(sizeof guarded.table) + " bytes");
  const std::string wrong = oddCallable(guarded.table);
  hold(wrong.empty(), wrong + " does not point to code: the table has another layout");
  return whole;
}

// A record that ends at the end of a page; the next page is inaccessible. Guard bytes precede the record.
template <typename Record>
class EdgeRecord {
public:
  EdgeRecord() : mPage(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    void* const memory = mmap(nullptr, 2 * mPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mMemory = static_cast<unsigned char*>(memory);
    mprotect(mMemory + mPage, mPage, PROT_NONE);
    std::memset(mMemory, GuardedTable::kPattern, mPage);
    mRecord = new (mMemory + mPage - sizeof(Record)) Record();
  }
  EdgeRecord(const EdgeRecord&) = delete;
  EdgeRecord& operator=(const EdgeRecord&) = delete;
  ~EdgeRecord() {
    mRecord->~Record();
    munmap(mMemory, 2 * mPage);
  }

  Record& operator*() { return *mRecord; }
  bool isUntouched() const {
    for (size_t i = 0; i < mPage - sizeof(Record); ++i) {
      if (mMemory[i] != GuardedTable::kPattern) return false;
    }
    return true;
  }

private:
  const size_t mPage;
  unsigned char* mMemory;
  Record* mRecord;
};

// Calls the callable without the kit's observer, so that the library gets the record directly.
template <typename Callable, typename Record>
void callBare(const std::string& name, const Callable& callable, const Record& record) {
  const Operation operation(name, name);
  call(-1, callable, record);
}

void tryRecords(Scene& scene) {
  const AlgoInterfaceCallbacks& table = Library::open()->bareTable();
  const Block raw(kCameraMetadataBlock);
  Request request;
  request.nativeReq = 0x1122334455667788;
  request.reqId = 0x99AABBCCDDEEFF00;
  request.inputs = {&scene.input};
  request.outputs = {&scene.output};
  EdgeRecord<AlgoProcessRecord> process;
  *process = request.record(scene.client, scene.inbox, scene.parameters, raw.handle());
  step("a process record at the end of a page");
  callBare("process", table.process, *process);
  HOLDS(process.isUntouched()) << "process writes before its record";
  // If the callback names another id, this shows which bytes of the record the library read by mistake.
  if (!scene.inbox.waitFor(request.nativeReq)) {
    for (const Message& message : scene.inbox.messages()) {
      ADD_FAILURE() << "the callback names request " << hex(message.nativeReq())
                    << (message.nativeReq() == request.reqId ? " (the reqId)" : "") << " instead of "
                    << hex(request.nativeReq);
    }
    HOLDS(!scene.inbox.messages().empty()) << "no callback for the record";
  }
  EdgeRecord<AlgoFlushRecord> flush;
  (*flush).client = scene.client.handle();
  step("a flush record at the end of a page");
  callBare("flush", table.flush, *flush);
  EdgeRecord<AlgoCommandRecord> command;
  (*command).client = scene.client.handle();
  AlgoMetadataEntry entry;
  entry.block = scene.parameters.handle();
  (*command).metadata.push_back(entry);
  step("a command record at the end of a page");
  callBare("command", table.command, *command);
  HOLDS(flush.isUntouched() && command.isUntouched()) << "flush or command writes before its record";
}

#if UINTPTR_MAX == UINT32_MAX
void compareSizes() {
  struct Size {
    const char* name;
    size_t size;
    size_t wanted;
  };
  constexpr Size kSizes[] = {
      {"AlgoFrameInfo",     sizeof(AlgoFrameInfo),                        128},
      {"AlgoMetadataEntry", sizeof(AlgoMetadataEntry),                    40 },
      {"AlgoProcessRecord", sizeof(AlgoProcessRecord),                    104},
      {"AlgoCommandRecord", sizeof(AlgoCommandRecord),                    64 },
      {"hidl_vec",          sizeof(android::hardware::hidl_vec<uint8_t>), 16 },
  };
  for (const Size& row : kSizes) {
    HOLDS(row.size == row.wanted) << row.name << " has " << row.size << " bytes instead of " << row.wanted;
  }
}
#endif

}  // namespace

void checkLoading() {
  std::string error;
  Library* const library = Library::open(&error);
  HOLDS(library != nullptr) << "the library can't be loaded with RTLD_NOW, or has no entry: " << error;
  if (library == nullptr) return;
  HOLDS(library->isWhole()) << "the entry fills in no callable, or the table has another layout";
  if (!library->isWhole()) return;
  const std::vector<std::string> offered = probe::callableNames(library->bareTable(), true);
  const auto first = std::make_unique<SpaciousTable>();
  const auto second = std::make_unique<SpaciousTable>();
  for (const auto& [spacious, which] : {std::pair(first.get(), "second"), std::pair(second.get(), "third")}) {
    step(std::string("a ") + which + " table");
    library->fill(&spacious->table);
    const std::vector<std::string> again = probe::callableNames(spacious->table, true);
    HOLDS(offered == again) << "the first table offers " << join(offered) << ", but the " << which
                            << " table offers " << (again.empty() ? "nothing" : join(again));
    HOLDS(!spacious->table.reserved) << "the reserved callable is filled in";
    HOLDS(!spacious->table.metadataOps.reserved)
        << "the reserved callable of the block operations is filled in";
  }

  step("a table, after the previous one was destroyed");
  first->table = AlgoInterfaceCallbacks();
  const AlgoMetadataOps& ops = second->table.metadataOps;
  void* const block = call<void*>(nullptr, ops.createMetadata, kParameterBlock);
  HOLDS(!ops.createMetadata || block != nullptr)
      << "after the first table was destroyed, the second creates no block";
  if (block != nullptr) callPlain(ops.destroyMetadata, block);
  note(std::to_string(offered.size()) + " callables");
}

void checkMandatory() {
  OPEN_LIBRARY(library);
  const AlgoInterfaceCallbacks& table = library->bareTable();
  for (const Need& need : kNeeds) {
    HOLDS(offers(table, need.callable)) << need.callable << " is missing: " << need.cost;
  }
  std::vector<std::string> optional;
  for (const std::string& name : probe::callableNames(table, false)) {
    bool isNeeded = false;
    for (const Need& need : kNeeds) isNeeded = isNeeded || name == need.callable;
    if (!isNeeded) optional.push_back(name);
  }
  if (!optional.empty()) note("not offered, and not needed: " + join(optional));
}

void checkLayout() {
  step("a table between guards");
  // Does not use OPEN_LIBRARY, which skips the check if the library's table is invalid.
  Library* const library = Library::open();
  if (library == nullptr) GTEST_SKIP() << kUnusable;
  auto* const guarded = new GuardedTable();
  library->fill(&guarded->table);
  if (!looksWhole(*guarded)) return;
  delete guarded;
#if UINTPTR_MAX == UINT32_MAX
  compareSizes();
#endif
  Scene scene;
  tryRecords(scene);
}

}  // namespace orlu::conform
