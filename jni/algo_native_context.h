// One client's connection to the algorithm library: the table of its operations and the client handle that it
// returned. The only class that calls that library.
//
// An operation that the library does not offer is logged by its failure message and skipped. One that throws
// is logged ("<operation> threw") and counts as not offered; a Java exception that it leaves on the calling
// thread is logged and cleared. Metadata blocks are handles of the library: who creates one destroys it.
// Operations on a null block are skipped.
//
// Safe from any thread as far as the algorithm library is. Whoever calls an operation keeps the context alive
// until the operation has returned; the library's client may be destroyed meanwhile, by Java inside a
// callback. After that the library gets no operation on this client any more.
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
  // Gets a table of its own from the provider and creates a client of the library. `javaVm`, which may be
  // null, is where Java exceptions are looked for.
  explicit AlgoNativeContext(JavaVM* javaVm = nullptr);
  AlgoNativeContext(const AlgoNativeContext&) = delete;
  AlgoNativeContext& operator=(const AlgoNativeContext&) = delete;
  virtual ~AlgoNativeContext();

  // Destroys the library's client, once; else the destructor does. The library may call back meanwhile.
  void destroyClient();

  void init();
  // Uninitialises every request type. `mode`: 0 destroy, 1 release, 2 release of a raw format.
  void uninit(int mode);
  void flush();
  // The parameter block names the frame to abort.
  void abort(uint64_t first, uint64_t second, void* metadata);
  // Tells the library that this process is about to end.
  void notify();

  // Submits a request. The library reports completion by calling the callback whose address is the cookie.
  // `metadata` stays the caller's and must outlive the request, as must the frames' memory. `metadataBytes`:
  // one capture result, serialised; copied.
  void process(ALGO_REQUEST_TYPE type, const std::vector<std::string>& algoList, uint64_t nativeReq,
               const std::vector<AlgoFrameInfo>& inputs, const std::vector<AlgoFrameInfo>& outputs,
               void* metadata, uint64_t callbackCookie, uint64_t reqId,
               const std::vector<uint8_t>& metadataBytes);

  // The library's answer to `cmd`: always 10240 bytes, a text up to its first zero; empty when not offered.
  std::vector<uint8_t> getData(const std::string& cmd);
  // Hands over a file of `size` bytes; the descriptor stays the caller's. Always 0.
  int translateParamFile(int fd, int size, const std::string& identifier);

  // A new parameter block, or null.
  void* createMetadata();
  void destroyMetadata(void* block);
  // The parameter channel: copies `size` bytes in or, at most, out. 0, or the library's own status; -1 when
  // the operation could not be called or threw.
  int setValue(void* block, const char* section, const char* key, void* data, unsigned size);
  int getValue(void* block, const char* section, const char* key, void* data, unsigned size);
  // Walk the values that the algorithms pass up, or want passed down. The visitor is called on this thread
  // until the operation returns; a call at another place returns -1 without it. Results as above.
  int paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor);
  int paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor);

  // For the parameter channel, which uses it on one thread. Valid as long as this object.
  const AlgoGuardedTable& table() const { return *mTable; }
  // The library gets nothing more on this client, and calls nobody back.
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
