// Scripts that make the stand-in algorithm library misbehave.
#pragma once

#include <random>

#include "algo_script.h"
#include "result_values.h"

namespace orlu::fuzz {

using Random = std::mt19937_64;

inline bool chance(Random& random, unsigned percent) {
  return random() % 100 < percent;
}

inline uint32_t hostileWord(Random& random) {
  constexpr uint32_t kWords[] = {0,  1,          2,          19,         20,         49,
                                 50, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x7F800000, 0x7FC00000};
  return chance(random, 70) ? kWords[random() % std::size(kWords)] : static_cast<uint32_t>(random());
}

// Returns hostile bytes for a result. Most sizes differ by at most one byte from the size that the service
// reads.
inline standin::ScriptedValue hostileValue(Random& random, const ResultValue& value) {
  const size_t sizes[] = {0, 1, value.size - 1, value.size, value.size, value.size + 1, 100'000};
  standin::ScriptedValue scripted = {value.section, value.key, {}};
  scripted.bytes.resize(sizes[random() % std::size(sizes)]);
  for (size_t i = 0; i < scripted.bytes.size() && i < 400; i += 4) {
    const uint32_t word = hostileWord(random);
    for (size_t k = i; k < i + 4 && k < scripted.bytes.size(); ++k) {
      scripted.bytes[k] = static_cast<uint8_t>(word >> (8 * (k - i)));
    }
  }
  return scripted;
}

// Only the first kMayBeMissing operations may be missing from the table. Without process or getSize, the
// request would wait for a callback that can't arrive; without destroyMetadata or destroyClient, blocks or
// clients would leak.
// clang-format off
constexpr const char* kOperations[] = {
    "init", "uninit", "getData", "flush", "command", "translateParamFile", "createClient", "createMetadata",
    "setValue", "getValue", "setRaw", "paramAlgoUpdateToSystem", "paramSystemDownloadToAlgo",
    "process", "getSize", "destroyMetadata", "destroyClient", "callback"};
// clang-format on
constexpr size_t kMayBeMissing = 13;

inline const char* someOperation(Random& random, size_t count) {
  return kOperations[static_cast<size_t>(random() % count)];
}

inline standin::AlgoScript hostileScript(Random& random) {
  standin::AlgoScript script;
  script.runAlgorithms = chance(random, 10);
  if (chance(random, 20)) script.notOffered.insert(someOperation(random, kMayBeMissing));
  if (chance(random, 20)) script.throwing.insert(someOperation(random, std::size(kOperations)));
  if (chance(random, 20)) script.leaving.insert(someOperation(random, std::size(kOperations)));
  script.finishInDestroyClient = chance(random, 20);
  script.visitorUse = static_cast<standin::VisitorUse>(random() % 3);
  if (chance(random, 20)) script.processResult = static_cast<int>(hostileWord(random));
  if (chance(random, 20)) script.callbacks = 2;
  script.callBackBeforeReturn = chance(random, 20);
  script.attachThread = chance(random, 80);
  for (const ResultValue& value : kResultValues) {
    if (chance(random, 40)) script.values.push_back(hostileValue(random, value));
  }
  const char* const kNames[] = {"", "some_key", "%s%n", "\xE2\x82", "\xF0\x9F\x98\x80"};
  const std::string longName(200, 'x');
  for (unsigned size : {0U, 1U, 100U, 70'000U}) {
    script.wanted.push_back({kSystem, chance(random, 20) ? longName + "\xC3" : kNames[random() % 5], size});
  }
  return script;
}

}  // namespace orlu::fuzz
