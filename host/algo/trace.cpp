#include "trace.h"

#include <cinttypes>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace orlu::standin {
namespace {

using Json = nlohmann::ordered_json;

std::string handleText(const void* handle) {
  char text[2 + 2 * sizeof(void*) + 1];
  std::snprintf(text, sizeof text, "0x%" PRIxPTR, reinterpret_cast<uintptr_t>(handle));
  return text;
}

std::string hexText(const void* data, unsigned size) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto* const bytes = static_cast<const uint8_t*>(data);
  std::string text;
  for (unsigned i = 0; bytes != nullptr && i < size; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

const char* orEmpty(const char* text) {
  return text == nullptr ? "" : text;
}

const void* parameterBlockOf(const AlgoProcessRecord& record) {
  for (const AlgoMetadataEntry& entry : record.metadata) {
    if (entry.kind == kParameterBlock) return entry.block;
  }
  return nullptr;
}

uint64_t cameraMetadataBytes(const AlgoProcessRecord& record) {
  uint64_t bytes = 0;
  for (const AlgoMetadataEntry& entry : record.metadata) {
    if (entry.kind == kCameraMetadataBlock) bytes += entry.size;
  }
  return bytes;
}

// The command's bytes up to the first zero.
std::string textOf(const std::vector<uint8_t>& data) {
  const std::string text(data.begin(), data.end());
  return text.substr(0, text.find('\0'));
}

}  // namespace

void Trace::open() {
  const char* const path = std::getenv("ORLU_ALGO_TRACE");
  std::lock_guard lock(mMutex);
  if (mPath == orEmpty(path)) return;
  mPath = orEmpty(path);
  mFile.reset(mPath.empty() ? nullptr : std::fopen(mPath.c_str(), "ae"));
}

void Trace::operation(const char* name) {
  write({
      {"op", name}
  });
}

void Trace::init(const AlgoInitRecord& record) {
  write({
      {"op",   "init"     },
      {"type", record.type}
  });
}

void Trace::uninit(const AlgoUninitRecord& record) {
  write({
      {"op",   "uninit"   },
      {"type", record.type},
      {"mode", record.mode}
  });
}

void Trace::process(const AlgoProcessRecord& record) {
  write({
      {"op",                  "process"                           },
      {"block",               handleText(parameterBlockOf(record))},
      {"type",                record.requestType                  },
      {"nativeReq",           record.nativeReq                    },
      {"reqId",               record.reqId                        },
      {"algoList",            record.algoList                     },
      {"inputs",              record.inputFrames.size()           },
      {"outputs",             record.outputFrames.size()          },
      {"cameraMetadataBytes", cameraMetadataBytes(record)         }
  });
}

void Trace::getData(const AlgoGetDataRecord& record) {
  write({
      {"op",  "getData" },
      {"cmd", record.cmd}
  });
}

void Trace::command(const AlgoCommandRecord& record) {
  write({
      {"op",      "command"             },
      {"data",    textOf(record.data)   },
      {"entries", record.metadata.size()}
  });
}

void Trace::translateParamFile(const AlgoTranslateParamFileRecord& record) {
  write({
      {"op",         "translateParamFile"},
      {"identifier", record.identifier   },
      {"size",       record.size         }
  });
}

void Trace::block(const char* operation, const void* block) {
  write({
      {"op",    operation        },
      {"block", handleText(block)}
  });
}

void Trace::setValue(const void* block, const char* section, const char* key, const void* data,
                     unsigned size) {
  if (!isOn()) return;
  Json line;
  line["op"] = "setValue";
  line["block"] = handleText(block);
  line["section"] = orEmpty(section);
  line["key"] = orEmpty(key);
  line["size"] = size;
  line["hex"] = hexText(data, size);
  write(line);
}

void Trace::done(uint64_t nativeReq, const RunReport& report) {
  Json frames = Json::array();
  for (const RunReport::FrameReport& frame : report.frames) {
    frames.push_back({
        {"sharpness", frame.sharpness                 },
        {"shift",     {frame.shift.dx, frame.shift.dy}},
        {"kept",      frame.kept                      }
    });
  }
  write({
      {"op",           "done"             },
      {"nativeReq",    nativeReq          },
      {"ran",          report.ran         },
      {"skipped",      report.skipped     },
      {"milliseconds", report.milliseconds},
      {"frames",       frames             }
  });
}

bool Trace::isOn() const {
  std::lock_guard lock(mMutex);
  return mFile != nullptr;
}

void Trace::write(const Json& line) {
  if (!isOn()) return;
  // Names may hold any bytes; what is no UTF-8 is replaced.
  const std::string text = line.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
  std::lock_guard lock(mMutex);
  if (mFile == nullptr) return;
  std::fwrite(text.data(), 1, text.size(), mFile.get());
  std::fflush(mFile.get());
}

}  // namespace orlu::standin
