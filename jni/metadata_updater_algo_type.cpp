// Writes the parameters of the algorithms in the request's list, then edits the list.

#include <utility>

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

bool hasEngineAlgorithm(const Shot& shot) {
  return shot.listHas("engineDualbokeh") || shot.listHas("engineDualbokehVerify") ||
         shot.listHas("engineDualbokehAngle") || shot.listHas("engineDistortion") ||
         shot.listHas("engineDualbokehEasyCalib");
}

std::vector<std::string> multiFrameBokeh(const Shot& shot) {
  std::vector<std::string> list = {"night", "dualBokeh"};
  if (shot.listHas("beauty")) list.emplace_back("beauty");
  if (shot.listHas("jpegEncode")) list.emplace_back("jpegEncode");
  return list;
}

}  // namespace

void MetadataUpdater::updateAlgoType() {
  updatePanorama();
  if (mAlgoList->empty()) return;
  updateAlgorithmParameters();
  editAlgoList();
}

// Each step sees the list as earlier steps left it, before editAlgoList() (Oddity 17). If two steps write the
// same key, the later one wins.
void MetadataUpdater::updateAlgorithmParameters() {
  const bool isRaw = mShot.isRaw();
  if (isRaw) {
    clearProcessedAlgoTag();
  } else {
    updateProcessedAlgoTag();
  }
  if (mShot.listHas("gra")) updateGra();
  if (mShot.listHas("beauty")) updateBeauty();
  if (mShot.listHas("jpegBokehOnly")) updateJpegRefocus();
  if (hasEngineAlgorithm(mShot)) updateEngine();
  if (isRaw) updateRawAlgorithms();
  if ((isRaw || mRequest->isStopProcess()) && mShot.listHas("lightstream")) updateLightstream();
  if (!isRaw && (mShot.listHas("superns") || mShot.listHas("supernsll"))) updateSuperNsYuv();
  updateRawNR();
  updateDoubleExpo();
  if (mShot.listHas("jpegEncode")) updateJpegEncode();
  if (mShot.listHas("upscale") || mIsUpscale != 0) updateUpscale();
  if (mShot.listHas("rawenhance")) updataRawenhance();
  if (mShot.listHas("zoom")) updateZoom();
  updateFrameClarity();
}

void MetadataUpdater::updateRawAlgorithms() {
  if (mShot.listHas("llhdr")) updateRawLLHDR();
  if (mShot.listHas("superns") || mShot.listHas("supernsll")) updateSuperNS();
  if (mShot.listHas("pixelshift") && !(mIsRawnrCapture != 0 && mIsSatFusion)) updatePixelShift();
  if (mShot.listHas("rawhdr") || mShot.listHas("superstar") || mShot.listHas("supermoonRaw")) updateRawHdr();
}

// Adds refocusJpegPack, replaces the list for multi-frame bokeh, and removes algorithms that the request or
// another algorithm excludes. Each rule sees the result of the earlier rules.
void MetadataUpdater::editAlgoList() {
  constexpr char kOperation[] = "updateAlgoType";  // logged instead of the function's name
  const bool isRaw = mShot.isRaw();
  if (mShot.listHas("dualBokeh") && mShot.listHas("jpegEncode")) mShot.append("refocusJpegPack");
  if (isRaw) {
    LOGD_AS(kOperation, "enableLTMZoom remove jpeg encode");
    mShot.remove("jpegEncode");
  }
  if (mEnableHwMFNR != 0) {
    LOGD_AS(kOperation, "check MFNR opened, night shot pass.");
    mShot.remove("night");
  }
  if (mShot.listHas("dualbokehMultiFrame") && mEnableHwMFNR == 0) *mAlgoList = multiFrameBokeh(mShot);
  const bool isNightRaw = isRaw && (mShot.listHas("supernsll") || mShot.listHas("llhdr"));
  if (isNightRaw && mShot.listHas("dualBokeh")) mShot.remove("dualBokeh");
  if (mShot.listHas("jpegEncode")) mShot.remove("lightstream");
  // No tag sets this flag. It is meant for clients that support only these four algorithms.
  if (mUseFilterList != 0) {
    std::vector<std::string> supported = {"beauty", "filter", "blackImg", "distortion"};
    AlgoListSupportFilter(supported, *mAlgoList);
  }
}

}  // namespace orlu
