// A minimal algorithm library that passes all checks of the conformance kit. It stores parameters, copies
// the first input to all outputs of the same format and size, and calls back. See docs/algorithm_library.md.
#include <dlfcn.h>
#include <fcntl.h>
#include <jni.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "algo_interface.h"
#include "algo_interface_layout.h"
#include "jni_support.h"

using namespace orlu;

namespace {

struct Block {
  std::map<std::pair<std::string, std::string>, std::string> values;
  std::string raw;
};

// Guards the variables below and the blocks. Never held while the caller's functions are called.
std::mutex gMutex;
std::condition_variable gDone;
std::map<void*, int> gPending;  // number of requests in flight, by client
std::set<Block*> gBlocks;

int setValue(void* block, const char* section, const char* key, void* data, unsigned size) {
  const std::lock_guard<std::mutex> lock(gMutex);
  if (gBlocks.count(static_cast<Block*>(block)) == 0) return -1;
  static_cast<Block*>(block)->values[{section, key}].assign(static_cast<const char*>(data), size);
  return 0;
}

int getValue(void* block, const char* section, const char* key, void* data, unsigned size) {
  const std::lock_guard<std::mutex> lock(gMutex);
  if (gBlocks.count(static_cast<Block*>(block)) == 0) return -1;
  const auto& values = static_cast<Block*>(block)->values;
  const auto found = values.find({section, key});
  if (found == values.end()) return -1;
  std::memcpy(data, found->second.data(), std::min<size_t>(size, found->second.size()));
  return 0;
}

// Returns null if the process has no Java VM. A callback may call into Java, so the calling thread must be
// attached to the VM, and detached before the thread exits.
JavaVM* findVm() {
  using Get = jint (*)(JavaVM**, jsize, jsize*);
  const auto get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  return get != nullptr && get(&vm, 1, &count) == JNI_OK && count > 0 ? vm : nullptr;
}

// Offset and stride of a plane in bytes, and the number of its rows without padding rows. Padding may differ
// between images: the strides of an output may differ from those of the input.
struct Plane {
  size_t begin;
  size_t stride;
  size_t rows;
};

Plane planeOf(const AlgoFrameInfo& frame, int index) {
  const bool isFirst = index == 0;
  const auto rows = static_cast<size_t>(isFirst ? frame.scanline[0] : (frame.height + 1) / 2);
  const auto bytes = static_cast<size_t>(frame.planeSize[index]);
  const auto filled = static_cast<size_t>(isFirst ? frame.height : (frame.height + 1) / 2);
  return {isFirst ? 0 : static_cast<size_t>(frame.planeSize[0]), rows == 0 ? 0 : bytes / rows, filled};
}

void copyPixels(const AlgoFrameInfo& from, int fromFd, const AlgoFrameInfo& to, int toFd) {
  const bool isAlike = from.format == to.format && from.width == to.width && from.height == to.height &&
                       from.planeCount == to.planeCount;
  if (!isAlike || from.size <= 0 || to.size <= 0) return;
  const auto fromSize = static_cast<size_t>(from.size);
  const auto toSize = static_cast<size_t>(to.size);
  void* const source = mmap(nullptr, fromSize, PROT_READ, MAP_SHARED, fromFd, 0);
  void* const target = mmap(nullptr, toSize, PROT_READ | PROT_WRITE, MAP_SHARED, toFd, 0);
  for (int i = 0; source != MAP_FAILED && target != MAP_FAILED && i < from.planeCount; ++i) {
    const Plane in = planeOf(from, i);
    const Plane out = planeOf(to, i);
    const size_t bytes = std::min(in.stride, out.stride);
    for (size_t row = 0; row < in.rows; ++row) {
      const size_t read = in.begin + row * in.stride;
      const size_t written = out.begin + row * out.stride;
      if (read + bytes > fromSize || written + bytes > toSize) break;
      std::memcpy(static_cast<char*>(target) + written, static_cast<char*>(source) + read, bytes);
    }
  }
  if (source != MAP_FAILED) munmap(source, fromSize);
  if (target != MAP_FAILED) munmap(target, toSize);
}

void callBack(uint64_t cookie, uint64_t nativeReq) {
  CallbackHeader header = {};
  header.nativeReq = nativeReq;
  header.nameLength = sizeof kShotCallback - 1;
  std::vector<uint8_t> message(kCallbackNameOffset);
  std::memcpy(message.data(), &header, kCallbackNameOffset);
  message.insert(message.end(), kShotCallback, kShotCallback + header.nameLength);
  JavaVM* const vm = findVm();
  JNIEnv* env = nullptr;
  if (vm != nullptr) attachThread(vm, &JavaVM::AttachCurrentThreadAsDaemon, &env, nullptr);
  const auto& callback = *reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie));
  callback(android::hardware::hidl_vec<uint8_t>(message), {}, {});
  if (vm != nullptr) vm->DetachCurrentThread();
}

// A partial copy of the record, with duplicated descriptors. The caller's record is invalid after process()
// has returned; for a full-async request, the record's descriptors are invalid too.
struct Request {
  void* client;
  uint64_t cookie;
  uint64_t nativeReq;
  std::vector<AlgoFrameInfo> frames;  // the first input and all outputs
  std::vector<int> fds;               // duplicated descriptors of these frames

  explicit Request(const AlgoProcessRecord& record)
      : client(record.client), cookie(record.callbackCookie), nativeReq(record.nativeReq) {
    if (record.inputFrames.empty()) return;
    frames = record.outputFrames;
    frames.insert(frames.begin(), record.inputFrames[0]);
    for (const AlgoFrameInfo& frame : frames) fds.push_back(fcntl(frame.fd[0], F_DUPFD_CLOEXEC, 0));
  }
};

// The client whose callback this thread is sending; null outside callbacks. Java may flush and destroy this
// client inside the callback.
thread_local void* tCallingBack = nullptr;

void work(const Request& request) {
  for (size_t i = 1; i < request.frames.size(); ++i) {
    copyPixels(request.frames[0], request.fds[0], request.frames[i], request.fds[i]);
  }
  for (int fd : request.fds) {
    if (fd >= 0) close(fd);
  }
  tCallingBack = request.client;
  callBack(request.cookie, request.nativeReq);
  tCallingBack = nullptr;
  const std::lock_guard<std::mutex> lock(gMutex);
  if (--gPending[request.client] == 0) gPending.erase(request.client);
  gDone.notify_all();
}

int process(const AlgoProcessRecord& record) {
  // work() takes this lock before it returns, so the new thread can't exit before detach() returns. glibc's
  // detach() reads memory of the thread, which may be unmapped once the thread has exited.
  const std::lock_guard<std::mutex> lock(gMutex);
  ++gPending[record.client];
  std::thread(work, Request(record)).detach();
  return 0;
}

int waitForRequests(void* client) {
  std::unique_lock<std::mutex> lock(gMutex);
  const int own = tCallingBack == client ? 1 : 0;
  gDone.wait(lock, [&] {
    const auto pending = gPending.find(client);
    return pending == gPending.end() || pending->second <= own;
  });
  return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void AlgoInterfaceEntry(AlgoInterfaceCallbacks* table) {
  table->createClient = [](const AlgoCreateClientRecord& record) -> void* {
    return record.interfaceVersion == kAlgoTableVersion ? new int(0) : nullptr;
  };
  table->destroyClient = [](void* client) {
    waitForRequests(client);
    delete static_cast<int*>(client);
    return 0;
  };
  table->init = [](const AlgoInitRecord&) { return 0; };
  table->uninit = [](const AlgoUninitRecord&) { return 0; };
  table->process = process;
  table->flush = [](const AlgoFlushRecord& record) { return waitForRequests(record.client); };
  table->command = [](const AlgoCommandRecord&) { return -1; };  // aborts nothing: requests finish soon
  table->metadataOps.createMetadata = [](int) -> void* {
    const std::lock_guard<std::mutex> lock(gMutex);
    return *gBlocks.insert(new Block()).first;
  };
  table->metadataOps.destroyMetadata = [](void* block) {
    const std::lock_guard<std::mutex> lock(gMutex);
    if (gBlocks.erase(static_cast<Block*>(block)) != 0) delete static_cast<Block*>(block);
  };
  table->metadataOps.getSize = [](void* block) {
    const std::lock_guard<std::mutex> lock(gMutex);
    size_t size = static_cast<Block*>(block)->raw.size();
    for (const auto& [name, value] : static_cast<Block*>(block)->values) size += value.size();
    return static_cast<unsigned>(size);
  };
  table->metadataOps.setValue = setValue;
  table->metadataOps.getValue = getValue;
  table->metadataOps.setRaw = [](void* block, const char* bytes, unsigned size) {
    const std::lock_guard<std::mutex> lock(gMutex);
    static_cast<Block*>(block)->raw.assign(bytes, size);
    return 0;
  };
}
