// A Java environment without a VM, strict where a VM trusts its callers: it ends the process on a use of a
// dead or null reference and on a call with an exception pending. Every object is of every class, unless the
// choices say otherwise.
#pragma once

#include <jni.h>

#include <cstddef>
#include <cstdint>

// There is one in a process.
namespace orlu::fuzz::fake_jni {

JNIEnv* env();
// One byte for each call: what it does wrong. Past the end nothing goes wrong.
void setChoices(const uint8_t* bytes, size_t size);
// What every method answers that answers a number.
void setNumber(int32_t number);

jobject newLocal();
size_t localReferences();
size_t globalReferences();

}  // namespace orlu::fuzz::fake_jni
