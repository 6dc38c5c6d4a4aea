// Writes what the algorithms left in a request's parameter set back into its compositions and output
// descriptors. One object per request, used on its thread after the callback; nothing in it is owned, and no
// failure stops it.
//
// A value that the algorithms did not set is written with its initial value. Without a composition nothing is
// written; the frame's output descriptors are set all the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "algo_list.h"
#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "parameter_channel.h"
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

private:
  // result_updater.cpp: the parts of updateResult, in the order they run.
  void updateRefocus();
  void updateDocument();
  void updateStepBeauty();
  void updateJpegEncodedType();
  void updateJpegSize();
  void updateLightstream();
  void updateDetections();

  // result_updater_frame_selection.cpp
  int updateFrameClarity();               // -1 without a composition
  int updateFrameSelectResult();          // -1 when a frame index is out of range
  int updateSelectBasicFrameIndex();      // -1 when there is no frame to choose
  std::vector<int64_t> readTimestamps();  // one per capture result, nanoseconds, 0 where it has none

  // result_updater_raw_algo.cpp. All return 0.
  int updateParamsFromRawAlgo();
  int updateTunningMode();
  int updateRAWHDRTrackingInfor();
  int updateShortGainForRAWHDR();
  int updateProcessedAlgoTag();
  int updateProrawPure2ProcState();
  int updateCaptureResultForSuperMoon();

  ParameterChannel parameters() const { return {mClient->context(), mMetadata}; }
  bool hasComposition() const { return !mRequest.captureResultCompositions().empty(); }
  template <size_t N>
  bool listHas(const char (&name)[N]) const {
    return isAlgoListContains(mAlgoList, name);
  }
  // Put into the first composition, when there is one.
  void put(int32_t value, const char* key);
  void put(float value, const char* key);
  void put(const int32_t* values, int count, const char* key);
  void put(const float* values, int count, const char* key);
  // Row: an int of the feedback section becomes a key of the first composition. Returns the value.
  int32_t copyFeedback(const char* key, const char* resultKey, int32_t initial = 0);

  std::vector<std::string>& mAlgoList;
  AlgoNativeClient* mClient;
  VRequest& mRequest;
  void* mMetadata;
  CameraMetadataParser* mParser;
};

}  // namespace orlu
