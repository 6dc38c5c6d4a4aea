// The stand-in algorithm library, as the product opened it: scripted for the life of this object, its calls
// recorded.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "algo_script.h"

namespace orlu::test {

// One operation that the library was asked for, with what tests look at.
struct RecordedCall {
  std::string operation;
  std::string section;
  std::string key;
  std::vector<uint8_t> bytes;
};

// Hands the stand-in a script, or null for its usual work. Nothing is recorded.
void setScript(const standin::AlgoScript* script);

// The same for the calling thread alone; null: it keeps to the common script again.
void setThreadScript(const standin::AlgoScript* script);

class Algo {
public:
  Algo();
  Algo(const Algo&) = delete;
  Algo& operator=(const Algo&) = delete;
  ~Algo();  // waits for what is pending, and goes back to the usual work

  // Takes effect with use().
  standin::AlgoScript script;
  void use();

  std::vector<RecordedCall> calls() const;
  // The names of the operations in order, joined by blanks.
  std::string operations() const;
  void forget();

  static standin::AlgoCounts counts();
  static bool waitIdle(int milliseconds);
  static void sendCallback(uint64_t cookie, const std::vector<uint8_t>& data,
                           const std::vector<const native_handle_t*>& handles, bool attachThread);

private:
  void record(const standin::AlgoCall& call);

  mutable std::mutex mMutex;
  std::vector<RecordedCall> mCalls;
};

}  // namespace orlu::test
