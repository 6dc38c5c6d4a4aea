// A JNI environment without a VM. It is strict where a VM trusts its callers: it ends the process on use of a
// deleted or null reference, and on a call with an exception pending. Every object is an instance of every
// class, unless the choices differ.
#pragma once

#include <jni.h>

#include <cstddef>
#include <cstdint>

// The environment exists once per process.
namespace orlu::fuzz::fake_jni {

JNIEnv* env();
// Each byte selects how one call fails. After the last byte, all calls succeed.
void setChoices(const uint8_t* bytes, size_t size);
// Sets the result of every method that returns a number.
void setNumber(int32_t number);

jobject newLocal();
size_t localReferences();
size_t globalReferences();

}  // namespace orlu::fuzz::fake_jni
