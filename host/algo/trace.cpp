#include "trace.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace orlu::standin {
namespace {

using Json = nlohmann::ordered_json;

const char* orEmpty(const char* text) {
  return text == nullptr ? "" : text;
}

// Returns the time in nanoseconds, on the clock of the events (docs/events.md).
int64_t now() {
  const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceBoot).count();
}

}  // namespace

void Trace::open() {
  const char* const path = std::getenv("ORLU_ALGO_TRACE");
  std::lock_guard lock(mMutex);
  if (mPath == orEmpty(path)) return;
  mPath = orEmpty(path);
  mFile.reset(mPath.empty() ? nullptr : std::fopen(mPath.c_str(), "ae"));
}

void Trace::done(uint64_t nativeReq, const RunReport& report) {
  std::lock_guard lock(mMutex);
  if (mFile == nullptr) return;
  Json frames = Json::array();
  for (const RunReport::FrameReport& frame : report.frames) {
    frames.push_back({
        {"sharpness", frame.sharpness                 },
        {"shift",     {frame.shift.dx, frame.shift.dy}},
        {"kept",      frame.kept                      }
    });
  }
  const Json line = {
      {"op",           "done"             },
      {"t",            now()              },
      {"tid",          syscall(SYS_gettid)},
      {"nativeReq",    nativeReq          },
      {"ran",          report.ran         },
      {"skipped",      report.skipped     },
      {"milliseconds", report.milliseconds},
      {"frames",       frames             }
  };
  // Algorithm names may contain any bytes; invalid UTF-8 is replaced.
  const std::string text = line.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
  std::fwrite(text.data(), 1, text.size(), mFile.get());
  std::fflush(mFile.get());
}

}  // namespace orlu::standin
