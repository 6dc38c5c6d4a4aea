// Writes what the algorithms left in a request's parameter set back into its compositions and output
// descriptors. One object per request, used on its thread after the callback; nothing in it is owned, and no
// failure stops it.
//
// A value that the algorithms did not set is written with its initial value. Without a composition nothing is
// written; the frame's output descriptors are set all the same.
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
  // Borrows all five for its life. The parameter block `metadata` may be null: every value is then its
  // initial one.
  ResultUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                void* metadata, CameraMetadataParser* parser);
  ResultUpdater(const ResultUpdater&) = delete;
  ResultUpdater& operator=(const ResultUpdater&) = delete;
  virtual ~ResultUpdater() = default;

  void updateResult();

  // The parameter channel: `size` bytes under a section and a key of the block. The context's status.
  int setValue(const char* section, const char* key, void* value, unsigned int size);
  int getValue(const char* section, const char* key, void* value, unsigned int size);

  // The parts of updateResult(), each of which may run alone. What they return is for their caller; nothing
  // stops at it.
  // result_updater_frame_selection.cpp
  int updateFrameClarity();           // -1 without a composition
  int updateFrameSelectResult();      // -1 when a frame index is out of range
  int updateSelectBasicFrameIndex();  // -1 when there is no frame to choose
  // result_updater_raw_algo.cpp. All return 0. The first one runs the others.
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

  // result_updater.cpp: the other parts of updateResult() by theme, in the order in which they run.
  void updateRefocus();
  void updateDocument();
  void updateStepBeauty();
  void updateJpegEncodedType();
  void updateJpegSize();
  void updateLightstream();
  void updateDetections();

  // One per capture result, nanoseconds, 0 where it has none. `log` gets each frame's number and timestamp
  // before the next frame is read.
  template <typename Logger>
  FrameValues<int64_t> readTimestamps(const Logger& log);

  bool hasComposition() const { return !mRequest.captureResultCompositions().empty(); }
  template <size_t N>
  bool listHas(const char (&name)[N]) const;
  // Puts a value into a frame's composition, or into the first one. Returns 0, also when the request has no
  // composition, or -1 when the parser could not store it.
  template <typename T>
  int put(const Frame& frame, const char* resultKey, const std::common_type_t<T>& value);
  template <typename T>
  int put(const char* resultKey, const std::common_type_t<T>& value);
  // Row: a parameter, or `initial` when the block has none, becomes a key of the first composition. Returns
  // the value.
  template <typename T>
  T copy(const char* section, const char* key, const char* resultKey, std::common_type_t<T> initial = T());

  std::vector<std::string>& mAlgoList;
  AlgoNativeClient* mClient;
  VRequest& mRequest;
  void* mMetadata;
  CameraMetadataParser* mParser;
  // The client's context with the block, and the request's frames with the parser.
  ParameterChannel mChannel;
  ShotTags mTags;
};

}  // namespace orlu
