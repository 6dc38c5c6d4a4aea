// A shot while its camera metadata is translated: the tags of its frames, its parameter set, its algorithm
// list and its images. Translation is written in rows, and there are three ways to move a tag:
//
//   copy   A tag becomes a parameter of the same type, or zero where the frame lacks it.
//            shot.copy<int32_t>("orlu.control.bokeh_facula", kControl, "bokeh_facula_capture");
//   keep   The same through a member, whose value stays where the frame lacks the tag.
//            shot.keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
//   read, change, write   For everything else: readOr(), or read() where the status counts; then write().
//            const auto gain = shot.readOr<int32_t>("orlu.feedback.analog_gain");
//            shot.write<float>(kParameter, "analog_gain", static_cast<float>(gain / 1024));
//
// The first argument may be the frame to read from; without it the first frame is read. A type is named once
// and says both the getter and the width.
#pragma once

#include <memory>
#include <string>
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
public:
  // Borrows all of it.
  Shot(CameraMetadataParser& parser, VRequest& request, std::vector<std::string>& algoList,
       const ParameterChannel& parameters)
      : ShotTags(parser, FrameList(request.captureResults(), request.captureResultCompositions())),
        mRequest(&request),
        mAlgoList(&algoList),
        mParameters(parameters) {}

  // Return the value that was written.
  template <typename T>
  T copy(const Frame& frame, const char* tag, const char* section, const char* key) const {
    const T value = readOr<T>(frame, tag);
    write<T>(section, key, value);
    return value;
  }
  template <typename T>
  T copy(const char* tag, const char* section, const char* key) const {
    return copy<T>(first(), tag, section, key);
  }

  // For a type that takes more of the stack than a request may find left.
  template <typename T>
  void copyLarge(const Frame& frame, const char* tag, const char* section, const char* key) const {
    const auto value = std::make_unique<T>();
    read(frame, tag, *value);
    write<T>(section, key, *value);
  }

  template <typename T>
  void keep(T& member, const char* tag, const char* section, const char* key) const {
    read(tag, member);
    write<T>(section, key, member);
  }

  // Writes sizeof(T) bytes; T is named by the caller and never deduced. No status is looked at: translating
  // parameters never fails a request.
  template <typename T>
  void write(const char* section, const char* key, const std::common_type_t<T>& value) const {
    mParameters.set<T>(section, key, value);
  }

  // A parameter that an earlier step or an earlier pass wrote, or `initial` where none did.
  template <typename T>
  T readBack(const char* section, const char* key, std::common_type_t<T> initial = T()) const {
    return mParameters.get<T>(section, key, initial);
  }

  // A frame's exposure control, zero where the frame lacks it. Steps ask for the first frame's again and
  // again, and it is 22 boxed numbers, so the first one that was there is kept.
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

  const ParameterChannel& parameters() const { return mParameters; }

  // Whether the algorithm list holds a name that begins with this literal.
  template <size_t N>
  bool listHas(const char (&name)[N]) const {
    return isAlgoListContains(*mAlgoList, name);
  }
  // Also where the list holds the name already.
  void append(const char* name) const { mAlgoList->emplace_back(name); }
  template <size_t N>
  void remove(const char (&name)[N]) const {
    removeAlgoFromAlgoList(*mAlgoList, name);
  }

  // The images. Null, kFormatUnknown and false where there is no input.
  const AlgoFrameInfo* firstInput() const {
    return mRequest->inputFrames().empty() ? nullptr : &mRequest->inputFrames().front();
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
};

}  // namespace orlu
