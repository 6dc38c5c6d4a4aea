// Compares Android's jni.h with the JDK's (namespace `ours`), which the builds and tests here use. A slot is
// a function pointer in one of the VM's tables.
#include "ours/jni.h"

namespace ours {

enum Constant : long {
  kOk = JNI_OK,
  kError = JNI_ERR,
  kDetached = JNI_EDETACHED,
  kVersion = JNI_EVERSION,
  kTrue = JNI_TRUE,
  kFalse = JNI_FALSE,
  kCommit = JNI_COMMIT,
  kAbort = JNI_ABORT,
  kVersion4 = JNI_VERSION_1_4,
  kVersion6 = JNI_VERSION_1_6
};

}  // namespace ours

#include <jni.h>

#include "agreement.h"

static_assert(ours::kOk == JNI_OK && ours::kError == JNI_ERR && ours::kDetached == JNI_EDETACHED);
static_assert(ours::kVersion == JNI_EVERSION && ours::kTrue == JNI_TRUE && ours::kFalse == JNI_FALSE);
static_assert(ours::kCommit == JNI_COMMIT && ours::kAbort == JNI_ABORT);
static_assert(ours::kVersion4 == JNI_VERSION_1_4 && ours::kVersion6 == JNI_VERSION_1_6);

OPAQUE(ours::_jobject, ::_jobject);
OPAQUE(ours::_jclass, ::_jclass);
OPAQUE(ours::_jthrowable, ::_jthrowable);
OPAQUE(ours::_jstring, ::_jstring);
OPAQUE(ours::_jarray, ::_jarray);
OPAQUE(ours::_jbooleanArray, ::_jbooleanArray);
OPAQUE(ours::_jbyteArray, ::_jbyteArray);
OPAQUE(ours::_jcharArray, ::_jcharArray);
OPAQUE(ours::_jshortArray, ::_jshortArray);
OPAQUE(ours::_jintArray, ::_jintArray);
OPAQUE(ours::_jlongArray, ::_jlongArray);
OPAQUE(ours::_jfloatArray, ::_jfloatArray);
OPAQUE(ours::_jdoubleArray, ::_jdoubleArray);
OPAQUE(ours::_jobjectArray, ::_jobjectArray);
OPAQUE(ours::_jfieldID, ::_jfieldID);
OPAQUE(ours::_jmethodID, ::_jmethodID);
OPAQUE(ours::JNIEnv, ::JNIEnv);
OPAQUE(ours::JavaVM, ::JavaVM);
OPAQUE(ours::jobjectRefType, ::jobjectRefType);

RECORD(jvalue);
FIELD(jvalue, l);
RECORD(JNINativeMethod);
RECORD(JavaVMOption);
FIELD(JavaVMOption, extraInfo);
RECORD(JavaVMInitArgs);
FIELD(JavaVMInitArgs, version);
FIELD(JavaVMInitArgs, nOptions);
FIELD(JavaVMInitArgs, options);
FIELD(JavaVMInitArgs, ignoreUnrecognized);
RECORD(JavaVMAttachArgs);
FIELD(JavaVMAttachArgs, version);
FIELD(JavaVMAttachArgs, group);

#define ENV_SLOT(name) FIELD_AS(ours::JNINativeInterface_, ::JNINativeInterface, name)
#define VM_OFFSET(name) \
  static_assert(offsetof(ours::JNIInvokeInterface_, name) == offsetof(::JNIInvokeInterface, name), #name)
#define VM_SLOT(name) FIELD_AS(ours::JNIInvokeInterface_, ::JNIInvokeInterface, name)
// All functions of Android's JNINativeInterface, generated from its header.
#include "jni_slots.inc"

VM_SLOT(DestroyJavaVM);
VM_SLOT(DetachCurrentThread);
VM_SLOT(GetEnv);
// These two functions differ: they take void** in the JDK and JNIEnv** in Android. attachThread() in
// jni/jni_support.h accepts both.
VM_OFFSET(AttachCurrentThread);
VM_OFFSET(AttachCurrentThreadAsDaemon);
FUNCTION(JNI_GetCreatedJavaVMs);
