// The façade behind the twelve native methods: checks the client handle, reads what Java handed over, and
// drives the client's context.
//
// A handle is the address of an AlgoNativeClient. Handle 0 is rejected: the call logs an error and returns
// -1. Every other handle is trusted, and the int-returning members return 0: failures further down are logged
// there. Calls for one client come one at a time, except that Java may call any member, destroy() included,
// inside a callback of the algorithm library.
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
  // What getVersion returns, which the Java side checks.
  static constexpr int kServiceInterfaceVersion = 6;

  // A new client's handle; destroy() frees it. Reads "algoContextIndex" and "clientId".
  static int64_t create(JNIEnv* env, jobject param);
  // Flushes, uninitialises and deletes the client: its handle must not be used again.
  static int destroy(JNIEnv* env, int64_t inst);
  static int init(JNIEnv* env, int64_t inst, jobject object);
  // Uninitialises the client in a mode that follows from "imageFormat".
  static int release(JNIEnv* env, int64_t inst, jobject param);
  static int flush(JNIEnv* env, int64_t inst, jobject a, jobject b);
  // Aborts the requests that "AbortKey" and "AbortVal" name. Other keys are dropped.
  static int abortRequest(JNIEnv* env, int64_t inst, jobject a, jobject param);
  // The answer to "cmd" as a new local reference; null when the algorithm library offers none.
  static jstring getData(JNIEnv* env, int64_t inst, jobject param);
  // Hands the file in `sharedMemory` to the algorithm library under "identifier".
  static int translateParamFiles(JNIEnv* env, int64_t inst, jobject sharedMemory, jobject param);
  // Tells the algorithm service that this process goes away, and ends it. Never returns.
  [[noreturn]] static void notify(JNIEnv* env, int64_t inst, jobject param);

  // Carries one request to the algorithms; a synchronous one to its results as well. -1 when the handle,
  // `inputs`, `outputs` or `compositions` is null, else 0, also after a timeout.
  static int processImage(JNIEnv* env, int64_t inst, jobject request, jobject inputs, jobject outputs,
                          jobject compositions);
  // The second half of the full-async request under "nativeRequestAddr": writes its results and finishes it.
  // A synchronous request, and one that is still being submitted and not announced, count as unknown: nothing
  // but initial values is written. Returns as above.
  static int processImageUpdateResult(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                      jobject outputs, jobject compositions);

  // Submits a request and, if it is synchronous, waits for its callback, ten seconds at most. The metadata of
  // the capture result `resultIndex` goes with it. Always 0.
  static int processImageAlgo(VRequest& request, std::vector<std::string>& algoList, AlgoNativeClient* client,
                              void* metadata, CameraMetadataParser* parser, uint64_t reqId,
                              uint64_t nativeReq, bool isFullAsync, int resultIndex);
};

}  // namespace orlu
