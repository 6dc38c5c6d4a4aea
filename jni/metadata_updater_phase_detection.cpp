// Phase-detection autofocus data of the sensor, for the algorithms that refocus.

#include <algorithm>
#include <cstring>
#include <iterator>

#include "metadata_updater_rows.h"

namespace orlu {
namespace {

// Types 3 and 4 always are, type 2 only while the camera has not compensated it.
bool isUsable(int32_t type, int32_t isCompensated) {
  return type == 3 || type == 4 || (type == 2 && isCompensated == 0);
}

}  // namespace

void MetadataUpdater::updatePhaseDetection() {
  const auto bytes = readOr(Bytes<sizeof(SensorPdafInfo)>(), "orlu.feedback.sensor_pdaf_info", firstFrame());
  const auto isCompensated = readOr<int32_t>(0, "orlu.feedback.isPDCompensation", firstFrame());
  SensorPdafInfo sensor;
  std::memcpy(&sensor, bytes.data, sizeof sensor);

  const bool usable = isUsable(sensor.type, isCompensated);
  PdafInfo info;
  if (usable) {
    std::copy_n(sensor.info.header, std::size(info.header), info.header);
    // The count is handed on as it stands, also past the table.
    info.count = sensor.info.count;
    std::copy_n(sensor.info.pairs, std::clamp(info.count, 0, PdafInfo::kPairs), info.pairs);
  }
  write(kSensor, "pdaf_info", info);
  write(kSensor, "has_pdaf_info", usable);
}

}  // namespace orlu
