// One client's connection to the algorithm library: the library's table of operations and the client handle
// that it returned. Operations are called only through this class and its table.
//
// If the library lacks an operation, the call is skipped. A failure message is logged, except for getSize,
// setRaw, setValue, getValue and the visits. Without getSize, process() is skipped too, and logs a message.
// An operation that throws is logged and counts as failed. If an operation leaves a Java exception pending,
// the exception is logged and cleared. Metadata blocks are handles of the library; whoever creates a block
// destroys it. Operations on a null block are skipped.
//
// As thread-safe as the algorithm library. Callers keep the context alive until the operation returns. During
// an operation, Java may destroy the library's client from a callback; the library then receives no more
// operations on the client.
#pragma once

#include <jni.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "algo_guarded_table.h"
#include "algo_interface.h"

namespace orlu {

class AlgoNativeContext {
public:
  // Creates a client of the library. If `javaVm` is null, Java exceptions are not checked.
  explicit AlgoNativeContext(JavaVM* javaVm = nullptr);
  AlgoNativeContext(const AlgoNativeContext&) = delete;
  AlgoNativeContext& operator=(const AlgoNativeContext&) = delete;
  virtual ~AlgoNativeContext();

  // Destroys the library's client. Further calls of destroyClient() have no effect. The library may call back
  // while it destroys the client. The destructor also calls this function.
  void destroyClient();

  void init();
  // Uninitialises request types 1, 2, 3 and 5. `mode`: 0 for destruction or an unknown format, 1 for the
  // release of a processed format, 2 for the release of a raw format.
  void uninit(int mode);
  void flush();
  // Aborts the frame that the parameter block names.
  void abort(uint64_t first, uint64_t second, void* metadata);
  // Announces to the library that this process is about to end.
  void notify();

  // Submits a request. The library reports completion by calling the callback whose address is the cookie.
  // The caller owns `metadata` and the frames' descriptors. `metadata` must outlive the request. See
  // AlgoFrameInfo for how long the descriptors must stay valid. `metadataBytes` is one serialised capture
  // result; it is copied.
  void process(ALGO_REQUEST_TYPE type, const std::vector<std::string>& algoList, uint64_t nativeReq,
               const std::vector<AlgoFrameInfo>& inputs, const std::vector<AlgoFrameInfo>& outputs,
               void* metadata, uint64_t callbackCookie, uint64_t reqId,
               const std::vector<uint8_t>& metadataBytes);

  // Returns the library's answer to `cmd`: a string, padded with zeros to 10240 bytes. Empty if the library
  // does not offer getData.
  std::vector<uint8_t> getData(const std::string& cmd);
  // Passes a file of `size` bytes to the library. The caller keeps the descriptor. Always returns 0.
  int translateParamFile(int fd, int size, const std::string& identifier);

  // Returns a new parameter block, or null.
  void* createMetadata();
  void destroyMetadata(void* block);
  // The parameter channel: copy `size` bytes into the block, or at most `size` bytes out of it. Return the
  // library's status (0: success), or -1 if the block is null, or the operation is missing or throws.
  int setValue(void* block, const char* section, const char* key, void* data, unsigned size);
  int getValue(void* block, const char* section, const char* key, void* data, unsigned size);
  // Visit the values that the algorithms pass to the system, or request from it. The library may call the
  // visitor on this thread until the operation returns. A later call, or one on another thread, returns -1
  // without reaching the visitor. Both functions return the same values as setValue().
  int paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor);
  int paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor);

  // For ParameterChannel, which uses the table on one thread. The reference is valid as long as this object.
  const AlgoGuardedTable& table() const { return *mTable; }
  // True once destroyClient() has started. The library then receives no more operations on the client, so
  // don't wait for the library's callbacks.
  bool isClientDestroyed() const { return mIsClientDestroyed; }

private:
  const AlgoInterfaceCallbacks& operations() const { return mTable->operations(); }
  template <typename Record>
  void submit(const char* name, const std::function<int(const Record&)>& callable, const Record& record);
  int visit(const char* name, const std::function<int(void*, AlgoMetadataVisitor)>& callable, void* block,
            const AlgoMetadataVisitor& visitor);

  std::unique_ptr<const AlgoGuardedTable> mTable;
  void* mClient = nullptr;
  std::atomic<bool> mIsClientDestroyed{false};
};

}  // namespace orlu
