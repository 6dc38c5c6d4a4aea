// Which algorithms' parameters a request needs.

#include "metadata_updater_rows.h"

namespace orlu {

void MetadataUpdater::updateAlgoType() {
  if (mAlgoList->empty()) return;
  if (listHas("jpegEncode")) updateJpegEncode();
  updateFrameClarity();
}

}  // namespace orlu
