#include "scene.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <utility>

namespace orlu::conform {
namespace {

const AlgoInterfaceCallbacks& table() {
  return Library::open()->table();
}

constexpr int kNotCalled = -1000;
constexpr std::chrono::milliseconds kShortPatience{300};
// The types for which the service calls uninit, in this order.
constexpr int32_t kUninitTypes[] = {kRequestPreview, kRequestCapture, kRequestType3, kRequestType5};

void appendInt(std::string& bytes, int32_t value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void appendText(std::string& bytes, const std::string& text) {
  appendInt(bytes, static_cast<int32_t>(text.size()));
  bytes.append(text).append(4 - text.size() % 4, '\0');
}

}  // namespace

Block::Block(int kind) : mHandle(call<void*>(nullptr, table().metadataOps.createMetadata, kind)) {
  HOLDS(mHandle != nullptr) << "createMetadata(" << kind << ") returned null";
}

int Block::set(const char* section, const char* key, const void* data, size_t size) {
  // The library must not change this memory: the service passes memory that it owns.
  return call(kNotCalled, table().metadataOps.setValue, mHandle, section, key, const_cast<void*>(data),
              static_cast<unsigned>(size));
}

int Block::set(const char* section, const char* key, const std::string& bytes) {
  return set(section, key, bytes.data(), bytes.size());
}

int Block::get(const char* section, const char* key, void* data, size_t size) const {
  return call(kNotCalled, table().metadataOps.getValue, mHandle, section, key, data,
              static_cast<unsigned>(size));
}

std::string Block::written(const char* section, const char* key, size_t size, int& status) const {
  std::string first(size, '\x5A');
  std::string second(size, '\xA5');
  status = get(section, key, first.data(), size);
  get(section, key, second.data(), size);
  size_t end = 0;
  for (size_t i = 0; i < size; ++i) {
    if (first[i] == second[i]) end = i + 1;
  }
  return first.substr(0, end);
}

unsigned Block::size() const {
  return call(0U, table().metadataOps.getSize, mHandle);
}

void Block::destroy() {
  if (mHandle != nullptr) callPlain(table().metadataOps.destroyMetadata, std::exchange(mHandle, nullptr));
}

Client::Client() {
  AlgoCreateClientRecord record;
  record.interfaceVersion = kAlgoTableVersion;
  mHandle = call<void*>(nullptr, table().createClient, record);
  HOLDS(mHandle != nullptr) << "createClient returned no client for version " << kAlgoTableVersion;
  AlgoInitRecord init;
  init.client = mHandle;
  call(kNotCalled, table().init, init);
}

void Client::uninit(int mode) {
  for (int32_t type : kUninitTypes) {
    AlgoUninitRecord record;
    record.type = type;
    record.client = mHandle;
    record.mode = mode;
    call(kNotCalled, table().uninit, record);
  }
}

void Client::flush() {
  AlgoFlushRecord record;
  record.client = mHandle;
  call(kNotCalled, table().flush, record);
}

int Client::abort(Block& named) {
  AlgoCommandRecord record;
  record.client = mHandle;
  AlgoMetadataEntry entry;
  entry.block = named.handle();
  entry.size = named.size();
  record.metadata.push_back(entry);
  return call(kNotCalled, table().command, record);
}

void Client::end() {
  if (mHandle == nullptr) return;
  flush();
  uninit(0);
  call(kNotCalled, table().destroyClient, std::exchange(mHandle, nullptr));
}

std::string Message::name() const {
  int32_t length = 0;
  if (data.size() < kCallbackNameOffset) return "";
  std::memcpy(&length, &data[offsetof(CallbackHeader, nameLength)], sizeof length);
  const bool fits = length >= 0 && static_cast<size_t>(length) <= data.size() - kCallbackNameOffset;
  return fits ? data.substr(kCallbackNameOffset, static_cast<size_t>(length)) : "";
}

uint64_t Message::nativeReq() const {
  uint64_t id = 0;
  if (data.size() >= kCallbackNameOffset)
    std::memcpy(&id, &data[offsetof(CallbackHeader, nativeReq)], sizeof id);
  return id;
}

size_t Message::payloadSize() const {
  return data.size() < kCallbackNameOffset ? 0 : data.size() - kCallbackNameOffset - name().size();
}

struct Inbox::State {
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  std::vector<Message> messages;
  std::function<void(const Message&)> look;

  size_t countLocked(uint64_t nativeReq, const std::string& name) const {
    return static_cast<size_t>(std::count_if(messages.begin(), messages.end(), [&](const Message& message) {
      return message.nativeReq() == nativeReq && message.name() == name;
    }));
  }
};

Inbox::Inbox() : mState(std::make_shared<State>()) {
  // Never freed, because a callback may arrive after the check has ended.
  static auto* const kept = new std::vector<std::unique_ptr<AlgoResultCallback>>();
  static std::mutex mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  kept->push_back(std::make_unique<AlgoResultCallback>(
      [state = mState](const auto& data, const auto&, const auto& handles) {
        Message message;
        message.data.assign(data.begin(), data.end());
        for (const auto& handle : handles) {
          const native_handle_t* const words = handle.getNativeHandle();
          message.handles.emplace_back();
          if (words != nullptr)
            message.handles.back().assign(words->data, words->data + words->numFds + words->numInts);
        }
        message.thread = std::this_thread::get_id();
        message.tid = syscall(SYS_gettid);
        message.time = std::chrono::steady_clock::now();
        {
          const Operation operation("a callback");
          const CallbackScope scope;
          if (state->look) state->look(message);
        }
        const std::lock_guard<std::mutex> stateLock(state->mutex);
        state->messages.push_back(std::move(message));
        state->changed.notify_all();
      }));
  mFunction = kept->back().get();
}

uint64_t Inbox::cookie() const {
  return reinterpret_cast<uintptr_t>(mFunction);
}

std::vector<Message> Inbox::messages() const {
  const std::lock_guard<std::mutex> lock(mState->mutex);
  return mState->messages;
}

size_t Inbox::count(uint64_t nativeReq, const std::string& name) const {
  const std::lock_guard<std::mutex> lock(mState->mutex);
  return mState->countLocked(nativeReq, name);
}

bool Inbox::waitFor(uint64_t nativeReq) const {
  static std::atomic<bool> hasMissed{false};
  std::unique_lock<std::mutex> lock(mState->mutex);
  const auto limit = hasMissed ? kShortPatience : std::chrono::seconds(options().patienceSeconds);
  const bool came = mState->changed.wait_for(
      lock, limit, [&] { return mState->countLocked(nativeReq, kShotCallback) > 0; });
  if (came) return true;
  hasMissed = true;
  missCallback();
  return false;
}

void Inbox::forget() {
  const std::lock_guard<std::mutex> lock(mState->mutex);
  mState->messages.clear();
}

void Inbox::onCallback(std::function<void(const Message&)> look) {
  mState->look = std::move(look);
}

AlgoProcessRecord Request::record(const Client& client, const Inbox& inbox, const Block& parameters,
                                  void* raw) const {
  AlgoProcessRecord record;
  record.requestType = type;
  record.nativeReq = nativeReq;
  record.algoList = algorithms;
  record.client = client.handle();
  record.callbackCookie = inbox.cookie();
  record.reqId = reqId;
  AlgoMetadataEntry entry;
  entry.block = parameters.handle();
  entry.size = parameters.size();
  record.metadata.push_back(entry);
  entry.kind = kCameraMetadataBlock;
  entry.block = raw;
  entry.size = static_cast<uint32_t>(cameraMetadata().size());
  record.metadata.push_back(entry);
  for (const Image* image : inputs) record.inputFrames.push_back(image->frame());
  for (const Image* image : outputs) record.outputFrames.push_back(image->frame());
  return record;
}

std::string cameraMetadata() {
  struct Tag {
    const char* name;
    int32_t value;
  };
  constexpr Tag kTags[] = {
      {"android.sensor.sensitivity", 100},
      {"android.control.aeMode",     1  },
      {"android.jpeg.orientation",   90 },
  };
  std::string bytes;
  appendInt(bytes, static_cast<int32_t>(std::size(kTags)));
  for (const Tag& tag : kTags) {
    appendText(bytes, tag.name);
    appendInt(bytes, 0);  // type code of integers
    appendInt(bytes, 1);  // number of values
    appendInt(bytes, tag.value);
  }
  return bytes;
}

int submit(const Client& client, const Inbox& inbox, const Block& parameters, const Request& request) {
  Block raw(kCameraMetadataBlock);
  const std::string bytes = cameraMetadata();
  call(kNotCalled, table().metadataOps.setRaw, raw.handle(), bytes.data(),
       static_cast<unsigned>(bytes.size()));
  return call(kNotCalled, table().process, request.record(client, inbox, parameters, raw.handle()));
}

bool Scene::run(uint64_t nativeReq, const std::vector<std::string>& algorithms) {
  Request request;
  request.nativeReq = nativeReq;
  request.algorithms = algorithms;
  request.inputs = {&input};
  request.outputs = {&output};
  submit(client, inbox, parameters, request);
  if (inbox.waitFor(nativeReq)) return true;
  ADD_FAILURE() << "no callback for request " << nativeReq;
  return false;
}

std::string hex(uint64_t number) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%" PRIx64, number);
  return text;
}

}  // namespace orlu::conform
