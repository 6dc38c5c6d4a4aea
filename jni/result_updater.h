// Writes the algorithms' results from a request's parameter set back into its compositions and output
// descriptors. Create one object per request and use it on the request's thread after the callback. If one
// result fails, the others are still written. Most results have an initial value, which is written if the
// algorithms did not set the parameter. Without a composition, only the output descriptors are set.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "frame_values.h"
#include "parameter_channel.h"
#include "shot_tags.h"
#include "vrequest.h"

namespace orlu {

class ResultUpdater {
public:
  // Borrows all arguments. If the parameter block `metadata` is null, every parameter has its initial value.
  ResultUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                void* metadata, CameraMetadataParser* parser);
  ResultUpdater(const ResultUpdater&) = delete;
  ResultUpdater& operator=(const ResultUpdater&) = delete;
  virtual ~ResultUpdater() = default;

  void updateResult();

  // Copy `size` bytes into the parameter block, or at most `size` bytes out of it. Return the status from
  // AlgoNativeContext.
  int setValue(const char* section, const char* key, void* value, unsigned int size);
  int getValue(const char* section, const char* key, void* value, unsigned int size);

  // The parts of updateResult(); each may run alone. updateResult() ignores their return values.
  // result_updater_frame_selection.cpp
  int updateFrameClarity();           // -1 without a composition
  int updateFrameSelectResult();      // -1 if a frame index is out of range
  int updateSelectBasicFrameIndex();  // -1 if a frame is chosen by index alone, but there are no frames
  // result_updater_raw_algo.cpp. All return 0. updateParamsFromRawAlgo() calls the functions below it.
  int updateParamsFromRawAlgo();
  int updateTunningMode();
  int updateRAWHDRTrackingInfor();
  int updateShortGainForRAWHDR();
  int updateProcessedAlgoTag();
  int updateProrawPure2ProcState();
  int updateCaptureResultForSuperMoon();

private:
  static constexpr char kLogTag[] = "_V_VASJNI-ResultUpdater";
  static constexpr char kShortLogTag[] = "VASJNI-ResultUpdater";

  // result_updater.cpp: the other parts of updateResult(), in the order in which they run.
  void updateRefocus();
  void updateDocument();
  void updateStepBeauty();
  void updateJpegEncodedType();
  void updateJpegSize();
  void updateLightstream();
  void updateDetections();

  // Returns one timestamp in nanoseconds per capture result; 0 if it is missing. Calls `log` with each
  // frame's number and timestamp before it reads the next frame.
  template <typename Logger>
  FrameValues<int64_t> readTimestamps(const Logger& log);

  bool hasComposition() const { return !mRequest.captureResultCompositions().empty(); }
  template <size_t N>
  bool listHas(const char (&name)[N]) const;
  // Put a value into a frame's composition, or into the first composition. Return -1 if the parser could not
  // store the value, else 0. Without compositions, do nothing and return 0.
  template <typename T>
  int put(const Frame& frame, const char* resultKey, const std::common_type_t<T>& value);
  template <typename T>
  int put(const char* resultKey, const std::common_type_t<T>& value);
  // Copies a parameter, or `initial` if it is missing, to the first composition. Returns the value.
  template <typename T>
  T copy(const char* section, const char* key, const char* resultKey, std::common_type_t<T> initial = T());

  std::vector<std::string>& mAlgoList;
  AlgoNativeClient* mClient;
  VRequest& mRequest;
  void* mMetadata;
  CameraMetadataParser* mParser;
  ParameterChannel mChannel;
  ShotTags mTags;
};

}  // namespace orlu
