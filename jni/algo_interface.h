// The binary interface between this library and the closed algorithm interface library,
// liborlu.vac.interface.so: the tables of callables that the library fills in, and the records that
// travel through them. Field order and, in the 32-bit build, every offset belong to that library;
// nothing here may be rearranged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <hidl/HidlSupport.h>

namespace orlu {

constexpr int kMaxPlanes = 4;

// Mirror of the platform's native_handle_t with room for a fixed number of words: the descriptors
// first, then the integers.
struct AlgoNativeHandle {
  static constexpr int kCapacity = 256;

  int32_t version = 0;
  int32_t numFds = 0;
  int32_t numInts = 0;
  int32_t data[kCapacity] = {};
};
static_assert(offsetof(AlgoNativeHandle, numFds) == 4);
static_assert(offsetof(AlgoNativeHandle, numInts) == 8);
static_assert(offsetof(AlgoNativeHandle, data) == 12);
static_assert(sizeof(AlgoNativeHandle) == 1036);

// One image of a request. Sizes are bytes, widths and heights pixels. The descriptors stay the
// property of whoever built the record; the algorithm library must duplicate what it keeps.
struct AlgoFrameInfo {
  int32_t format = 0;
  int32_t width = 0;
  int32_t height = 0;
  int32_t size = 0;
  int32_t stride[kMaxPlanes] = {};
  int32_t scanline[kMaxPlanes] = {};
  int32_t reserved = 0;
  AlgoNativeHandle* nativeHandle = nullptr;
  int32_t fdCount = 0;
  int32_t fd[kMaxPlanes] = {};
  int32_t fdSize[kMaxPlanes] = {};
  int32_t planeCount = 0;
  void* planeData[kMaxPlanes] = {};
  int32_t planeSize[kMaxPlanes] = {};
};

// What kind of metadata block an entry or createMetadata() means.
enum AlgoMetadataKind : int32_t {
  kParameterBlock = 0,      // (section, key) -> bytes
  kCameraMetadataBlock = 1  // serialised camera metadata of one capture result
};

struct AlgoMetadataEntry {
  int32_t kind = kParameterBlock;
  void* block = nullptr;
  uint8_t reserved[28] = {};
  uint32_t size = 0;  // bytes in the block
};

// Request types, by the numbers of the algorithm library. Types 3 and 5 are never sent from here, but
// a client is uninitialised for them as well.
enum ALGO_REQUEST_TYPE : int32_t {
  kRequestPreview = 1,
  kRequestCapture = 2,
  kRequestType3 = 3,
  kRequestType5 = 5,
  kRequestStop = 9
};

struct AlgoCreateClientRecord {
  int32_t interfaceVersion = 0;
  int32_t reserved[3] = {};
};

struct AlgoInitRecord {
  int32_t type = 0;
  void* client = nullptr;
};

struct AlgoUninitRecord {
  int32_t type = 0;
  void* client = nullptr;
  int32_t mode = 0;
};

struct AlgoFlushRecord {
  void* client = nullptr;
};

struct AlgoGetDataRecord {
  std::string cmd;
  void* block = nullptr;
  uint32_t size = 0;  // bytes in the block
  void* client = nullptr;
};

struct AlgoTranslateParamFileRecord {
  void* client = nullptr;
  int32_t fd = -1;
  int32_t size = 0;  // bytes behind fd
  std::string identifier;
};

struct AlgoProcessRecord {
  int32_t requestType = 0;
  uint64_t nativeReq = 0;
  std::vector<std::string> algoList;
  void* client = nullptr;
  uint64_t callbackCookie = 0;  // address of an AlgoResultCallback
  uint64_t reqId = 0;
  uint8_t reserved[20] = {};
  std::vector<AlgoMetadataEntry> metadata;
  std::vector<AlgoFrameInfo> inputFrames;
  std::vector<AlgoFrameInfo> outputFrames;
};

struct AlgoCommandRecord {
  uint8_t reserved[16] = {};
  void* client = nullptr;
  uint64_t first = 0;
  uint64_t second = 0;
  std::vector<uint8_t> data;
  std::vector<AlgoMetadataEntry> metadata;
};

#if UINTPTR_MAX == UINT32_MAX
static_assert(sizeof(AlgoFrameInfo) == 128);
static_assert(offsetof(AlgoFrameInfo, format) == 0);
static_assert(offsetof(AlgoFrameInfo, width) == 4);
static_assert(offsetof(AlgoFrameInfo, height) == 8);
static_assert(offsetof(AlgoFrameInfo, size) == 12);
static_assert(offsetof(AlgoFrameInfo, stride) == 16);
static_assert(offsetof(AlgoFrameInfo, scanline) == 32);
static_assert(offsetof(AlgoFrameInfo, reserved) == 48);
static_assert(offsetof(AlgoFrameInfo, nativeHandle) == 52);
static_assert(offsetof(AlgoFrameInfo, fdCount) == 56);
static_assert(offsetof(AlgoFrameInfo, fd) == 60);
static_assert(offsetof(AlgoFrameInfo, fdSize) == 76);
static_assert(offsetof(AlgoFrameInfo, planeCount) == 92);
static_assert(offsetof(AlgoFrameInfo, planeData) == 96);
static_assert(offsetof(AlgoFrameInfo, planeSize) == 112);

static_assert(sizeof(AlgoMetadataEntry) == 40);
static_assert(offsetof(AlgoMetadataEntry, block) == 4);
static_assert(offsetof(AlgoMetadataEntry, reserved) == 8);
static_assert(offsetof(AlgoMetadataEntry, size) == 36);

static_assert(sizeof(AlgoProcessRecord) == 104);
static_assert(offsetof(AlgoProcessRecord, nativeReq) == 8);
static_assert(offsetof(AlgoProcessRecord, algoList) == 16);
static_assert(offsetof(AlgoProcessRecord, client) == 28);
static_assert(offsetof(AlgoProcessRecord, callbackCookie) == 32);
static_assert(offsetof(AlgoProcessRecord, reqId) == 40);
static_assert(offsetof(AlgoProcessRecord, reserved) == 48);
static_assert(offsetof(AlgoProcessRecord, metadata) == 68);
static_assert(offsetof(AlgoProcessRecord, inputFrames) == 80);
static_assert(offsetof(AlgoProcessRecord, outputFrames) == 92);

static_assert(sizeof(AlgoCommandRecord) == 64);
static_assert(offsetof(AlgoCommandRecord, client) == 16);
static_assert(offsetof(AlgoCommandRecord, first) == 24);
static_assert(offsetof(AlgoCommandRecord, second) == 32);
static_assert(offsetof(AlgoCommandRecord, data) == 40);
static_assert(offsetof(AlgoCommandRecord, metadata) == 52);

static_assert(sizeof(AlgoCreateClientRecord) == 16);
static_assert(sizeof(AlgoInitRecord) == 8);
static_assert(offsetof(AlgoInitRecord, client) == 4);
static_assert(sizeof(AlgoUninitRecord) == 12);
static_assert(offsetof(AlgoUninitRecord, client) == 4);
static_assert(offsetof(AlgoUninitRecord, mode) == 8);
static_assert(sizeof(AlgoFlushRecord) == 4);
#endif

// Called for one value of a parameter block; 0 when the value was taken or filled in.
using AlgoMetadataVisitor =
    std::function<int(const char* section, const char* key, void* data, unsigned size)>;

// What stands behind AlgoProcessRecord::callbackCookie. Called on a thread of the algorithm library.
using AlgoResultCallback = std::function<void(
    const android::hardware::hidl_vec<uint8_t>& data, const android::hardware::hidl_vec<uint8_t>& extra,
    const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles)>;

// Operations on metadata blocks. An empty callable means "not offered"; int results are 0 for success.
struct AlgoMetadataOps {
  std::function<void*(int kind)> createMetadata;
  std::function<void(void* block)> destroyMetadata;
  std::function<unsigned(void* block)> getSize;
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> setValue;
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> getValue;
  std::function<int(void* block, const char* bytes, unsigned size)> setRaw;
  std::function<int(void*)> reserved;  // never called from here
  std::function<int(void* block, AlgoMetadataVisitor)> paramAlgoUpdateToSystem;
  std::function<int(void* block, AlgoMetadataVisitor)> paramSystemDownloadToAlgo;
};

// The table that AlgoInterfaceEntry() fills in. Empty callables and results as above.
struct AlgoInterfaceCallbacks {
  int32_t version = 0;
  std::function<int(const AlgoInitRecord&)> init;
  std::function<int(const AlgoProcessRecord&)> process;
  std::function<int(const AlgoUninitRecord&)> uninit;
  std::function<int(const AlgoGetDataRecord&)> getData;
  std::function<int(void*)> reserved;  // never called from here
  std::function<int(const AlgoFlushRecord&)> flush;
  std::function<int(const AlgoCommandRecord&)> command;
  std::function<void*(const AlgoCreateClientRecord&)> createClient;
  std::function<int(void* client)> destroyClient;
  AlgoMetadataOps metadataOps;
  std::function<int(const AlgoTranslateParamFileRecord&)> translateParamFile;
};

}  // namespace orlu

// The algorithm library's one export: fills the table in, whose callables stay valid until the process ends.
extern "C" void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table);
