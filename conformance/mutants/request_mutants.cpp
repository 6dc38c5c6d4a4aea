// Mutants with faults in requests, callbacks, images or resources, grouped by the check for the fault.
#include <dlfcn.h>
#include <fcntl.h>
#include <jni.h>
#include <unistd.h>

#include <cstdlib>
#include <map>

#include "jni_support.h"
#include "mutant.h"

namespace orlu::mutants {
namespace {

// process
void keepHandles(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty() || record.outputFrames[0].nativeHandle == nullptr) return;
    later(10, [handle = record.outputFrames[0].nativeHandle] {
      touch(handle->data[0], 1, [](uint8_t* memory) { memory[0] ^= 0xFF; });
    });
  });
  delayCallbacks(table);
}
void keepDescriptors(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty()) return;
    later(30,
          [fd = record.outputFrames[0].fd[0]] { touch(fd, 1, [](uint8_t* memory) { memory[0] ^= 0xFF; }); });
  });
  delayCallbacks(table);
}
void sleepInProcess(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.size() == 12) usleep(150'000);
  });
}

// callbacks
void skipFirstId(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    if (requestOf(bytes) != 0) send(bytes);
  });
}
void callTwice(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(bytes);
    send(bytes);
  });
}
void cutIds(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(message(static_cast<uint32_t>(requestOf(bytes)), kShotCallback));
  });
}
void addOddCallback(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    send(bytes);
    send(message(requestOf(bytes), "shotcb"));
  });
}
void callInsideProcess(Table& table) {
  table.process = [](const AlgoProcessRecord& record) {
    sendTo(record.callbackCookie, message(record.nativeReq, kShotCallback));
    return 0;
  };
}

// java
JavaVM* findVm() {
  using Get = jint (*)(JavaVM**, jsize, jsize*);
  const auto get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  return get != nullptr && get(&vm, 1, &count) == JNI_OK && count > 0 ? vm : nullptr;
}
void callUnattached(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::thread([&] { send(bytes); }).join();
  });
}
void endAttached(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::thread([&] {
      JNIEnv* env = nullptr;
      JavaVM* const vm = findVm();
      if (vm != nullptr) attachThread(vm, &JavaVM::AttachCurrentThreadAsDaemon, &env, nullptr);
      send(bytes);
    }).join();
  });
}
void cutLightStream(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto& list) {
    if (asksFor(list, "lightstream")) send(message(0, kLightStreamCallback, 47));
    send(bytes);
  });
}

// requests
void refuseFormats(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    const bool isOdd = !record.inputFrames.empty() && record.inputFrames[0].format == kFormatMipiRaw12;
    return isOdd ? -1 : process(record);
  };
}
void needInputs(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    return record.inputFrames.empty() ? -1 : process(record);
  };
}

// concurrency
void callAfterDestroy(Table& table) {
  table.destroyClient = [](void*) { return 0; };
  table.flush = [](const auto&) { return 0; };
  delayCallbacks(table);
}

// outputs
void onOutput(Table& table, size_t past, void (*change)(uint8_t* memory, size_t size)) {
  onProcess(table, [past, change](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty()) return;
    const AlgoFrameInfo& frame = record.outputFrames[0];
    const auto size = static_cast<size_t>(frame.size);
    touch(frame.fd[0], size + past, [&](uint8_t* memory) { change(memory, size); });
  });
}
void writePastOutput(Table& table) {
  onOutput(table, 16, [](uint8_t* memory, size_t size) { memory[size + 3] = 0; });
}
void writeInput(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.empty()) return;
    touch(record.inputFrames[0].fd[0], 1, [](uint8_t* memory) { memory[0] ^= 0xFF; });
  });
}
void leaveWrongJpegSize(Table& table) {
  onCallback(table, [table](const Bytes& bytes, const Send& send, void* block, const auto& list) {
    if (asksFor(list, "jpegEncode")) leaveResult(table, block, kFeedback, "encoded_jpeg_size", {40, 0, 0, 0});
    send(bytes);
  });
}

// leaks
void leakDescriptor(Table& table) {
  onProcess(table,
            [](const AlgoProcessRecord&) { [[maybe_unused]] const int kept = fcntl(0, F_DUPFD_CLOEXEC, 0); });
}
void leakMemory(Table& table) {
  static std::map<int, std::string> kept;  // reachable, so leak checkers ignore it; only growth reveals it
  onProcess(table, [](const AlgoProcessRecord&) { kept[static_cast<int>(kept.size())].resize(1000); });
}
void leakThread(Table& table) {
  onProcess(table, [](const AlgoProcessRecord&) { later(600'000, [] {}); });
}
void leakMapping(Table& table) {
  onProcess(table, [](const AlgoProcessRecord& record) {
    if (record.inputFrames.empty()) return;
    (void)mmap(nullptr, 100, PROT_READ, MAP_SHARED, record.inputFrames[0].fd[0], 0);
  });
}

// hostile
void trustCounts(Table& table) {
  onProcess(table, [get = table.metadataOps.getValue](const AlgoProcessRecord& record) {
    int32_t faces = 0;
    if (get(record.metadata[0].block, kParameter, "hd_face_num", &faces, sizeof faces) != 0) return;
    if (faces < 0 || faces > 10) std::abort();
  });
}

}  // namespace

std::vector<Mutant> requestMutants() {
  return {
      {"keep_handles",          keepHandles       },
      {"keep_descriptors",      keepDescriptors   },
      {"sleep_in_process",      sleepInProcess    },
      {"skip_first_id",         skipFirstId       },
      {"call_twice",            callTwice         },
      {"cut_ids",               cutIds            },
      {"add_odd_callback",      addOddCallback    },
      {"call_inside_process",   callInsideProcess },
      {"call_unattached",       callUnattached    },
      {"end_attached",          endAttached       },
      {"cut_light_stream",      cutLightStream    },
      {"refuse_formats",        refuseFormats     },
      {"need_inputs",           needInputs        },
      {"call_after_destroy",    callAfterDestroy  },
      {"write_past_output",     writePastOutput   },
      {"write_input",           writeInput        },
      {"leave_wrong_jpeg_size", leaveWrongJpegSize},
      {"leak_descriptor",       leakDescriptor    },
      {"leak_memory",           leakMemory        },
      {"leak_thread",           leakThread        },
      {"leak_mapping",          leakMapping       },
      {"trust_counts",          trustCounts       },
  };
}

}  // namespace orlu::mutants
