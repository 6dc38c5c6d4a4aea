#include "ledger.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <vector>

namespace orlu::fuzz {
namespace {

constexpr const char* kEndingNames[kEndings] = {"answered",  "after timeout",   "skipped",
                                                "announced", "never announced", "NONE"};
constexpr int kMismatchesShown = 10;

const char* nameOf(Ending ending) {
  return kEndingNames[static_cast<size_t>(ending)];
}

// Returns the width of a column, including the blanks before it.
int widthOf(size_t column) {
  return std::max(8, static_cast<int>(std::strlen(kEndingNames[column]))) + 2;
}

void printRow(const char* name, const std::array<uint64_t, kEndings>& counts) {
  std::printf("%-25s %9" PRIu64, name, std::accumulate(counts.begin(), counts.end(), uint64_t{0}));
  for (size_t i = 0; i < kEndings; ++i) std::printf("%*" PRIu64, widthOf(i), counts[i]);
  std::putchar('\n');
}

}  // namespace

Ledger::Ledger(uint64_t seed, uint64_t requests)
    : mSeed(seed), mRequests(requests), mSeen(std::make_unique<Seen[]>(requests)) {}

void Ledger::sawBlock(uint64_t request, void* block) {
  const std::lock_guard<std::mutex> lock(mMutex);
  mBlocks[block] = request;
}

void Ledger::sawBlockDestroyed(void* block) {
  const std::lock_guard<std::mutex> lock(mMutex);
  const auto found = mBlocks.find(block);
  if (found == mBlocks.end()) return;
  Seen& seen = mSeen[found->second];
  ++seen.ended;
  if (seen.isInProcess) seen.lostBlock = true;
  mBlocks.erase(found);
}

Ending Ledger::ending(uint64_t request) const {
  const Seen& seen = mSeen[request];
  const SoakKind kind = way(request).kind;
  const bool isAsync = isFullAsync(kind);
  if (seen.returned != 1 || seen.ended != 1 || seen.processed > 1 || seen.timedOut > 1 || seen.lostBlock) {
    return Ending::kNone;
  }
  // Only full-async requests are announced to Java. Only synchronous requests wait, and so can time out.
  if (isAsync ? seen.timedOut != 0 : seen.announced.load()) return Ending::kNone;
  if (seen.processed == 0) {
    return seen.timedOut != 0 || isAsync != seen.announced ? Ending::kNone : Ending::kSkipped;
  }
  if (isAsync) return seen.announced ? Ending::kAnnounced : Ending::kUnannounced;
  return seen.timedOut != 0 ? Ending::kTimedOut : Ending::kAnswered;
}

bool Ledger::isExpected(uint64_t request) const {
  const Ending real = ending(request);
  return real != Ending::kNone && (real == way(request).ending || real == otherEnding(way(request)));
}

bool Ledger::print() const {
  std::vector<Counts> rows(std::size(kSoakWays));
  Counts sum = {};
  std::vector<uint64_t> unexpected;
  for (uint64_t request = 0; request < mRequests; ++request) {
    const auto column = static_cast<size_t>(ending(request));
    ++rows[plan(request).way][column];
    ++sum[column];
    if (!isExpected(request)) unexpected.push_back(request);
  }
  std::printf("%-25s %9s", "kind of request", "requests");
  for (size_t i = 0; i < kEndings; ++i) std::printf("%*s", widthOf(i), kEndingNames[i]);
  std::putchar('\n');
  for (size_t i = 0; i < rows.size(); ++i) printRow(kSoakWays[i].name, rows[i]);
  printRow("all", sum);
  std::printf("%zu requests did not end as planned\n", unexpected.size());
  for (size_t i = 0; i < std::min<size_t>(unexpected.size(), kMismatchesShown); ++i) {
    const uint64_t request = unexpected[i];
    const Seen& seen = mSeen[request];
    std::printf("  request %" PRIu64
                ", %s %s: expected %s, found %s (process %d, timeout %d, return %d, "
                "end %d, announced %d, block lost %d)\n",
                request, isFullAsync(way(request).kind) ? "full-async" : "synchronous", way(request).name,
                nameOf(way(request).ending), nameOf(ending(request)), seen.processed.load(),
                seen.timedOut.load(), seen.returned.load(), seen.ended.load(), seen.announced ? 1 : 0,
                seen.lostBlock ? 1 : 0);
  }
  return unexpected.empty();
}

}  // namespace orlu::fuzz
