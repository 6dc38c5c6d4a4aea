// Every getter of the metadata parser as a function that tells its answer and its outputs in one text, with a
// value for it to find. All outputs were 7 before.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "camera_metadata_parser.h"
#include "error_lines.h"
#include "fixtures.h"

namespace orlu::test {

using P = CameraMetadataParser;

// What a getter is called with. The capacity is for those that take one.
struct Ask {
  const char* key;
  jobject source;  // the capture result, or the only source
  jobject parameter;
  int capacity;
};

template <auto Getter, typename... Outputs>
int call(P& parser, const Ask& ask, Outputs&&... outputs) {
  if constexpr (std::is_invocable_v<decltype(Getter), P&, Outputs..., const char*, jobject, jobject>) {
    return (parser.*Getter)(outputs..., ask.key, ask.source, ask.parameter);
  } else {
    return (parser.*Getter)(outputs..., ask.key, ask.source);
  }
}

template <typename... Values>
std::string told(int status, const Values&... values) {
  std::ostringstream text;
  text.precision(12);
  text << status << ":";
  ((text << " " << values), ...);
  return text.str();
}

template <auto Getter, typename T>
std::string readNumber(P& parser, const Ask& ask) {
  T value = 7;
  const int status = call<Getter>(parser, ask, value);
  return told(status, value);
}

// A record as the ints that it is made of, padding included.
template <auto Getter, typename Record>
std::string readInts(P& parser, const Ask& ask) {
  int32_t ints[sizeof(Record) / sizeof(int32_t)];
  std::fill(std::begin(ints), std::end(ints), 7);
  Record record;
  std::memcpy(&record, ints, sizeof ints);
  const int status = call<Getter>(parser, ask, record);
  std::memcpy(ints, &record, sizeof ints);
  std::string text;
  for (const int32_t word : ints) text += (text.empty() ? "" : " ") + std::to_string(word);
  return told(status, text);
}

template <auto Getter, typename T>
std::string readArray(P& parser, const Ask& ask) {
  T v[5] = {7, 7, 7, 7, 7};
  const int status = call<Getter>(parser, ask, v, ask.capacity);
  return told(status, v[0], v[1], v[2], v[3], v[4]);
}

// Zeros are told as points, bytes that were left alone as number signs.
template <auto Getter>
std::string readBytes(P& parser, const Ask& ask) {
  char buffer[] = "######";
  const int status = call<Getter>(parser, ask, buffer, ask.capacity);
  for (char* c = buffer; c != buffer + 6; ++c) {
    if (*c == '\0') *c = '.';
  }
  return told(status, buffer);
}

inline std::string readStrings(P& parser, const Ask& ask) {
  std::vector<std::string> values = {"first"};
  const int status = call<&P::getStringArray>(parser, ask, values);
  std::string text;
  for (const std::string& value : values) text += (text.empty() ? "" : " ") + value;
  return told(status, text);
}

inline std::string textOf(const __tagOrluRect& rect) {
  std::ostringstream text;
  text << rect.left << " " << rect.top << " " << rect.right << " " << rect.bottom;
  return text.str();
}

inline constexpr __tagOrluRect kSevens = {7, 7, 7, 7};

// The count, and all rectangles up to the last that was written.
template <auto Getter>
std::string readFaces(P& parser, const Ask& ask) {
  _tagOrluFaceInfo info;
  info.count = 7;
  for (__tagOrluRect& rect : info.rects) rect = kSevens;
  for (int32_t& orientation : info.orientations) orientation = 7;
  const int status = call<Getter>(parser, ask, info, ask.capacity);
  std::string text;
  std::string unwritten;
  for (const __tagOrluRect& rect : info.rects) {
    unwritten += ", " + textOf(rect);
    if (textOf(rect) != textOf(kSevens)) text += std::exchange(unwritten, "");
  }
  for (const int32_t orientation : info.orientations) text += orientation == 7 ? "" : " orientation";
  return told(status, std::to_string(info.count) + text);
}

inline std::string readRegion(P& parser, const Ask& ask) {
  __tagOrluRect rect = kSevens;
  int32_t weight = 7;
  const int status = call<&P::getMeteringRectangle>(parser, ask, rect, weight);
  return told(status, textOf(rect), weight);
}

inline std::string readLocation(P& parser, const Ask& ask) {
  GpsLocation l = {7, 7, 7, 7, 7, 7};
  const int status = call<&P::getGpsLocation>(parser, ask, l);
  return told(status, l.latitude, l.longitude, l.altitude, l.timestamp, l.hasAltitude);
}

// ---- The getters

enum Source { kResult, kParameter, kCharacteristics };

struct Value {
  jobject (*make)();
  const char* text;
};

struct Getter {
  const char* name;
  Source source;
  const char* key;
  const char* untouched;
  std::string (*read)(P&, const Ask&);
  Value value;         // in the source
  Value over;          // in the composition over a capture result
  jobject (*wrong)();  // of another type, in a composition
};

inline jobject countedFaces(int count) {
  std::vector<__tagOrluRect> rects;
  for (int i = 0; i < count; ++i) rects.push_back({i, i + 1, i + 2, i + 3});
  return javaFaces(rects);
}

inline constexpr char kInteger[] = "java/lang/Integer";
inline constexpr char kFloat[] = "java/lang/Float";

// clang-format off
#define JAVA(...) [] { return __VA_ARGS__; }
inline const Getter kGetters[] = {
    {"getInt", kResult, "android.control.afMode", "7", readInts<&P::getInt, int32_t>, {JAVA(javaInt(4)), "4"},
     {JAVA(javaInt(-5)), "-5"}, JAVA(javaLong(4))},
    {"getFloat", kResult, "android.control.zoomRatio", "7", readNumber<&P::getFloat, float>,
     {JAVA(javaFloat(2.5F)), "2.5"}, {JAVA(javaFloat(-0.5F)), "-0.5"}, JAVA(javaDouble(2.5))},
    {"getLong", kResult, "android.sensor.timestamp", "7", readNumber<&P::getLong, int64_t>,
     {JAVA(javaLong(5'000'000'001)), "5000000001"}, {JAVA(javaLong(-5'000'000'001)), "-5000000001"},
     JAVA(javaInt(5))},
    {"getString", kResult, "orlu.control.localtime", "....##", readBytes<&P::getString>,
     {JAVA(javaString("abc")), "abc.##"}, {JAVA(javaString("xy")), "xy..##"}, JAVA(javaBytes({'x', 'y'}))},
    {"getArrayBytes", kResult, "orlu.feedback.sensor_pdaf_info", "....##", readBytes<&P::getArrayBytes>,
     {JAVA(javaBytes({'a', 0, 'c'})), "a.c.##"}, {JAVA(javaBytes({'x'})), "x...##"}, JAVA(javaString("x"))},
    {"getIntArray", kResult, "com.orlu.image_sizes", "7 7 7 7 7", readArray<&P::getIntArray, int32_t>,
     {JAVA(javaInts({1, 2, 3})), "1 2 3 7 7"}, {JAVA(javaInts({4, 5, 6})), "4 5 6 7 7"},
     JAVA(javaLongs({4}))},
    {"getFloatArray", kResult, "orlu.control.filterinfo", "7 7 7 7 7", readArray<&P::getFloatArray, float>,
     {JAVA(javaFloats({1.5, 2, 3})), "1.5 2 3 7 7"}, {JAVA(javaFloats({4, 5, 6.5})), "4 5 6.5 7 7"},
     JAVA(javaDoubles({4}))},
    {"getDoubleArray", kResult, "orlu.feedback.clarityScore", "7 7 7 7 7",
     readArray<&P::getDoubleArray, double>, {JAVA(javaDoubles({0.1, 2, 3})), "0.1 2 3 7 7"},
     {JAVA(javaDoubles({4, 5, 0.6})), "4 5 0.6 7 7"}, JAVA(javaFloats({4}))},
    {"getLongArray", kResult, "orlu.feedback.gtmPackedData", "7 7 7 7 7",
     readArray<&P::getLongArray, int64_t>, {JAVA(javaLongs({5'000'000'001, 2, 3})), "5000000001 2 3 7 7"},
     {JAVA(javaLongs({4, 5, 6})), "4 5 6 7 7"}, JAVA(javaInts({4}))},
    {"getStringArray", kResult, "orlu.control.algoType", "first", readStrings,
     {JAVA(javaStrings({"hdr", "night"})), "first hdr night"}, {JAVA(javaStrings({"flip"})), "first flip"},
     JAVA(javaString("flip"))},
    {"getFaceInfo", kResult, "android.statistics.faces", "7", readFaces<&P::getFaceInfo>,
     {JAVA(javaFaces({{1, 2, 3, 4}, {5, 6, 7, 8}})), "2, 1 2 3 4, 5 6 7 8"},
     {JAVA(javaFaces({{9, 8, 7, 6}})), "1, 9 8 7 6"}, JAVA(javaInts({1, 2, 3, 4}))},
    {"getIntFaceArray", kResult, "orlu.feedback.satFaceRect", "7", readFaces<&P::getIntFaceArray>,
     {JAVA(javaInts({1, 2, 3, 4, 5, 6, 7, 8})), "2, 1 2 3 4, 5 6 7 8"},
     {JAVA(javaInts({9, 8, 7, 6})), "1, 9 8 7 6"}, JAVA(countedFaces(1))},
    {"getRectInfo", kResult, "android.scaler.cropRegion", "7 7 7 7", readInts<&P::getRectInfo, __tagOrluRect>,
     {JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"}, {JAVA(javaRect({5, 6, 8, 9})), "5 6 8 9"},
     JAVA(javaInts({1, 2, 3, 4}))},
    {"getRectInfo_ex", kResult, "android.scaler.cropRegion", "7 7 7 7 7",
     readInts<&P::getRectInfo_ex, SCR_Type>, {JAVA(javaRect({1, 2, 3, 4})), "1 3 2 4 0"},
     {JAVA(javaRect({5, 6, 8, 9})), "5 8 6 9 0"}, JAVA(countedFaces(1))},
    {"getMeteringRectangle", kResult, "android.control.afRegions", "7 7 7 7 7", readRegion,
     {JAVA(javaRegions({{1, 2, 3, 4}, {5, 6, 7, 8}}, 900)), "1 2 3 4 900"},
     {JAVA(javaRegions({{5, 6, 8, 9}}, 3)), "5 6 8 9 3"}, JAVA(javaRect({1, 2, 3, 4}))},
    {"getGpsLocation", kResult, "android.jpeg.gpsLocation", "7 7 7 7 7", readLocation,
     {JAVA(javaLocation(48.5, -2.25, 30, 1'700'000'000'001)), "48.5 -2.25 30 1700000000001 1"},
     {JAVA(javaLocation(1, 2, 3, 4)), "1 2 3 4 1"}, JAVA(javaDoubles({1, 2}))},

    {"getIntOrlu", kParameter, "i", "7", readInts<&P::getIntOrlu, int32_t>, {JAVA(javaInt(4)), "4"}, {},
     JAVA(javaLong(4))},
    {"getLongOrlu", kParameter, "l", "7", readNumber<&P::getLongOrlu, int64_t>,
     {JAVA(javaLong(5'000'000'001)), "5000000001"}, {}, JAVA(javaInt(4))},
    {"getFloatOrlu", kParameter, "f", "7", readNumber<&P::getFloatOrlu, float>,
     {JAVA(javaFloat(2.5F)), "2.5"}, {}, JAVA(javaDouble(4))},
    {"getStringOrlu", kParameter, "s", "....##", readBytes<&P::getStringOrlu>,
     {JAVA(javaString("abc")), "abc.##"}, {}, JAVA(javaBytes({'x'}))},
    {"getFaceInfoOrlu", kParameter, "faces", "7", readFaces<&P::getFaceInfoOrlu>,
     {JAVA(javaFaces({{1, 2, 3, 4}})), "1, 1 2 3 4"}, {}, JAVA(javaInts({1, 2, 3, 4}))},
    {"getRectInfoOrlu", kParameter, "rect", "7 7 7 7", readInts<&P::getRectInfoOrlu, __tagOrluRect>,
     {JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"}, {}, JAVA(countedFaces(1))},
    {"getMeteringRectangleOrlu", kParameter, "region", "7 7 7 7",
     readInts<&P::getMeteringRectangleOrlu, __tagOrluRect>,
     {JAVA(javaRegions({{1, 2, 3, 4}, {5, 6, 7, 8}}, 9)), "1 2 3 4"}, {}, JAVA(javaRect({1, 2, 3, 4}))},
    // Boxed arrays only.
    {"getIntArrayOrlu", kParameter, "ints", "7 7 7 7 7", readArray<&P::getIntArrayOrlu, int32_t>,
     {JAVA(javaArray(kInteger, {javaInt(1), javaInt(2), javaInt(3)})), "1 2 3 7 7"}, {},
     JAVA(javaInts({1, 2, 3}))},
    {"getFloatArrayOrlu", kParameter, "floats", "7 7 7 7 7", readArray<&P::getFloatArrayOrlu, float>,
     {JAVA(javaArray(kFloat, {javaFloat(1), javaFloat(2), javaFloat(3)})), "1 2 3 7 7"}, {},
     JAVA(javaFloats({1, 2, 3}))},

    {"getCharacteristicsInt", kCharacteristics, "android.lens.facing", "7",
     readInts<&P::getCharacteristicsInt, int32_t>, {JAVA(javaInt(4)), "4"}, {}, nullptr},
    {"getCharacteristicsIntArray", kCharacteristics, "com.orlu.image_sizes", "7 7 7 7 7",
     readArray<&P::getCharacteristicsIntArray, int32_t>, {JAVA(javaInts({1, 2, 3})), "1 2 3 7 7"}, {},
     nullptr},
    {"getCharacteristicsRational", kCharacteristics, "orlu.test.rational", "7 7",
     readInts<&P::getCharacteristicsRational, Rational>, {JAVA(javaRational(-1, 3)), "-1 3"}, {}, nullptr},
    {"getCharacteristicsRectInfo", kCharacteristics, "android.sensor.info.activeArraySize", "7 7 7 7",
     readInts<&P::getCharacteristicsRectInfo, __tagOrluRect>, {JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"}, {},
     nullptr},
    {"getCharacteristicsRectInfo_ex", kCharacteristics, "android.sensor.info.activeArraySize", "7 7 7 7 7",
     readInts<&P::getCharacteristicsRectInfo_ex, SCR_Type>, {JAVA(javaRect({1, 2, 3, 4})), "1 3 2 4 0"}, {},
     nullptr},
};
// clang-format on
#undef JAVA

inline jobject compositionWith(const char* key, jobject value) {
  jobject composition = newComposition();
  putKey(composition, key, value);
  return composition;
}

// The getter's own source, with a value or empty.
inline jobject sourceOf(const Getter& getter, bool hasValue) {
  if (getter.source == kParameter) {
    return hasValue ? compositionWith(getter.key, getter.value.make()) : newComposition();
  }
  registerTag("orlu.test.rational", "RATIONAL");
  jobject metadata = newMetadata();
  if (hasValue) setTag(metadata, getter.key, getter.value.make());
  return getter.source == kResult ? newCaptureResult(metadata) : newCharacteristics(metadata);
}

// A composition for the getter to find another value in than its source has.
inline jobject compositionOver(const Getter& getter) {
  return compositionWith(getter.key, getter.over.make());
}

// Reads, and lets no exception stay pending.
inline std::string readBy(P& parser, const Getter& getter, const Ask& ask) {
  std::string text = getter.read(parser, ask);
  EXPECT_FALSE(env()->ExceptionCheck());
  env()->ExceptionClear();
  return text;
}

inline std::string parserLine(const std::string& message) {
  return errorLine("CameraMetadataParser", message);
}

}  // namespace orlu::test
