// A request while its camera metadata is translated: the tags of its frames, its parameter set, its algorithm
// list and its images. Each row of the translation moves one tag to a parameter, in one of three ways:
//
//   copy   The tag becomes a parameter of the same type. If the frame lacks the tag, the parameter is zero.
//            shot.copy<int32_t>("orlu.control.bokeh_facula", kControl, "bokeh_facula_capture");
//   keep   Like copy, through a member variable. If the frame lacks the tag, the variable keeps its value,
//          which becomes the parameter.
//            shot.keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
//   read, change, write   For everything else: readOr(), or read() if the status matters; then write().
//            const auto gain = shot.readOr<int32_t>("orlu.feedback.analog_gain");
//            shot.write<float>(kParameter, "analog_gain", static_cast<float>(gain / 1024));
//
// Functions that only read are const: a step that takes a const Shot writes nothing. copy(), read() and
// readOr() accept the frame to read from as an additional first argument; the default is the first frame. The
// type named in a call selects the getter of the tag, the width of the parameter, or, in copy(), both.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "algo_interface.h"
#include "algo_list.h"
#include "exposure.h"
#include "image_format.h"
#include "parameter_channel.h"
#include "shot_tags.h"
#include "vrequest.h"

namespace orlu {

class Shot : public ShotTags {
  template <typename T>
  using Copied = std::conditional_t<(sizeof(T) > 1024), void, T>;

public:
  // Copies `parameters` and borrows the other arguments.
  Shot(CameraMetadataParser& parser, VRequest& request, std::vector<std::string>& algoList,
       const ParameterChannel& parameters)
      : ShotTags(parser, FrameList(request.captureResults(), request.captureResultCompositions())),
        mRequest(&request),
        mAlgoList(&algoList),
        mParameters(parameters) {}

  // Return the written value. A value of more than 1024 bytes is stored on the heap and not returned, because
  // little stack may be left.
  template <typename T>
  Copied<T> copy(const Frame& frame, const char* tag, const char* section, const char* key) {
    if constexpr (std::is_void_v<Copied<T>>) {
      const auto value = std::make_unique<T>();
      read(frame, tag, *value);
      write<T>(section, key, *value);
    } else {
      const T value = readOr<T>(frame, tag);
      write<T>(section, key, value);
      return value;
    }
  }
  template <typename T>
  Copied<T> copy(const char* tag, const char* section, const char* key) {
    return copy<T>(first(), tag, section, key);
  }

  // Copies a large byte array of the first frame; missing bytes become zeros.
  template <size_t N>
  void copyBytes(const char* tag, const char* section, const char* key) {
    LargeBytes<N> bytes;
    read(tag, bytes);
    mParameters.setBytes(section, key, bytes.orZeros(), N);
  }

  template <typename T>
  void keep(T& member, const char* tag, const char* section, const char* key) {
    read(tag, member);
    write<T>(section, key, member);
  }

  // Writes sizeof(T) bytes. The caller names T; it is never deduced. The status is ignored, because a failed
  // write must not fail the request.
  template <typename T>
  void write(const char* section, const char* key, const std::common_type_t<T>& value) {
    mParameters.set<T>(section, key, value);
  }

  // Returns a parameter that an earlier step or an earlier pass wrote, or `initial` if it is missing.
  template <typename T>
  T readBack(const char* section, const char* key, std::common_type_t<T> initial = T()) const {
    return mParameters.get<T>(section, key, initial);
  }

  // Returns a frame's exposure control record; zeros if the frame lacks it. The first record that is found is
  // cached, because steps read the first frame's record repeatedly, and a record has 22 boxed numbers.
  Aec exposureOf(const Frame& frame) const {
    const bool isKept = mHasExposure && frame.captureResult == mExposureFrame.captureResult &&
                        frame.composition == mExposureFrame.composition;
    if (isKept) return mExposure;
    Aec aec = {};
    if (read(frame, kAecTag, aec) == 0 && !mHasExposure) {
      mHasExposure = true;
      mExposureFrame = frame;
      mExposure = aec;
    }
    return aec;
  }

  // The first frame's regions, and the values needed to map regions to the image. Values that the frame lacks
  // are zero.
  __tagOrluRect activeArray() const { return mActiveArray.of(*this); }
  float zoomRatio() const { return mZoomRatio.of(*this); }
  int32_t remosaicType() const { return mRemosaicType.of(*this); }
  SCR_Type sensorCrop() const { return mSensorCrop.of(*this); }
  Ints<2> imageSizes() const { return mImageSizes.of(*this); }
  MeteringRegion focusRegion() const { return mFocusRegion.of(*this); }
  MeteringRegion exposureRegion() const { return mExposureRegion.of(*this); }

  const ParameterChannel& parameters() const { return mParameters; }

  // Returns whether a name in the algorithm list begins with this literal.
  template <size_t N>
  bool listHas(const char (&name)[N]) const {
    return isAlgoListContains(*mAlgoList, name);
  }
  // Appends the name even if the list has it.
  void append(const char* name) { mAlgoList->emplace_back(name); }
  template <size_t N>
  void remove(const char (&name)[N]) {
    removeAlgoFromAlgoList(*mAlgoList, name);
  }

  // The images. Without an image, these return null, kFormatUnknown or false.
  const AlgoFrameInfo* firstInput() const {
    return mRequest->inputFrames().empty() ? nullptr : &mRequest->inputFrames().front();
  }
  const AlgoFrameInfo* firstOutput() const {
    return mRequest->outputFrames().empty() ? nullptr : &mRequest->outputFrames().front();
  }
  int inputFormat() const { return firstInput() == nullptr ? kFormatUnknown : firstInput()->format; }
  bool isRaw() const { return isRawImageFormat(inputFormat()); }

private:
  VRequest* mRequest;
  std::vector<std::string>* mAlgoList;
  ParameterChannel mParameters;
  mutable bool mHasExposure = false;
  mutable Frame mExposureFrame;
  mutable Aec mExposure = {};
  KeptTag<__tagOrluRect> mActiveArray{"android.sensor.info.activeArraySize"};
  KeptTag<float> mZoomRatio{"android.control.zoomRatio"};
  KeptTag<int32_t> mRemosaicType{"com.orlu.RemosaicType"};
  KeptTag<SCR_Type> mSensorCrop{"orlu.feedback.SensorCropRegions"};
  KeptTag<Ints<2>> mImageSizes{"com.orlu.image_sizes"};
  KeptTag<MeteringRegion> mFocusRegion{"android.control.afRegions"};
  KeptTag<MeteringRegion> mExposureRegion{"android.control.aeRegions"};
};

}  // namespace orlu
