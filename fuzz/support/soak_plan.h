// The plan and expected ending of each request. Both depend only on the soak's seed and the request's number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace orlu::fuzz {

enum class Ending : uint8_t {
  kAnswered,     // synchronous, woken by its callback
  kTimedOut,     // synchronous, without a callback in time
  kSkipped,      // never submitted to the library
  kAnnounced,    // full-async, announced to Java and finished by Java
  kUnannounced,  // full-async, not announced: finished by its id or with its client
  kNone          // none of these, or several
};
constexpr size_t kEndings = 6;

enum class SoakKind : uint8_t { kSynchronous, kFullAsync, kAborted, kSkipped, kSkipAsync };
constexpr size_t kSoakKinds = 5;

constexpr bool isFullAsync(SoakKind kind) {
  return kind != SoakKind::kSynchronous && kind != SoakKind::kSkipped;
}

constexpr bool isSkipped(SoakKind kind) {
  return kind == SoakKind::kSkipped || kind == SoakKind::kSkipAsync;
}

// When, how often and on which thread a request's callback is sent.
enum class SoakCallbacks : uint8_t {
  kOnce,
  kTwice,
  kBeforeReturn,     // on the calling thread, inside process()
  kForeign,          // on an unattached thread
  kReordered,        // on the soak's own attached thread, in random order
  kReorderedAway,    // on the soak's own unattached thread, in random order
  kDropped,          // not sent
  kLate,             // after the request timed out or its client was destroyed
  kRacing,           // near the timeout, or while the client is being destroyed
  kInDestroyClient,  // by the library, while it destroys its client
  kAfterFinish,      // after Java, which guessed the id, has finished the request
  kFinishOnly,       // not sent: Java finishes the request, and its block is destroyed with the client
  kThrowing,         // once, and the call into Java throws
  kWithoutMemory     // once, but the map for Java can't be allocated; Java finishes the request by its id
};

// How a request is called back and ends. The soak prints one table row for each way (see ledger.h).
struct SoakWay {
  unsigned share;  // per thousand requests
  const char* name;
  SoakKind kind;
  SoakCallbacks callbacks;
  Ending ending;
};

using Kind = SoakKind;
using Calls = SoakCallbacks;
using End = Ending;

// clang-format off
constexpr SoakWay kSoakWays[] = {
  {220, "synchronous",              Kind::kSynchronous, Calls::kOnce,            End::kAnswered},
  { 50, "  called back twice",      Kind::kSynchronous, Calls::kTwice,           End::kAnswered},
  { 50, "  before process returns", Kind::kSynchronous, Calls::kBeforeReturn,    End::kAnswered},
  { 50, "  on a foreign thread",    Kind::kSynchronous, Calls::kForeign,         End::kAnswered},
  { 50, "  in another order",       Kind::kSynchronous, Calls::kReordered,       End::kAnswered},
  { 50, "  and on foreign threads", Kind::kSynchronous, Calls::kReorderedAway,   End::kAnswered},
  { 10, "  dropped",                Kind::kSynchronous, Calls::kDropped,         End::kTimedOut},
  { 10, "  after the timeout",      Kind::kSynchronous, Calls::kLate,            End::kTimedOut},
  { 10, "  near the timeout",       Kind::kSynchronous, Calls::kRacing,          End::kAnswered},
  { 50, "skipped",                  Kind::kSkipped,     Calls::kDropped,         End::kSkipped},
  { 50, "skipped, full-async",      Kind::kSkipAsync,   Calls::kDropped,         End::kSkipped},
  {130, "full-async",               Kind::kFullAsync,   Calls::kOnce,            End::kAnnounced},
  { 50, "  called back twice",      Kind::kFullAsync,   Calls::kTwice,           End::kAnnounced},
  { 40, "  before process returns", Kind::kFullAsync,   Calls::kBeforeReturn,    End::kAnnounced},
  { 50, "  in another order",       Kind::kFullAsync,   Calls::kReordered,       End::kAnnounced},
  { 10, "  on a foreign thread",    Kind::kFullAsync,   Calls::kForeign,         End::kUnannounced},
  { 40, "  aborted",                Kind::kAborted,     Calls::kOnce,            End::kAnnounced},
  { 10, "  in destroyClient",       Kind::kFullAsync,   Calls::kInDestroyClient, End::kAnnounced},
  { 10, "  at the client's end",    Kind::kFullAsync,   Calls::kRacing,          End::kAnnounced},
  { 10, "  after the client's end", Kind::kFullAsync,   Calls::kLate,            End::kUnannounced},
  { 10, "  dropped",                Kind::kFullAsync,   Calls::kDropped,         End::kUnannounced},
  { 10, "  after Java finished it", Kind::kFullAsync,   Calls::kAfterFinish,     End::kUnannounced},
  { 10, "  finished, then dropped", Kind::kFullAsync,   Calls::kFinishOnly,      End::kUnannounced},
  { 10, "  announcement throws",    Kind::kFullAsync,   Calls::kThrowing,        End::kUnannounced},
  { 10, "  no memory to announce",  Kind::kFullAsync,   Calls::kWithoutMemory,   End::kUnannounced},
};

// Faults of operations. An operation does its work before it throws or leaves the exception. Only "callback"
// leaves the exception before the callback is sent.
struct SoakFault {
  const char* operation;
  bool isJava;  // leaves a Java exception pending; otherwise throws a C++ exception
};
constexpr SoakFault kSoakFaults[] = {
  {"process",  false}, {"process",  true},
  {"setValue", false}, {"setValue", true},
  {"getValue", false}, {"getValue", true},
  {"setRaw",   false}, {"setRaw",   true},
  {"getSize",  false}, {"getSize",  true},
  {"command",  false}, {"command",  true},
  {"callback", true},
  {"paramSystemDownloadToAlgo", false}, {"paramAlgoUpdateToSystem", true},
};
// Faults of operations while a client is being destroyed.
constexpr SoakFault kSoakEndFaults[] = {
  {"flush",         false}, {"flush",         true},
  {"uninit",        false}, {"uninit",        true},
  {"destroyClient", false}, {"destroyClient", true},
};
// clang-format on

// Returns the ending that a race allows besides `way.ending`; kNone for ways without a race.
constexpr Ending otherEnding(const SoakWay& way) {
  if (way.callbacks != SoakCallbacks::kRacing) return Ending::kNone;
  return isFullAsync(way.kind) ? Ending::kUnannounced : Ending::kTimedOut;
}

// Mixes the bits of a number (SplitMix64).
constexpr uint64_t mixed(uint64_t value) {
  value += 0x9E3779B97F4A7C15;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
  return value ^ (value >> 31);
}

struct SoakPlan {
  size_t way;              // index into kSoakWays
  const SoakFault* fault;  // null if nothing misbehaves
};

constexpr SoakPlan soakPlan(uint64_t seed, uint64_t request) {
  constexpr unsigned kFaultEvery = 16;
  const uint64_t bits = mixed(mixed(seed) + request);
  auto place = static_cast<unsigned>(bits % 1'000);
  size_t way = 0;
  for (; place >= kSoakWays[way].share; ++way) place -= kSoakWays[way].share;
  const bool isFaulty = (bits >> 32) % kFaultEvery == 0;
  return {way, isFaulty ? &kSoakFaults[(bits >> 40) % std::size(kSoakFaults)] : nullptr};
}

constexpr unsigned sharesOfSoakWays() {
  unsigned sum = 0;
  for (const SoakWay& way : kSoakWays) sum += way.share;
  return sum;
}
static_assert(sharesOfSoakWays() == 1'000);

}  // namespace orlu::fuzz
