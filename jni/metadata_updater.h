// Turns the camera metadata of one request into the parameter set that the algorithms read, and edits the
// request's algorithm list on the way. One object per request, used on its thread; updateMetadata() runs
// once.
//
// A tag that is absent leaves the value that its step set before reading, and no status of the parameter
// channel is looked at: translating parameters never fails a request. See shot.h for how rows are written.
// Code that needs no Java has its own headers, such as region_mapper.h.
#pragma once

#include <jni.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"
#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "hdr_layout.h"
#include "shot.h"
#include "vrequest.h"

namespace orlu {

class MetadataUpdater {
public:
  // Borrows all five for its life. The parameter block `metadata` may be null: nothing is stored then.
  MetadataUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                  void* metadata, CameraMetadataParser* parser);
  MetadataUpdater(const MetadataUpdater&) = delete;
  MetadataUpdater& operator=(const MetadataUpdater&) = delete;
  virtual ~MetadataUpdater();

  void updateMetadata();

  // The HDR process type and the night frame among the master frames, as updateMetadata() wrote them: 0 and
  // -1 when it did not.
  void updateRawnrHDRFrameIndex(int& hdrType, int& nightIndex);
  // Set by updateMetadata() for a request that the camera marks as needing no algorithm pass.
  bool skipAlgoProcess() const { return mSkipAlgoProcess; }

  // The parameter channel: `size` bytes under a section and a key of the block. The context's status.
  int setValue(const char* section, const char* key, void* value, unsigned size);
  int getValue(const char* section, const char* key, void* value, unsigned size);
  int paramAlgoUpdateToSystem(AlgoMetadataVisitor visitor);
  int paramSystemDownloadToAlgo(AlgoMetadataVisitor visitor);

  // About the first input image; 0 when there is none.
  int isRawFormat();
  int getImageFormat();

  // The steps of updateMetadata(), by the files that hold them. Most rely on steps before them.
  // metadata_updater.cpp
  void clearParams();
  int updateWatermarkData();  // 1 when the request only updates the watermark
  void getMasterFrames();
  uint64_t getCurrentMode(jobject captureResult, jobject composition);
  // metadata_updater_cameras.cpp
  void updateFromCameraCharacteristics();
  void updateSat();
  void updateEngine();
  void convertMetadata();
  // metadata_updater_common_tags.cpp
  void updateCommonTags();
  void updatePreviewAlgoPrivateData2Shot();
  // metadata_updater_raw_format.cpp, metadata_updater_yuv_settings.cpp
  void updateRawFormat();
  void updateYuvFormat();
  // metadata_updater_hdr.cpp
  void updateHdrProcessType();
  // metadata_updater_algo_type.cpp
  void updateAlgoType();
  // metadata_updater_night.cpp
  void updateSuperNsYuv();
  void updateSuperNS();
  void updateRawLLHDR();
  void updateRawNR();
  void updateBokehNight();
  void updateRawHdr();
  // metadata_updater_capture_features.cpp
  void updatePanorama();
  void clearProcessedAlgoTag();
  void updateProcessedAlgoTag();
  void updateGra();
  void updateJpegRefocus();
  void updateUpscale();
  void updataRawenhance();
  void updateLightstream();
  void updateZoom();
  void updateBeauty();
  // metadata_updater_regions.cpp
  // Whether rectangles have to be scaled from the active array to an image of this size, in pixels.
  bool needRemapRegion(_tagOrluSize activeSize, int width, int height);
  // Converts all faces in place and drops those outside the image. At most kMaxFaces of them.
  void convertFace(_tagOrluFaceInfo& face, int width, int height, bool skipZoom);
  // Read a metering region and convert it into `region`, which stays where there is no input or no active
  // array.
  void setVAFAfRegionShot(__tagOrluRect& region);
  void setVAFAeRegion(__tagOrluRect& region);
  // metadata_updater_double_exposure.cpp, _jpeg_encode.cpp, _pixel_shift.cpp, _frame_clarity.cpp, _debug.cpp
  void updateDoubleExpo();
  void updateJpegEncode();
  void updatePixelShift();
  void updateFrameClarity();
  void updateDebug();

private:
  FrameList masterFrames() const { return {mMasterCaptureResults, mMasterCompositions}; }

  // Parts of the steps.
  void updateFrameIdentity();
  void updateFaceInfo();
  void updateCameraType();
  void updateRegions();
  void updateAlgorithmParameters();
  void updateRawAlgorithms();
  void editAlgoList();
  void updateFusionFrames();
  struct MeteringTexts;
  void convertMetering(__tagOrluRect& region, MeteringRegion (Shot::*read)() const,
                       const MeteringTexts& texts);

  // What the constructor was given, and the request's frames. mShot holds all of it as the rows see it.
  std::vector<std::string>* mAlgoList;
  AlgoNativeClient* mClient;
  VRequest* mRequest;
  void* mMetadata;
  CameraMetadataParser* mParser;
  int mCaptureResultNum;
  const std::vector<jobject>* mCaptureResults;
  const std::vector<jobject>* mCaptureResultCompositions;
  std::vector<jobject> mMasterCaptureResults;
  std::vector<jobject> mMasterCompositions;
  int32_t mIsRawnrCapture = 0;
  int32_t mEnableHwMFNR = 0;  // hardware multi-frame noise reduction is on
  bool mIsSatFusion = false;
  int32_t mFusionBasicFrameSelect = 0;
  int32_t mJpegOrientation = 0;  // degrees
  int32_t mRequestId = 0;
  int32_t mBasicFrameIndex = -1;
  HdrFrameIndex mHdrFrameIndex = {0, 1, 2, 3, 4, 5};  // the HDR frames among the master frames
  int32_t mBayerFilter = -1;
  int32_t mFilterType = 0;
  float mFilterIntensity = 0;
  int32_t mFilterMask = 0;
  float mUiZoomRatio = 1.0F;
  int32_t mCameraFacing = 0;
  Ints<25> mFrontEvControl = {};
  int32_t mIsUpscale = 0;
  int32_t mUseFilterList = 0;
  int32_t mIsFastDisplayRequest = 0;
  bool mSkipAlgoProcess = false;
  Shot mShot;
};

}  // namespace orlu
