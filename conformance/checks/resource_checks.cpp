// Checks that requests leak no descriptors, mappings, threads or memory.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "checks.h"
#include "descriptor_watch.h"
#include "holdings.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr uint64_t kWarmUp = 50;
constexpr uint64_t kRequests = 200;
constexpr uint64_t kManyRequests = 2000;
constexpr uint64_t kFewestForSlope = 300;
constexpr double kMostSeconds = 6;      // a slow library reaches this before all requests have run
constexpr double kBytesOfRequest = 16;  // growth per request; this much is a leak
constexpr int kRounds = 3;              // growth in every round is a leak
constexpr std::chrono::seconds kSettle{2};

// Returns false if the callback is missing.
bool runOne(Client& client, Inbox& inbox, const Image& input, const Image& output, uint64_t id) {
  Block parameters;
  parameters.set(kControl, "conform_key", std::string(100, 'k'));
  Request request;
  request.nativeReq = id;
  request.inputs = {&input};
  request.outputs = {&output};
  submit(client, inbox, parameters, request);
  const bool came = inbox.waitFor(id);
  HOLDS(came) << kNoCallback << "request " << id;
  inbox.forget();
  return came;
}

bool runMany(Client& client, Inbox& inbox, uint64_t first, uint64_t count) {
  const Image input;
  const Image output({}, 2);
  for (uint64_t id = first; id < first + count; ++id) {
    if (!runOne(client, inbox, input, output, id)) return false;
  }
  return true;
}

struct Limit {
  const char* what;
  int64_t Holdings::*held;
  int64_t slack;
  bool runsOut;  // a leak soon makes the library's own calls fail
};

// The slack allows for the freed stacks and arenas that the C library caches for the next thread.
constexpr Limit kLimits[] = {
    {"descriptors",     &Holdings::descriptors, 2,               true },
    {"threads",         &Holdings::threads,     4,               true },
    {"mappings",        &Holdings::mappings,    40,              false},
    {"allocated bytes", &Holdings::bytes,       kRequests * 100, false},
};

void judgeGrowth(const Holdings& growth) {
  for (const Limit& limit : kLimits) {
    HOLDS(growth.*limit.held <= limit.slack)
        << kRequests << " requests must leave nothing behind: " << growth.*limit.held << " " << limit.what
        << " more; usual cause: an early return skips a close, munmap, join or free";
  }
}

// Sets `least` to the growth that kRequests requests cause. If only mappings or bytes exceed their slack,
// measures again, up to kRounds rounds in all, and takes the smallest growth of each. Reason: on a busy
// machine more threads of the tested library overlap, and the C library allocates an arena for each of them
// once. Returns false if a callback is missing.
bool measureGrowth(Client& client, Inbox& inbox, Holdings& least) {
  constexpr std::chrono::milliseconds kListed{150};  // an exited thread stays listed for a moment
  for (uint64_t round = 0; round < kRounds; ++round) {
    step(std::to_string(kRequests) + " more requests, round " + std::to_string(round + 1));
    std::this_thread::sleep_for(kListed);
    const Holdings before = Holdings::now();
    if (!runMany(client, inbox, 1 + kWarmUp + round * kRequests, kRequests)) return false;
    std::this_thread::sleep_for(kListed);
    const Holdings growth = Holdings::now() - before;
    bool exceeds = false;
    bool runsOut = false;
    for (const Limit& limit : kLimits) {
      int64_t& held = least.*limit.held;
      held = round == 0 ? growth.*limit.held : std::min(held, growth.*limit.held);
      exceeds = exceeds || held > limit.slack;
      runsOut = runsOut || (limit.runsOut && held > limit.slack);
    }
    if (!exceeds || runsOut) break;
  }
  return true;
}

// Heap bytes in use after a number of requests.
struct Sample {
  double requests;
  double bytes;
};

// Returns the growth in bytes per request, by least squares.
double slopeOf(const std::vector<Sample>& samples) {
  Sample mean = {0, 0};
  for (const Sample& sample : samples) {
    mean.requests += sample.requests / static_cast<double>(samples.size());
    mean.bytes += sample.bytes / static_cast<double>(samples.size());
  }
  double product = 0;
  double square = 0;
  for (const Sample& sample : samples) {
    product += (sample.requests - mean.requests) * (sample.bytes - mean.bytes);
    square += (sample.requests - mean.requests) * (sample.requests - mean.requests);
  }
  return square == 0 ? 0 : product / square;
}

// Runs `most` requests, or fewer if they take kMostSeconds. Sets `done` to the number of requests. Returns
// the growth in bytes per request over the second half of the requests; 0 if a callback is missing.
double slopeOfRequests(Client& client, Inbox& inbox, uint64_t most, uint64_t& done) {
  const Image input;
  const Image output({}, 2);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(kMostSeconds);
  std::vector<Sample> samples;
  samples.reserve(static_cast<size_t>(most));
  for (done = 0; done < most; ++done) {
    if (done % 50 == 0 && std::chrono::steady_clock::now() > end) break;
    if (!runOne(client, inbox, input, output, 1000 + done)) return 0;
    if (done % 5 == 0) samples.push_back({static_cast<double>(done), static_cast<double>(allocatedBytes())});
  }
  samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2));
  return slopeOf(samples);
}

void tryManyRequests(Client& client, Inbox& inbox) {
  uint64_t done = 0;
  double least = 0;
  for (int round = 0; round < kRounds; ++round) {
    step("bytes for each of " + std::to_string(kManyRequests) + " requests, round " +
         std::to_string(round + 1));
    const double slope = slopeOfRequests(client, inbox, kManyRequests, done);
    least = round == 0 ? slope : std::min(least, slope);
    if (testing::Test::HasFailure() || least < kBytesOfRequest) break;
  }
  const std::string count = std::to_string(done) + " requests: ";
  HOLDS(least < kBytesOfRequest)
      << count << "none may leak memory, but allocated memory grows by " << least
      << " bytes per request (slope over the second half, smallest of " << kRounds
      << " rounds); usual cause: entries are never removed from a list of requests or results";
  note(count + std::to_string(least) + " bytes each" +
       (done < kFewestForSlope ? "; too few requests to be sure" : ""));
}

// Returns "; left over: A, B"; "" for an empty list.
std::string listOf(const std::vector<std::string>& left) {
  std::string text;
  for (const std::string& one : left) text += (text.empty() ? "; left over: " : ", ") + one;
  return text;
}

// Runs requests with images of one format and layout. The check fails if a descriptor or mapping leaks, or if
// the library closes or unmaps wrongly.
void watchOne(Scene& scene, DescriptorWatch& watch, const ImageShape& shape, const std::string& what) {
  const Image input(shape, 1);
  const Image output(shape, 2);
  const Image second(shape, 3);
  for (const Image* image : {&input, &output, &second}) watch.lend(image->descriptors());
  const auto held = [&watch] {
    Holdings holdings = Holdings::now();
    holdings.descriptors -= watch.kept();
    return holdings;
  };
  watch.takeLeft();
  const Holdings before = held();
  for (uint64_t id = 1; id <= 3; ++id) {
    Request request;
    request.nativeReq = id;
    request.inputs = {&input, &input};
    request.outputs = {&output, &second};
    submit(scene.client, scene.inbox, scene.parameters, request);
    HOLDS(scene.inbox.waitFor(id)) << kNoCallback << what;
    scene.inbox.forget();
  }
  const auto end = std::chrono::steady_clock::now() + kSettle;
  Holdings growth = held() - before;
  while ((growth.descriptors > 0 || growth.imageMappings > 0) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    growth = held() - before;
  }
  HOLDS(growth.descriptors <= 0 && growth.imageMappings <= 0)
      << "three requests with " << what << " must leave no descriptor and no mapping: " << growth.descriptors
      << " descriptors and " << growth.imageMappings << " mappings are left after " << kSettle.count() << " s"
      << listOf(watch.takeLeft())
      << "; usual cause: an early return, for this format only, skips close or munmap";
  for (const Image* image : {&input, &output, &second}) watch.forget(image->descriptors());
  for (const std::string& wrong : watch.takeWrong()) {
    ADD_FAILURE() << "a request with " << what
                  << ": a library must close each descriptor of its own exactly once, and unmap each mapping "
                  << "of its own exactly once and as a whole; found " << wrong
                  << "; usual cause: two places release the same resource, whose number or address may be "
                     "reused meanwhile";
  }
}

}  // namespace

void checkLeaks() {
  OPEN_LIBRARY(library);
  Client client;
  Inbox inbox;
  step("the first " + std::to_string(kWarmUp) + " requests");
  if (!runMany(client, inbox, 1, kWarmUp)) return;
  Holdings growth;
  if (!measureGrowth(client, inbox, growth)) return;
  judgeGrowth(growth);
  note(growth.text());
  if (!testing::Test::HasFailure()) tryManyRequests(client, inbox);
}

void checkDescriptors() {
  DescriptorWatch watch;
  OPEN_LIBRARY(library);
  Scene scene;
  scene.run(1);
  scene.inbox.forget();
  for (int32_t format : Image::formats()) {
    for (const Layout& layout : kLayouts) {
      const ImageShape shape = {format, 64, 48, layout.padding, layout.paddingRows, layout.isHardwareBuffer};
      const std::string what = "images " + describe(Image(shape).frame()) + " " + layout.name;
      step(what);
      watchOne(scene, watch, shape, what);
      if (testing::Test::HasFailure()) return;
    }
  }
  if (!DescriptorWatch::canSee()) note("close, dup and munmap are not checked under a sanitizer");
}

}  // namespace orlu::conform
