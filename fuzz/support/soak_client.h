// One client of the soak, on a thread of its own that is attached to the Java VM: sends requests as their
// plans say, and ends what was announced.
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

// What the soak's threads share.
struct SoakShared {
  Ledger& ledger;
  CallbackPool attached;
  CallbackPool foreign;
  CallbackPool racing;  // attached; its callbacks wait for their time

  SoakShared(Ledger& itsLedger, uint64_t seed)
      : ledger(itsLedger), attached(seed, true), foreign(seed + 1, false), racing(seed + 2, true) {}
};

// What the threads send, as global references.
struct SoakArguments {
  jobject images;
  jobject abort;
  jobject compositions[kSoakKinds];
};
SoakArguments makeSoakArguments();

// What the library is scripted to do besides: nothing but to say what it is asked for.
standin::AlgoScript plainSoakScript(Ledger& ledger);

class SoakClient {
public:
  // A new one; `seed` says when it races and how it ends.
  SoakClient(SoakShared& shared, const SoakArguments& arguments, uint64_t seed);
  SoakClient(const SoakClient&) = delete;
  SoakClient& operator=(const SoakClient&) = delete;
  ~SoakClient();  // with requests in flight

  void send(uint64_t request);
  // Ends one request that was announced, this client's or another's. False when there is none.
  bool endOne();

private:
  // Whether it timed out.
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
  std::atomic<int> mPending{0};  // callbacks of the pools that come before this client's end
  std::vector<HeldCallback> mLate;
  std::vector<HeldCallback> mRacing;
  std::vector<HeldCallback> mInDestroyClient;
};

}  // namespace orlu::fuzz
