#include "setting.h"

#include <cstdlib>

#ifdef __ANDROID__
#include <sys/system_properties.h>
#endif

namespace orlu::probe {

std::string propertyOf(const std::string& name) {
  std::string property = "persist.vendor.orlu.";
  for (const char sign : name.substr(std::string("ORLU_").size()))
    property += static_cast<char>(sign >= 'A' && sign <= 'Z' ? sign - 'A' + 'a' : sign);
  return property;
}

std::string setting(const char* name) {
  const char* const variable = std::getenv(name);
  if (variable != nullptr && *variable != '\0') return variable;
#ifdef __ANDROID__
  char value[PROP_VALUE_MAX] = {};
  if (__system_property_get(propertyOf(name).c_str(), value) > 0) return value;
#endif
  return {};
}

}  // namespace orlu::probe
