// The interface to the closed algorithm interface library, liborlu.vac.interface.so: the tables of callables
// that it fills in, the records passed through them, and the bytes, names and codes in the records. That
// library determines the order of the fields and, in the 32-bit build, every offset, so rearrange nothing
// here: algo_interface_layout.h asserts the layout. See docs/algorithm_library.md for the operations that a
// library must offer and when they are called.
//
// The caller owns every record and everything that it points to; both are valid only during the call, unless
// a field says otherwise. Sizes are in bytes. Integers are little-endian, like the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <hidl/HidlSupport.h>

namespace orlu {

// The value of AlgoCreateClientRecord::interfaceVersion. A library with another version returns no client.
constexpr int32_t kAlgoTableVersion = 202001;

// This header's version. MAJOR changes with the layout of a record or table, MINOR with any other change that
// matters to a library.
#define ORLU_ALGO_INTERFACE_MAJOR 1
#define ORLU_ALGO_INTERFACE_MINOR 0

// Sections of a parameter block.
constexpr char kControl[] = "orlu.algo.control";      // control inputs of this request
constexpr char kParameter[] = "orlu.algo.parameter";  // algorithm parameters
constexpr char kSensor[] = "orlu.algo.sensor";        // facts about the sensor and the camera
constexpr char kFeedback[] = "orlu.algo.feedback";    // results of the algorithms
constexpr char kSystem[] = "orlu.algo.system";        // facts that all algorithms share
constexpr char kZoom[] = "orlu.algo.zoom";            // zoom ratios

// The key under kFeedback where getData() stores its answer: a string of at most kQueryResultSize bytes.
constexpr char kQueryResult[] = "query_result";
constexpr unsigned kQueryResultSize = 10240;

// The data of the command that announces the end of this process; sent with its terminating zero.
constexpr char kNotifyKill[] = "notify:kill";
static_assert(sizeof kNotifyKill == 12);

// Values of AlgoFrameInfo::format that the code refers to; formatToStr() has names for further values.
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

// A copy of the platform's native_handle_t with room for kCapacity words: the descriptors, then the integers,
// with the first two words swapped (Oddity 5).
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

// One image of a request. Widths and heights are in pixels. The descriptors, and the handle that contains
// them, belong to the sender of the record. They are valid until the request finishes or, for a full-async
// request, until process() returns. The algorithm library duplicates the descriptors that it keeps.
struct AlgoFrameInfo {
  int32_t format = 0;  // an AlgoImageFormat
  int32_t width = 0;
  int32_t height = 0;
  int32_t size = 0;
  int32_t stride[kMaxPlanes] = {};    // bytes from one row to the next; kFormatRaw16: pixels (Oddity 3)
  int32_t scanline[kMaxPlanes] = {};  // [0]: rows of the first plane, including padding; others 0
  int32_t reserved = 0;
  AlgoNativeHandle* nativeHandle = nullptr;  // of a hardware buffer; null for shared memory
  int32_t fdCount = 0;
  int32_t fd[kMaxPlanes] = {};
  int32_t fdSize[kMaxPlanes] = {};  // bytes that each descriptor refers to
  int32_t planeCount = 0;
  void* planeData[kMaxPlanes] = {};
  int32_t planeSize[kMaxPlanes] = {};
};

// The kind of a metadata block, for entries and createMetadata().
enum AlgoMetadataKind : int32_t {
  kParameterBlock = 0,      // (section, key) -> bytes
  kCameraMetadataBlock = 1  // serialised camera metadata of one capture result
};

// Refers to a metadata block in a record.
struct AlgoMetadataEntry {
  int32_t kind = kParameterBlock;
  void* block = nullptr;
  uint8_t reserved[28] = {};
  uint32_t size = 0;  // bytes in the block
};

// Request types, numbered by the algorithm library. Types 3 and 5 occur only in uninit().
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
  int32_t size = 0;  // size of the file
  std::string identifier;
};

struct AlgoProcessRecord {
  int32_t requestType = 0;
  uint64_t nativeReq = 0;  // identifies the request in its callback
  std::vector<std::string> algoList;
  void* client = nullptr;
  uint64_t callbackCookie = 0;  // address of an AlgoResultCallback, valid until the process ends
  uint64_t reqId = 0;           // the Java side's id
  uint8_t reserved[20] = {};
  // The parameter block, which is valid until the request finishes, and the camera metadata of one capture
  // result, which is valid until process() returns.
  std::vector<AlgoMetadataEntry> metadata;
  std::vector<AlgoFrameInfo> inputFrames;
  std::vector<AlgoFrameInfo> outputFrames;
};

// The record of an abort or a notification. For an abort, `metadata` refers to a parameter block that names
// the frame to abort. A notification uses `data` instead.
struct AlgoCommandRecord {
  uint8_t reserved[16] = {};
  void* client = nullptr;
  uint64_t first = 0;
  uint64_t second = 0;
  std::vector<uint8_t> data;
  std::vector<AlgoMetadataEntry> metadata;
};

// The beginning of a result callback's data. The callback's name, without a terminating zero, and the payload
// follow. The data is ignored if the name is missing, unknown or cut off.
struct CallbackHeader {
  uint8_t reserved[8];
  uint64_t nativeReq;  // the finished request; not read for a light-stream event
  int32_t nameLength;
};
constexpr size_t kCallbackNameOffset = offsetof(CallbackHeader, nameLength) + sizeof(int32_t);
static_assert(offsetof(CallbackHeader, nativeReq) == 8);
static_assert(offsetof(CallbackHeader, nameLength) == 16);
static_assert(kCallbackNameOffset == 20);

// Names of result callbacks: for a finished request (without a payload), and for a light-stream event.
constexpr char kShotCallback[] = "shotCb";
constexpr char kLightStreamCallback[] = "lightStreamCb";

// The beginning of a light-stream callback's payload; shorter payloads are ignored. The first word of the
// callback's first handle, if any, is passed to Java as the shared descriptor.
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

// Called for one value of a parameter block; returns 0 if the value was accepted or filled in. A visitor may
// be called only during the operation that received it, and only on that operation's thread.
using AlgoMetadataVisitor =
    std::function<int(const char* section, const char* key, void* data, unsigned size)>;

// The function at AlgoProcessRecord::callbackCookie. May be called on any thread of the algorithm library.
// `data` consists of a CallbackHeader, the name and the payload; `extra` is not read.
using AlgoResultCallback = std::function<void(
    const android::hardware::hidl_vec<uint8_t>& data, const android::hardware::hidl_vec<uint8_t>& extra,
    const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles)>;

// Operations on metadata blocks. An empty callable means "not offered"; an int result of 0 means success.
struct AlgoMetadataOps {
  std::function<void*(int kind)> createMetadata;  // an AlgoMetadataKind; null on failure
  std::function<void(void* block)> destroyMetadata;
  std::function<unsigned(void* block)> getSize;
  // setValue() copies `size` bytes into the block; getValue() copies at most `size` bytes out of it.
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> setValue;
  std::function<int(void* block, const char* section, const char* key, void* data, unsigned size)> getValue;
  // Loads serialised camera metadata into a kCameraMetadataBlock.
  std::function<int(void* block, const char* bytes, unsigned size)> setRaw;
  std::function<int(void*)> reserved;  // never called from here
  // Calls the visitor for each value that the algorithms pass to the system.
  std::function<int(void* block, AlgoMetadataVisitor)> paramAlgoUpdateToSystem;
  // Calls the visitor for each value that the algorithms request from the system.
  std::function<int(void* block, AlgoMetadataVisitor)> paramSystemDownloadToAlgo;
};

// The table that AlgoInterfaceEntry() fills in. AlgoMetadataOps explains empty callables and int results.
struct AlgoInterfaceCallbacks {
  int32_t version = 0;  // 0 when the table is passed in
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

// The algorithm library's only export: fills in the table. The callables stay valid until the process ends.
extern "C" void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table);
