// The least that an algorithm library has to be: it keeps parameters, copies the first input to the first
// output, and calls back. docs/algorithm_library.md shows it; the conformance kit finds nothing wrong with
// it.
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

#include "algo_interface.h"
#include "algo_interface_layout.h"
#include "jni_support.h"

using namespace orlu;

namespace {

struct Block {
  std::map<std::pair<std::string, std::string>, std::string> values;
  std::string raw;
};

// One lock for everything. It is never held while a function of the caller's runs.
std::mutex gMutex;
std::condition_variable gDone;
std::map<void*, int> gPending;  // requests in flight, of each client
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

// Whatever a callback starts in Java needs a thread that the VM knows, and that lets go of it before it ends.
JavaVM* findVm() {
  using Get = jint (*)(JavaVM**, jsize, jsize*);
  const auto get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  return get != nullptr && get(&vm, 1, &count) == JNI_OK && count > 0 ? vm : nullptr;
}

void copyPixels(const AlgoFrameInfo& from, int fromFd, const AlgoFrameInfo& to, int toFd) {
  if (from.format != to.format || from.size != to.size || from.size <= 0) return;
  const auto size = static_cast<size_t>(from.size);
  void* const source = mmap(nullptr, size, PROT_READ, MAP_SHARED, fromFd, 0);
  void* const target = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, toFd, 0);
  if (source != MAP_FAILED && target != MAP_FAILED) {
    size_t plane = 0;  // plane by plane, so that what lies between them stays
    for (int i = 0; i < from.planeCount && plane < size; ++i) {
      const auto bytes = static_cast<size_t>(from.planeSize[i]);
      const auto pixels =
          i == 0 && from.planeCount > 1 ? static_cast<size_t>(from.stride[0] * from.height) : bytes;
      std::memcpy(static_cast<char*>(target) + plane, static_cast<char*>(source) + plane,
                  std::min({pixels, bytes, size - plane}));
      plane += bytes;
    }
  }
  if (source != MAP_FAILED) munmap(source, size);
  if (target != MAP_FAILED) munmap(target, size);
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

// The record is the caller's, and gone when this returns; so are its descriptors.
int process(const AlgoProcessRecord& record) {
  AlgoFrameInfo from;
  AlgoFrameInfo to;
  int fds[] = {-1, -1};
  if (!record.inputFrames.empty() && !record.outputFrames.empty()) {
    from = record.inputFrames[0];
    to = record.outputFrames[0];
    fds[0] = fcntl(from.fd[0], F_DUPFD_CLOEXEC, 0);
    fds[1] = fcntl(to.fd[0], F_DUPFD_CLOEXEC, 0);
  }
  {
    const std::lock_guard<std::mutex> lock(gMutex);
    ++gPending[record.client];
  }
  std::thread([from, to, in = fds[0], out = fds[1], client = record.client, cookie = record.callbackCookie,
               nativeReq = record.nativeReq] {
    copyPixels(from, in, to, out);
    for (int fd : {in, out}) {
      if (fd >= 0) close(fd);
    }
    callBack(cookie, nativeReq);
    const std::lock_guard<std::mutex> lock(gMutex);
    if (--gPending[client] == 0) gPending.erase(client);
    gDone.notify_all();
  }).detach();
  return 0;
}

int waitForRequests(void* client) {
  std::unique_lock<std::mutex> lock(gMutex);
  gDone.wait(lock, [&] { return gPending.count(client) == 0; });
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
  table->command = [](const AlgoCommandRecord&) { return -1; };  // nothing is aborted: it is done soon
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
