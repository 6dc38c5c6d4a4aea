// The rows of parameter translation: "read a tag of this type, write it under this section and key". The type
// is named once; its getter and its size follow from it. For the metadata_updater files alone.
//
//   copy<int32_t>("orlu.control.bokeh_facula", kControl, "bokeh_facula_capture");
//   copy<Floats<22>>("orlu.control.some_array", kSystem, "some_array");
//   keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

#include "algo_interface.h"
#include "algo_list.h"
#include "metadata_updater.h"

namespace orlu {

// The exposure control that the camera attaches to each frame, by element.
enum AecElement : size_t {
  kAecLuxIndex = 0,
  kAecExposureIndex = 1,
  kAecRealGain = 2,
  kAecSafeGain = 3,
  kAecLongGain = 4,
  kAecSensorGain = 5,
  kAecAdrcGain = 6,
  kAecDarkBoostGain = 7,
  kAecIspGain = 8,
  kAecShortSensitivity = 9,
  kAecSafeSensitivity = 10,
  kAecLongSensitivity = 11,
  kAecSensorGainShort = 12,
  kAecIspGainShort = 13,
  kAecExposureTime = 14,  // nanoseconds
  kAecSensorGainNormal = 15,
  kAecIspGainNormal = 16,
  kAecExposureTimeNormal = 17,  // nanoseconds
  kAecAdrcGainNormal = 18,
  kAecExposureSensitivityRatio = 19,
  kAecExposureTimeRatio = 20,
  kAecExposureGainRatio = 21,
  kAecSize = 22
};
static_assert(std::tuple_size_v<Aec> == kAecSize);
constexpr char kAecTag[] = "orlu.control.Orlu3rdAlgoAECFrameControl";
constexpr char kFrameModeTag[] = "orlu.control.currentModeEx";
constexpr float kNanosecondsPerMillisecond = 1'000'000.0F;

// The tag of the few lines that are written whatever the log level.
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

// Float to integer as the ARM instruction converts: saturating, NaN to 0.
int32_t toInt(float value);

// Reads a tag from a frame into `value`, which stays as it is when the tag is absent. 0, or -1 when it is.
template <typename T>
int MetadataUpdater::read(T& value, const char* tag, const Frame& frame) {
  return mTags.read(frame, tag, value);
}

// The same from the first frame.
template <typename T>
int MetadataUpdater::read(T& value, const char* tag) {
  return read(value, tag, firstFrame());
}

// The tag's value, or `initial` when it is absent.
template <typename T>
T MetadataUpdater::readOr(T initial, const char* tag, const Frame& frame) {
  read(initial, tag, frame);
  return initial;
}

// Writes all bytes of `value`.
template <typename T>
void MetadataUpdater::write(const char* section, const char* key, const T& value) {
  mParameters.set<T>(section, key, value);
}

// Reads a parameter back; `initial` when it is not set.
template <typename T>
T MetadataUpdater::readBack(const char* section, const char* key, T initial) {
  return mParameters.get<T>(section, key, initial);
}

// Row: a tag of a frame becomes a parameter, zero when it is absent. Answers the value.
template <typename T>
T MetadataUpdater::copy(const Frame& frame, const char* tag, const char* section, const char* key) {
  T value = T();
  keep(value, frame, tag, section, key);
  return value;
}

// The same from the first frame.
template <typename T>
T MetadataUpdater::copy(const char* tag, const char* section, const char* key) {
  return copy<T>(firstFrame(), tag, section, key);
}

// Row: the same through a member (or a variable), which keeps its value when the tag is absent.
template <typename T>
void MetadataUpdater::keep(T& member, const Frame& frame, const char* tag, const char* section,
                           const char* key) {
  read(member, tag, frame);
  write(section, key, member);
}

template <typename T>
void MetadataUpdater::keep(T& member, const char* tag, const char* section, const char* key) {
  keep(member, firstFrame(), tag, section, key);
}

// Whether the algorithm list holds a name that begins with this literal.
template <size_t N>
bool MetadataUpdater::listHas(const char (&name)[N]) const {
  return isAlgoListContains(*mAlgoList, name);
}

}  // namespace orlu
