// Which algorithms' parameters a request needs, and which algorithms of its list must not run together.

#include <utility>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateAlgoType";  // named by the lines of its parts

}  // namespace

void MetadataUpdater::updateAlgoType() {
  updatePanorama();
  if (mAlgoList->empty()) return;
  updateAlgorithmParameters();
  editAlgoList();
}

// Each step sees the list as the client sent it, with what earlier steps appended. Their order is meant.
void MetadataUpdater::updateAlgorithmParameters() {
  const bool isRaw = isRawFormat() != 0;
  if (isRaw) {
    clearProcessedAlgoTag();
  } else {
    updateProcessedAlgoTag();
  }
  if (listHas("gra")) updateGra();
  if (listHas("beauty")) updateBeauty();
  if (listHas("jpegBokehOnly")) updateJpegRefocus();
  if (hasEngineAlgorithm()) updateEngine();
  if (isRaw) updateRawAlgorithms();
  if ((isRaw || mRequest->isStopProcess()) && listHas("lightstream")) updateLightstream();
  if (!isRaw && (listHas("superns") || listHas("supernsll"))) updateSuperNsYuv();
  updateRawNR();
  updateDoubleExpo();
  if (listHas("jpegEncode")) updateJpegEncode();
  if (listHas("upscale") || mIsUpscale != 0) updateUpscale();
  if (listHas("rawenhance")) updataRawenhance();
  if (listHas("zoom")) updateZoom();
  updateFrameClarity();
}

bool MetadataUpdater::hasEngineAlgorithm() const {
  return listHas("engineDualbokeh") || listHas("engineDualbokehVerify") || listHas("engineDualbokehAngle") ||
         listHas("engineDistortion") || listHas("engineDualbokehEasyCalib");
}

void MetadataUpdater::updateRawAlgorithms() {
  if (listHas("llhdr")) updateRawLLHDR();
  if (listHas("superns") || listHas("supernsll")) updateSuperNS();
  if (listHas("pixelshift") && !(mIsRawnrCapture != 0 && mIsSatFusion)) updatePixelShift();
  if (listHas("rawhdr") || listHas("superstar") || listHas("supermoonRaw")) updateRawHdr();
}

// Combinations that must not run together. Each rule sees what the ones before it left.
void MetadataUpdater::editAlgoList() {
  const bool isRaw = isRawFormat() != 0;
  if (listHas("dualBokeh") && listHas("jpegEncode")) append("refocusJpegPack");
  if (isRaw) {
    LOGD_AS(kOperation, "enableLTMZoom remove jpeg encode");
    removeAlgoFromAlgoList(*mAlgoList, "jpegEncode");
  }
  if (mEnableHwMFNR != 0) {
    LOGD_AS(kOperation, "check MFNR opened, night shot pass.");
    removeAlgoFromAlgoList(*mAlgoList, "night");
  }
  if (listHas("dualbokehMultiFrame") && mEnableHwMFNR == 0) replaceByMultiFrameBokeh();
  if (isRaw && listHas("dualBokeh") && (listHas("supernsll") || listHas("llhdr"))) {
    removeAlgoFromAlgoList(*mAlgoList, "dualBokeh");
  }
  if (listHas("jpegEncode")) removeAlgoFromAlgoList(*mAlgoList, "lightstream");
  // Nobody here sets this flag. It is for a client that can do no more than these four.
  if (mUseFilterList != 0) {
    std::vector<std::string> supported = {"beauty", "filter", "blackImg", "distortion"};
    AlgoListSupportFilter(supported, *mAlgoList);
  }
}

void MetadataUpdater::replaceByMultiFrameBokeh() {
  std::vector<std::string> list = {"night", "dualBokeh"};
  if (listHas("beauty")) list.emplace_back("beauty");
  if (listHas("jpegEncode")) list.emplace_back("jpegEncode");
  *mAlgoList = std::move(list);
}

}  // namespace orlu
