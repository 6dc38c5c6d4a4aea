// Checks that equal requests give equal bytes, whatever fresh memory contains and whichever requests came
// before.
#include <algorithm>
#include <string_view>

#include "checks.h"
#include "holdings.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr int kPoisons[] = {0x11, 0xEE};

// Removes a JPEG's leading application segments, because EXIF data may contain the time of day.
std::string withoutFacts(const std::string& jpeg) {
  const auto byteAt = [&jpeg](size_t i) { return static_cast<size_t>(static_cast<uint8_t>(jpeg[i])); };
  size_t i = 2;
  while (i + 4 <= jpeg.size() && byteAt(i) == 0xFF && byteAt(i + 1) >= 0xE0 && byteAt(i + 1) <= 0xEF) {
    i += 2 + (byteAt(i + 2) << 8U) + byteAt(i + 3);
  }
  return i < jpeg.size() ? jpeg.substr(i) : jpeg;
}

// Zeroes times in EXIF's form ("2026:11:26 15:23:50"), because any output may contain a JPEG.
std::string withoutTimes(std::string bytes) {
  constexpr std::string_view kForm = "0000:00:00 00:00:00";
  const auto isLike = [](char form, char byte) {
    return form == '0' ? byte >= '0' && byte <= '9' : byte == form;
  };
  for (size_t i = 0; i + kForm.size() <= bytes.size(); ++i) {
    const char* const here = bytes.data() + i;
    if (std::equal(kForm.begin(), kForm.end(), here, isLike)) bytes.replace(i, kForm.size(), kForm);
  }
  return bytes;
}

class Repeats {
public:
  // Runs a request. Returns its output's bytes without padding and with times zeroed (jpegEncode: without
  // EXIF data); "" if the callback is missing.
  std::string run(const std::string& algorithm, const ImageShape& shape) {
    const Image input(shape, 5);
    const Image output(algorithm == "jpegEncode" ? ImageShape{kFormatJpeg, 256, 256, 0, 0, false} : shape,
                       70);
    Block parameters;
    Request request;
    request.nativeReq = ++mLast;
    if (!algorithm.empty()) request.algorithms = {algorithm};
    request.inputs = {&input, &input};
    request.outputs = {&output};
    submit(mScene.client, mScene.inbox, parameters, request);
    if (!mScene.inbox.waitFor(mLast)) {
      ADD_FAILURE() << kNoCallback << "a request for \"" << algorithm << "\"";
      return "";
    }
    mScene.inbox.forget();
    std::string seen;
    const std::vector<uint8_t> now = output.bytes();
    for (const PixelRow& row : output.rows()) {
      const auto begin = now.begin() + static_cast<std::ptrdiff_t>(row.begin);
      seen.append(begin, begin + static_cast<std::ptrdiff_t>(row.bytes));
    }
    return algorithm == "jpegEncode" ? withoutFacts(seen) : withoutTimes(std::move(seen));
  }

  // Runs requests with other pictures, to detect state that the library keeps between requests.
  void runAnother() {
    const Image input({kFormatNv21, 96, 80, 0, 0, false}, 201);
    const Image output({kFormatNv21, 96, 80, 0, 0, false}, 90);
    Request request;
    request.nativeReq = ++mLast;
    request.inputs = {&input};
    request.outputs = {&output};
    submit(mScene.client, mScene.inbox, mScene.parameters, request);
    mScene.inbox.waitFor(mLast);
    // A picture of the default size, because a library may reuse only buffers of the same size.
    const Image same({}, 133);
    request.nativeReq = ++mLast;
    request.inputs = {&same};
    request.outputs = {&mScene.output};
    submit(mScene.client, mScene.inbox, mScene.parameters, request);
    mScene.inbox.waitFor(mLast);
    mScene.inbox.forget();
  }

private:
  Scene mScene;
  uint64_t mLast = 0;
};

size_t firstDifference(const std::string& one, const std::string& other) {
  size_t i = 0;
  while (i < one.size() && i < other.size() && one[i] == other[i]) ++i;
  return i;
}

// Fails the check if the bytes differ; with --allow-noise, only warns.
void report(const std::string& what, const std::string& first, const std::string& second, const char* usual) {
  if (first == second) return;
  const size_t at = firstDifference(first, second);
  const std::string text = what + ": the same request must give the same bytes, but byte " +
                           std::to_string(at) + " is " + std::to_string(static_cast<uint8_t>(first[at])) +
                           ", then " + std::to_string(static_cast<uint8_t>(second[at])) +
                           "; usual cause: " + usual;
  if (options().allowNoise) return warn(text);
  ADD_FAILURE() << text;
}

}  // namespace

void checkRepeats() {
  OPEN_LIBRARY(library);
  Repeats repeats;
  size_t kinds = 0;
  const auto repeat = [&](const std::string& algorithm, const ImageShape& shape) {
    if (testing::Test::HasFailure()) return;
    const std::string what = (algorithm.empty() ? "a copy" : "a request for " + algorithm) + " of " +
                             describe(Image(shape).frame());
    step(what + ", three times");
    std::string seen[3];
    for (size_t i = 0; i < 2; ++i) {
      poison(kPoisons[i]);
      seen[i] = repeats.run(algorithm, shape);
    }
    poison(0);
    repeats.runAnother();
    seen[2] = repeats.run(algorithm, shape);
    ++kinds;
    // The sizes differ if withoutFacts() removed EXIF blocks of different lengths. Such JPEGs are not
    // compared.
    if (seen[0].size() != seen[1].size() || seen[0].size() != seen[2].size()) return;
    report(what + " with fresh memory filled with 0xEE, then 0x11", seen[0], seen[1],
           "uninitialised memory is read");
    if (seen[0] == seen[1]) {
      report(what + " before and after requests with other pictures", seen[1], seen[2],
             "a buffer or state of the previous request is reused");
    }
  };
  for (const char* name : kAlgorithms) repeat(name, {});
  for (int32_t format : Image::formats()) {
    if (Image::hasKnownLayout(format)) repeat("", {format, 67, 45, 0, 0, false});
  }
  repeat("", {});
  note(std::to_string(kinds) + " requests, three times each");
}

}  // namespace orlu::conform
