// The Java VM of the benchmarks. Its heap has one size from the beginning and is touched, so that what grows
// in this process is not the heap.
#pragma once

#include <jni.h>

#include "jvm.h"

namespace orlu::bench {

// Starts the VM on the calling thread. False, with a line on standard error, when it can't be started.
bool startVm();

// Attaches a thread for the life of this object; env() works on it then.
class AttachedThread {
public:
  AttachedThread();
  AttachedThread(const AttachedThread&) = delete;
  AttachedThread& operator=(const AttachedThread&) = delete;
  ~AttachedThread();
};

}  // namespace orlu::bench
