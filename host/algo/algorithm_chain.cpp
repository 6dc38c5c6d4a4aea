#include "algorithm_chain.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "exif_block.h"
#include "jpeg_encode.h"
#include "metadata_records.h"
#include "picture_transform.h"

namespace orlu::standin {
namespace {

constexpr size_t kMostScores = 50;
constexpr size_t kMostSelections = 20;

// Algorithms that are identical here: each computes the mean of the aligned frames.
constexpr const char* kMergers[] = {"night", "hdr", "superns", "supernsll", "llhdr"};

// The bit of "processed_algo" that each algorithm sets, in the word reserved for the application.
struct ProcessedBit {
  const char* algorithm;
  uint64_t bit;
};
constexpr ProcessedBit kProcessedBits[] = {
    {"night",         1U << 0 },
    {"hdr",           1U << 1 },
    {"superns",       1U << 2 },
    {"supernsll",     1U << 3 },
    {"llhdr",         1U << 4 },
    {"flip",          1U << 5 },
    {"upscale",       1U << 6 },
    {"jpegEncode",    1U << 7 },
    {"frameClarOnly", 1U << 8 },
    {"lightstream",   1U << 9 },
    {"ppt",           1U << 10},
};

struct CropRegion {
  int32_t left = 0;
  int32_t top = 0;
  int32_t width = 0;
  int32_t height = 0;
};

}  // namespace

RunReport AlgorithmChain::run() {
  const auto start = std::chrono::steady_clock::now();
  readInputs();
  if (asksFor("frameClarOnly") || asksForMerge()) judgeFrames();
  makePicture();
  changePicture();
  deliver();
  deliverDocument();
  leaveRefocus();
  leaveLightStream();
  leaveProcessedAlgo();
  reportSkipped();
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
  mReport.milliseconds = took.count();
  return std::move(mReport);
}

bool AlgorithmChain::asksForMerge() const {
  return std::any_of(std::begin(kMergers), std::end(kMergers),
                     [this](const char* name) { return asksFor(name); });
}

void AlgorithmChain::markRan(const char* algorithm) {
  mReport.ran.emplace_back(algorithm);
}

void AlgorithmChain::reportSkipped() {
  for (const std::string& name : mRequest.algoList()) {
    const bool isKnown = std::any_of(std::begin(kProcessedBits), std::end(kProcessedBits),
                                     [&name](const ProcessedBit& row) { return name == row.algorithm; });
    if (!isKnown) mReport.skipped.push_back(name);
  }
}

void AlgorithmChain::readInputs() {
  for (Frame& frame : mRequest.inputs()) {
    ImageView view;
    if (frame.map(Frame::Access::kRead) != 0 || !frame.view(view)) view.planes.clear();
    mInputs.push_back(std::move(view));
  }
}

void AlgorithmChain::judgeFrames() {
  ParameterSet& parameters = mRequest.parameters();
  const bool sharpestOnly = asksFor("frameClarOnly");
  mSelection =
      selectFrames(mInputs, parameters.read<int32_t>(kControl, "input_basic_frameidx", -1), sharpestOnly);
  reportFrames(std::vector<Shift>(mInputs.size()));
  if (mSelection.base < 0) return;

  int32_t selected[kMostSelections];
  std::fill(std::begin(selected), std::end(selected), -1);
  for (size_t i = 0; i < std::min(mInputs.size(), kMostSelections); ++i) {
    if (mSelection.kept[i]) selected[i] = static_cast<int32_t>(i);
  }
  // One score per frame; readers always read all 50.
  double scores[kMostScores] = {};
  const size_t count = std::min(mInputs.size(), kMostScores);
  std::copy_n(mSelection.sharpness.begin(), count, scores);
  parameters.set(kParameter, "frame_clarity_score", scores, sizeof scores);
  parameters.set(kFeedback, "frame_select_result", selected, sizeof selected);
  parameters.write<int32_t>(kFeedback, "current_base_frame_idx", mSelection.base);
  if (sharpestOnly) markRan("frameClarOnly");
}

void AlgorithmChain::reportFrames(const std::vector<Shift>& shifts) {
  mReport.frames.clear();
  for (size_t i = 0; i < mInputs.size(); ++i) {
    mReport.frames.push_back({mSelection.sharpness[i], shifts[i], mSelection.kept[i]});
  }
}

void AlgorithmChain::makePicture() {
  if (mInputs.empty()) return;
  const bool canMerge = mSelection.base >= 0 && !mInputs[static_cast<size_t>(mSelection.base)].isOpaque();
  if (asksForMerge() && canMerge && !asksFor("frameClarOnly")) {
    mergePicture();
  } else {
    mPicture = Picture::copyOf(mInputs[0]);
  }
}

void AlgorithmChain::mergePicture() {
  MergedImage merged = mergeFrames(mInputs, mSelection.kept, mSelection.base);
  mPicture = std::move(merged.picture);
  reportFrames(merged.shifts);
  for (const char* name : kMergers) {
    if (asksFor(name)) markRan(name);
  }
  if (asksFor("hdr"))
    mRequest.parameters().write<int32_t>(kFeedback, "hdr_choosed_frame", merged.mergedFrames);
}

void AlgorithmChain::changePicture() {
  if (mPicture.empty()) return;
  if (asksFor("flip") && mirrorLeftRight(mPicture.view())) markRan("flip");
  if (!asksFor("upscale") || mRequest.outputs().empty()) return;
  const AlgoFrameInfo& output = mRequest.outputs()[0].info();
  if (output.width == mPicture.view().width && output.height == mPicture.view().height) {
    mReport.skipped.emplace_back("upscale");
    return;
  }
  Picture scaled = scaleTo(mPicture.view(), output.width, output.height);
  if (scaled.empty()) return;
  mPicture = std::move(scaled);
  markRan("upscale");
}

void AlgorithmChain::deliver() {
  std::vector<Frame>& outputs = mRequest.outputs();
  if (asksFor("jpegEncode") || asksFor("refocusJpegPack")) {
    const bool isThere = !outputs.empty() && outputs[0].map(Frame::Access::kReadWrite) == 0;
    return deliverJpeg(isThere ? &outputs[0] : nullptr);
  }
  for (size_t i = 0; i < outputs.size(); ++i) {
    const bool isDocument = i == 1 && asksFor("ppt");
    if (!isDocument && !mPicture.empty()) deliverPixels(outputs[i]);
  }
}

void AlgorithmChain::deliverPixels(Frame& output) {
  // An output that differs from the picture in format or size is not changed.
  ImageView view;
  if (output.map(Frame::Access::kReadWrite) == 0 && output.view(view)) copyPixels(mPicture.view(), view);
}

void AlgorithmChain::deliverJpeg(Frame* output) {
  ParameterSet& parameters = mRequest.parameters();
  const bool packs = asksFor("refocusJpegPack") || asksFor("dualBokeh");
  const auto refocus = parameters.read<RefocusPackParams>(kParameter, "refocus_jpegpack_params", {});
  const size_t trailer = packs ? sizeof refocus : 0;
  std::vector<uint8_t> file;
  if (output != nullptr && output->capacity() > trailer) file = encode(output->capacity() - trailer);

  parameters.write<int32_t>(kFeedback, "encoded_jpeg_size", static_cast<int32_t>(file.size()));
  parameters.write<int32_t>(kFeedback, "jpeg_encoded_by_hw", 0);
  const size_t packed = file.empty() ? 0 : file.size() + trailer;
  if (packs)
    parameters.write<int32_t>(kFeedback, "output_refocus_jpeg_pack_size", static_cast<int32_t>(packed));
  if (file.empty()) return;
  std::memcpy(output->memory(), file.data(), file.size());
  if (packs) std::memcpy(output->memory() + file.size(), &refocus, sizeof refocus);
  markRan(asksFor("jpegEncode") ? "jpegEncode" : "refocusJpegPack");
}

std::vector<uint8_t> AlgorithmChain::encode(size_t room) const {
  if (mPicture.empty()) return {};
  const ParameterSet& parameters = mRequest.parameters();
  ExifFacts facts;
  facts.info = parameters.read<ExifInfo>(kParameter, "exif_info_for_write", {});
  facts.width = mPicture.view().width;
  facts.height = mPicture.view().height;
  int32_t rotation = 0;
  if (parameters.get(kControl, "jpeg_rotation", &rotation, sizeof rotation) == 0) facts.rotation = rotation;
  return encodeJpeg(mPicture.view(), buildExif(facts), room);
}

// Writes the photographed page, which is assumed to fill the picture, as a separate JPEG.
void AlgorithmChain::deliverDocument() {
  std::vector<Frame>& outputs = mRequest.outputs();
  if (!asksFor("ppt") || outputs.size() < 2 || outputs[1].map(Frame::Access::kReadWrite) != 0) return;
  const std::vector<uint8_t> file = encode(outputs[1].capacity());
  if (file.empty()) return;
  std::memcpy(outputs[1].memory(), file.data(), file.size());
  const int32_t size[] = {mPicture.view().width, mPicture.view().height};
  mRequest.parameters().write(kParameter, "doc_jpeg_size", static_cast<int32_t>(file.size()));
  mRequest.parameters().set(kParameter, "rectify_wh", size, sizeof size);
  markRan("ppt");
}

// Reports the requested point and blur, and the picture's width and height. A JPEG input is passed through,
// so its size in bytes is reported as the encoded size.
void AlgorithmChain::leaveRefocus() {
  if (!asksFor("jpegBokehOnly") || mPicture.empty()) return;
  ParameterSet& parameters = mRequest.parameters();
  const ImageView& view = mPicture.view();
  const int32_t size[] = {view.width, view.height};
  parameters.write(kFeedback, "refocus_point_x", parameters.read<int32_t>(kParameter, "refocus_point_x", 0));
  parameters.write(kFeedback, "refocus_point_y", parameters.read<int32_t>(kParameter, "refocus_point_y", 0));
  parameters.write(kFeedback, "refocus_aperture", parameters.read<int32_t>(kControl, "refocus_level", 0));
  parameters.write(kFeedback, "refocus_jpeg_width", size[0]);
  parameters.write(kFeedback, "refocus_jpeg_height", size[1]);
  parameters.set(kFeedback, "decoded_jpeg_size", size, sizeof size);
  if (view.format == kFormatJpeg)
    parameters.write(kFeedback, "encoded_jpeg_size", static_cast<int32_t>(view.planes[0].rowBytes()));
}

void AlgorithmChain::leaveLightStream() {
  if (!asksFor("lightstream")) return;
  CropRegion region;
  mRequest.frameSize(region.width, region.height);
  mRequest.parameters().write(kFeedback, "lightstream_crop_region", region);
  mRequest.parameters().write(kFeedback, "lightstream_zoom_ratio", 1.0F);
  markRan("lightstream");
}

void AlgorithmChain::leaveProcessedAlgo() const {
  auto processed = mRequest.parameters().read<ProcessedAlgo>(kParameter, "processed_algo", {});
  for (const std::string& name : mReport.ran) {
    for (const ProcessedBit& row : kProcessedBits) {
      if (name == row.algorithm) processed.words[ProcessedAlgo::kApplicationWord] |= row.bit;
    }
  }
  mRequest.parameters().write(kParameter, "processed_algo", processed);
}

}  // namespace orlu::standin
