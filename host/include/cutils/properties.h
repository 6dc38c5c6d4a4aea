// Host stand-in for libcutils.so. Its system properties exist only in this process. The environment variable
// ORLU_HOST_PROPERTIES sets their initial values ("name=value;name=value").
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#define PROPERTY_KEY_MAX 32
#define PROPERTY_VALUE_MAX 92

// Copies the property's value into `value`, which must have room for PROPERTY_VALUE_MAX bytes. If the
// property is unset or empty, copies `default_value`, or "" if that is null. Returns the length without the
// terminating zero.
int property_get(const char* key, char* value, const char* default_value);
// Sets the property; null counts as an empty value. Returns 0, or -1 if the value is too long.
int property_set(const char* key, const char* value);

#ifdef __cplusplus
}
#endif
