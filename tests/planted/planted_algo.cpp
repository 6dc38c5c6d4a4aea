// The stand-in algorithm library with one fault, to test how ./run reports faults. ORLU_PLANTED selects the
// fault:
//   lacks:NAME  answers:NAME  throws:NAME                fault of the callable NAME
//   aborts:NAME  segfaults:NAME  hangs:NAME              same
//   silent  late  name  id  unattached  twice  headless  afterwards   faults of the callback
//   visits                                 a visit requests a value with half its size
//   idle  untouched                        faults of the request
//   empty  oversized  selects  crossed  brief     faults of the results
//   scribbles                              an output is written again after the callback
//   inputStride  outputStride  swapped  elsewhere  black  dark  clipped  green  half  stamped
//                                          faults of the images, which are NV21 (planted_images.h)
// PLANTED_WITHOUT_ENTRY builds a library without the entry.
#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include "algo_interface.h"
#include "callables.h"
#include "planted_images.h"

#ifndef PLANTED_WITHOUT_ENTRY

namespace orlu::planted {
namespace {

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;
using Bytes = hidl_vec<uint8_t>;
using Handles = hidl_vec<hidl_handle>;

constexpr int kInvalid = -22;
// A JPEG's size in bytes, larger than every output of the tests.
constexpr int32_t kOversized = 1 << 24;
// Delay of a late callback. A synchronous request waits only ten seconds.
constexpr std::chrono::seconds kLate{11};

// The fault "crossed" stores this result in every request of a burst; only the first may have it.
constexpr int64_t kFirstFlag = -1'000'000;

std::thread gLate;
// Repeats the last callback (fault "afterwards").
std::function<void()> gAgain;
// The last request's parameter block, and a descriptor of the request's first output (fault "scribbles").
void* gBlock = nullptr;
int gOutput = -1;

struct Fault {
  std::string kind;
  std::string callable;

  static Fault ofEnvironment() {
    const char* const text = std::getenv("ORLU_PLANTED");
    const std::string fault = text == nullptr ? "" : text;
    const size_t colon = fault.find(':');
    return {fault.substr(0, colon), colon == std::string::npos ? "" : fault.substr(colon + 1)};
  }
};

AlgoInterfaceCallbacks standIn() {
  AlgoInterfaceCallbacks table;
  void* const library = dlopen(PLANTED_STAND_IN, RTLD_NOW);
  void* const entry = library == nullptr ? nullptr : dlsym(library, "AlgoInterfaceEntry");
  if (entry != nullptr) reinterpret_cast<void (*)(AlgoInterfaceCallbacks*)>(entry)(&table);
  return table;
}

[[noreturn]] void end(int signal) {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  if (signal == SIGABRT) std::abort();
  *static_cast<volatile int*>(nullptr) = 0;
  std::abort();
}

// Removes one callable or makes it fail.
void spoilCallable(AlgoInterfaceCallbacks& table, const Fault& fault) {
  probe::forEachCallable(table, [&](const char* name, auto& callable) {
    if (fault.callable != name) return;
    if (fault.kind == "lacks") {
      callable = nullptr;
      return;
    }
    using Result = typename std::decay_t<decltype(callable)>::result_type;
    callable = [kind = fault.kind](auto&&...) -> Result {
      if (kind == "throws") throw std::runtime_error("planted");
      if (kind == "aborts") end(SIGABRT);
      if (kind == "segfaults") end(SIGSEGV);
      if (kind == "hangs") pause();
      if constexpr (std::is_arithmetic_v<Result>) return static_cast<Result>(kInvalid);
      if constexpr (std::is_pointer_v<Result>) return nullptr;
    };
  });
}

// Forwards the stand-in's callback with the fault.
void callBack(const std::string& kind, const AlgoResultCallback& real, const Bytes& data, const Bytes& extra,
              const Handles& handles) {
  Bytes message = data;
  CallbackHeader header;
  if (kind == "silent") return;
  if (kind == "name") std::memcpy(message.data() + kCallbackNameOffset, "shotcb", 6);
  if (kind == "id") {
    std::memcpy(&header, message.data(), kCallbackNameOffset);
    ++header.nativeReq;
    std::memcpy(message.data(), &header, kCallbackNameOffset);
  }
  if (kind == "unattached") {
    std::thread([&] { real(message, extra, handles); }).join();
  } else if (kind == "late") {
    gLate = std::thread([&real, message, extra, handles] {
      std::this_thread::sleep_for(kLate);
      real(message, extra, handles);
    });
  } else {
    real(message, extra, handles);
    if (kind == "twice") real(message, extra, handles);
    if (kind == "headless") real(Bytes(std::vector<uint8_t>(kCallbackNameOffset - 1)), extra, handles);
    if (kind == "afterwards") gAgain = [&real, message, extra, handles] { real(message, extra, handles); };
  }
}

// "empty" and "oversized" set a JPEG's size, "brief" sets only three bytes of the size, "selects" chooses the
// third frame and no base frame.
void spoilResults(const std::string& kind, const std::function<void(const char*, void*, unsigned)>& set) {
  int32_t size = kind == "empty" ? 0 : kOversized;
  if (kind == "empty" || kind == "oversized") set("encoded_jpeg_size", &size, sizeof size);
  if (kind == "brief") set("encoded_jpeg_size", &size, 3);
  if (kind != "selects") return;
  int32_t selected[20];
  std::fill(std::begin(selected), std::end(selected), -1);
  selected[0] = 2;
  int32_t base = -1;
  set("frame_select_result", selected, sizeof selected);
  set("current_base_frame_idx", &base, sizeof base);
}

void spoilRequest(const Fault& fault, AlgoProcessRecord& record, const AlgoMetadataOps& ops) {
  const auto* const real =
      reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(record.callbackCookie));
  void* const block = record.metadata[0].block;
  // Never freed: the stand-in may use it until the process exits.
  auto* const own = new AlgoResultCallback(
      [=, kind = fault.kind, setValue = ops.setValue, outputs = record.outputFrames,
       inputs = record.inputFrames](const Bytes& data, const Bytes& extra, const Handles& handles) {
        spoilOutputs(kind, outputs);
        if (kind == "stamped") stamp(inputs.at(0));
        int64_t flag = kFirstFlag;
        if (kind == "crossed") setValue(block, kControl, "current_base_frame_time", &flag, sizeof flag);
        spoilResults(kind, [&](const char* key, void* value, unsigned size) {
          setValue(block, kFeedback, key, value, size);
        });
        callBack(kind, *real, data, extra, handles);
      });
  record.callbackCookie = reinterpret_cast<uintptr_t>(own);
  spoilFrames(fault.kind, record);
  if (fault.kind == "idle") record.algoList.clear();
  if (fault.kind == "untouched") record.outputFrames.clear();
  if (fault.kind == "scribbles" && !record.outputFrames.empty()) {
    gBlock = block;
    gOutput = dup(record.outputFrames[0].fd[0]);
  }
}

// Writes to the first output when the request's block is destroyed: after the callback, on the thread that
// waits for the request.
void scribbleAfter(const std::function<void(void*)>& real, void* block) {
  real(block);
  if (gOutput < 0 || block != gBlock) return;
  constexpr off_t kPlace = 1000;
  if (pwrite(gOutput, "scribbled", 9, kPlace) != 9) std::abort();
  close(gOutput);
  gOutput = -1;
}

// Waits for late callbacks, as a correct library does. The fault "afterwards" starts callbacks that outlive
// the client.
int endClient(const std::function<int(void*)>& real, void* client) {
  if (gLate.joinable()) gLate.join();
  if (gAgain) {
    std::thread([again = std::move(gAgain)] {
      for (int i = 0; i < 20; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        again();
      }
    }).detach();
  }
  return real(client);
}

}  // namespace
}  // namespace orlu::planted

extern "C" __attribute__((visibility("default"))) void AlgoInterfaceEntry(
    orlu::AlgoInterfaceCallbacks* table) {
  using namespace orlu::planted;
  const Fault fault = Fault::ofEnvironment();
  *table = standIn();
  table->process = [=, real = *table](const orlu::AlgoProcessRecord& record) {
    orlu::AlgoProcessRecord spoilt = record;
    spoilRequest(fault, spoilt, real.metadataOps);
    return real.process(spoilt);
  };
  if (fault.kind == "visits") {
    table->metadataOps.paramSystemDownloadToAlgo = [](void*, const orlu::AlgoMetadataVisitor& visitor) {
      int32_t half = 0;
      return visitor(orlu::kControl, "frame_number", &half, sizeof half);
    };
  }
  table->metadataOps.destroyMetadata = [real = table->metadataOps.destroyMetadata](void* destroyed) {
    scribbleAfter(real, destroyed);
  };
  table->destroyClient = [real = table->destroyClient](void* client) { return endClient(real, client); };
  spoilCallable(*table, fault);
}

#endif
