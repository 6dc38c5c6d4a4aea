// Native mirror of one Java request: its images as frame records, its capture results, and the Java objects
// that receive the results. Valid only in the JNI call that created it, because it keeps local references.
// Owns the descriptors that it duplicated from shared memory.
#pragma once

#include <jni.h>

#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu {

class VRequest {
public:
  // Log tag of this class and of printImageInfo().
  static constexpr char kLogTag[] = "_V_VASJNI-VRequest";

  // Reads four Java objects, any of which may be null: the request and its lists of input VImageIPCs, output
  // VImageIPCs and CaptureResultCompositions. Unreadable values stay zero or null; most are logged.
  VRequest(JNIEnv* env, jobject request, jobject inputList, jobject outputList, jobject captureResultList);
  VRequest(const VRequest&) = delete;
  VRequest& operator=(const VRequest&) = delete;
  // Closes the descriptors duplicated from shared memory. Hardware buffers own their descriptors.
  virtual ~VRequest();

  int64_t requestId() const { return mRequestId; }
  const std::string& requestType() const { return mRequestType; }
  // True for a request that finishes a series of shots: its type begins with "stopProcess".
  bool isStopProcess() const;
  const std::vector<AlgoFrameInfo>& inputFrames() const { return mInputFrames; }
  const std::vector<AlgoFrameInfo>& outputFrames() const { return mOutputFrames; }
  std::vector<AlgoFrameInfo>& outputFrames() { return mOutputFrames; }
  // Both lists have one entry per frame, in the same order: a borrowed reference, or null if Java gave no
  // object.
  const std::vector<jobject>& captureResultCompositions() const { return mCaptureResultCompositions; }
  const std::vector<jobject>& captureResults() const { return mCaptureResults; }
  // The first frame's composition, or null if there is none.
  jobject firstComposition() const;

  // The next three functions are the parts of the constructor.

  // Resolves the classes and members that the other parts use, and logs each missing one. Returns 0 if
  // everything was found, else -1; the other parts still work.
  int initFromEnv(JNIEnv* env);
  void getRequestInfo(jobject request);
  // Call once. `request` is only logged.
  void getImageData(jobject request, jobject inputList, jobject outputList, jobject captureResultList);

  // Helpers of these parts. They log null arguments. If Java throws, they return the same values as for null.
  // Returned objects are new local references.

  // Returns the contents of a java.lang.String; empty for null.
  std::string convertJavaString(jobject string);
  // Returns the composition's stored capture result. If there is none, calls assembleResultComposition() and
  // stores the result. Returns null for a null composition.
  jobject getCaptureResult(jobject composition);
  // Returns the list's size, at most 1024; 0 for null and for objects other than lists.
  int getListSize(jobject list);
  // The caller must have checked the class of `list` with getListSize(). Returns null for a negative index.
  jobject getListElement(jobject list, int index);
  // Copies at most `count` elements; values beyond the array's length are unchanged.
  void getIntArray(int32_t* values, int count, jintArray array);
  // Converts a VImageIPC to a frame record, in which values that can't be read are zero. Sets
  // `usedSharedMemory` to 1 if the frame's file descriptor is a duplicate that the caller must close, else to
  // 0. Leaves it unchanged if `image` is not a VImageIPC. For a hardware buffer, fills in `handle`, which
  // must outlive the frame.
  AlgoFrameInfo convertVImageIPC(jobject image, int& usedSharedMemory, AlgoNativeHandle* handle);

  // Write a property of output image `index` into its frame record and its Java descriptor. An index
  // without an output image is logged and ignored.
  void setResultJpegSize(int size, int index);  // bytes
  void setResultImageWH(int width, int height, int index);
  void setResultImageFormat(int format, const char* formatName, int index);

private:
  static constexpr char kShortLogTag[] = "VASJNI-VRequest";

  struct Table;  // rows: the classes and members that initFromEnv() caches
  friend struct Table;

  // vrequest.cpp
  void getImages(jobject list, const char* label, std::vector<AlgoFrameInfo>& frames,
                 std::vector<jobject>& objects, std::vector<int>& sharedMemoryFlags,
                 std::vector<AlgoNativeHandle>& handles);
  void getCaptureResults(jobject list);
  bool isResultIndex(int index) const;

  // vrequest_image.cpp
  void readGeometry(AlgoFrameInfo& frame, jobject image);
  void readFormat(AlgoFrameInfo& frame, jobject image, const char* operation);
  bool attachMemory(AlgoFrameInfo& frame, jobject image, int& usedSharedMemory, AlgoNativeHandle* handle);
  bool attachHardwareBuffer(AlgoFrameInfo& frame, jobject hardwareBuffer, AlgoNativeHandle* handle);
  // Returns the field's object as a new local reference; null if the field could not be resolved.
  template <typename T>
  T objectField(jobject image, jfieldID field) {
    return field == nullptr ? nullptr : static_cast<T>(mEnv->GetObjectField(image, field));
  }

  int64_t mRequestId = 0;
  std::string mRequestType;
  std::vector<AlgoFrameInfo> mInputFrames;
  std::vector<AlgoFrameInfo> mOutputFrames;
  std::vector<jobject> mCaptureResultCompositions;
  std::vector<jobject> mCaptureResults;
  std::vector<jobject> mInputImages;
  std::vector<jobject> mOutputImages;
  std::vector<AlgoNativeHandle> mInputHandles;
  std::vector<AlgoNativeHandle> mOutputHandles;
  std::vector<int> mInputSharedMemoryFlags;  // 1: VRequest owns the frame's descriptors
  std::vector<int> mOutputSharedMemoryFlags;

  JNIEnv* mEnv = nullptr;
  jclass mClazzList = nullptr;
  jmethodID mMethodGetListElement = nullptr;
  jmethodID mMethodListSize = nullptr;
  jclass mClazzVImageIPC = nullptr;
  jfieldID mFieldVImageIPCFormat = nullptr;
  jfieldID mFieldVImageIPCWidth = nullptr;
  jfieldID mFieldVImageIPCHeight = nullptr;
  jfieldID mFieldVImageIPCRowStrides = nullptr;
  jfieldID mFieldVImageIPCPlaneSizes = nullptr;
  jfieldID mFieldVImageIPCDataShmem = nullptr;
  jfieldID mFieldVImageIPCDataHwbuff = nullptr;
  jclass mClazzVRequest = nullptr;
  jmethodID mMethodGetRequestId = nullptr;
  jmethodID mMethodGetRequestType = nullptr;
  jclass mClazzCaptureResultCommposition = nullptr;
  jmethodID mMethodAssembleResultComposition = nullptr;
  jclass mClazzString = nullptr;
  jmethodID mMethodStringLength = nullptr;
  jfieldID mFieldCaptureResult = nullptr;
  // Local references reserved for this call. Some VMs count a reservation from the start of the call, so each
  // new reservation must include the earlier ones.
  jint mReservedReferences = 0;
};

}  // namespace orlu
