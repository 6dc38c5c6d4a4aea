// Host stand-in for the system properties (libcutils.so). They live in the process: each starts as the
// environment variable ORLU_HOST_PROPERTIES says ("name=value;name=value").
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#define PROPERTY_KEY_MAX 32
#define PROPERTY_VALUE_MAX 92

// Copies the value, or `default_value` (which may be null) when it is unset or empty, into `value`, which has
// room for PROPERTY_VALUE_MAX bytes. Answers the length without the terminating zero.
int property_get(const char* key, char* value, const char* default_value);
// 0, or -1 when the value is too long. A null value counts as empty.
int property_set(const char* key, const char* value);

#ifdef __cplusplus
}
#endif
