// The minimal library with one fault planted, for the proof that the kit finds it. ORLU_MUTANT names the
// fault; mutants.txt says which checks each one fails.
#include <dlfcn.h>
#include <fcntl.h>
#include <jni.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "algo_interface.h"

#ifdef MUTANT_UNBOUND
// A function that no library has: the loader notices when everything is bound at once.
extern "C" int orluNoSuchFunction();
#endif

namespace orlu::mutants {
namespace {

using android::hardware::hidl_vec;
using Table = AlgoInterfaceCallbacks;
using Bytes = std::vector<uint8_t>;
using Values = std::function<int(void*, const char*, const char*, void*, unsigned)>;
using Send = std::function<void(const Bytes&)>;  // calls the caller's function back

void entryOf(const char* library, Table& table) {
  void* const handle = dlopen(library, RTLD_NOW);
  void* const entry = handle == nullptr ? nullptr : dlsym(handle, "AlgoInterfaceEntry");
  if (entry != nullptr) reinterpret_cast<void (*)(Table*)>(entry)(&table);
}

Bytes message(uint64_t nativeReq, const std::string& name, size_t payload = 0) {
  CallbackHeader header = {};
  header.nativeReq = nativeReq;
  header.nameLength = static_cast<int32_t>(name.size());
  Bytes bytes(kCallbackNameOffset + name.size() + payload);
  std::memcpy(bytes.data(), &header, kCallbackNameOffset);
  std::copy(name.begin(), name.end(), bytes.begin() + kCallbackNameOffset);
  return bytes;
}

uint64_t requestOf(const Bytes& bytes) {
  uint64_t id = 0;
  std::memcpy(&id, &bytes[8], sizeof id);
  return id;
}

void sendTo(uint64_t cookie, const Bytes& bytes) {
  (*reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie)))(hidl_vec<uint8_t>(bytes), {},
                                                                                 {});
}

// Puts `change` between the minimal library's callbacks and the caller's function. It gets the record's list
// too.
template <typename Change>
void onCallback(Table& table, Change change) {
  table.process = [change, process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord changed = record;
    // Called once, and then done with.
    auto* const own = new std::shared_ptr<AlgoResultCallback>(std::make_shared<AlgoResultCallback>());
    **own = [change, own, cookie = record.callbackCookie, block = record.metadata[0].block,
             list = record.algoList](const auto& data, const auto&, const auto&) {
      const std::unique_ptr<std::shared_ptr<AlgoResultCallback>> owner(own);
      const std::shared_ptr<AlgoResultCallback> kept = *owner;
      change(
          Bytes(data.begin(), data.end()), [cookie](const Bytes& bytes) { sendTo(cookie, bytes); }, block,
          list);
    };
    changed.callbackCookie = reinterpret_cast<uintptr_t>(own->get());
    return process(changed);
  };
}

// Calls `before` with each record, before the minimal library gets it.
template <typename Before>
void onProcess(Table& table, Before before) {
  table.process = [before, process = table.process](const AlgoProcessRecord& record) {
    before(record);
    return process(record);
  };
}

void later(int milliseconds, std::function<void()> work) {
  std::thread([milliseconds, work = std::move(work)] {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    work();
  }).detach();
}

void delayCallbacks(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    send(bytes);
  });
}

void leaveResult(const Table& table, void* block, const char* section, const char* key, Bytes bytes) {
  table.metadataOps.setValue(block, section, key, bytes.data(), static_cast<unsigned>(bytes.size()));
}

bool asksFor(const std::vector<std::string>& list, const char* name) {
  return !list.empty() && list[0] == name;
}

// The first output's memory and more, of the caller's file; changed by `change`.
template <typename Change>
void touch(int fd, size_t size, Change change) {
  auto* const memory = static_cast<uint8_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  if (memory == MAP_FAILED) return;
  change(memory);
  munmap(memory, size);
}

int setAbsent(const Values& get, void* block, const char* section, const char* key, void* data,
              unsigned size) {
  const int status = get(block, section, key, data, size);
  if (status != 0) std::memset(data, 0, size);
  return status;
}

std::atomic<int> gEntries{0};
Table* gFirst = nullptr;

// loading
void emptySecondTable(Table& table) {
  if (gEntries > 1) table = Table();
}
void fillReserved(Table& table) {
  table.reserved = [](void*) { return 0; };
}
void shareFirstTable(Table& table) {
  if (gEntries == 2) gFirst = &table;
  if (gEntries < 3) return;
  table.metadataOps.createMetadata = [](int kind) { return gFirst->metadataOps.createMetadata(kind); };
}

// mandatory
void lackFlush(Table& table) {
  table.flush = nullptr;
}
void lackSetRaw(Table& table) {
  table.metadataOps.setRaw = nullptr;
}

// clients
void giveOneHandle(Table& table) {
  table.createClient = [client = table.createClient(AlgoCreateClientRecord{kAlgoTableVersion, {}})](
                           const auto&) { return client; };
  table.destroyClient = [](void*) { return 0; };
}
// What a handle stands for ends with its client.
template <typename Value>
void forgetAtEnd(Table& table, std::map<void*, Value>& known) {
  table.destroyClient = [&known, destroy = table.destroyClient](void* client) {
    known.erase(client);
    return destroy(client);
  };
}
void needInit(Table& table) {
  static std::map<void*, bool> initialised;
  forgetAtEnd(table, initialised);
  table.init = [](const AlgoInitRecord& record) {
    initialised[record.client] = true;
    return 0;
  };
  table.uninit = [](const AlgoUninitRecord& record) {
    if (!initialised[record.client]) std::abort();
    return 0;
  };
}
void uninitOnce(Table& table) {
  static std::map<void*, int> ended;
  forgetAtEnd(table, ended);
  table.uninit = [](const AlgoUninitRecord& record) {
    if (record.mode == 0 && ++ended[record.client] > 4) std::abort();
    return 0;
  };
}

// setValue
void stopAtZero(Table& table) {
  table.metadataOps.setValue = [set = table.metadataOps.setValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    const auto* const text = static_cast<const char*>(data);
    const auto length = static_cast<unsigned>(text == nullptr ? 0 : strnlen(text, size));
    return set(block, section, key, data, length);
  };
}
void keepFirstValue(Table& table) {
  table.metadataOps.setValue = [ops = table.metadataOps](void* block, const char* section, const char* key,
                                                         void* data, unsigned size) {
    char old = 0;
    if (ops.getValue(block, section, key, &old, 1) == 0) return 0;
    return ops.setValue(block, section, key, data, size);
  };
}
void keepPointers(Table& table) {
  static std::map<std::string, std::pair<const void*, unsigned>> kept;
  static std::mutex mutex;
  table.metadataOps.setValue = [](void* block, const char* section, const char* key, void* data,
                                  unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    kept[std::to_string(reinterpret_cast<uintptr_t>(block)) + section + " " + key] = {data, size};
    return 0;
  };
  table.metadataOps.getValue = [](void* block, const char* section, const char* key, void* data,
                                  unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = kept.find(std::to_string(reinterpret_cast<uintptr_t>(block)) + section + " " + key);
    if (found == kept.end()) return -1;
    std::memcpy(data, found->second.first, std::min(size, found->second.second));
    return 0;
  };
}
void mixSections(Table& table) {
  auto& ops = table.metadataOps;
  ops.setValue = [set = ops.setValue](void* block, const char*, const char* key, void* data, unsigned size) {
    return set(block, "", key, data, size);
  };
  ops.getValue = [get = ops.getValue](void* block, const char*, const char* key, void* data, unsigned size) {
    return get(block, "", key, data, size);
  };
}
void capSizes(Table& table) {
  table.metadataOps.setValue = [set = table.metadataOps.setValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    return set(block, section, key, data, std::min(size, 4096U));
  };
}

// getValue
void writePastSize(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    return get(block, section, key, data, size < 8 ? size : size + 1);
  };
}
void clearAbsent(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](
                                   void* block, const char* section, const char* key, void* data,
                                   unsigned size) { return setAbsent(get, block, section, key, data, size); };
}
void succeedAbsent(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    get(block, section, key, data, size);
    return 0;
  };
}

// blocks
void forgetValues(Table& table) {
  onCallback(table,
             [ops = table.metadataOps](const Bytes& bytes, const Send& send, void* block, const auto&) {
               uint8_t none = 0;
               ops.setValue(block, kControl, "conform_key", &none, 0);
               send(bytes);
             });
}
void leaveLongResult(Table& table) {
  onCallback(table, [table](const Bytes& bytes, const Send& send, void* block, const auto&) {
    leaveResult(table, block, kFeedback, "hdr_choosed_frame", Bytes(8));
    send(bytes);
  });
}
void refuseRaw(Table& table) {
  table.metadataOps.setRaw = [](void*, const char*, unsigned) { return -1; };
}

// visitors
void visitWithoutKey(Table& table) {
  table.metadataOps.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor& visitor) {
    int32_t value = 1;
    return visitor(kFeedback, nullptr, &value, sizeof value);
  };
}
void visitUnderLock(Table& table) {
  static std::mutex mutex;
  auto& ops = table.metadataOps;
  ops.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor& visitor) {
    const std::lock_guard<std::mutex> lock(mutex);
    int32_t value = 1;
    return visitor(kFeedback, "key", &value, sizeof value);
  };
  ops.setValue = [set = ops.setValue](void* block, const char* section, const char* key, void* data,
                                      unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    return set(block, section, key, data, size);
  };
}

// process
void keepHandles(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty() || record.outputFrames[0].nativeHandle == nullptr) return;
    later(10, [handle = record.outputFrames[0].nativeHandle] {
      touch(handle->data[0], 1, [](uint8_t* memory) { memory[0] ^= 0xFF; });
    });
  });
  delayCallbacks(table);
}
void keepDescriptors(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty()) return;
    later(30,
          [fd = record.outputFrames[0].fd[0]] { touch(fd, 1, [](uint8_t* memory) { memory[0] ^= 0xFF; }); });
  });
  delayCallbacks(table);
}
void sleepInProcess(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.size() == 12) usleep(150'000);
  });
}

// callbacks
void skipFirstId(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    if (requestOf(bytes) != 0) send(bytes);
  });
}
void callTwice(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(bytes);
    send(bytes);
  });
}
void cutIds(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(message(static_cast<uint32_t>(requestOf(bytes)), kShotCallback));
  });
}
void addOddCallback(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(bytes);
    send(message(requestOf(bytes), "shotcb"));
  });
}
void callInsideProcess(Table& table) {
  table.process = [](const AlgoProcessRecord& record) {
    sendTo(record.callbackCookie, message(record.nativeReq, kShotCallback));
    return 0;
  };
}

// java
JavaVM* findVm() {
  using Get = jint (*)(JavaVM**, jsize, jsize*);
  const auto get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  return get != nullptr && get(&vm, 1, &count) == JNI_OK && count > 0 ? vm : nullptr;
}
void callUnattached(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::thread([&] { send(bytes); }).join();
  });
}
void endAttached(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::thread([&] {
      void* env = nullptr;
      JavaVM* const vm = findVm();
      if (vm != nullptr) vm->AttachCurrentThreadAsDaemon(&env, nullptr);
      send(bytes);
    }).join();
  });
}
void cutLightStream(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto& list) {
    if (asksFor(list, "lightstream")) send(message(0, kLightStreamCallback, 47));
    send(bytes);
  });
}

// requests
void refuseFormats(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    const bool isOdd = !record.inputFrames.empty() && record.inputFrames[0].format == kFormatMipiRaw12;
    return isOdd ? -1 : process(record);
  };
}
void needInputs(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    return record.inputFrames.empty() ? -1 : process(record);
  };
}

// concurrency
void callAfterDestroy(Table& table) {
  table.destroyClient = [](void*) { return 0; };
  table.flush = [](const auto&) { return 0; };
  delayCallbacks(table);
}

// outputs
void onOutput(Table& table, size_t past, void (*change)(uint8_t* memory, size_t size)) {
  onProcess(table, [past, change](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty()) return;
    const AlgoFrameInfo& frame = record.outputFrames[0];
    const auto size = static_cast<size_t>(frame.size);
    touch(frame.fd[0], size + past, [&](uint8_t* memory) { change(memory, size); });
  });
}
void writePastOutput(Table& table) {
  onOutput(table, 16, [](uint8_t* memory, size_t size) { memory[size + 3] = 0; });
}
void writeInput(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.empty()) return;
    touch(record.inputFrames[0].fd[0], 1, [](uint8_t* memory) { memory[0] ^= 0xFF; });
  });
}
void leaveWrongJpegSize(Table& table) {
  onCallback(table, [table](const Bytes& bytes, const Send& send, void* block, const auto& list) {
    if (asksFor(list, "jpegEncode")) leaveResult(table, block, kFeedback, "encoded_jpeg_size", {40, 0, 0, 0});
    send(bytes);
  });
}

// leaks
void leakDescriptor(Table& table) {
  onProcess(table,
            [](const AlgoProcessRecord&) { [[maybe_unused]] const int kept = fcntl(0, F_DUPFD_CLOEXEC, 0); });
}
void leakMemory(Table& table) {
  static std::map<int, std::string> kept;  // reachable, so that no leak check but growth tells
  onProcess(table, [](const AlgoProcessRecord&) { kept[static_cast<int>(kept.size())].resize(1000); });
}
void leakThread(Table& table) {
  onProcess(table, [](const AlgoProcessRecord&) { later(600'000, [] {}); });
}
void leakMapping(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.empty()) return;
    (void)mmap(nullptr, 100, PROT_READ, MAP_SHARED, record.inputFrames[0].fd[0], 0);
  });
}

// exceptions
void throwAtCommand(Table& table) {
  table.command = [](const AlgoCommandRecord& record) {
    if (!record.data.empty() && record.data[0] == '?') throw std::runtime_error("planted");
    return 0;
  };
}
void callWhileHandling(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    try {
      throw std::runtime_error("planted");
    } catch (const std::exception&) {
      send(bytes);
    }
  });
}

// layout
void readPastRecord(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    volatile int sum = 0;
    sum = sum + *(reinterpret_cast<const volatile int*>(&record + 1));
  });
}
void swapIds(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord swapped = record;
    swapped.nativeReq = record.reqId == 77 ? record.nativeReq : record.reqId;
    return process(swapped);
  };
}
void writePastTable(Table& table) {
  std::memset(static_cast<void*>(&table + 1), 0, 32);
}
void shiftTable(Table& table) {
  auto* const bytes = reinterpret_cast<unsigned char*>(&table);
  std::memmove(bytes + sizeof(void*), bytes, sizeof table - sizeof(void*));
}

// queries
void closeFile(Table& table) {
  table.translateParamFile = [](const AlgoTranslateParamFileRecord& record) { return close(record.fd); };
}
void answerAtLength(Table& table) {
  table.getData = [table](const AlgoGetDataRecord& record) {
    leaveResult(table, record.block, kFeedback, kQueryResult, Bytes(kQueryResultSize + 1, 'x'));
    return 0;
  };
}

// hostile
void trustCounts(Table& table) {
  onProcess(table, [get = table.metadataOps.getValue](const AlgoProcessRecord& record) {
    int32_t faces = 0;
    if (get(record.metadata[0].block, kParameter, "hd_face_num", &faces, sizeof faces) != 0) return;
    if (faces < 0 || faces > 10) std::abort();
  });
}

struct Mutant {
  const char* name;
  void (*plant)(Table& table);
};
// clang-format off
constexpr Mutant kMutants[] = {
    {"empty_second_table",   emptySecondTable},   {"fill_reserved",      fillReserved},
    {"share_first_table",    shareFirstTable},    {"lack_flush",         lackFlush},
    {"lack_set_raw",         lackSetRaw},         {"give_one_handle",    giveOneHandle},
    {"need_init",            needInit},           {"uninit_once", uninitOnce},
    {"stop_at_zero",         stopAtZero},         {"keep_first_value",   keepFirstValue},
    {"keep_pointers",        keepPointers},       {"mix_sections",       mixSections},
    {"cap_sizes",            capSizes},           {"write_past_size",    writePastSize},
    {"clear_absent",         clearAbsent},        {"succeed_absent",     succeedAbsent},
    {"forget_values",        forgetValues},       {"leave_long_result",  leaveLongResult},
    {"refuse_raw",           refuseRaw},          {"visit_without_key",  visitWithoutKey},
    {"visit_under_lock",     visitUnderLock},     {"keep_handles", keepHandles},
    {"keep_descriptors",     keepDescriptors},    {"sleep_in_process",   sleepInProcess},
    {"skip_first_id",      skipFirstId},
    {"call_twice",           callTwice},          {"cut_ids",            cutIds},
    {"add_odd_callback",     addOddCallback},     {"call_inside_process", callInsideProcess},
    {"call_unattached",      callUnattached},     {"end_attached",       endAttached},
    {"cut_light_stream",     cutLightStream},     {"refuse_formats",     refuseFormats},
    {"need_inputs",          needInputs},         {"call_after_destroy", callAfterDestroy},
    {"write_past_output",    writePastOutput},    {"write_input",        writeInput},
    {"leave_wrong_jpeg_size", leaveWrongJpegSize}, {"leak_descriptor",   leakDescriptor},
    {"leak_memory",          leakMemory},         {"leak_thread",        leakThread},
    {"leak_mapping",         leakMapping},        {"throw_at_command",   throwAtCommand},
    {"call_while_handling",  callWhileHandling},  {"read_past_record",   readPastRecord},
    {"swap_ids",             swapIds},            {"write_past_table",   writePastTable},
    {"shift_table",          shiftTable},         {"close_file",         closeFile},
    {"answer_at_length",     answerAtLength},     {"trust_counts",       trustCounts},
};
// clang-format on

}  // namespace
}  // namespace orlu::mutants

extern "C" __attribute__((visibility("default"))) void AlgoInterfaceEntry(
    orlu::AlgoInterfaceCallbacks* table) {
  using namespace orlu::mutants;
  const char* const name = std::getenv("ORLU_MUTANT");
  ++gEntries;
  entryOf(MUTANT_MINIMAL, *table);
  for (const Mutant& mutant : kMutants) {
    if (name != nullptr && std::strcmp(name, mutant.name) == 0) mutant.plant(*table);
  }
#ifdef MUTANT_UNBOUND
  if (gEntries == 0) orluNoSuchFunction();
#endif
}
