// How tests and tools steer the stand-in algorithm library, and look into it. The functions are exports of
// liborlu.vac.interface.so beside its entry; look them up with dlsym(), so that nothing links against the
// library that the product opens at run time.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

// A value that the algorithms leave in the parameter set of every request before they call back.
struct ScriptedValue {
  std::string section;
  std::string key;
  std::vector<uint8_t> bytes;
};

// A value that the algorithms ask the system for (paramSystemDownloadToAlgo) and store in the parameter set.
struct WantedValue {
  std::string section;
  std::string key;
  unsigned size = 0;  // bytes
};

// What an operation throws that the script makes throw.
struct ScriptedException {};

// Where the visitors of paramSystemDownloadToAlgo and paramAlgoUpdateToSystem are called: as they should be;
// on a thread of their own, meanwhile; when the operation has returned, on whichever thread destroys the
// block.
enum class VisitorUse { kHere, kOtherThread, kLater };

// One operation as the library was asked for it, in the order of the calls. Borrowed for the observer's call
// only.
struct AlgoCall {
  std::string operation;  // the name of the callable: "init", "process", "setValue", ...
  const AlgoCreateClientRecord* createClient = nullptr;
  const AlgoInitRecord* init = nullptr;
  const AlgoProcessRecord* process = nullptr;
  const AlgoCommandRecord* command = nullptr;
  const AlgoUninitRecord* uninit = nullptr;
  const AlgoGetDataRecord* getData = nullptr;
  const AlgoFlushRecord* flush = nullptr;
  const AlgoTranslateParamFileRecord* translateParamFile = nullptr;
  void* client = nullptr;         // of destroyClient
  void* block = nullptr;          // of a metadata operation
  const char* section = nullptr;  // of setValue and getValue
  const char* key = nullptr;
  const void* data = nullptr;  // of setValue and setRaw; of getValue what it answered
  unsigned size = 0;           // bytes of data
};

// What the library does instead of its usual work. The default is the usual work.
struct AlgoScript {
  std::set<std::string> notOffered;    // callables left empty in tables filled from now on, by their names
  bool runAlgorithms = true;           // false: pixels and parameter set stay as they came
  int processResult = 0;               // what process() answers; the callbacks come all the same
  int callbacks = 1;                   // how many "shotCb" a request gets: 0 none, 2 two, ...
  bool callBackBeforeReturn = false;   // on the caller's thread, inside process()
  bool attachThread = true;            // whether the calling-back thread is attached to the Java VM
  std::chrono::milliseconds delay{0};  // from process() to the (first) callback
  std::set<std::string> throwing;      // operations that throw; of "AlgoInterfaceEntry" too
  // Operations that leave a Java exception on their thread; "callback": on the way into the callback.
  std::set<std::string> leaving;
  bool finishInDestroyClient =
      false;                    // destroyClient waits for its requests' callbacks instead of dropping them
  std::function<void()> entry;  // called in AlgoInterfaceEntry, before it fills the table
  VisitorUse visitorUse = VisitorUse::kHere;
  std::function<void(int)> visited;  // called with what each visitor returned
  std::vector<ScriptedValue> values;
  std::vector<WantedValue> wanted;
  std::function<void(const AlgoCall&)> observer;  // called on the thread of the operation, before it is done
                                                  // (getValue: after)
};

struct AlgoCounts {
  int clients = 0;          // made and not destroyed
  int parameterBlocks = 0;  // kind 0, made and not destroyed
  int cameraBlocks = 0;     // kind 1
  int pendingRequests = 0;  // processed and not called back for the last time
};

using SetScriptFunction = void (*)(const AlgoScript* script);
using CountFunction = void (*)(AlgoCounts* counts);
using SendCallbackFunction = void (*)(uint64_t callbackCookie, const uint8_t* data, uint32_t size,
                                      const native_handle_t* const* handles, uint32_t handleCount,
                                      bool attachThread);
using WaitIdleFunction = bool (*)(int milliseconds);

}  // namespace orlu::standin

// Takes a copy of the script, for every operation that starts from now on; null: back to the usual work.
extern "C" void AlgoStandInSetScript(const orlu::standin::AlgoScript* script);
// The same for the operations that the calling thread asks for, which then keep to this script alone; null:
// to the common one again.
extern "C" void AlgoStandInSetThreadScript(const orlu::standin::AlgoScript* script);
// Fills in what the library holds now.
extern "C" void AlgoStandInCount(orlu::standin::AlgoCounts* counts);
// Calls back with these bytes and handles from a new thread and waits for it to end.
extern "C" void AlgoStandInSendCallback(uint64_t callbackCookie, const uint8_t* data, uint32_t size,
                                        const native_handle_t* const* handles, uint32_t handleCount,
                                        bool attachThread);
// Waits until no request is pending. False when the time was over first.
extern "C" bool AlgoStandInWaitIdle(int milliseconds);
