// Checks of requests: submission, callbacks, contents and images.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

#include "checks.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr double kSoonMilliseconds = 100;
constexpr std::chrono::milliseconds kSettle{250};  // time to wait for surplus callbacks
constexpr size_t kLeastCallbackBytes = 21;

// A record on its own page. doom() overwrites the record and makes the page inaccessible.
class DoomedRecord {
public:
  explicit DoomedRecord(const AlgoProcessRecord& record) {
    mBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    mMemory = mmap(nullptr, mBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mRecord = new (mMemory) AlgoProcessRecord(record);
  }
  DoomedRecord(const DoomedRecord&) = delete;
  DoomedRecord& operator=(const DoomedRecord&) = delete;
  ~DoomedRecord() { munmap(mMemory, mBytes); }

  AlgoProcessRecord& operator*() { return *mRecord; }
  void doom() {
    for (std::string& name : mRecord->algoList) std::fill(name.begin(), name.end(), '#');
    for (auto* frames : {&mRecord->inputFrames, &mRecord->outputFrames}) {
      for (AlgoFrameInfo& frame : *frames) {
        if (frame.nativeHandle != nullptr)
          std::memset(static_cast<void*>(frame.nativeHandle), 0xDB, sizeof *frame.nativeHandle);
        std::memset(static_cast<void*>(&frame), 0xDB, sizeof frame);
      }
    }
    for (AlgoMetadataEntry& entry : mRecord->metadata)
      std::memset(static_cast<void*>(&entry), 0xDB, sizeof entry);
    mRecord->~AlgoProcessRecord();
    std::memset(mMemory, 0xDB, mBytes);
    mprotect(mMemory, mBytes, PROT_NONE);
  }

private:
  size_t mBytes;
  void* mMemory;
  AlgoProcessRecord* mRecord;
};

// Lends a duplicate of an image's descriptor to one request. takeBack() makes the descriptor number refer to
// a decoy file.
class LentImage {
public:
  explicit LentImage(const Image& image) : mFrame(image.frame()), mDecoy(memfd_create("decoy", MFD_CLOEXEC)) {
    mFrame.fd[0] = fcntl(mFrame.fd[0], F_DUPFD_CLOEXEC, 0);
    mZeros.resize(image.size());
    [[maybe_unused]] const ssize_t written = write(mDecoy, mZeros.data(), mZeros.size());
    if (mFrame.nativeHandle == nullptr) return;
    mFrame.nativeHandle = image.newHandle();
    mFrame.nativeHandle->data[0] = mFrame.fd[0];
  }
  LentImage(const LentImage&) = delete;
  LentImage& operator=(const LentImage&) = delete;
  ~LentImage() {
    close(mFrame.fd[0]);
    close(mDecoy);
    delete mFrame.nativeHandle;
  }

  const AlgoFrameInfo& frame() const { return mFrame; }
  void takeBack() const { dup2(mDecoy, mFrame.fd[0]); }
  bool isDecoyUntouched() const {
    std::vector<char> now(mZeros.size());
    return pread(mDecoy, now.data(), now.size(), 0) == static_cast<ssize_t>(now.size()) && now == mZeros;
  }

private:
  AlgoFrameInfo mFrame;
  int mDecoy;
  std::vector<char> mZeros;
};

// Compares the outputs of two equal requests. The second request's record is freed once process() returns.
void runDoomed(bool isHardwareBuffer) {
  Scene scene;
  ImageShape shape;
  shape.isHardwareBuffer = isHardwareBuffer;
  const Image input(shape, 3);
  const Image kept(shape, 4);
  const Image output(shape, 4);
  Request request;
  request.nativeReq = 5;
  request.inputs = {&input};
  request.outputs = {&kept};
  submit(scene.client, scene.inbox, scene.parameters, request);
  HOLDS(scene.inbox.waitFor(5)) << kNoCallback << "a request whose record is kept";

  const LentImage lentInput(input);
  const LentImage lentOutput(output);
  auto raw = std::make_unique<Block>(kCameraMetadataBlock);
  request.nativeReq = 6;
  AlgoProcessRecord record = request.record(scene.client, scene.inbox, scene.parameters, raw->handle());
  record.inputFrames = {lentInput.frame()};
  record.outputFrames = {lentOutput.frame()};
  DoomedRecord doomed(record);
  {
    const Operation operation("process", operationName("process"));
    call(-1, Library::open()->bareTable().process, *doomed);
  }
  step("the record is freed after process returned");
  doomed.doom();
  raw->destroy();
  lentInput.takeBack();
  lentOutput.takeBack();
  HOLDS(scene.inbox.waitFor(6)) << kNoCallback << "a request whose record was freed after process returned";
  HOLDS(output.bytes() == kept.bytes())
      << "the output differs if the record and its " << (isHardwareBuffer ? "hardware buffers' " : "")
      << "descriptors are released once process returns";
  HOLDS(lentInput.isDecoyUntouched() && lentOutput.isDecoyUntouched())
      << "the library writes to a descriptor number that was closed and reused after process";
}

// Submits requests of every kind, each with a name for the evidence.
class RequestMatrix {
public:
  void submitOne(const std::string& what, Request request) {
    step("a request " + what);
    mNames.push_back(what);
    request.nativeReq = mNames.size();
    mBlocks.push_back(std::make_unique<Block>());
    submit(mClient, mInbox, *mBlocks.back(), request);
  }

  const Image* image(const ImageShape& shape) {
    mImages.push_back(std::make_unique<Image>(shape, static_cast<int>(mImages.size())));
    return mImages.back().get();
  }

  void waitForAll() {
    step("waiting for the callbacks of " + std::to_string(mNames.size()) + " requests");
    std::string missing;
    for (size_t id = 0; id < mNames.size(); ++id) {
      // Once a callback is missing, does not wait for the later ones, and only checks whether they arrived.
      const bool came = missing.empty() ? mInbox.waitFor(id + 1) : mInbox.count(id + 1) > 0;
      if (!came) missing += (missing.empty() ? "" : "; ") + mNames[id];
    }
    HOLDS(missing.empty()) << kNoCallback << "a request " << missing;
    note(std::to_string(mNames.size()) + " kinds of request");
  }

private:
  Client mClient;
  Inbox mInbox;
  std::vector<std::string> mNames;  // by request id - 1
  std::vector<std::unique_ptr<Block>> mBlocks;
  std::vector<std::unique_ptr<Image>> mImages;
};

void submitImages(RequestMatrix& matrix) {
  for (int32_t format : Image::formats()) {
    for (const Layout& layout : kLayouts) {
      Request request;
      const ImageShape shape = {format, 64, 48, layout.padding, layout.paddingRows, layout.isHardwareBuffer};
      request.inputs = {matrix.image(shape)};
      request.outputs = {matrix.image(shape)};
      matrix.submitOne("with an image " + describe(request.inputs[0]->frame()) + " " + layout.name, request);
    }
  }
}

void submitLists(RequestMatrix& matrix) {
  const Image* const input = matrix.image({});
  const Image* const output = matrix.image({});
  for (const auto& [what, algorithms] : std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"for no algorithm",                    {}                                              },
           {"for an unknown algorithm",            {"conformNoSuchThing"}                          },
           {"for an algorithm with an empty name", {""}                                            },
           {"for every algorithm",                 {std::begin(kAlgorithms), std::end(kAlgorithms)}}
  }) {
    for (int32_t type : {kRequestPreview, kRequestCapture, kRequestStop}) {
      for (const auto& inputs : {std::vector<const Image*>{}, {input}}) {
        for (const auto& outputs : {
                 std::vector<const Image*>{},
                  {       output},
                  { output, output}
        }) {
          matrix.submitOne("of type " + std::to_string(type) + " " + what + ", with " +
                               std::to_string(inputs.size()) + " inputs and " +
                               std::to_string(outputs.size()) + " outputs",
                           {type, 0, 77, algorithms, inputs, outputs});
        }
      }
    }
  }
  Request fifty;
  fifty.inputs.assign(50, input);
  fifty.outputs = {output};
  matrix.submitOne("with 50 frames", fifty);
  fifty.algorithms = {"night"};
  matrix.submitOne("for night with 50 frames", fifty);
}

}  // namespace

void checkProcess() {
  OPEN_LIBRARY(library);
  runDoomed(false);
  runDoomed(true);
  Scene scene;
  Request request;
  request.algorithms = {"night"};
  request.inputs.assign(12, &scene.input);
  request.outputs = {&scene.output};
  submit(scene.client, scene.inbox, scene.parameters, request);
  HOLDS(scene.inbox.waitFor(request.nativeReq)) << kNoCallback << "a request of 12 frames";
  const double longest = library->observer().longestProcessMilliseconds();
  const std::string took = "process took " + std::to_string(longest) + " ms at most";
  longest > kSoonMilliseconds ? warn(took + "; the service's caller waits for it") : note(took);
}

void checkCallbacks() {
  OPEN_LIBRARY(library);
  Scene scene;
  std::atomic<bool> isInside{false};
  std::atomic<int> insideProcess{0};
  const std::thread::id self = std::this_thread::get_id();
  scene.inbox.onCallback([&](const Message& message) {
    if (isInside && message.thread == self) ++insideProcess;
  });
  const std::vector<uint64_t> ids = {0, 1, 2, UINT32_MAX, uint64_t{1} << 32, UINT64_MAX};
  for (uint64_t id : ids) {
    Request request;
    request.nativeReq = id;
    request.inputs = {&scene.input};
    request.outputs = {&scene.output};
    step("request " + hex(id));
    isInside = true;
    submit(scene.client, scene.inbox, scene.parameters, request);
    isInside = false;
    HOLDS(scene.inbox.waitFor(id)) << "no callback for request " << hex(id);
  }
  std::this_thread::sleep_for(kSettle);
  for (uint64_t id : ids) {
    const size_t count = scene.inbox.count(id);
    HOLDS(count <= 1) << count << " callbacks for request " << hex(id);
  }
  for (const Message& message : scene.inbox.messages()) {
    HOLDS(message.data.size() >= kLeastCallbackBytes)
        << "a callback of " << message.data.size() << " bytes, fewer than " << kLeastCallbackBytes;
    const std::string name = message.name();
    HOLDS(name == kShotCallback || name == kLightStreamCallback)
        << "a callback with the name \"" << name << "\"";
    bool isKnown = name != kShotCallback;
    for (uint64_t id : ids) isKnown = isKnown || message.nativeReq() == id;
    HOLDS(isKnown) << "a callback for request " << hex(message.nativeReq()) << ", which was never submitted";
  }
  if (insideProcess > 0)
    warn(std::to_string(insideProcess) + " callbacks arrived inside process, on the caller's thread");
  note(std::to_string(ids.size()) + " requests");
}

void checkRequests() {
  OPEN_LIBRARY(library);
  RequestMatrix matrix;
  submitImages(matrix);
  submitLists(matrix);
  matrix.waitForAll();
}

}  // namespace orlu::conform
