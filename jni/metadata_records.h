// Camera metadata passed as bytes to and from the algorithms. The algorithm library defines the layouts.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlu {

struct __tagOrluRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
};
static_assert(sizeof(__tagOrluRect) == 16);
static_assert(offsetof(__tagOrluRect, left) == 0);
static_assert(offsetof(__tagOrluRect, top) == 4);
static_assert(offsetof(__tagOrluRect, right) == 8);
static_assert(offsetof(__tagOrluRect, bottom) == 12);

struct _tagOrluSize {
  int32_t width = 0;
  int32_t height = 0;
};
static_assert(sizeof(_tagOrluSize) == 8);
static_assert(offsetof(_tagOrluSize, height) == 4);

// A sensor crop. Its fields contain x, y, width and height, in this order, despite their names. Their order
// differs from __tagOrluRect. The record is copied with its padding, so its creator zeroes it first.
struct SCR_Type {
  int32_t left;
  int32_t right;
  int32_t top;
  int32_t bottom;
  bool flag;
  uint8_t padding[3];
};
static_assert(sizeof(SCR_Type) == 20);
static_assert(offsetof(SCR_Type, left) == 0);
static_assert(offsetof(SCR_Type, right) == 4);
static_assert(offsetof(SCR_Type, top) == 8);
static_assert(offsetof(SCR_Type, bottom) == 12);
static_assert(offsetof(SCR_Type, flag) == 16);

constexpr int kMaxFaces = 10;

struct _tagOrluFaceInfo {
  int32_t count = 0;
  __tagOrluRect rects[kMaxFaces];
  int32_t orientations[kMaxFaces] = {};
};
static_assert(sizeof(_tagOrluFaceInfo) == 204);
static_assert(offsetof(_tagOrluFaceInfo, rects) == 4);
static_assert(offsetof(_tagOrluFaceInfo, orientations) == 164);

struct PdafPair {
  int32_t first = 0;
  int32_t second = 0;
};

// Phase-detection data in the algorithms' layout. The count comes from the camera and may exceed kPairs.
struct PdafInfo {
  static constexpr int kPairs = 256;

  int32_t header[4] = {};
  int32_t count = 0;
  PdafPair pairs[kPairs];
};
static_assert(sizeof(PdafInfo) == 2068);
static_assert(offsetof(PdafInfo, count) == 16);
static_assert(offsetof(PdafInfo, pairs) == 20);

// PdafInfo as the sensor attaches it to a frame.
struct SensorPdafInfo {
  PdafInfo info;
  uint8_t reserved2068[8] = {};
  int32_t type = 0;
};
static_assert(sizeof(SensorPdafInfo) == 2080);
static_assert(offsetof(SensorPdafInfo, type) == 2076);

struct GpsLocation {
  double latitude = 0;    // degrees
  double longitude = 0;   // degrees
  double altitude = 0;    // metres
  int64_t timestamp = 0;  // milliseconds since 1970, from Location.getTime()
  int32_t hasAltitude = 0;
  int32_t reserved = 0;
};
static_assert(sizeof(GpsLocation) == 40);
static_assert(offsetof(GpsLocation, longitude) == 8);
static_assert(offsetof(GpsLocation, altitude) == 16);
static_assert(offsetof(GpsLocation, timestamp) == 24);
static_assert(offsetof(GpsLocation, hasAltitude) == 32);

struct Rational {
  int32_t numerator = 0;
  int32_t denominator = 0;
};
static_assert(sizeof(Rational) == 8);
static_assert(offsetof(Rational, denominator) == 4);

// Facts for a JPEG's EXIF block, in the encoder's layout.
struct ExifInfo {
  int64_t exposureTime = 0;  // nanoseconds
  int32_t iso = 0;
  int32_t hasIso = 0;
  float aperture = 0;  // f-number
  int32_t sensitivity = 0;
  float uiZoomRatio = 0;
  float focalLengthIn35mm = 0;  // millimetres
  int32_t hasFocalLengthIn35mm = 0;
  float focalLength = 0;  // millimetres
  int32_t flashMode = 0;
  int32_t hasFlashState = 0;
  int32_t awbMode = 0;
  int32_t sceneMode = 0;
  int32_t aeMode = 0;
  int32_t aeExposureCompensation = 0;  // steps
  int32_t filterType = 0;
  float filterIntensity = 0;
  int32_t filterMask = 0;
  int32_t reserved76 = 0;
  int64_t sensorTimestamp = 0;  // nanoseconds
  GpsLocation location;
  int32_t hasLocation = 0;
  int32_t flashState = 0;
  int32_t aeCompensationStepNumerator = 0;
  int32_t aeCompensationStepDenominator = 0;
  int32_t reserved144[2] = {};
};
static_assert(sizeof(ExifInfo) == 152);
static_assert(offsetof(ExifInfo, iso) == 8);
static_assert(offsetof(ExifInfo, hasIso) == 12);
static_assert(offsetof(ExifInfo, aperture) == 16);
static_assert(offsetof(ExifInfo, sensitivity) == 20);
static_assert(offsetof(ExifInfo, uiZoomRatio) == 24);
static_assert(offsetof(ExifInfo, focalLengthIn35mm) == 28);
static_assert(offsetof(ExifInfo, hasFocalLengthIn35mm) == 32);
static_assert(offsetof(ExifInfo, focalLength) == 36);
static_assert(offsetof(ExifInfo, flashMode) == 40);
static_assert(offsetof(ExifInfo, hasFlashState) == 44);
static_assert(offsetof(ExifInfo, awbMode) == 48);
static_assert(offsetof(ExifInfo, sceneMode) == 52);
static_assert(offsetof(ExifInfo, aeMode) == 56);
static_assert(offsetof(ExifInfo, aeExposureCompensation) == 60);
static_assert(offsetof(ExifInfo, filterType) == 64);
static_assert(offsetof(ExifInfo, filterIntensity) == 68);
static_assert(offsetof(ExifInfo, filterMask) == 72);
static_assert(offsetof(ExifInfo, sensorTimestamp) == 80);
static_assert(offsetof(ExifInfo, location) == 88);
static_assert(offsetof(ExifInfo, hasLocation) == 128);
static_assert(offsetof(ExifInfo, flashState) == 132);
static_assert(offsetof(ExifInfo, aeCompensationStepNumerator) == 136);
static_assert(offsetof(ExifInfo, aeCompensationStepDenominator) == 140);
static_assert(offsetof(ExifInfo, reserved144) == 144);

// Facts that the encoder packs with a JPEG that can be refocused later.
struct RefocusPackParams {
  uint8_t reserved0[92] = {};
  int32_t pointRatioX = 0;
  int32_t pointRatioY = 0;
  int32_t fNumber = 0;  // f-number times 100
  uint8_t reserved104[12] = {};
  int32_t filmSize = 0;
};
static_assert(sizeof(RefocusPackParams) == 120);
static_assert(offsetof(RefocusPackParams, pointRatioX) == 92);
static_assert(offsetof(RefocusPackParams, pointRatioY) == 96);
static_assert(offsetof(RefocusPackParams, fNumber) == 100);
static_assert(offsetof(RefocusPackParams, filmSize) == 116);

// The algorithms that have processed an image. Word 3 is exchanged with the application.
struct ProcessedAlgo {
  static constexpr int kApplicationWord = 3;

  uint64_t words[5] = {};
};
static_assert(sizeof(ProcessedAlgo) == 40);

struct OutlinePoint {
  int32_t x;
  int32_t y;
};
static_assert(sizeof(OutlinePoint) == 8);
static_assert(offsetof(OutlinePoint, y) == 4);

// Faces that the beauty algorithm found in the image.
struct FaceOutline {
  static constexpr int kPoints = 120;

  int32_t faceCount;
  OutlinePoint points[kPoints];
  uint8_t reserved964[8644];
  float beautyPose[3];
  uint8_t reserved9620[916];
  int32_t faceRect[4];
  uint8_t reserved10552[184];
};
static_assert(sizeof(FaceOutline) == 10736);
static_assert(offsetof(FaceOutline, points) == 4);
static_assert(offsetof(FaceOutline, beautyPose) == 9608);
static_assert(offsetof(FaceOutline, faceRect) == 10536);

}  // namespace orlu
