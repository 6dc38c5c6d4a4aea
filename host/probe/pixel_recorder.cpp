#include "pixel_recorder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "callback_name.h"
#include "event_line.h"
#include "pixel_file.h"
#include "setting.h"

namespace orlu::probe {
namespace {

constexpr uint64_t kUsualBytes = uint64_t{1} << 30;
// At this number of requests without a callback, the oldest is forgotten: a library may never call back for
// some requests.
constexpr size_t kMostRequests = 16;

std::string crcText(uint32_t crc) {
  char text[9];
  std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(crc));
  return text;
}

auto ofProcess(uint64_t number) {
  return [number](const auto& request) { return request.process == number; };
}

}  // namespace

void PixelRecorder::open() {
  const std::lock_guard<std::mutex> lock(mMutex);
  mFolder = setting("ORLU_PIXELS");
  const std::string bytes = setting("ORLU_PIXELS_BYTES");
  mMostBytes = bytes.empty() ? kUsualBytes : std::strtoull(bytes.c_str(), nullptr, 10);
  if (!mFolder.empty() && mkdir(mFolder.c_str(), 0755) != 0 && errno != EEXIST) {
    std::fprintf(stderr, "ORLU_PIXELS: %s: %s\n", mFolder.c_str(),
                 std::generic_category().message(errno).c_str());
    mFolder.clear();
  }
}

void PixelRecorder::before(const WatchedCall& call) {
  const std::lock_guard<std::mutex> lock(mMutex);
  if (mFolder.empty()) return;
  if (call.process != nullptr) submit(call);
  if (call.callback != nullptr) callBack(call);
}

void PixelRecorder::after(const WatchedCall& call, const WatchedEnd& end) {
  const std::lock_guard<std::mutex> lock(mMutex);
  // The library sends no callback for a request that it refused.
  const bool isRefused = end.kind != WatchedEnd::kNumber || end.number != 0;
  if (call.process != nullptr && isRefused) forget(ofProcess(call.number));
  if (call.client != nullptr) forget([&](const Request& request) { return request.client == *call.client; });
}

void PixelRecorder::submit(const WatchedCall& call) {
  const AlgoProcessRecord& record = *call.process;
  for (size_t i = 0; i < record.inputFrames.size(); ++i) {
    const AlgoFrameInfo& frame = record.inputFrames[i];
    keep({call, record.reqId, "input", i}, frame.fdCount > 0 ? frame.fd[0] : -1, frame.fdSize[0]);
  }
  if (record.callbackCookie == 0) return;
  if (mRequests.size() >= kMostRequests) forget(ofProcess(mRequests.front().process));
  mRequests.push_back(
      {call.number, record.callbackCookie, record.nativeReq, record.reqId, record.client, {}});
  std::vector<Output>& outputs = mRequests.back().outputs;
  outputs.reserve(record.outputFrames.size());
  for (const AlgoFrameInfo& frame : record.outputFrames) {
    const int fd = frame.fdCount > 0 ? frame.fd[0] : -1;
    outputs.push_back({fd < 0 ? -1 : fcntl(fd, F_DUPFD_CLOEXEC, 0), frame.fdSize[0]});
  }
}

void PixelRecorder::callBack(const WatchedCall& call) {
  const CallbackName name = callbackName(call.callback->data);
  if (name.name != kShotCallback) return;
  const auto isCalled = [&](const Request& request) {
    return request.cookie == call.callback->cookie && request.nativeReq == name.nativeReq;
  };
  const auto request = std::find_if(mRequests.begin(), mRequests.end(), isCalled);
  if (request == mRequests.end()) return;
  for (size_t i = 0; i < request->outputs.size(); ++i) {
    keep({call, request->reqId, "output", i}, request->outputs[i].fd, request->outputs[i].size);
  }
  forget(ofProcess(request->process));
}

void PixelRecorder::keep(const Place& place, int fd, int32_t size) {
  const std::string name = std::string(place.call.operation) + "-" + place.kind +
                           std::to_string(place.index) + "-" + std::to_string(getpid()) + "-" +
                           std::to_string(place.call.number) + ".bin";
  const std::string path = mFolder + "/" + name;
  const WrittenPixels pixels = writePixels(fd, size, bytesLeft(), path);
  EventLine line("pixels");
  line.number("of", static_cast<int64_t>(place.call.number)).text("at", place.call.operation);
  line.number("reqId", static_cast<int64_t>(place.reqId)).text("image", place.kind);
  line.number("index", static_cast<int64_t>(place.index));
  if (pixels.problem.empty()) {
    mFiles.push_back({path, pixels.size});
    line.number("size", static_cast<int64_t>(pixels.size)).text("file", name);
    line.text("crc", crcText(pixels.crc));
  } else {
    line.text("kept", "no: " + pixels.problem);
  }
  mEvents.write(line.finish());
}

// Returns how many bytes may still be written. Files that have been removed do not count.
uint64_t PixelRecorder::bytesLeft() {
  mFiles.erase(std::remove_if(mFiles.begin(), mFiles.end(),
                              [](const File& file) { return access(file.path.c_str(), F_OK) != 0; }),
               mFiles.end());
  uint64_t left = mMostBytes;
  for (const File& file : mFiles) left -= std::min(left, file.size);
  return left;
}

// Removes the matching requests and closes their descriptors.
template <typename Which>
void PixelRecorder::forget(Which which) {
  for (auto request = mRequests.begin(); request != mRequests.end();) {
    if (!which(*request)) {
      ++request;
      continue;
    }
    for (const Output& output : request->outputs) {
      if (output.fd >= 0) close(output.fd);
    }
    request = mRequests.erase(request);
  }
}

}  // namespace orlu::probe
