// Looks up a value by its key and serialises whole capture results.

#include <algorithm>

#include "camera_metadata_parser.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {

void CameraMetadataParser::FrameObjects::reset(const std::vector<jobject>& objects) {
  *this = FrameObjects();
  mObjects = &objects;
}

bool CameraMetadataParser::FrameObjects::check(JNIEnv* env, jobject object, jclass clazz) {
  const size_t size = mObjects == nullptr ? 0 : std::min(mObjects->size(), kMostKept);
  for (const size_t at : {mLast, mLast + 1, size_t{0}}) {
    if (at >= size || (*mObjects)[at] != object) continue;
    mLast = at;
    if (!mHasPassed[at]) mHasPassed[at] = orlu::isInstance(env, object, clazz);
    if (mHasPassed[at]) mLastPassed = object;
    return mHasPassed[at];
  }
  return orlu::isInstance(env, object, clazz);
}

bool CameraMetadataParser::Batch::makeRoom() {
  constexpr int kMostOperations = 16;
  constexpr jint kReferencesEach = 3;  // a key's string, the key, and the value
  constexpr jint kOthers = 16;         // other references, which their ScopedLocalRefs free
  if (mFrame && mOperations < kMostOperations) {
    ++mOperations;
    return true;
  }
  mFrame.reset();
  mFrame.emplace(mParser.mEnv, kMostOperations * kReferencesEach + kOthers);
  mOperations = 1;
  if (!*mFrame) mFrame.reset();
  return mFrame.has_value();
}

void CameraMetadataParser::checkFramesOnce(const std::vector<jobject>& captureResults,
                                           const std::vector<jobject>& compositions) {
  mCaptureResults.reset(captureResults);
  mCompositions.reset(compositions);
}

CameraMetadataParser::RepeatedTag::RepeatedTag(CameraMetadataParser& parser, const char* tag)
    : mParser(parser), mPause(parser), mTag(tag), mOuter(parser.mRepeatedTag), mObjects(parser.mEnv) {
  parser.mRepeatedTag = this;
}

// Returns the objects cached for the key, else `fresh`.
CameraMetadataParser::KeyObjects& CameraMetadataParser::keyObjects(std::string_view key, KeyObjects& fresh) {
  for (RepeatedTag* tag = mRepeatedTag; tag != nullptr; tag = tag->mOuter) {
    if (tag->mTag == key) return tag->mObjects;
  }
  return fresh;
}

bool CameraMetadataParser::isComposition(jobject parameter) {
  return parameter != nullptr && mCompositions.isInstance(mEnv, parameter, mClazzCaptureResultComposition);
}

jobject CameraMetadataParser::getMetadataObjectFromCaptureResult(jobject captureResult, const char* key,
                                                                 jclass valueClass) {
  return find(mEnv, captureResult, nullptr, key, valueClass);
}

jobject CameraMetadataParser::getMetadataObjectFromOrluAlgorithmParameter(jobject parameter, const char* key,
                                                                          jclass /*valueClass*/) {
  return find(mEnv, parameter, key);
}

jobject CameraMetadataParser::getMetadataObjectFromCaptureResult(jobject captureResult, jobject parameter,
                                                                 const char* key, jclass valueClass) {
  return find(mEnv, captureResult, parameter, key, valueClass);
}

// Looks up a value for a getter. The returned ScopedLocalRef frees the reference, except in a batch, which
// frees its references itself.
ScopedLocalRef<> CameraMetadataParser::ask(jobject captureResult, jobject parameter, const char* key,
                                           jclass valueClass) {
  JNIEnv* const owner = referenceOwner();
  return {owner, find(owner, captureResult, parameter, key, valueClass)};
}

ScopedLocalRef<> CameraMetadataParser::ask(jobject parameter, const char* key) {
  JNIEnv* const owner = referenceOwner();
  return {owner, find(owner, parameter, key)};
}

jobject CameraMetadataParser::find(JNIEnv* owner, jobject captureResult, jobject parameter, const char* key,
                                   jclass valueClass) {
  if (mEnv == nullptr || (captureResult == nullptr && parameter == nullptr)) return nullptr;
  KeyObjects fresh(owner);
  KeyObjects& objects = mRepeatedTag == nullptr ? fresh : keyObjects(key, fresh);
  if (!objects.name) objects.name.reset(newName(key));
  if (mMethodGetMetadata != nullptr && isComposition(parameter)) {
    jobject value = askComposition(parameter, objects.name.get(), key);
    if (value != nullptr) return value;
  }
  return askTyped({mClazzCaptureResult, mClazzKey, mConstructorKey, mMethodGet}, captureResult, objects, key,
                  valueClass, "getMetadataObjectFromCaptureResult");
}

jobject CameraMetadataParser::find(JNIEnv* owner, jobject parameter, const char* key) {
  if (mMethodGetMetadata == nullptr || !isComposition(parameter)) return nullptr;
  const ScopedLocalRef<jstring> name(owner, newName(key));
  return askComposition(parameter, name.get(), key);
}

jobject CameraMetadataParser::getMetadataObjectFromCharacteristics(jobject characteristics, const char* key,
                                                                   jclass valueClass) {
  if (mEnv == nullptr || characteristics == nullptr) return nullptr;
  KeyObjects objects(mEnv);
  objects.name.reset(newName(key));
  return askTyped({mClazzCameraCharacteristics, mClazzCharacteristicsKey, mCharacteristicsConstructorKey,
                   mMethodCharacteristicsGet},
                  characteristics, objects, key, valueClass, __func__);
}

// Returns the key as a Java string; null if the VM has no memory for it.
jstring CameraMetadataParser::newName(const char* key) {
  return clearIfNull(mEnv, mEnv->NewStringUTF(key));
}

jobject CameraMetadataParser::askComposition(jobject parameter, jstring name, const char* key) {
  if (name == nullptr) return nullptr;
  return unlessThrown(mEnv->CallObjectMethod(parameter, mMethodGetMetadata, name), key,
                      "getMetadataObjectFromOrluAlgorithmParameter");
}

// Looks up a key in `object`. Returns null if `object` is not an instance of the source's class.
jobject CameraMetadataParser::askTyped(const TypedSource& source, jobject object, KeyObjects& objects,
                                       const char* key, jclass valueClass, const char* operation) {
  if (source.keyClass == nullptr || source.keyConstructor == nullptr || source.get == nullptr ||
      valueClass == nullptr || object == nullptr) {
    return nullptr;
  }
  const bool isOfClass = source.clazz == mClazzCaptureResult
                             ? mCaptureResults.isInstance(mEnv, object, source.clazz)
                             : isInstance(mEnv, object, source.clazz);
  if (!isOfClass) return nullptr;
  if (!objects.name) return nullptr;
  if (!objects.typed || objects.valueClass != valueClass) {
    objects.typed.reset(
        mEnv->NewObject(source.keyClass, source.keyConstructor, objects.name.get(), valueClass));
    objects.valueClass = valueClass;
  }
  if (!objects.typed) return unlessThrown(nullptr, key, operation);
  return unlessThrown(mEnv->CallObjectMethod(object, source.get, objects.typed.get()), key, operation);
}

// Returns `value`. If Java threw, logs a line that names the operation and returns null.
jobject CameraMetadataParser::unlessThrown(jobject value, const char* key, const char* operation) {
  if (!clearException(mEnv)) return value;
  LOGE_AS(operation, "get %s is null", key);
  return nullptr;
}

// Calls a method without arguments. Returns a new local reference, or null if it can't be called or throws.
jobject CameraMetadataParser::callObject(jobject object, jmethodID method) {
  if (object == nullptr || method == nullptr) return nullptr;
  jobject result = mEnv->CallObjectMethod(object, method);
  return clearException(mEnv) ? nullptr : result;
}

// ---- Serialising

std::vector<uint8_t> CameraMetadataParser::getMetadata(jobject captureResult) {
  if (captureResult == nullptr || mEnv == nullptr) {
    LOGE("get metadata failed, input is null");
    return {};
  }
  jfieldID results = nullptr;
  if (isInstance(mEnv, captureResult, mClazzCaptureResult)) {
    results = clearIfNull(mEnv, mEnv->GetFieldID(mClazzCaptureResult, "mResults",
                                                 "Landroid/hardware/camera2/impl/CameraMetadataNative;"));
  }
  if (results == nullptr) LOGE("cameraNativeFiled is null");
  ScopedLocalRef<> native(mEnv, results == nullptr ? nullptr : mEnv->GetObjectField(captureResult, results));
  if (!native) LOGE("camerametadataNative is null");
  ScopedLocalRef<> parcel(mEnv, parcelOf(native.get()));
  if (!parcel) LOGE("parcel is null");
  ScopedLocalRef<jbyteArray> bytes(mEnv,
                                   static_cast<jbyteArray>(callObject(parcel.get(), mMethodParcelMarshall)));
  if (!bytes) {
    LOGE("metadata is null");
    return {};
  }
  const ScopedElements<jbyte> elements(mEnv, bytes.get());
  std::vector<uint8_t> result(static_cast<size_t>(elements.length()));
  elements.copyTo(result.data(), elements.length());
  return result;
}

// Returns a parcel with the camera metadata; an empty parcel if the metadata can't be written. Returns null
// if the parcel can't be obtained.
jobject CameraMetadataParser::parcelOf(jobject cameraMetadata) {
  if (mMethodParcelObtain == nullptr) return nullptr;
  jobject parcel = mEnv->CallStaticObjectMethod(mClazzParcel, mMethodParcelObtain);
  if (clearException(mEnv) || parcel == nullptr) return nullptr;
  if (mMethodPushAllowFds != nullptr) {
    mEnv->CallBooleanMethod(parcel, mMethodPushAllowFds, static_cast<jboolean>(JNI_FALSE));
    clearException(mEnv);
  }
  if (mMethodWriteToParcel != nullptr && isInstance(mEnv, cameraMetadata, mClazzCameraMetadataNative)) {
    mEnv->CallVoidMethod(cameraMetadata, mMethodWriteToParcel, parcel, 0);
    clearException(mEnv);
  }
  return parcel;
}

}  // namespace orlu
