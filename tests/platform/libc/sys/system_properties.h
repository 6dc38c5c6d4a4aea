// Replaces the header of Android's C library.
#pragma once
#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92
extern "C" int __system_property_get(const char* name, char* value);
