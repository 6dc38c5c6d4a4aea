// Settings from the environment, or from system properties on a phone, where services have no environment.
#pragma once

#include <string>

namespace orlu::probe {

// Returns the value of the variable `name` ("ORLU_..."); if unset or empty, its property on a phone, else "".
std::string setting(const char* name);

// Returns the property of a variable: "persist.vendor.orlu.pixels_bytes" for "ORLU_PIXELS_BYTES".
std::string propertyOf(const std::string& name);

}  // namespace orlu::probe
