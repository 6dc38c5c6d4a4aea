// The probe's settings: environment variables, and system properties on a phone, where a service has no
// environment of its own.
#pragma once

#include <string>

namespace orlu::probe {

// Returns the value of the variable `name`, which must begin with "ORLU_". If the variable is unset or empty,
// returns the value of its property; "" if the property is unset too, or on a host, which has no properties.
std::string setting(const char* name);

// Returns the name of a variable's property: "persist.vendor.orlu.pixels_bytes" for "ORLU_PIXELS_BYTES".
std::string propertyOf(const std::string& name);

}  // namespace orlu::probe
