// liborlu.camera3rd.log.so: the log level, and the file name of a path.

#include <cutils/properties.h>
#include <orlu/camera3rd_log.h>

#include <cstdlib>
#include <cstring>

namespace {

int initialLogLevel() {
  char value[PROPERTY_VALUE_MAX];
  property_get("persist.sys.camera3rd.loglevel", value, "3");
  return static_cast<int>(std::strtol(value, nullptr, 10));
}

}  // namespace

int gVAFCtrlLogLevel = initialLogLevel();

const char* get_filename(const char* path) {
  if (path == nullptr) return "";
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}
