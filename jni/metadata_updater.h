// Turns the camera metadata of one request into the parameter set that the algorithms read, and edits the
// request's algorithm list on the way. One object per request, used on its thread; updateMetadata() runs
// once.
//
// A tag that is absent leaves the value that its step set before reading, and no status of the parameter
// channel is looked at: translating parameters never fails a request.
#pragma once

#include <jni.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "algo_interface.h"
#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "parameter_channel.h"
#include "shot_tags.h"
#include "vrequest.h"

namespace orlu {

// Camera roles of a switching multi-camera system, by their numbers in "orlu.parameter.masterSatRole".
enum SATCameraRoleType : int32_t {
  kSatRoleWide = 1,
  kSatRoleMain = 2,
  kSatRoleTele = 3,
  kSatRoleTele5x = 5,
  kSatRoleTele2_5x = 6
};

// Which camera such a system uses from a zoom ratio on. Made when the library is loaded.
const std::map<float, SATCameraRoleType>& satCameraRoles();

// The exposure control that the camera attaches to each frame; metadata_updater_rows.h names its elements.
using Aec = std::array<float, 22>;

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

private:
  Frame firstFrame() const { return mTags.frames().first(); }
  Frame frameAt(int index) const { return mTags.frames().at(index); }
  Frame lastFrame() const { return mTags.frames().last(); }
  // The composition alone, for the rows that don't ask the capture result.
  Frame firstCompositionOnly() const { return firstFrame().compositionOnly(); }
  Frame firstCaptureResultOnly() const { return firstFrame().captureResultOnly(); }
  // Past the master frames: the last of them. Nothing when there is none.
  Frame masterFrameAt(int index) const;
  int masterFrameNum() const { return static_cast<int>(mMasterCaptureResults.size()); }
  // The first input image's record, or null.
  const AlgoFrameInfo* firstInput() const;

  void append(const char* name) { mAlgoList->emplace_back(name); }

  // The rows and what they are made of: metadata_updater_rows.h, which says what T may be.
  template <size_t N>
  bool listHas(const char (&name)[N]) const;
  template <typename T>
  int read(T& value, const char* tag, const Frame& frame);
  template <typename T>
  int read(T& value, const char* tag);
  template <typename T>
  T readOr(T initial, const char* tag, const Frame& frame);
  template <typename T>
  void write(const char* section, const char* key, const T& value);
  template <typename T>
  T readBack(const char* section, const char* key, T initial = T());
  template <typename T>
  T copy(const Frame& frame, const char* tag, const char* section, const char* key);
  template <typename T>
  T copy(const char* tag, const char* section, const char* key);
  template <typename T>
  void keep(T& member, const Frame& frame, const char* tag, const char* section, const char* key);
  template <typename T>
  void keep(T& member, const char* tag, const char* section, const char* key);

  // metadata_updater.cpp
  void clearParams();
  int updateWatermarkData();
  void getMasterFrames();
  void updateFromCameraCharacteristics();
  void updateSat();
  void convertMetadata();
  uint64_t getCurrentMode(jobject captureResult, jobject composition);
  int masterFrameStep();

  // metadata_updater_algo_type.cpp
  void updateAlgoType();
  void updateAlgorithmParameters();
  bool hasEngineAlgorithm() const;
  void updateRawAlgorithms();
  void editAlgoList();
  void replaceByMultiFrameBokeh();

  // metadata_updater_beauty.cpp
  void updateBeauty();

  // metadata_updater_capture_features.cpp
  void updatePanorama();
  void clearProcessedAlgoTag();
  void updateProcessedAlgoTag();
  void updateGra();
  void updateJpegRefocus();
  void updateUpscale();
  void updataRawenhance();
  void writeRawPacking();
  void updateLightstream();

  // metadata_updater_common_tags.cpp
  void updateCommonTags();
  void updatePreviewAlgoPrivateData2Shot();
  int downloadPrivateData(const char* section, const char* key, void* data, unsigned size);
  void updateSensorTags();
  void updateZoomRatios();
  void updateFrameIdentity();
  void updateShotTags();
  void updateFrameLists();
  void updateCameraType();
  void updateDigitalZoom();
  void writeExposureControl(const Aec& aec);

  // metadata_updater_debug.cpp
  using FusionFrames = std::array<int, 2>;  // indices of the master's and the slave's frame
  void updateDebug();
  bool isFusion();
  FusionFrames fusionFrames() const;
  void updateFusionFrames();
  std::array<float, 2> readFusionExposureTimes(const FusionFrames& frames);
  void logFrameSettings(const char* step, int index);

  // metadata_updater_double_exposure.cpp
  void updateDoubleExpo();

  // metadata_updater_engine.cpp
  void updateEngine();

  // metadata_updater_faces.cpp
  _tagOrluFaceInfo readFaces(const Frame& frame);
  void updateFaceInfo();

  // metadata_updater_frame_clarity.cpp
  void updateFrameClarity();
  std::vector<double> readImageScores();
  void writeFrameIndices();

  // metadata_updater_hdr.cpp
  enum HdrProcessType : int32_t;
  struct FrameModes {
    int hdrCount = 0;
    int nightCount = 0;
    int nightIndex = 0;  // of the last night frame
  };
  void updateHdrProcessType();
  HdrProcessType hdrOf3Frames();
  HdrProcessType hdrOf5Frames(int32_t& nightIndex);
  HdrProcessType hdrOf7Frames(int32_t& nightIndex);
  HdrProcessType hdrOf9Frames();
  FrameModes walkFrameModes(int first, int last, size_t hdrSlot);
  void replaceNightByHdr();

  // metadata_updater_jpeg_encode.cpp
  void updateJpegEncode();
  ExifInfo readExif(int32_t fNumber, bool hasFNumber);
  float readAperture(int32_t fNumber, bool hasFNumber);
  int32_t readSceneType();

  // metadata_updater_night.cpp
  void updateSuperNsYuv();
  void updateSuperNS();
  void writeSuperNs(const char* operation, const char* domain);
  void updateRawLLHDR();
  void updateRawNR();
  void updateBokehNight();
  void updateRawHdr();

  // metadata_updater_phase_detection.cpp
  void updatePhaseDetection();

  // metadata_updater_pixel_shift.cpp
  void updatePixelShift();
  Frame baseFrame() const;
  std::array<float, 9> readColourMatrix();
  void logPixelShift(const std::array<float, 9>& ccm, const std::array<int32_t, 4>& crop,
                     const int32_t* gamma, const int64_t* gtm, float zoom, int32_t satRole);

  // metadata_updater_raw_format.cpp
  void updateRawFormat();
  void writeRawExposure(const Aec& aec);
  int32_t normalExposureTime(const Aec& aec) const;

  // metadata_updater_regions.cpp
  struct Metering;
  bool needRemapRegion(_tagOrluSize activeSize, int width, int height);
  // Converts all faces in place and drops those outside the image. At most kMaxFaces of them.
  void convertFace(_tagOrluFaceInfo& face, int width, int height, bool skipZoom);
  void setVAFAfRegionShot(__tagOrluRect& region);
  void setVAFAeRegion(__tagOrluRect& region);
  void updateZoom();
  void convertMetering(__tagOrluRect& region, const Metering& metering);
  __tagOrluRect mapToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image,
                           const char* operation, const char* unscaled);
  __tagOrluRect readMetering(int32_t& weight, const char* tag);
  _tagOrluSize readActiveSize();
  void logConversion(const char* operation, const char* label, _tagOrluSize active, _tagOrluSize image,
                     const __tagOrluRect& orig, const __tagOrluRect& converted, float zoom);

  // metadata_updater_yuv_format.cpp
  void updateYuvFormat();
  void updateFilter();
  void updatePortraitLight();
  void updateDistortion();
  void updateWatermark();
  void updateUserSettings();
  void updateHdrGains();
  void updateCropAndRegions();
  void updateUpscaleSwitch();
  bool needsShotGains(int32_t hdFaceNum);
  void writeShotGains(const char* step);
  std::array<int32_t, 4> readSatCropRegions(const Frame& frame);
  void updateSatCropRegions();
  void updateDocument();
  void updateBrightSpots();

  std::vector<std::string>* mAlgoList;
  AlgoNativeClient* mClient;
  VRequest* mRequest;
  void* mMetadata;
  CameraMetadataParser* mParser;
  int mCaptureResultNum;
  const std::vector<jobject>* mCaptureResults;
  const std::vector<jobject>* mCaptureResultCompositions;
  ShotTags mTags;
  ParameterChannel mParameters;
  std::vector<jobject> mMasterCaptureResults;
  std::vector<jobject> mMasterCompositions;
  int32_t mIsRawnrCapture = 0;
  int32_t mEnableHwMFNR = 0;  // hardware multi-frame noise reduction is on
  bool mIsSatFusion = false;
  int32_t mFusionBasicFrameSelect = 0;
  int32_t mJpegOrientation = 0;  // degrees
  int32_t mRequestId = 0;
  int32_t mBasicFrameIndex = -1;
  std::array<int32_t, 6> mHdrFrameIndex = {0, 1, 2, 3, 4, 5};  // the HDR frames among the master frames
  int32_t mBayerFilter = -1;
  int32_t mFilterType = 0;
  float mFilterIntensity = 0;
  int32_t mFilterMask = 0;
  float mUiZoomRatio = 1.0F;
  int32_t mCameraFacing = 0;
  std::array<int32_t, 25> mFrontEvControl = {};
  int32_t mIsUpscale = 0;
  int32_t mUseFilterList = 0;
  int32_t mIsFastDisplayRequest = 0;
  bool mSkipAlgoProcess = false;
};

}  // namespace orlu
