// Functions that call the service's Java class and the recorder, for tests and benchmarks.
#pragma once

#include <jni.h>

#include <string>

#include "fixtures.h"

namespace orlu::test {

inline jobject newService() {
  return newObject("com/orlu/orlu3rdalgoservice/Orlu3rdAlgoService", "()V");
}

// Returns the handle of a new client. The caller must destroy it with destroyServiceClient().
inline jlong newServiceClient(jobject service, jobject composition) {
  return call(service, "createNativeClient", "(Ljava/lang/Object;)J", composition).j;
}

inline void destroyServiceClient(jobject service, jlong client) {
  call(service, "destroyNativeClient", "(J)I", client);
}

// Returns a recorder that keeps at most `count` recordings in `folder`, each of at most `bytes` bytes.
inline jobject newRecorder(const std::string& folder, int count, int64_t bytes) {
  jobject file = newObject("java/io/File", "(Ljava/lang/String;)V", javaString(folder));
  return newObject("com/orlu/orlu3rdalgoservice/record/RequestRecorder", "(Ljava/io/File;IJ)V", file, count,
                   bytes);
}

// Runs a request through the recorder, or directly if the recorder is null. Returns the request's status.
inline int processImage(jobject recorder, jobject service, jlong client, jobject request, jobject inputs,
                        jobject outputs, jobject compositions) {
#define OBJECTS "Ljava/lang/Object;Ljava/lang/Object;Ljava/lang/Object;Ljava/lang/Object;"
  if (recorder == nullptr) {
    return call(service, "processImage", "(J" OBJECTS ")I", client, request, inputs, outputs, compositions).i;
  }
  return call(recorder, "processImage", "(Lcom/orlu/orlu3rdalgoservice/Orlu3rdAlgoService;J" OBJECTS ")I",
              service, client, request, inputs, outputs, compositions)
      .i;
#undef OBJECTS
}

}  // namespace orlu::test
