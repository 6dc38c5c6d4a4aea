// A client of the stand-in algorithm library without the product between: its table of operations, one
// parameter block, images in memory files, and the requests that it reports done.
#pragma once

#include <android/sharedmem.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "algo.h"
#include "algo_interface.h"

namespace orlu::test {

// An image in a memory file that is mapped for the test as well.
class FileImage {
public:
  FileImage(int32_t format, int32_t width, int32_t height, size_t bytes)
      : mFd(ASharedMemory_create("stand-in-image", bytes)), mBytes(bytes) {
    mPixels = static_cast<uint8_t*>(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, mFd, 0));
    info.format = format;
    info.width = width;
    info.height = height;
    info.size = static_cast<int32_t>(bytes);
    info.fdCount = 1;
    info.fd[0] = mFd;
    info.fdSize[0] = static_cast<int32_t>(bytes);
  }
  FileImage(const FileImage&) = delete;
  FileImage& operator=(const FileImage&) = delete;
  ~FileImage() {
    munmap(mPixels, mBytes);
    close(mFd);
  }

  uint8_t* pixels() const { return mPixels; }

  AlgoFrameInfo info = {};

private:
  int mFd;
  size_t mBytes;
  uint8_t* mPixels;
};

class StandInClient {
public:
  StandInClient() {
    using Entry = void (*)(AlgoInterfaceCallbacks*);
    void* const library = dlopen("liborlu.vac.interface.so", RTLD_NOW);
    reinterpret_cast<Entry>(dlsym(library, "AlgoInterfaceEntry"))(&table);
    AlgoCreateClientRecord record = {};
    record.interfaceVersion = 202001;
    client = table.createClient ? table.createClient(record) : nullptr;
    block = table.metadataOps.createMetadata ? table.metadataOps.createMetadata(0) : nullptr;
  }
  StandInClient(const StandInClient&) = delete;
  StandInClient& operator=(const StandInClient&) = delete;
  ~StandInClient() {
    if (table.destroyClient) table.destroyClient(client);
    if (table.metadataOps.destroyMetadata) table.metadataOps.destroyMetadata(block);
  }

  // Submits a request on `parameters`, or on this client's block. The answer is process()'s own.
  int process(uint64_t nativeReq, const std::vector<std::string>& algorithms,
              const std::vector<const FileImage*>& inputs = {},
              const std::vector<const FileImage*>& outputs = {}, void* parameters = nullptr) {
    AlgoProcessRecord record = {};
    record.nativeReq = nativeReq;
    record.algoList = algorithms;
    record.client = client;
    record.callbackCookie = reinterpret_cast<uintptr_t>(&mCallback);
    AlgoMetadataEntry entry = {};
    entry.block = parameters == nullptr ? block : parameters;
    record.metadata.push_back(entry);
    for (const FileImage* image : inputs) record.inputFrames.push_back(image->info);
    for (const FileImage* image : outputs) record.outputFrames.push_back(image->info);
    return table.process(record);
  }

  // Waits until so many callbacks have come; the requests in their order.
  std::vector<uint64_t> waitForCallbacks(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_for(lock, std::chrono::seconds(60), [&] { return mRequests.size() >= count; });
    return mRequests;
  }

  std::vector<uint64_t> callbacks() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mRequests;
  }

  template <typename T>
  int set(const char* section, const char* key, T value, void* to = nullptr) {
    return table.metadataOps.setValue(to == nullptr ? block : to, section, key, &value, sizeof value);
  }
  template <typename T>
  T get(const char* section, const char* key, T initial, void* from = nullptr) {
    table.metadataOps.getValue(from == nullptr ? block : from, section, key, &initial, sizeof initial);
    return initial;
  }

  AlgoInterfaceCallbacks table;
  void* client = nullptr;
  void* block = nullptr;
  // Called on the calling-back thread, before the callback counts.
  std::function<void(uint64_t nativeReq)> onCallback;

private:
  using Bytes = android::hardware::hidl_vec<uint8_t>;
  using Handles = android::hardware::hidl_vec<android::hardware::hidl_handle>;

  void called(const Bytes& data) {
    constexpr size_t kNameOffset = 20;
    const std::string name(data.begin() + kNameOffset, data.end());
    if (name != "shotCb") return;
    uint64_t nativeReq = 0;
    std::memcpy(&nativeReq, &data[8], sizeof nativeReq);
    if (onCallback) onCallback(nativeReq);
    const std::lock_guard<std::mutex> lock(mMutex);
    mRequests.push_back(nativeReq);
    mChanged.notify_all();
  }

  AlgoResultCallback mCallback = [this](const Bytes& data, const Bytes&, const Handles&) { called(data); };
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<uint64_t> mRequests;
};

}  // namespace orlu::test
