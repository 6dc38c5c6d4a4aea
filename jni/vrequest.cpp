#include "vrequest.h"

#include <unistd.h>

#include <algorithm>

#include "image_format.h"
#include "jni_member_table.h"
#include "jni_support.h"
#include "log.h"
#include "starts_with.h"

namespace orlu {
namespace {

// Local references to the cached classes, plus spare room for temporary lookups.
constexpr jint kLocalReferences = 32;

// Closes the descriptors that were duplicated from shared memory. Those of hardware buffers are not owned.
void closeOwned(const std::vector<AlgoFrameInfo>& frames, const std::vector<int>& sharedMemoryFlags) {
  for (size_t i = 0; i < frames.size(); ++i) {
    if (sharedMemoryFlags[i] == 0) continue;
    for (int k = 0; k < std::min(frames[i].fdCount, kMaxPlanes); ++k) close(frames[i].fd[k]);
  }
}

}  // namespace

// The cached classes and members, in the order of resolution: each class, then its members.
struct VRequest::Table {
  using Row = JniMember<VRequest>;

#define CLASS(name, slot) jniClass<VRequest>(name, &VRequest::slot, #slot)
#define METHOD(name, signature, slot) jniMethod<VRequest>(name, signature, &VRequest::slot, #slot)
#define FIELD(name, signature, slot) jniField<VRequest>(name, signature, &VRequest::slot, #slot)
  // clang-format off
  static constexpr Row kRows[] = {
      CLASS("java/util/List", mClazzList),
      METHOD("get", "(I)Ljava/lang/Object;", mMethodGetListElement),
      METHOD("size", "()I", mMethodListSize),
      CLASS("com/orlu/orlu3rdalgoservice/datastruct/VImageIPC", mClazzVImageIPC),
      FIELD("mFormat", "Ljava/lang/String;", mFieldVImageIPCFormat),
      FIELD("mWidth", "I", mFieldVImageIPCWidth),
      FIELD("mHeight", "I", mFieldVImageIPCHeight),
      FIELD("mRowStrides", "[I", mFieldVImageIPCRowStrides),
      FIELD("mPlaneSizes", "[I", mFieldVImageIPCPlaneSizes),
      FIELD("mImageDataShmem", "Landroid/os/SharedMemory;", mFieldVImageIPCDataShmem),
      FIELD("mImageDataHwbuff", "Landroid/hardware/HardwareBuffer;", mFieldVImageIPCDataHwbuff),
      CLASS("com/orlu/orlu3rdalgoservice/datastruct/VRequest", mClazzVRequest),
      METHOD("getRequestId", "()J", mMethodGetRequestId),
      METHOD("getRequestType", "()Ljava/lang/String;", mMethodGetRequestType),
      CLASS("com/orlu/orlu3rdalgoservice/CaptureResultComposition", mClazzCaptureResultCommposition),
      METHOD("assembleResultComposition", "()Landroid/hardware/camera2/CaptureResult;",
             mMethodAssembleResultComposition),
      FIELD("mCaptureResult", "Landroid/hardware/camera2/CaptureResult;", mFieldCaptureResult)
          .with(Row::kBareTag),
      CLASS("java/lang/String", mClazzString),
      // Oddity 10.
      METHOD("length", "()I", mMethodStringLength).reportedAs("mMethodGetListElement"),
  };
  // clang-format on
#undef CLASS
#undef METHOD
#undef FIELD
};

VRequest::VRequest(JNIEnv* env, jobject request, jobject inputList, jobject outputList,
                   jobject captureResultList) {
  initFromEnv(env);  // logs the missing members
  getRequestInfo(request);
  getImageData(request, inputList, outputList, captureResultList);
}

VRequest::~VRequest() {
  closeOwned(mInputFrames, mInputSharedMemoryFlags);
  closeOwned(mOutputFrames, mOutputSharedMemoryFlags);
}

bool VRequest::isStopProcess() const {
  return startsWith(mRequestType.c_str(), "stopProcess");
}

jobject VRequest::firstComposition() const {
  return mCaptureResultCompositions.empty() ? nullptr : mCaptureResultCompositions.front();
}

int VRequest::initFromEnv(JNIEnv* env) {
  mEnv = env;
  if (mEnv == nullptr) {
    LOGE("mEnv is null");
    return -1;
  }
  mReservedReferences = kLocalReferences;
  reserveLocalReferences(mEnv, mReservedReferences);
  JniMemberWalk<VRequest> walk(mEnv, *this, LOG_PLACE, kShortLogTag);
  walk.resolve(Table::kRows);
  return walk.result();
}

void VRequest::getRequestInfo(jobject request) {
  ScopedLocalRef<> type(mEnv, nullptr);
  if (isInstance(mEnv, request, mClazzVRequest)) {
    if (mMethodGetRequestId != nullptr) {
      mRequestId = mEnv->CallLongMethod(request, mMethodGetRequestId);
      if (clearException(mEnv)) mRequestId = 0;
    }
    if (mMethodGetRequestType != nullptr) {
      type.reset(mEnv->CallObjectMethod(request, mMethodGetRequestType));
      clearException(mEnv);
    }
  }
  mRequestType = convertJavaString(type.get());
  LOGD("request info: reqId = %lld, reqType %s", static_cast<long long>(mRequestId), mRequestType.c_str());
}

void VRequest::getImageData(jobject request, jobject inputList, jobject outputList,
                            jobject captureResultList) {
  LOGD("get image data %p %p %p %p", static_cast<void*>(request), static_cast<void*>(inputList),
       static_cast<void*>(outputList), static_cast<void*>(captureResultList));
  getImages(inputList, "in", mInputFrames, mInputImages, mInputSharedMemoryFlags, mInputHandles);
  getImages(outputList, "out", mOutputFrames, mOutputImages, mOutputSharedMemoryFlags, mOutputHandles);
  getCaptureResults(captureResultList);
  LOGD("start process received in img num %d, out img num %d, captureResultNum %d",
       static_cast<int>(mInputFrames.size()), static_cast<int>(mOutputFrames.size()),
       static_cast<int>(mCaptureResults.size()));
}

void VRequest::getImages(jobject list, const char* label, std::vector<AlgoFrameInfo>& frames,
                         std::vector<jobject>& objects, std::vector<int>& sharedMemoryFlags,
                         std::vector<AlgoNativeHandle>& handles) {
  const int count = getListSize(list);
  const auto size = static_cast<size_t>(count);
  frames.resize(size);
  objects.resize(size, nullptr);
  sharedMemoryFlags.resize(size, 0);
  handles.resize(size);
  for (int i = 0; i < count; ++i) {
    const auto k = static_cast<size_t>(i);
    objects[k] = getListElement(list, i);
    frames[k] = convertVImageIPC(objects[k], sharedMemoryFlags[k], &handles[k]);
    printImageInfo(frames[k], label, i, sharedMemoryFlags[k]);
  }
}

void VRequest::getCaptureResults(jobject list) {
  const int count = getListSize(list);
  mCaptureResultCompositions.resize(static_cast<size_t>(count), nullptr);
  mCaptureResults.resize(static_cast<size_t>(count), nullptr);
  for (int i = 0; i < count; ++i) {
    const auto k = static_cast<size_t>(i);
    mCaptureResultCompositions[k] = getListElement(list, i);
    mCaptureResults[k] = getCaptureResult(mCaptureResultCompositions[k]);
  }
}

std::string VRequest::convertJavaString(jobject string) {
  if (string == nullptr) {
    LOGE("convert jstring failed, input is null");
    return {};
  }
  const ScopedUtfChars chars(mEnv, static_cast<jstring>(string));
  return chars.get() == nullptr ? std::string() : chars.get();
}

jobject VRequest::getCaptureResult(jobject composition) {
  if (composition == nullptr || mMethodAssembleResultComposition == nullptr) {
    LOGE("get capture result failed, input is null %p %p", static_cast<void*>(composition),
         static_cast<void*>(mMethodAssembleResultComposition));
    return nullptr;
  }
  if (!isInstance(mEnv, composition, mClazzCaptureResultCommposition)) return nullptr;
  if (mFieldCaptureResult != nullptr) {
    jobject cached = mEnv->GetObjectField(composition, mFieldCaptureResult);
    if (cached != nullptr) return cached;
  }
  jobject assembled = mEnv->CallObjectMethod(composition, mMethodAssembleResultComposition);
  if (clearException(mEnv)) return nullptr;
  if (mFieldCaptureResult != nullptr) mEnv->SetObjectField(composition, mFieldCaptureResult, assembled);
  return assembled;
}

int VRequest::getListSize(jobject list) {
  // Callers read the list next and keep references: for example, to each composition and its capture result.
  constexpr jint kReferencesPerElement = 2;
  // A limit, because a hostile list may report any size, while each element costs memory and JNI calls. Real
  // lists are far shorter.
  constexpr jint kMostElements = 1024;
  if (mMethodListSize == nullptr || !isInstance(mEnv, list, mClazzList)) {
    LOGE("get list size failed, input is null");
    return 0;
  }
  const jint size = mEnv->CallIntMethod(list, mMethodListSize);
  if (clearException(mEnv) || size < 0) return 0;
  if (size > kMostElements) LOGE("list has %d elements, only the first %d are read", size, kMostElements);
  const jint count = std::min(size, kMostElements);
  mReservedReferences += kReferencesPerElement * count;
  reserveLocalReferences(mEnv, mReservedReferences);
  return count;
}

jobject VRequest::getListElement(jobject list, int index) {
  if (mMethodGetListElement == nullptr || list == nullptr) {
    // This spelling is intended (Oddity 49).
    LOGE("get list elemet failed, input is null");
    return nullptr;
  }
  if (index < 0) {
    LOGE("get list elemet failed, index < 0");
    return nullptr;
  }
  jobject element = mEnv->CallObjectMethod(list, mMethodGetListElement, static_cast<jint>(index));
  return clearException(mEnv) ? nullptr : element;
}

void VRequest::getIntArray(int32_t* values, int count, jintArray array) {
  if (array == nullptr) {
    LOGE("get int array failed, input is null");
    return;
  }
  ScopedElements<jint>(mEnv, array).copyTo(values, count);
}

bool VRequest::isResultIndex(int index) const {
  return index >= 0 && static_cast<size_t>(index) < mOutputFrames.size() &&
         static_cast<size_t>(index) < mOutputImages.size();
}

void VRequest::setResultJpegSize(int size, int index) {
  if (!isResultIndex(index)) {
    LOGE("set result jpeg size failed, index >= size");
    return;
  }
  const auto k = static_cast<size_t>(index);
  mOutputFrames[k].size = size;
  mOutputFrames[k].planeSize[0] = size;
  if (mFieldVImageIPCPlaneSizes == nullptr || !isInstance(mEnv, mOutputImages[k], mClazzVImageIPC)) return;
  ScopedLocalRef<jintArray> sizes(
      mEnv, static_cast<jintArray>(mEnv->GetObjectField(mOutputImages[k], mFieldVImageIPCPlaneSizes)));
  if (!sizes) return;
  const ScopedElements<jint> elements(mEnv, sizes.get());
  if (elements.get() == nullptr) return;
  if (elements.length() >= 1) elements.get()[0] = size;
  mEnv->SetIntArrayRegion(sizes.get(), 0, elements.length(), elements.get());
}

void VRequest::setResultImageWH(int width, int height, int index) {
  if (!isResultIndex(index)) {
    LOGE("set result image size failed, index >= size");
    return;
  }
  const auto k = static_cast<size_t>(index);
  mOutputFrames[k].width = width;
  mOutputFrames[k].height = height;
  if (!isInstance(mEnv, mOutputImages[k], mClazzVImageIPC)) return;
  if (mFieldVImageIPCWidth != nullptr) mEnv->SetIntField(mOutputImages[k], mFieldVImageIPCWidth, width);
  if (mFieldVImageIPCHeight != nullptr) mEnv->SetIntField(mOutputImages[k], mFieldVImageIPCHeight, height);
}

void VRequest::setResultImageFormat(int format, const char* formatName, int index) {
  if (!isResultIndex(index)) {
    LOGE("set result image format failed, index >= size");
    return;
  }
  const auto k = static_cast<size_t>(index);
  mOutputFrames[k].format = format;
  if (mFieldVImageIPCFormat == nullptr || !isInstance(mEnv, mOutputImages[k], mClazzVImageIPC)) return;
  const ScopedLocalRef<jstring> name(mEnv, clearIfNull(mEnv, mEnv->NewStringUTF(formatName)));
  if (!name) return;
  mEnv->SetObjectField(mOutputImages[k], mFieldVImageIPCFormat, name.get());
}

}  // namespace orlu
