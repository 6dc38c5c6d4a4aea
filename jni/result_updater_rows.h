// The two forms of the result updater's rows. Included only by the updater's own files.
//
//   copy<int32_t>(kFeedback, "hdr_choosed_frame", "orlu.feedback.hdrChoosedFrame", -1);
//   put<Floats<2>>(lastFrame, "orlu.feedback.rawhdrISPAEParams", gains);
//
// copy passes a parameter on unchanged. To change or log it first, use the channel's get, then put. The
// caller names the type, which determines how many bytes are read and which Java class is stored.
#pragma once

#include <type_traits>
#include <vector>

#include "algo_interface.h"
#include "algo_list.h"
#include "result_updater.h"

namespace orlu {

// Overloads that pass a value to the parser's putter for the value's type.
namespace putter {

using P = CameraMetadataParser;

inline int put(P& p, int32_t v, const char* key, jobject c) {
  return p.putInt(v, key, c);
}
inline int put(P& p, int64_t v, const char* key, jobject c) {
  return p.putLong(v, key, c);
}
inline int put(P& p, float v, const char* key, jobject c) {
  return p.putFloat(v, key, c);
}
template <size_t N>
int put(P& p, const Ints<N>& v, const char* key, jobject c) {
  return p.putIntArray(v.data(), static_cast<int>(N), key, c);
}
template <size_t N>
int put(P& p, const Floats<N>& v, const char* key, jobject c) {
  return p.putFloatArray(v.data(), static_cast<int>(N), key, c);
}
inline int put(P& p, const FrameValues<int64_t>& v, const char* key, jobject c) {
  return p.putLongArray(v.data(), static_cast<int>(v.size()), key, c);
}
inline int put(P& p, const FrameValues<double>& v, const char* key, jobject c) {
  return p.putDoubleArray(v.data(), static_cast<int>(v.size()), key, c);
}

}  // namespace putter

template <size_t N>
bool ResultUpdater::listHas(const char (&name)[N]) const {
  return isAlgoListContains(mAlgoList, name);
}

template <typename T>
int ResultUpdater::put(const Frame& frame, const char* resultKey, const std::common_type_t<T>& value) {
  return hasComposition() ? putter::put(*mParser, value, resultKey, frame.composition) : 0;
}

template <typename T>
int ResultUpdater::put(const char* resultKey, const std::common_type_t<T>& value) {
  return put<T>(mTags.frames().first(), resultKey, value);
}

template <typename T>
T ResultUpdater::copy(const char* section, const char* key, const char* resultKey,
                      std::common_type_t<T> initial) {
  const T value = mChannel.get<T>(section, key, initial);
  put<T>(resultKey, value);
  return value;
}

}  // namespace orlu
