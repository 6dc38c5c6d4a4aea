#include "call_fields.h"

#include <algorithm>

#include "callback_name.h"
#include "java_thread_state.h"

namespace orlu::probe {
namespace {

using android::hardware::hidl_handle;

// Largest number of words in a recorded handle. A larger handle is recorded with its counts only.
constexpr int kMostHandleWords = 1024;

std::string_view orEmpty(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

// Adds an AlgoNativeHandle or a native_handle_t: numFds, numInts, then the words.
template <typename Handle>
void addHandle(EventLine& line, const char* name, const Handle* handle) {
  if (handle == nullptr) {
    line.null(name);
    return;
  }
  const int64_t words = int64_t{handle->numFds} + handle->numInts;
  const int most =
      std::min<int>(kMostHandleWords, sizeof(Handle) == sizeof(AlgoNativeHandle) ? AlgoNativeHandle::kCapacity
                                                                                 : kMostHandleWords);
  line.beginObject(name).number("numFds", handle->numFds).number("numInts", handle->numInts);
  line.numbers("data", handle->data, words >= 0 && words <= most ? static_cast<int>(words) : 0).endObject();
}

void addMetadata(EventLine& line, const std::vector<AlgoMetadataEntry>& entries) {
  line.beginList("metadata");
  for (const AlgoMetadataEntry& entry : entries) {
    line.beginObject()
        .number("kind", entry.kind)
        .hex("block", entry.block)
        .number("size", entry.size)
        .endObject();
  }
  line.endList();
}

void addFrames(EventLine& line, const char* name, const std::vector<AlgoFrameInfo>& frames) {
  line.beginList(name);
  for (const AlgoFrameInfo& frame : frames) {
    const int fds = std::clamp(frame.fdCount, 0, kMaxPlanes);
    line.beginObject()
        .number("format", frame.format)
        .number("width", frame.width)
        .number("height", frame.height);
    line.number("size", frame.size).numbers("stride", frame.stride, kMaxPlanes);
    line.numbers("scanline", frame.scanline, kMaxPlanes)
        .number("planeCount", frame.planeCount)
        .beginList("planes");
    for (const void* plane : frame.planeData) line.hex(nullptr, plane);
    line.endList().numbers("planeSize", frame.planeSize, kMaxPlanes);
    line.numbers("fds", frame.fd, fds).numbers("fdSize", frame.fdSize, fds);
    addHandle(line, "handle", frame.nativeHandle);
    line.endObject();
  }
  line.endList();
}

void add(EventLine& line, const AlgoProcessRecord& record) {
  line.hex("client", record.client).number("type", record.requestType).hex("nativeReq", record.nativeReq);
  line.number("reqId", static_cast<int64_t>(record.reqId)).hex("cookie", record.callbackCookie);
  line.texts("algoList", record.algoList);
  addMetadata(line, record.metadata);
  addFrames(line, "inputs", record.inputFrames);
  addFrames(line, "outputs", record.outputFrames);
}

void add(EventLine& line, const AlgoCommandRecord& record) {
  line.hex("client", record.client).hex("first", record.first).hex("second", record.second);
  line.number("size", static_cast<int64_t>(record.data.size()))
      .bytes("bytes", record.data.data(), record.data.size());
  addMetadata(line, record.metadata);
}

void add(EventLine& line, const AlgoGetDataRecord& record) {
  line.hex("client", record.client)
      .text("cmd", record.cmd)
      .hex("block", record.block)
      .number("size", record.size);
}

void add(EventLine& line, const AlgoTranslateParamFileRecord& record) {
  line.hex("client", record.client).number("fd", record.fd).number("size", record.size);
  line.text("identifier", record.identifier);
}

void add(EventLine& line, const CallbackArguments& message) {
  const auto* const bytes = message.data.data();
  const size_t size = bytes == nullptr ? 0 : message.data.size();
  line.hex("cookie", message.cookie);
  const JavaThreadState thread = javaThreadState();
  line.answer("attached", thread != JavaThreadState::kNoVm, thread == JavaThreadState::kAttached);
  line.number("size", static_cast<int64_t>(message.data.size())).bytes("bytes", bytes, size);
  const CallbackName callback = callbackName(message.data);
  if (callback.isWhole) line.hex("nativeReq", callback.nativeReq).text("name", callback.name);
  line.number("extra", static_cast<int64_t>(message.extra.size())).beginList("handles");
  for (const hidl_handle& handle : message.handles) addHandle(line, nullptr, handle.getNativeHandle());
  line.endList();
}

void add(EventLine& line, const ValueArguments& value) {
  if (value.section != nullptr || value.key != nullptr) {
    line.text("section", orEmpty(value.section)).text("key", orEmpty(value.key));
  }
  line.number("size", value.size);
  if (!value.isFilledIn) line.bytes("bytes", value.data, value.size);
}

}  // namespace

void addInputs(EventLine& line, const WatchedCall& call) {
  if (call.of != 0) line.number("of", static_cast<int64_t>(call.of));
  if (call.createClient != nullptr) line.number("interfaceVersion", call.createClient->interfaceVersion);
  if (call.client != nullptr) line.hex("client", *call.client);
  if (call.init != nullptr) line.hex("client", call.init->client).number("type", call.init->type);
  if (call.uninit != nullptr) {
    line.hex("client", call.uninit->client)
        .number("type", call.uninit->type)
        .number("mode", call.uninit->mode);
  }
  if (call.flush != nullptr) line.hex("client", call.flush->client);
  if (call.kind != nullptr) line.number("kind", *call.kind);
  if (call.block != nullptr) line.hex("block", *call.block);
  if (call.process != nullptr) add(line, *call.process);
  if (call.command != nullptr) add(line, *call.command);
  if (call.getData != nullptr) add(line, *call.getData);
  if (call.translateParamFile != nullptr) add(line, *call.translateParamFile);
  if (call.value != nullptr) add(line, *call.value);
  if (call.callback != nullptr) add(line, *call.callback);
}

void addOutputs(EventLine& line, const WatchedCall& call, const WatchedEnd& end) {
  line.number("ns", end.nanoseconds);
  switch (end.kind) {
    case WatchedEnd::kNothing:
      break;
    case WatchedEnd::kNumber:
      line.number("result", end.number);
      break;
    case WatchedEnd::kHandle:
      line.hex("result", end.handle);
      break;
    case WatchedEnd::kThrew:
      line.text("thrown", end.thrown).text("what", end.what);
      return;
  }
  if (call.value == nullptr || !call.value->isFilledIn) return;
  // A failed visitor may have left the data unset.
  if (call.of != 0 && end.number != 0) return;
  line.bytes("bytes", call.value->data, call.value->size);
}

}  // namespace orlu::probe
