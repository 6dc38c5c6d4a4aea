#include "result_updater.h"

#include <memory>

#include "image_format.h"
#include "log.h"
#include "metadata_records.h"
#include "result_updater_rows.h"

namespace orlu {
namespace {

constexpr char kJpegName[] = "JPEG";

// The functions of this file log this name as their operation.
constexpr char kUpdateResult[] = "updateResult";

}  // namespace

ResultUpdater::ResultUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                             void* metadata, CameraMetadataParser* parser)
    : mAlgoList(algoList),
      mClient(client),
      mRequest(request),
      mMetadata(metadata),
      mParser(parser),
      mChannel(client->context(), metadata),
      mTags(*parser, FrameList(request.captureResults(), request.captureResultCompositions())) {}

int ResultUpdater::setValue(const char* section, const char* key, void* value, unsigned int size) {
  return mClient->context().setValue(mMetadata, section, key, value, size);
}

int ResultUpdater::getValue(const char* section, const char* key, void* value, unsigned int size) {
  return mClient->context().getValue(mMetadata, section, key, value, size);
}

void ResultUpdater::updateResult() {
  const CameraMetadataParser::Batch batch(*mParser);
  if (listHas("frameClarOnly")) {
    updateFrameClarity();
    return;
  }
  if (listHas("jpegBokehOnly")) updateRefocus();
  if (listHas("ppt")) updateDocument();
  updateStepBeauty();
  if (listHas("jpegEncode")) updateJpegEncodedType();
  updateJpegSize();
  if (mRequest.isStopProcess() && listHas("lightstream")) updateLightstream();
  updateDetections();
  updateFrameSelectResult();
  updateSelectBasicFrameIndex();
  updateParamsFromRawAlgo();
}

void ResultUpdater::updateRefocus() {
  // clang-format off
  copy<int32_t>(kFeedback, "refocus_point_x",     "orlu.refocus.pointRatioX");
  copy<int32_t>(kFeedback, "refocus_point_y",     "orlu.refocus.pointRatioY");
  copy<int32_t>(kFeedback, "refocus_aperture",    "orlu.control.refocus_level");
  copy<int32_t>(kFeedback, "refocus_jpeg_width",  "orlu.refocus.imgW");
  copy<int32_t>(kFeedback, "refocus_jpeg_height", "orlu.refocus.imgH");
  copy<int32_t>(kFeedback, "encoded_jpeg_size",   "orlu.refocus.initJpegSize");
  copy<int32_t>(kFeedback, "encoded_jpeg_size",   "orlu.refocus.saveJpegSize");
  // clang-format on

  // Oddity 18: overwrites the width and height above.
  const auto decoded = mChannel.get<_tagOrluSize>(kFeedback, "decoded_jpeg_size");
  put<int32_t>("orlu.refocus.imgW", decoded.width);
  put<int32_t>("orlu.refocus.imgH", decoded.height);

  copy<Ints<64>>(kFeedback, "refocus_ret_info", "orlu.refocus.retInfo");
}

// The rectified document is output image 1.
void ResultUpdater::updateDocument() {
  constexpr int kDocumentOutput = 1;
  const auto docJpegSize = mChannel.get<int32_t>(kParameter, "doc_jpeg_size");
  const auto rectified = mChannel.get<_tagOrluSize>(kParameter, "rectify_wh");
  const auto processType = mChannel.get<int32_t>(kFeedback, "doc_process_type");
  const auto classType = mChannel.get<int32_t>(kFeedback, "doc_class_type");
  LOGD_AS(kUpdateResult, "document: %s, algoProcessType value is %d  ", kUpdateResult, processType);
  LOGD_AS(kUpdateResult, "document %s: algoClassType result is %d", kUpdateResult, classType);

  const int32_t size = rectified.width >= 1 && rectified.height >= 1 ? docJpegSize : 0;
  mRequest.setResultImageWH(rectified.width, rectified.height, kDocumentOutput);
  mRequest.setResultImageFormat(kFormatJpeg, kJpegName, kDocumentOutput);
  mRequest.setResultJpegSize(size, kDocumentOutput);
  put<int32_t>("orlu.feedback.doc_size", size);
  LOGD_AS(kUpdateResult, "docJpegSize:%d w %d h %d", docJpegSize, rectified.width, rectified.height);
  put<int32_t>("orlu.feedback.doc_algoType", processType);
  put<int32_t>("orlu.feedback.doc_category", classType);
}

void ResultUpdater::updateStepBeauty() {
  if (mChannel.get<int32_t>(kParameter, "step_beauty_type") < 1) return;
  const auto outline = std::make_unique<FaceOutline>();
  mChannel.getBytes(kFeedback, "face_outline", outline.get(), sizeof *outline);
  Ints<FaceOutline::kPoints> x = {};
  Ints<FaceOutline::kPoints> y = {};
  for (size_t i = 0; i < x.size(); ++i) {
    x[i] = outline->points[i].x;
    y[i] = outline->points[i].y;
  }
  const float* const pose = outline->beautyPose;
  const auto skin = mChannel.get<Floats<3>>(kFeedback, "face_skin_value");
  // Oddity 40: the first two words are swapped.
  const int32_t* const word = outline->faceRect;
  const Ints<4> rect = {word[1], word[0], word[2], word[3]};
  LOGD_AS(kUpdateResult, "algo process beautyfile beautyFaceNum = %d", outline->faceCount);
  LOGD_AS(kUpdateResult, "algo process beautyfile beautyFaceRect[%d %d %d %d]", rect[0], rect[1], rect[2],
          rect[3]);

  // clang-format off
  put<Ints<FaceOutline::kPoints>>("orlu.feedback.pOutlinesX",    x);
  put<Ints<FaceOutline::kPoints>>("orlu.feedback.pOutlinesY",    y);
  put<Floats<3>>                 ("orlu.feedback.beautyPose",    {pose[0], pose[1], pose[2]});
  put<Floats<3>>                 ("orlu.feedback.faceSkinValue", skin);
  put<Ints<4>>                   ("orlu.feedback.beautyFaceRect", rect);
  put<int32_t>                   ("orlu.feedback.beautyFaceNum", outline->faceCount);
  // clang-format on
}

void ResultUpdater::updateJpegEncodedType() {
  const auto type = copy<int32_t>(kFeedback, "jpeg_encoded_by_hw", "orlu.feedback.jpegEncodedType");
  LOGD_AS(kUpdateResult, "jpeg encode hw/sw:%d", type);
}

void ResultUpdater::updateJpegSize() {
  if (listHas("refocusJpegPack") || (listHas("jpegEncode") && listHas("dualBokeh"))) {
    const auto size = mChannel.get<int32_t>(kFeedback, "output_refocus_jpeg_pack_size");
    mRequest.setResultJpegSize(size, 0);
    mRequest.setResultImageFormat(kFormatJpeg, kJpegName, 0);
    LOGD_AS(kUpdateResult, "refocus pack size %d", size);
  } else if (listHas("jpegEncode")) {
    const auto size = mChannel.get<int32_t>(kFeedback, "encoded_jpeg_size");
    mRequest.setResultJpegSize(size, 0);
    // Writes the output's existing width and height to the Java side.
    const AlgoFrameInfo output =
        mRequest.outputFrames().empty() ? AlgoFrameInfo() : mRequest.outputFrames()[0];
    mRequest.setResultImageWH(output.width, output.height, 0);
    mRequest.setResultImageFormat(kFormatJpeg, kJpegName, 0);
    LOGD_AS(kUpdateResult, "encoded jpeg size %d", size);
  }
}

// Writes the results of a finished series of light-stream shots.
void ResultUpdater::updateLightstream() {
  const auto crop =
      copy<Ints<4>>(kFeedback, "lightstream_crop_region", "orlu.feedback.lightstreamCropRegion");
  const auto zoom = copy<float>(kFeedback, "lightstream_zoom_ratio", "orlu.feedback.lightstreamZoomRatio");
  LOGD_AS(kUpdateResult, "lightstream stop, zoom %f crop (l %d t %d w %d h %d)", static_cast<double>(zoom),
          crop[0], crop[1], crop[2], crop[3]);
}

void ResultUpdater::updateDetections() {
  if (listHas("hdr")) {
    const auto frame = copy<int32_t>(kFeedback, "hdr_choosed_frame", "orlu.feedback.hdrChoosedFrame", -1);
    LOGD_AS(kUpdateResult, "algo process hdrChoosedFrame = %d", frame);
  }
  if (listHas("singleBokeh") || listHas("dualBokeh")) {
    const auto result = copy<int32_t>(kFeedback, "segment_detect_result", "orlu.feedback.segmentResult", -1);
    LOGD_AS(kUpdateResult, "algo process segmentDetectResult = %d", result);
  }
  if (listHas("bestMoment")) {
    const auto index = copy<int32_t>(kFeedback, "bestmoment_index", "orlu.feedback.bestmoment_index");
    LOGD_BARE(kShortLogTag, "bestmoment upload index=%d", index);
  }
}

}  // namespace orlu
