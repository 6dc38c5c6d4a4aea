// Converts one Java image descriptor to one frame record.

#include <android/hardware_buffer_jni.h>
#include <android/sharedmem_jni.h>
#include <vndk/hardware_buffer.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "arithmetic.h"
#include "image_format.h"
#include "jni_support.h"
#include "log.h"
#include "starts_with.h"
#include "vrequest.h"

namespace orlu {
namespace {

int32_t product(int32_t a, int32_t b, int32_t divisor = 1) {
  return saturated(int64_t{a} * b / divisor);
}

int32_t twoBytesPerPixel(const AlgoFrameInfo& frame) {
  return product(product(frame.width, frame.height), 2);
}

// Classifies an image by its format name from Java: finds the known name with which the format name begins.
// Skips known names longer than the format name.
class FormatClassifier {
public:
  FormatClassifier(AlgoFrameInfo& frame, const char* name, size_t length)
      : mFrame(frame), mName(name), mLength(length) {}

  // Returns false if the name is unknown; the format then stays 0 and the image has one plane.
  bool classify() {
    mFrame.planeCount = 1;
    if (mLength < 4) return false;
    if (begins("NV21")) return yuv(kFormatNv21);
    // Oddity 2: YV12 and YU12 data count as NV12.
    if (begins("NV12") || begins("YU12") || begins("YV12")) return yuv(kFormatNv12);
    if (mLength >= 10) {
      if (begins("MIPI_RAW10")) return mipiRaw10();
      if (begins("MIPI_RAW12")) return format(kFormatMipiRaw12);
      if (begins("RAW16")) return raw16();
      if (begins("RAW_SENSOR")) return rawSensor();
    } else if (mLength >= 5 && begins("RAW16")) {
      return raw16();
    }
    if (begins("JPEG")) return format(kFormatJpeg);
    if (mLength >= 8 && begins("R8G8B8A8")) return format(kFormatRgba8888);
    return false;
  }

private:
  bool begins(const char* prefix) const { return startsWith(mName, prefix); }
  bool format(AlgoImageFormat code) {
    mFrame.format = code;
    return true;
  }
  bool yuv(AlgoImageFormat code) {
    mFrame.planeCount = 2;
    return format(code);
  }
  bool mipiRaw10() {
    mFrame.planeSize[0] = std::max(product(mFrame.stride[0], mFrame.height), mFrame.planeSize[0]);
    return format(kFormatMipiRaw10);
  }
  // Oddity 3: RAW16's stride becomes the width, in pixels instead of bytes.
  bool raw16() {
    mFrame.stride[0] = mFrame.width;
    return rawSensor();
  }
  // RAW_SENSOR keeps its stride (Oddity 3).
  bool rawSensor() {
    mFrame.planeSize[0] = std::max(twoBytesPerPixel(mFrame), mFrame.planeSize[0]);
    return format(kFormatRaw16);
  }

  AlgoFrameInfo& mFrame;
  const char* mName;
  size_t mLength;
};

int32_t sumOfPlanes(const AlgoFrameInfo& frame) {
  int64_t sum = 0;
  for (int i = 0; i < frame.planeCount; ++i) sum += frame.planeSize[i];
  return saturated(sum);
}

// Returns the number of words in a platform handle; 0 if its counts are invalid.
int64_t wordCount(const native_handle_t& handle) {
  return handle.numFds < 0 || handle.numInts < 0 ? 0 : int64_t{handle.numFds} + handle.numInts;
}

// Copies a platform handle. If it has kCapacity words or more, copies only the version and the counts.
void copyHandle(const native_handle_t& from, AlgoNativeHandle& to) {
  to.version = from.version;
  to.numFds = from.numFds;
  to.numInts = from.numInts;
  const int64_t bytes = wordCount(from) * static_cast<int64_t>(sizeof(int32_t));
  if (bytes < static_cast<int64_t>(sizeof to.data))
    std::memcpy(to.data, from.data, static_cast<size_t>(bytes));
  std::swap(to.data[0], to.data[1]);  // Oddity 5
}

// Returns the handle's second word, the descriptor of the pixels (Oddity 5); -1 for a shorter handle.
int32_t pixelDescriptor(const native_handle_t& handle) {
  return wordCount(handle) >= 2 ? handle.data[1] : -1;
}

// Computes the chroma size if Java sent none, and the luma size if Java's is at least the size of the
// image's entire memory.
void fixNvPlanes(AlgoFrameInfo& frame) {
  if (frame.planeSize[1] <= 0) frame.planeSize[1] = product(frame.stride[0], frame.scanline[0], 2);
  if (frame.planeSize[0] >= frame.fdSize[0]) frame.planeSize[0] = product(frame.stride[0], frame.scanline[0]);
}

}  // namespace

AlgoFrameInfo VRequest::convertVImageIPC(jobject image, int& usedSharedMemory, AlgoNativeHandle* handle) {
  AlgoFrameInfo frame;
  if (!isInstance(mEnv, image, mClazzVImageIPC)) {
    LOGE("convert image failed, input is null");
    return frame;
  }
  readGeometry(frame, image);
  readFormat(frame, image, __func__);
  frame.scanline[0] = frame.height;
  frame.size = sumOfPlanes(frame);  // before fixNvPlanes(): Oddity 6
  usedSharedMemory = 0;
  if (!attachMemory(frame, image, usedSharedMemory, handle)) {
    LOGE("convert image failed, invalid image data");
  }
  if (frame.format == kFormatNv21 || frame.format == kFormatNv12) fixNvPlanes(frame);
  return frame;
}

void VRequest::readGeometry(AlgoFrameInfo& frame, jobject image) {
  if (mFieldVImageIPCWidth != nullptr) frame.width = mEnv->GetIntField(image, mFieldVImageIPCWidth);
  if (mFieldVImageIPCHeight != nullptr) frame.height = mEnv->GetIntField(image, mFieldVImageIPCHeight);
  ScopedLocalRef<jintArray> strides(mEnv, objectField<jintArray>(image, mFieldVImageIPCRowStrides));
  getIntArray(frame.stride, kMaxPlanes, strides.get());
  ScopedLocalRef<jintArray> sizes(mEnv, objectField<jintArray>(image, mFieldVImageIPCPlaneSizes));
  getIntArray(frame.planeSize, kMaxPlanes, sizes.get());
}

void VRequest::readFormat(AlgoFrameInfo& frame, jobject image, const char* operation) {
  const ScopedLocalRef<jstring> format(mEnv, objectField<jstring>(image, mFieldVImageIPCFormat));
  jint length = 0;
  if (format && mMethodStringLength != nullptr) {
    length = mEnv->CallIntMethod(format.get(), mMethodStringLength);
    clearException(mEnv);
  }
  const ScopedUtfChars chars(mEnv, mMethodStringLength == nullptr ? nullptr : format.get());
  // A null name counts as empty.
  const char* const name = chars.get() == nullptr ? "" : chars.get();
  if (!FormatClassifier(frame, name, chars.get() == nullptr ? 0 : static_cast<size_t>(length)).classify()) {
    LOGE_AS(operation, "unknown format %s", name);
  }
}

// Returns false if the image has no memory.
bool VRequest::attachMemory(AlgoFrameInfo& frame, jobject image, int& usedSharedMemory,
                            AlgoNativeHandle* handle) {
  const ScopedLocalRef<> sharedMemory(mEnv, objectField<jobject>(image, mFieldVImageIPCDataShmem));
  const ScopedLocalRef<> hardwareBuffer(mEnv, objectField<jobject>(image, mFieldVImageIPCDataHwbuff));
  if (!sharedMemory) return hardwareBuffer && attachHardwareBuffer(frame, hardwareBuffer.get(), handle);
  frame.fd[0] = ASharedMemory_dupFromJava(mEnv, sharedMemory.get());
  frame.fdCount = 1;
  frame.fdSize[0] = saturated(static_cast<int64_t>(
      std::min<size_t>(ASharedMemory_getSize(frame.fd[0]), std::numeric_limits<int32_t>::max())));
  usedSharedMemory = 1;
  return true;
}

// Returns false if the buffer has no handle, for example after it was closed.
bool VRequest::attachHardwareBuffer(AlgoFrameInfo& frame, jobject hardwareBuffer, AlgoNativeHandle* handle) {
  const AHardwareBuffer* buffer = AHardwareBuffer_fromHardwareBuffer(mEnv, hardwareBuffer);
  const native_handle_t* native = buffer == nullptr ? nullptr : AHardwareBuffer_getNativeHandle(buffer);
  if (native == nullptr) return false;
  frame.fd[0] = pixelDescriptor(*native);
  copyHandle(*native, *handle);
  frame.nativeHandle = handle;
  frame.fdCount = 1;
  frame.fdSize[0] = frame.size;
  return true;
}

}  // namespace orlu
