// libcutils.so: system properties of this process only.

#include <cutils/properties.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>
#include <string>

namespace {

struct Properties {
  std::mutex mutex;
  std::map<std::string, std::string> values;

  Properties() {
    const char* environment = std::getenv("ORLU_HOST_PROPERTIES");
    std::istringstream pairs(environment == nullptr ? "" : environment);
    for (std::string pair; std::getline(pairs, pair, ';');) {
      const size_t equals = pair.find('=');
      if (equals != std::string::npos) values[pair.substr(0, equals)] = pair.substr(equals + 1);
    }
  }
};

// Never destroyed: threads may read properties until the process ends.
Properties& properties() {
  static auto* const instance = new Properties();
  return *instance;
}

}  // namespace

int property_get(const char* key, char* value, const char* default_value) {
  std::string found;
  {
    const std::lock_guard<std::mutex> lock(properties().mutex);
    const auto entry = properties().values.find(key);
    if (entry != properties().values.end()) found = entry->second;
  }
  if (found.empty() && default_value != nullptr) found = default_value;
  const size_t length = std::min<size_t>(found.size(), PROPERTY_VALUE_MAX - 1);
  std::memcpy(value, found.data(), length);
  value[length] = '\0';
  return static_cast<int>(length);
}

int property_set(const char* key, const char* value) {
  const std::string text = value == nullptr ? "" : value;
  if (text.size() >= PROPERTY_VALUE_MAX) return -1;
  const std::lock_guard<std::mutex> lock(properties().mutex);
  properties().values[key] = text;
  return 0;
}
