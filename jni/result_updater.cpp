#include "result_updater.h"

#include <memory>

#include "image_format.h"
#include "metadata_records.h"
#include "result_updater_log.h"
#include "shot_tags.h"

namespace orlu {
namespace {

constexpr char kJpegName[] = "JPEG";

constexpr char kOperation[] = "updateResult";  // named by the lines of its parts

}  // namespace

ResultUpdater::ResultUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                             void* metadata, CameraMetadataParser* parser)
    : mAlgoList(algoList), mClient(client), mRequest(request), mMetadata(metadata), mParser(parser) {}

int ResultUpdater::setValue(const char* section, const char* key, void* value, unsigned int size) {
  return parameters().setBytes(section, key, value, size);
}

int ResultUpdater::getValue(const char* section, const char* key, void* value, unsigned int size) {
  return parameters().getBytes(section, key, value, size);
}

void ResultUpdater::put(int32_t value, const char* key) {
  if (hasComposition()) mParser->putInt(value, key, mRequest.firstComposition());
}

void ResultUpdater::put(float value, const char* key) {
  if (hasComposition()) mParser->putFloat(value, key, mRequest.firstComposition());
}

void ResultUpdater::put(const int32_t* values, int count, const char* key) {
  if (hasComposition()) mParser->putIntArray(values, count, key, mRequest.firstComposition());
}

void ResultUpdater::put(const float* values, int count, const char* key) {
  if (hasComposition()) mParser->putFloatArray(values, count, key, mRequest.firstComposition());
}

int32_t ResultUpdater::copyFeedback(const char* key, const char* resultKey, int32_t initial) {
  const auto value = parameters().get<int32_t>(kFeedback, key, initial);
  put(value, resultKey);
  return value;
}

void ResultUpdater::updateResult() {
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
  copyFeedback("refocus_point_x",     "orlu.refocus.pointRatioX");
  copyFeedback("refocus_point_y",     "orlu.refocus.pointRatioY");
  copyFeedback("refocus_aperture",    "orlu.control.refocus_level");
  copyFeedback("refocus_jpeg_width",  "orlu.refocus.imgW");
  copyFeedback("refocus_jpeg_height", "orlu.refocus.imgH");
  copyFeedback("encoded_jpeg_size",   "orlu.refocus.initJpegSize");
  copyFeedback("encoded_jpeg_size",   "orlu.refocus.saveJpegSize");
  // clang-format on

  // Replaces the width and height above (Oddity 18).
  const auto decoded = parameters().get<_tagOrluSize>(kFeedback, "decoded_jpeg_size");
  put(decoded.width, "orlu.refocus.imgW");
  put(decoded.height, "orlu.refocus.imgH");

  const auto info = parameters().get<Ints<64>>(kFeedback, "refocus_ret_info");
  put(info.data(), static_cast<int>(info.size()), "orlu.refocus.retInfo");
}

// The rectified document is output 1.
void ResultUpdater::updateDocument() {
  constexpr int kDocumentOutput = 1;
  const auto docJpegSize = parameters().get<int32_t>(kParameter, "doc_jpeg_size");
  const auto rectified = parameters().get<_tagOrluSize>(kParameter, "rectify_wh");
  const auto processType = parameters().get<int32_t>(kFeedback, "doc_process_type");
  const auto classType = parameters().get<int32_t>(kFeedback, "doc_class_type");
  LOGD_AS(kOperation, "document: %s, algoProcessType value is %d  ", kOperation, processType);
  LOGD_AS(kOperation, "document %s: algoClassType result is %d", kOperation, classType);

  const int32_t size = rectified.width >= 1 && rectified.height >= 1 ? docJpegSize : 0;
  mRequest.setResultImageWH(rectified.width, rectified.height, kDocumentOutput);
  mRequest.setResultImageFormat(kFormatJpeg, kJpegName, kDocumentOutput);
  mRequest.setResultJpegSize(size, kDocumentOutput);
  put(size, "orlu.feedback.doc_size");
  LOGD_AS(kOperation, "docJpegSize:%d w %d h %d", docJpegSize, rectified.width, rectified.height);
  put(processType, "orlu.feedback.doc_algoType");
  put(classType, "orlu.feedback.doc_category");
}

void ResultUpdater::updateStepBeauty() {
  if (parameters().get<int32_t>(kParameter, "step_beauty_type") < 1) return;
  const auto outline = std::make_unique<FaceOutline>();
  parameters().getBytes(kFeedback, "face_outline", outline.get(), sizeof *outline);
  Ints<FaceOutline::kPoints> x = {};
  Ints<FaceOutline::kPoints> y = {};
  for (size_t i = 0; i < x.size(); ++i) {
    x[i] = outline->points[i].x;
    y[i] = outline->points[i].y;
  }
  const auto skin = parameters().get<Floats<3>>(kFeedback, "face_skin_value");
  // The first two words change places (Oddity 40).
  const int32_t* const word = outline->faceRect;
  const int32_t rect[] = {word[1], word[0], word[2], word[3]};
  LOGD_AS(kOperation, "algo process beautyfile beautyFaceNum = %d", outline->faceCount);
  LOGD_AS(kOperation, "algo process beautyfile beautyFaceRect[%d %d %d %d]", rect[0], rect[1], rect[2],
          rect[3]);

  put(x.data(), FaceOutline::kPoints, "orlu.feedback.pOutlinesX");
  put(y.data(), FaceOutline::kPoints, "orlu.feedback.pOutlinesY");
  put(outline->beautyPose, 3, "orlu.feedback.beautyPose");
  put(skin.data(), 3, "orlu.feedback.faceSkinValue");
  put(rect, 4, "orlu.feedback.beautyFaceRect");
  put(outline->faceCount, "orlu.feedback.beautyFaceNum");
}

void ResultUpdater::updateJpegEncodedType() {
  const int32_t type = copyFeedback("jpeg_encoded_by_hw", "orlu.feedback.jpegEncodedType");
  LOGD_AS(kOperation, "jpeg encode hw/sw:%d", type);
}

void ResultUpdater::updateJpegSize() {
  if (listHas("refocusJpegPack") || (listHas("jpegEncode") && listHas("dualBokeh"))) {
    const auto size = parameters().get<int32_t>(kFeedback, "output_refocus_jpeg_pack_size");
    mRequest.setResultJpegSize(size, 0);
    mRequest.setResultImageFormat(kFormatJpeg, kJpegName, 0);
    LOGD_AS(kOperation, "refocus pack size %d", size);
  } else if (listHas("jpegEncode")) {
    const auto size = parameters().get<int32_t>(kFeedback, "encoded_jpeg_size");
    mRequest.setResultJpegSize(size, 0);
    // Gives the Java side once more what the output already is.
    const AlgoFrameInfo output =
        mRequest.outputFrames().empty() ? AlgoFrameInfo() : mRequest.outputFrames()[0];
    mRequest.setResultImageWH(output.width, output.height, 0);
    mRequest.setResultImageFormat(kFormatJpeg, kJpegName, 0);
    LOGD_AS(kOperation, "encoded jpeg size %d", size);
  }
}

// The end of a series of light-stream shots.
void ResultUpdater::updateLightstream() {
  const auto crop = parameters().get<Ints<4>>(kFeedback, "lightstream_crop_region");
  put(crop.data(), 4, "orlu.feedback.lightstreamCropRegion");
  const auto zoom = parameters().get<float>(kFeedback, "lightstream_zoom_ratio");
  put(zoom, "orlu.feedback.lightstreamZoomRatio");
  LOGD_AS(kOperation, "lightstream stop, zoom %f crop (l %d t %d w %d h %d)", static_cast<double>(zoom),
          crop[0], crop[1], crop[2], crop[3]);
}

void ResultUpdater::updateDetections() {
  if (listHas("hdr")) {
    const int32_t frame = copyFeedback("hdr_choosed_frame", "orlu.feedback.hdrChoosedFrame", -1);
    LOGD_AS(kOperation, "algo process hdrChoosedFrame = %d", frame);
  }
  if (listHas("singleBokeh") || listHas("dualBokeh")) {
    const int32_t result = copyFeedback("segment_detect_result", "orlu.feedback.segmentResult", -1);
    LOGD_AS(kOperation, "algo process segmentDetectResult = %d", result);
  }
  if (listHas("bestMoment")) {
    const int32_t index = copyFeedback("bestmoment_index", "orlu.feedback.bestmoment_index");
    LOGD_BARE(kShortLogTag, "bestmoment upload index=%d", index);
  }
}

}  // namespace orlu
