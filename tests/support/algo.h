// Controls the stand-in algorithm library. While an Algo lives, the stand-in follows the script of the Algo's
// last use(), and the Algo records the calls of the stand-in's operations.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "algo_script.h"

namespace orlu::test {

// A call of an operation of the library, with the arguments that tests examine.
struct RecordedCall {
  std::string operation;
  std::string section;
  std::string key;
  std::vector<uint8_t> bytes;
};

// Sets the stand-in's script; null restores its default behaviour. Unlike an Algo, records no calls.
void setScript(const standin::AlgoScript* script);

// Sets the script of the calling thread only; null makes the thread use the common script again.
void setThreadScript(const standin::AlgoScript* script);

class Algo {
public:
  Algo();
  Algo(const Algo&) = delete;
  Algo& operator=(const Algo&) = delete;
  ~Algo();  // waits for pending work, then restores the default behaviour

  // Changes take effect when use() is called.
  standin::AlgoScript script;
  void use();

  std::vector<RecordedCall> calls() const;
  // Returns the names of the operations called, in order, separated by spaces.
  std::string operations() const;
  void forget();

  static standin::AlgoCounts counts();
  static bool waitIdle(int milliseconds);
  static void sendCallback(uint64_t cookie, const std::vector<uint8_t>& data,
                           const std::vector<const native_handle_t*>& handles, bool attachThread);

private:
  void record(const probe::WatchedCall& call);

  mutable std::mutex mMutex;
  std::vector<RecordedCall> mCalls;
};

}  // namespace orlu::test
