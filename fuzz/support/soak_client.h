// A client of the soak, on its own thread, attached to the Java VM. Sends requests as planned, and finishes
// announced requests.
#pragma once

#include <jni.h>

#include <atomic>
#include <cstdint>
#include <random>
#include <vector>

#include "algo.h"
#include "callback_pool.h"
#include "ledger.h"

namespace orlu::fuzz {

struct Current;

// State shared by the soak's threads.
struct SoakShared {
  Ledger& ledger;
  CallbackPool attached;
  CallbackPool foreign;
  CallbackPool racing;  // attached; sends each callback after its delay

  SoakShared(Ledger& itsLedger, uint64_t seed)
      : ledger(itsLedger), attached(seed, true), foreign(seed + 1, false), racing(seed + 2, true) {}
};

// Arguments of the requests, as global references.
struct SoakArguments {
  jobject images;
  jobject abort;
  jobject compositions[kSoakKinds];
};
SoakArguments makeSoakArguments();

// Returns the stand-in's basic script: no algorithms run, and the ledger observes each operation.
standin::AlgoScript plainSoakScript(Ledger& ledger);

class SoakClient {
public:
  // Creates a client. `seed` determines the delays of its racing callbacks and the fault in its destruction.
  SoakClient(SoakShared& shared, const SoakArguments& arguments, uint64_t seed);
  SoakClient(const SoakClient&) = delete;
  SoakClient& operator=(const SoakClient&) = delete;
  ~SoakClient();  // destroys the client while requests are in flight

  void send(uint64_t request);
  // Finishes one announced request of any client. Returns false if no request is announced.
  bool endOne();

private:
  // Sends the request and returns whether it timed out.
  bool processImage(Current& current, const SoakWay& way);
  void finish(uint64_t request, const SoakWay& way, const HeldCallback& callback);
  void hold(HeldCallback callback, bool isWithoutMemory = false);
  void waitForHeld();
  void end(int64_t address);
  void finishByName(uint64_t nativeReq);

  JNIEnv* const mEnv;
  SoakShared& mShared;
  const SoakArguments& mArguments;
  const standin::AlgoScript mPlain;
  std::mt19937_64 mRandom;
  const int64_t mInst;
  std::atomic<int> mPending{0};  // pooled callbacks to be sent before this client is destroyed
  std::vector<HeldCallback> mLate;
  std::vector<HeldCallback> mRacing;
  std::vector<HeldCallback> mInDestroyClient;
};

}  // namespace orlu::fuzz
