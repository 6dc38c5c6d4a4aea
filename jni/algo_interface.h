// The border between this library and the closed algorithm interface library, liborlu.vac.interface.so: the
// tables of callables that the library fills in, the records that travel through them, and the bytes, names
// and codes inside those. Field order and, in the 32-bit build, every offset belong to that library; nothing
// here may be rearranged: algo_interface_layout.h asserts it. docs/algorithm_library.md says what a library
// must offer and when it is called.
//
// Every record, and everything that it points to, is the caller's and lives for the call alone, except where
// a field says otherwise. Sizes are bytes. Integers are in the machine's byte order, which is little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <hidl/HidlSupport.h>

namespace orlu {

// What AlgoCreateClientRecord::interfaceVersion asks for. A library that speaks another version returns no
// client.
constexpr int32_t kAlgoTableVersion = 202001;

// The version of this header: MAJOR changes with the layout of a record or table, MINOR with all else that a
// maker sees.
#define ORLU_ALGO_INTERFACE_MAJOR 1
#define ORLU_ALGO_INTERFACE_MINOR 0

// Sections of a parameter block.
constexpr char kControl[] = "orlu.algo.control";      // control inputs of this request
constexpr char kParameter[] = "orlu.algo.parameter";  // algorithm parameters
constexpr char kSensor[] = "orlu.algo.sensor";        // sensor and camera facts
constexpr char kFeedback[] = "orlu.algo.feedback";    // what the algorithms report back
constexpr char kSystem[] = "orlu.algo.system";        // facts that all algorithms share
constexpr char kZoom[] = "orlu.algo.zoom";            // zoom ratios

// Where getData() leaves its answer, under kFeedback: a text of at most kQueryResultSize bytes.
constexpr char kQueryResult[] = "query_result";
constexpr unsigned kQueryResultSize = 10240;

// The data of the command that says that this process is about to end, sent with its terminating zero.
constexpr char kNotifyKill[] = "notify:kill";
static_assert(sizeof kNotifyKill == 12);

// AlgoFrameInfo::format. More codes have a name (formatToStr()); these have a meaning here.
enum AlgoImageFormat : int32_t {
  kFormatUnknown = 0,
  kFormatNv21 = 1,
  kFormatNv12 = 2,
  kFormatMipiRaw10 = 6,
  kFormatMipiRaw12 = 7,
  kFormatRaw16 = 18,
  kFormatJpeg = 24,
  kFormatRgba8888 = 25,
};

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

// One image of a request. Widths and heights are pixels. The descriptors, and the handle with those in it,
// stay the property of whoever built the record and are closed when its request ends, for a full-async
// request when process() has returned: the algorithm library duplicates what it keeps.
struct AlgoFrameInfo {
  int32_t format = 0;  // an AlgoImageFormat
  int32_t width = 0;
  int32_t height = 0;
  int32_t size = 0;
  int32_t stride[kMaxPlanes] = {};    // from row to row, of each plane
  int32_t scanline[kMaxPlanes] = {};  // rows of each plane, with padding
  int32_t reserved = 0;
  AlgoNativeHandle* nativeHandle = nullptr;  // of a hardware buffer; null for shared memory
  int32_t fdCount = 0;
  int32_t fd[kMaxPlanes] = {};
  int32_t fdSize[kMaxPlanes] = {};  // bytes behind each descriptor
  int32_t planeCount = 0;
  void* planeData[kMaxPlanes] = {};
  int32_t planeSize[kMaxPlanes] = {};
};

// What kind of metadata block an entry or createMetadata() means.
enum AlgoMetadataKind : int32_t {
  kParameterBlock = 0,      // (section, key) -> bytes
  kCameraMetadataBlock = 1  // serialised camera metadata of one capture result
};

// A block as it travels in a record.
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
  uint64_t nativeReq = 0;  // names the request in its callback
  std::vector<std::string> algoList;
  void* client = nullptr;
  uint64_t callbackCookie = 0;  // address of an AlgoResultCallback
  uint64_t reqId = 0;           // the Java side's id
  uint8_t reserved[20] = {};
  // The parameter block, which lives until the request ends, and the camera metadata of one capture result,
  // which lives until process() returns.
  std::vector<AlgoMetadataEntry> metadata;
  std::vector<AlgoFrameInfo> inputFrames;
  std::vector<AlgoFrameInfo> outputFrames;
};

// An abort carries a parameter block that names what is aborted; a notice carries data.
struct AlgoCommandRecord {
  uint8_t reserved[16] = {};
  void* client = nullptr;
  uint64_t first = 0;
  uint64_t second = 0;
  std::vector<uint8_t> data;
  std::vector<AlgoMetadataEntry> metadata;
};

// How the data of a result callback begins. The name follows, not zero-terminated, and then the payload. Data
// without a name, of an unknown name, or that ends before its name does, is ignored.
struct CallbackHeader {
  uint8_t reserved[8];
  uint64_t nativeReq;  // the request that is done; not read for a light-stream event
  int32_t nameLength;
};
constexpr size_t kCallbackNameOffset = offsetof(CallbackHeader, nameLength) + sizeof(int32_t);
static_assert(offsetof(CallbackHeader, nativeReq) == 8);
static_assert(offsetof(CallbackHeader, nameLength) == 16);
static_assert(kCallbackNameOffset == 20);

// Names of result callbacks: a request is done, without a payload; a light-stream event.
constexpr char kShotCallback[] = "shotCb";
constexpr char kLightStreamCallback[] = "lightStreamCb";

// How the payload of a light-stream callback begins; a shorter one is ignored. The first word of the
// callback's first handle, if it has one, reaches Java as the shared descriptor.
struct LightStreamEvent {
  uint8_t reserved[8] = {};
  int64_t reqId = 0;
  int64_t eventType = 0;
  int32_t cropRegion[4] = {};  // left, top, width, height
  float zoomRatio = 0;
  uint8_t reserved44[4] = {};
};
static_assert(sizeof(LightStreamEvent) == 48);
static_assert(offsetof(LightStreamEvent, reqId) == 8);
static_assert(offsetof(LightStreamEvent, eventType) == 16);
static_assert(offsetof(LightStreamEvent, cropRegion) == 24);
static_assert(offsetof(LightStreamEvent, zoomRatio) == 40);

// Called for one value of a parameter block; 0 when the value was taken or filled in. Works on the thread
// that called the operation which was given it, until that operation returns.
using AlgoMetadataVisitor =
    std::function<int(const char* section, const char* key, void* data, unsigned size)>;

// What stands behind AlgoProcessRecord::callbackCookie. Called on any thread of the algorithm library with a
// CallbackHeader, its name and payload as `data`; `extra` is not read.
using AlgoResultCallback = std::function<void(
    const android::hardware::hidl_vec<uint8_t>& data, const android::hardware::hidl_vec<uint8_t>& extra,
    const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles)>;

// Operations on metadata blocks. An empty callable means "not offered"; int results are 0 for success.
struct AlgoMetadataOps {
  std::function<void*(int kind)> createMetadata;  // an AlgoMetadataKind; null on failure
  std::function<void(void* block)> destroyMetadata;
  std::function<unsigned(void* block)> getSize;
  // Keep a copy of `size` bytes under (section, key); copy at most `size` bytes of what is kept there.
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> setValue;
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> getValue;
  // Loads serialised camera metadata into a block of that kind.
  std::function<int(void* block, const char* bytes, unsigned size)> setRaw;
  std::function<int(void*)> reserved;  // never called from here
  // Calls the visitor for each value that the algorithms pass up; for each value that they want passed down.
  std::function<int(void* block, AlgoMetadataVisitor)> paramAlgoUpdateToSystem;
  std::function<int(void* block, AlgoMetadataVisitor)> paramSystemDownloadToAlgo;
};

// The table that AlgoInterfaceEntry() fills in. Empty callables and results as above.
struct AlgoInterfaceCallbacks {
  int32_t version = 0;  // 0 when the table is handed over
  std::function<int(const AlgoInitRecord&)> init;
  std::function<int(const AlgoProcessRecord&)> process;
  std::function<int(const AlgoUninitRecord&)> uninit;
  std::function<int(const AlgoGetDataRecord&)> getData;
  std::function<int(void*)> reserved;  // never called from here
  std::function<int(const AlgoFlushRecord&)> flush;
  std::function<int(const AlgoCommandRecord&)> command;
  std::function<void*(const AlgoCreateClientRecord&)> createClient;  // a handle, or null
  std::function<int(void* client)> destroyClient;
  AlgoMetadataOps metadataOps;
  std::function<int(const AlgoTranslateParamFileRecord&)> translateParamFile;
};

}  // namespace orlu

// The algorithm library's one export: fills the table in, whose callables stay valid until the process ends.
extern "C" void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table);
