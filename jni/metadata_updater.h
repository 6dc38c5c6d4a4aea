// Translates one request's camera metadata into the parameter set that the algorithms read, and edits the
// algorithm list. Create one object per request and use it on the request's thread; updateMetadata() runs
// once.
//
// If a tag is absent, its parameter gets the row's default. The parameter channel's status is ignored:
// translating parameters never fails a request. The steps consist of rows; shot.h shows how to write a row.
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
  // Borrows all arguments. The parameter block `metadata` may be null; then nothing is stored.
  MetadataUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                  void* metadata, CameraMetadataParser* parser);
  MetadataUpdater(const MetadataUpdater&) = delete;
  MetadataUpdater& operator=(const MetadataUpdater&) = delete;
  virtual ~MetadataUpdater();

  void updateMetadata();

  // Reads back two parameters that updateMetadata() wrote: the HDR process type (0 if missing) and the night
  // frame's index among the master frames (-1 if missing).
  void updateRawnrHDRFrameIndex(int& hdrType, int& nightIndex);
  // True if updateMetadata() read the camera's mark that the request needs no algorithm pass.
  bool skipAlgoProcess() const { return mSkipAlgoProcess; }

  // Access to the parameter block; all return the context's status. setValue() and getValue() copy `size`
  // bytes by section and key. paramAlgoUpdateToSystem() visits the values that the algorithms pass to the
  // system; paramSystemDownloadToAlgo() visits the values that they request from the system.
  int setValue(const char* section, const char* key, void* value, unsigned size);
  int getValue(const char* section, const char* key, void* value, unsigned size);
  int paramAlgoUpdateToSystem(AlgoMetadataVisitor visitor);
  int paramSystemDownloadToAlgo(AlgoMetadataVisitor visitor);

  // isRawFormat() returns 1 if the first input image is raw, else 0; getImageFormat() returns the
  // image's format code. Without an input image, both return 0.
  int isRawFormat();
  int getImageFormat();

  // The steps of updateMetadata(), grouped by file. Most depend on earlier steps.
  // metadata_updater.cpp
  void clearParams();
  int updateWatermarkData();  // returns 1 if the request only updates the watermark
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
  // Returns whether rectangles must be scaled from the active array to an image of this size in pixels.
  bool needRemapRegion(_tagOrluSize activeSize, int width, int height);
  // Converts all faces in place to pixels of an image of this size, and drops the faces outside the image.
  // Does nothing without an active array. `face` must not contain more than kMaxFaces faces.
  void convertFace(_tagOrluFaceInfo& face, int width, int height, bool skipZoom);
  // Read the focus or exposure region and convert it to pixels of the first input image. Without an input
  // image or active array, `region` is unchanged.
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

  // The constructor's arguments and the request's frames. Rows access them through mShot.
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
  int32_t mEnableHwMFNR = 0;  // not 0: hardware multi-frame noise reduction is on
  bool mIsSatFusion = false;
  int32_t mFusionBasicFrameSelect = 0;
  int32_t mJpegOrientation = 0;  // degrees
  int32_t mRequestId = 0;
  int32_t mBasicFrameIndex = -1;
  HdrFrameIndex mHdrFrameIndex = {0, 1, 2, 3, 4, 5};  // indices among the master frames
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
