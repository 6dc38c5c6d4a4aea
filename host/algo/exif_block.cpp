#include "exif_block.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <string>

namespace orlu::standin {
namespace {

constexpr ExifByteOrder kOrder = EXIF_BYTE_ORDER_INTEL;

// Values of the camera's tags.
constexpr int32_t kFlashStateFired = 3;
constexpr int32_t kAeAutoFlash = 2;
constexpr int32_t kAeAlwaysFlash = 3;
constexpr int32_t kAwbAuto = 1;

class ExifBuilder {
public:
  ExifBuilder() : mData(exif_data_new(), exif_data_unref) {
    if (mData) exif_data_set_byte_order(mData.get(), kOrder);
  }

  bool valid() const { return mData != nullptr; }

  void addShort(ExifIfd ifd, int tag, int value) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_SHORT, 1, 2);
    if (data != nullptr) exif_set_short(data, kOrder, static_cast<ExifShort>(std::clamp(value, 0, 0xFFFF)));
  }
  void addLong(ExifIfd ifd, int tag, int value) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_LONG, 1, 4);
    if (data != nullptr) exif_set_long(data, kOrder, static_cast<ExifLong>(value));
  }
  void addBytes(ExifIfd ifd, int tag, std::initializer_list<uint8_t> values) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_BYTE, values.size(), values.size());
    if (data != nullptr) std::copy(values.begin(), values.end(), data);
  }
  void addText(ExifIfd ifd, int tag, const std::string& text) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_ASCII, text.size() + 1, text.size() + 1);
    if (data != nullptr) std::memcpy(data, text.c_str(), text.size() + 1);
  }
  void addUndefined(ExifIfd ifd, int tag, const void* bytes, size_t size) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_UNDEFINED, size, size);
    if (data != nullptr) std::memcpy(data, bytes, size);
  }
  void addSignedRational(ExifIfd ifd, int tag, int64_t numerator, int32_t denominator) {
    uint8_t* const data = add(ifd, tag, EXIF_FORMAT_SRATIONAL, 1, 8);
    if (data == nullptr) return;
    const int64_t bounded = std::clamp<int64_t>(numerator, std::numeric_limits<int32_t>::min(),
                                                std::numeric_limits<int32_t>::max());
    exif_set_srational(data, kOrder, {static_cast<ExifSLong>(bounded), denominator});
  }
  // Adds non-negative values as fractions with the given denominator.
  void addRationals(ExifIfd ifd, int tag, std::initializer_list<double> values, uint32_t denominator) {
    uint8_t* data = add(ifd, tag, EXIF_FORMAT_RATIONAL, values.size(), 8 * values.size());
    if (data == nullptr) return;
    for (double value : values) {
      const double numerator =
          std::clamp(std::round(value * denominator), 0.0, double{std::numeric_limits<uint32_t>::max()});
      exif_set_rational(data, kOrder, {static_cast<ExifLong>(numerator), denominator});
      data += 8;
    }
  }

  // Adds missing entries that every photo must have, with their usual values.
  void complete() {
    exif_data_set_data_type(mData.get(), EXIF_DATA_TYPE_COMPRESSED);
    exif_data_fix(mData.get());
  }

  std::vector<uint8_t> bytes() const {
    unsigned char* data = nullptr;
    unsigned int size = 0;
    exif_data_save_data(mData.get(), &data, &size);
    const std::unique_ptr<unsigned char, void (*)(void*)> owner(data, std::free);
    if (data == nullptr) return {};
    return {data, data + size};
  }

private:
  // Returns the bytes of a new entry, owned by mData; null if memory is exhausted.
  uint8_t* add(ExifIfd ifd, int tag, ExifFormat format, size_t components, size_t size) {
    const std::unique_ptr<ExifMem, void (*)(ExifMem*)> memory(exif_mem_new_default(), exif_mem_unref);
    const std::unique_ptr<ExifEntry, void (*)(ExifEntry*)> entry(exif_entry_new_mem(memory.get()),
                                                                 exif_entry_unref);
    if (!entry) return nullptr;
    entry->data = static_cast<unsigned char*>(exif_mem_alloc(memory.get(), static_cast<ExifLong>(size)));
    if (entry->data == nullptr) return nullptr;
    entry->size = static_cast<unsigned int>(size);
    entry->tag = static_cast<ExifTag>(tag);
    entry->components = components;
    entry->format = format;
    exif_content_add_entry(mData->ifd[ifd], entry.get());
    return entry->data;
  }

  std::unique_ptr<ExifData, void (*)(ExifData*)> mData;
};

std::string formatTime(const char* format, const std::tm& time) {
  char text[32] = {};
  return std::string(text, std::strftime(text, sizeof text, format, &time));
}

void addTimes(ExifBuilder& exif) {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  if (localtime_r(&now, &local) == nullptr) return;
  const std::string text = formatTime("%Y:%m:%d %H:%M:%S", local);
  exif.addText(EXIF_IFD_0, EXIF_TAG_DATE_TIME, text);
  exif.addText(EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL, text);
  exif.addText(EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_DIGITIZED, text);
}

int orientationOf(int32_t degrees) {
  switch ((degrees % 360 + 360) % 360) {
    case 90:
      return 6;
    case 180:
      return 3;
    case 270:
      return 8;
    default:
      return 1;
  }
}

// Returns EXIF's flash value. Bit 0: the flash fired. Bits 3 and 4: forced on, forced off, or automatic.
int flashOf(const ExifInfo& info) {
  const bool fired = info.hasFlashState != 0 ? info.flashState == kFlashStateFired : info.flashMode != 0;
  int mode = 0x10;
  if (info.aeMode == kAeAlwaysFlash || fired) mode = 0x08;
  if (info.aeMode == kAeAutoFlash) mode = 0x18;
  return mode | (fired ? 1 : 0);
}

// Returns the EXIF light source of a white balance mode; 0 (unknown) if EXIF has no value for the mode.
int lightSourceOf(int32_t awbMode) {
  constexpr int kSources[] = {0, 0, 3, 2, 16, 1, 10, 0, 11};
  const bool known = awbMode >= 0 && static_cast<size_t>(awbMode) < std::size(kSources);
  return known ? kSources[awbMode] : 0;
}

bool isPositive(float value) {
  return std::isfinite(value) && value > 0;
}

void addExposure(ExifBuilder& exif, const ExifInfo& info) {
  if (info.exposureTime > 0) {
    exif.addRationals(EXIF_IFD_EXIF, EXIF_TAG_EXPOSURE_TIME, {static_cast<double>(info.exposureTime) / 1e9},
                      1'000'000);
  }
  if (isPositive(info.aperture)) exif.addRationals(EXIF_IFD_EXIF, EXIF_TAG_FNUMBER, {info.aperture}, 100);
  const int32_t iso = info.hasIso != 0 ? info.iso : info.sensitivity;
  if (iso > 0) exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_ISO_SPEED_RATINGS, iso);
  if (info.aeCompensationStepDenominator != 0) {
    const int64_t bias = int64_t{info.aeExposureCompensation} * info.aeCompensationStepNumerator;
    exif.addSignedRational(EXIF_IFD_EXIF, EXIF_TAG_EXPOSURE_BIAS_VALUE, bias,
                           info.aeCompensationStepDenominator);
  }
  exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_FLASH, flashOf(info));
  // OFF (0) does not count as manual, because the mode is also 0 if the camera did not report it.
  const bool manual = info.awbMode > kAwbAuto;
  exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_WHITE_BALANCE, manual ? 1 : 0);
  exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_LIGHT_SOURCE, lightSourceOf(info.awbMode));
}

void addLens(ExifBuilder& exif, const ExifInfo& info) {
  if (isPositive(info.focalLength)) {
    exif.addRationals(EXIF_IFD_EXIF, EXIF_TAG_FOCAL_LENGTH, {info.focalLength}, 1000);
  }
  if (info.hasFocalLengthIn35mm != 0 && isPositive(info.focalLengthIn35mm)) {
    const float bounded = std::min(info.focalLengthIn35mm, 65535.0F);
    exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_FOCAL_LENGTH_IN_35MM_FILM, static_cast<int>(std::lround(bounded)));
  }
  if (isPositive(info.uiZoomRatio)) {
    exif.addRationals(EXIF_IFD_EXIF, EXIF_TAG_DIGITAL_ZOOM_RATIO, {info.uiZoomRatio}, 100);
  }
}

void addAngle(ExifBuilder& exif, int tag, double degrees) {
  constexpr uint32_t kDenominator = 10'000;
  // The whole value is rounded once, so that no part ever becomes 60.
  const auto parts = static_cast<int64_t>(std::llround(std::fabs(degrees) * 3600 * kDenominator));
  const int64_t minutes = parts / (60 * int64_t{kDenominator});
  const int64_t wholeDegrees = minutes / 60;
  const double seconds = static_cast<double>(parts % (60 * int64_t{kDenominator})) / kDenominator;
  exif.addRationals(EXIF_IFD_GPS, tag,
                    {static_cast<double>(wholeDegrees), static_cast<double>(minutes % 60), seconds},
                    kDenominator);
}

void addGpsTime(ExifBuilder& exif, int64_t milliseconds) {
  const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
  std::tm utc = {};
  if (milliseconds <= 0 || gmtime_r(&seconds, &utc) == nullptr || utc.tm_year > 9999 - 1900) return;
  exif.addText(EXIF_IFD_GPS, EXIF_TAG_GPS_DATE_STAMP, formatTime("%Y:%m:%d", utc));
  exif.addRationals(EXIF_IFD_GPS, EXIF_TAG_GPS_TIME_STAMP,
                    {double(utc.tm_hour), double(utc.tm_min), double(utc.tm_sec)}, 1);
}

void addLocation(ExifBuilder& exif, const GpsLocation& location) {
  // The negated comparisons also reject NaN.
  if (!(std::fabs(location.latitude) <= 90) || !(std::fabs(location.longitude) <= 180)) return;
  const char* const south = location.latitude < 0 ? "S" : "N";
  const char* const west = location.longitude < 0 ? "W" : "E";
  exif.addBytes(EXIF_IFD_GPS, EXIF_TAG_GPS_VERSION_ID, {2, 3, 0, 0});
  exif.addText(EXIF_IFD_GPS, EXIF_TAG_GPS_LATITUDE_REF, south);
  addAngle(exif, EXIF_TAG_GPS_LATITUDE, location.latitude);
  exif.addText(EXIF_IFD_GPS, EXIF_TAG_GPS_LONGITUDE_REF, west);
  addAngle(exif, EXIF_TAG_GPS_LONGITUDE, location.longitude);
  if (location.hasAltitude != 0 && std::isfinite(location.altitude)) {
    exif.addBytes(EXIF_IFD_GPS, EXIF_TAG_GPS_ALTITUDE_REF, {location.altitude < 0 ? uint8_t{1} : uint8_t{0}});
    exif.addRationals(EXIF_IFD_GPS, EXIF_TAG_GPS_ALTITUDE, {std::fabs(location.altitude)}, 1000);
  }
  addGpsTime(exif, location.timestamp);
}

}  // namespace

std::vector<uint8_t> buildExif(const ExifFacts& facts) {
  constexpr int kSrgb = 1;
  ExifBuilder exif;
  if (!exif.valid()) return {};
  exif.addText(EXIF_IFD_0, EXIF_TAG_MAKE, "Orlu");
  exif.addText(EXIF_IFD_0, EXIF_TAG_MODEL, "Host camera");
  if (facts.rotation) exif.addShort(EXIF_IFD_0, EXIF_TAG_ORIENTATION, orientationOf(*facts.rotation));
  exif.addUndefined(EXIF_IFD_EXIF, EXIF_TAG_EXIF_VERSION, "0230", 4);
  exif.addShort(EXIF_IFD_EXIF, EXIF_TAG_COLOR_SPACE, kSrgb);
  exif.addLong(EXIF_IFD_EXIF, EXIF_TAG_PIXEL_X_DIMENSION, facts.width);
  exif.addLong(EXIF_IFD_EXIF, EXIF_TAG_PIXEL_Y_DIMENSION, facts.height);
  addTimes(exif);
  addExposure(exif, facts.info);
  addLens(exif, facts.info);
  if (facts.info.hasLocation != 0) addLocation(exif, facts.info.location);
  exif.complete();
  return exif.bytes();
}

}  // namespace orlu::standin
