#include "soak_log.h"

#include <android/log.h>

#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

namespace orlu::fuzz {
namespace {

constexpr uint64_t kUnexpectedShown = 10;

// An error line that the plans of the requests (soak_plan.h) cause.
struct Expected {
  const char* part;
  const char* name;
  std::atomic<uint64_t> count{0};
};
Expected gExpected[] = {
    {" time out",                          "waits that timed out"                           },
    {"callbackFromNative threw",           "announcements that threw"                       },
    {"createHashMap failed",               "announcements that failed for lack of memory"   },
    {" threw",                             "C++ exceptions caught"                          },
    {"left a Java exception",              "Java exceptions cleared"                        },
    {"callback for a client that is gone", "callbacks for a client that was gone"           },
    {"JavaVM GetEnv ERROR",                "callbacks on a thread that the VM does not know"},
};
std::atomic<uint64_t> gUnexpected{0};
thread_local int tTimeouts = 0;

// The parser's log tag. The soak ignores the parser's unexpected errors: they report missing camera tags, and
// the soak's requests have only a few tags.
constexpr char kTagReader[] = "_V_VASJNI-CameraMetadataParser";

void onLine(const __android_log_message* line) {
  if (line->priority < ANDROID_LOG_ERROR) return;
  for (Expected& expected : gExpected) {
    if (std::strstr(line->message, expected.part) == nullptr) continue;
    ++expected.count;
    if (&expected == &gExpected[0]) ++tTimeouts;
    return;
  }
  if (std::strcmp(line->tag, kTagReader) == 0) return;
  if (gUnexpected.fetch_add(1) < kUnexpectedShown) {
    std::fprintf(stderr, "unexpected line: %s: %s\n", line->tag, line->message);
  }
}

}  // namespace

void watchLog() {
  __android_log_set_logger(onLine);
}

int takeTimeouts() {
  return std::exchange(tTimeouts, 0);
}

bool printLogged() {
  for (Expected& expected : gExpected) {
    std::printf("%-48s %9" PRIu64 "\n", expected.name, expected.count.exchange(0));
  }
  const uint64_t unexpected = gUnexpected.exchange(0);
  std::printf("%-48s %9" PRIu64 "\n", "other error lines", unexpected);
  return unexpected == 0;
}

}  // namespace orlu::fuzz
