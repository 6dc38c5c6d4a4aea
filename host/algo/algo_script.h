// Functions with which tests and tools control and inspect the stand-in algorithm library. The stand-in,
// liborlu.vac.interface.so, exports them. Look them up with dlsym(): nothing may link against the stand-in,
// because the native library opens it at run time.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "algo_interface.h"
#include "table_watch.h"

namespace orlu::standin {

// A value that the library stores in the parameter set of every request before it calls back.
struct ScriptedValue {
  std::string section;
  std::string key;
  std::vector<uint8_t> bytes;
};

// A value that paramSystemDownloadToAlgo requests from the system and stores in the parameter set.
struct WantedValue {
  std::string section;
  std::string key;
  unsigned size = 0;  // bytes
};

// Thrown by operations that the script lists as throwing.
struct ScriptedException {};

// Where the visitors of paramSystemDownloadToAlgo and paramAlgoUpdateToSystem are called: during the
// operation on its own thread; during the operation on another thread; or after the operation, on the thread
// that destroys the block.
enum class VisitorUse { kHere, kOtherThread, kLater };

// How the library deviates from its usual behaviour. The default is no deviation.
struct AlgoScript {
  std::set<std::string> notOffered;  // names of callables to leave empty in later tables
  // If false, the library writes no pixels, sends no light-stream events, and sets only the parameters of
  // `values` and `echoFlag`.
  bool runAlgorithms = true;
  int processResult = 0;               // result of process(); the callbacks are sent anyway
  int callbacks = 1;                   // number of "shotCb" callbacks per request
  bool callBackBeforeReturn = false;   // call back on the caller's thread, inside process()
  bool attachThread = true;            // attach the callback thread to the Java VM
  std::chrono::milliseconds delay{0};  // from process() to the (first) callback
  // The largest addition to the delay; the addition varies from request to request.
  std::chrono::milliseconds jitter{0};
  bool inOrder = true;  // false: a callback doesn't wait for the callbacks of earlier requests
  // Copies the parameter "frame_flag" to the base frame's time in the results. A caller that sets a different
  // flag in each request can then match results to requests.
  bool echoFlag = false;
  std::set<std::string> throwing;  // operations that throw; may include "AlgoInterfaceEntry"
  // Operations that leave a Java exception pending on their thread. With "callback", the callback's thread
  // has a pending exception when it calls back.
  std::set<std::string> leaving;
  // destroyClient waits for the callbacks of its requests instead of dropping them.
  bool finishInDestroyClient = false;
  std::function<void()> entry;  // called in AlgoInterfaceEntry(), before the table is filled in
  VisitorUse visitorUse = VisitorUse::kHere;
  std::function<void(int)> visited;  // called with the result of each visitor
  std::vector<ScriptedValue> values;
  std::vector<WantedValue> wanted;
  // Called on the thread of each operation, before the operation (getValue: after it). Must not throw. If no
  // observer is set when the library fills in a table, calls through that table are never observed.
  std::function<void(const probe::WatchedCall&)> observer;
};

struct AlgoCounts {
  int clients = 0;          // created and not destroyed
  int parameterBlocks = 0;  // kind 0, created and not destroyed
  int cameraBlocks = 0;     // kind 1
  int pendingRequests = 0;  // submitted; their last callback is still to come
};

using SetScriptFunction = void (*)(const AlgoScript* script);
using CountFunction = void (*)(AlgoCounts* counts);
using SendCallbackFunction = void (*)(uint64_t callbackCookie, const uint8_t* data, uint32_t size,
                                      const native_handle_t* const* handles, uint32_t handleCount,
                                      bool attachThread);
using WaitIdleFunction = bool (*)(int milliseconds);

}  // namespace orlu::standin

// Sets a copy of the script for every operation that starts from now on; null sets a default AlgoScript.
extern "C" void AlgoStandInSetScript(const orlu::standin::AlgoScript* script);
// Sets a copy of the script for operations that are called on this thread. This thread's script takes
// precedence over the common one; null removes the thread's script.
extern "C" void AlgoStandInSetThreadScript(const orlu::standin::AlgoScript* script);
extern "C" void AlgoStandInCount(orlu::standin::AlgoCounts* counts);
// Calls back with these bytes and handles from a new thread and waits for that thread.
extern "C" void AlgoStandInSendCallback(uint64_t callbackCookie, const uint8_t* data, uint32_t size,
                                        const native_handle_t* const* handles, uint32_t handleCount,
                                        bool attachThread);
// Waits until no request is pending. Returns false on timeout.
extern "C" bool AlgoStandInWaitIdle(int milliseconds);
