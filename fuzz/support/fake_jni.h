// A JNI environment without a VM. Ends the process on use of a deleted or null reference, and on a call with
// an exception pending. Every object is an instance of every class, unless setChoices() makes IsInstanceOf()
// fail.
#pragma once

#include <jni.h>

#include <cstddef>
#include <cstdint>

// The environment exists once per process.
namespace orlu::fuzz::fake_jni {

JNIEnv* env();
// Calls that can fail consume these bytes in order; an odd byte makes the call fail. A failing call that
// returns an object and may throw consumes a second byte: it throws if that byte is odd. After the last byte,
// all calls succeed.
void setChoices(const uint8_t* bytes, size_t size);
// Sets the number that methods return and that int fields and array elements contain.
void setNumber(int32_t number);

jobject newLocal();
size_t localReferences();
size_t globalReferences();

}  // namespace orlu::fuzz::fake_jni
