// Implements the native methods. A handle is the address of an AlgoNativeClient. All functions except
// notify() reject handle 0: they log that and return -1 or null. Any other handle is trusted: with it,
// functions that return int return 0 unless noted, even if lower layers fail; these log their failures. Java
// may call any function, including destroy(), inside a callback; other calls for one client must not overlap.
#pragma once

#include <jni.h>

#include <cstdint>
#include <string>
#include <vector>

#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "vrequest.h"

namespace orlu {

class RequestProcessor {
public:
  // The result of getVersion. The Java side checks it.
  static constexpr int kServiceInterfaceVersion = 6;

  // Creates a client from "algoContextIndex" and "clientId" and returns its handle. destroy() frees it.
  static int64_t create(JNIEnv* env, jobject param);
  // Flushes, uninitialises and deletes the client. Its handle must not be used again.
  static int destroy(JNIEnv* env, int64_t inst);
  static int init(JNIEnv* env, int64_t inst, jobject object);
  // Uninitialises the client in the mode that "imageFormat" selects.
  static int release(JNIEnv* env, int64_t inst, jobject param);
  static int flush(JNIEnv* env, int64_t inst, jobject a, jobject b);
  // Aborts the requests whose tag "orlu.control.frameFlag" equals "AbortVal", but only if "AbortKey" begins
  // with this tag's name.
  static int abortRequest(JNIEnv* env, int64_t inst, jobject a, jobject param);
  // Returns the answer to "cmd" as a new local reference: "" if the algorithm library stores no answer, null
  // if `param` is null, the library lacks getData or the VM has no memory.
  static jstring getData(JNIEnv* env, int64_t inst, jobject param);
  // Passes the file in `sharedMemory` to the algorithm library under "identifier".
  static int translateParamFiles(JNIEnv* env, int64_t inst, jobject sharedMemory, jobject param);
  // Announces the end of this process to the algorithm library, then ends the process. Never returns.
  [[noreturn]] static void notify(JNIEnv* env, int64_t inst, jobject param);

  // Submits one request to the algorithms; for a synchronous request also writes the results. Returns -1 if
  // the handle, `inputs`, `outputs` or `compositions` is null, else 0, even after a timeout.
  static int processImage(JNIEnv* env, int64_t inst, jobject request, jobject inputs, jobject outputs,
                          jobject compositions);
  // Writes the results of the full-async request whose id is in "nativeRequestAddr", and finishes this
  // request. Writes only initial values if no full-async request has this id, if another call is finishing
  // the request, or if the request is still being submitted and not yet announced to Java. Returns the same
  // values as processImage().
  static int processImageUpdateResult(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                      jobject outputs, jobject compositions);

  // Submits a request and, if it is synchronous, waits for its callback, ten seconds at most. The request
  // carries the metadata of capture result `resultIndex`. Always returns 0.
  static int processImageAlgo(VRequest& request, std::vector<std::string>& algoList, AlgoNativeClient* client,
                              void* metadata, CameraMetadataParser* parser, uint64_t reqId,
                              uint64_t nativeReq, bool isFullAsync, int resultIndex);
};

}  // namespace orlu
