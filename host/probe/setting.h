// What the probe is told: by environment variables, and on a phone, where a service has none, by system
// properties.
#pragma once

#include <string>

namespace orlu::probe {

// The value of the variable `name`, which begins with "ORLU_", else on a phone that of its property; "" when
// neither is set.
std::string setting(const char* name);

// "ORLU_PIXELS_BYTES" has the property "persist.vendor.orlu.pixels_bytes".
std::string propertyOf(const std::string& name);

}  // namespace orlu::probe
