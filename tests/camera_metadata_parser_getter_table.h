// Table of the metadata parser's getters. Each row has an example value, and a function that calls the getter
// and returns the status and the outputs as text.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "camera_metadata_parser.h"
#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "jni_table.h"

namespace orlu::test {

using P = CameraMetadataParser;

// Arguments of a getter. Only some getters use `parameter` and `capacity`.
struct Ask {
  const char* key;
  jobject source;  // capture result, composition or characteristics
  jobject parameter;
  int capacity;
};

template <typename Get, typename... Outputs>
int call(Get get, P& parser, const Ask& ask, Outputs&&... outputs) {
  if constexpr (std::is_invocable_v<Get, P&, Outputs..., const char*, jobject, jobject>) {
    return (parser.*get)(outputs..., ask.key, ask.source, ask.parameter);
  } else {
    return (parser.*get)(outputs..., ask.key, ask.source);
  }
}

// Value of numeric outputs before the call.
constexpr int kUnwritten = -77;

// Returns "status: elements". Shows unwritten elements as "#", but omits them after the last written element.
template <typename Elements>
std::string told(int status, const Elements& elements) {
  std::ostringstream text;
  text.precision(15);
  text << status << ":";
  std::string unwritten;
  for (const auto& element : elements) {
    const bool isWritten = element != std::decay_t<decltype(element)>(kUnwritten);
    if (isWritten) text << std::exchange(unwritten, "") << " " << element;
    if (!isWritten) unwritten += " #";
  }
  return text.str();
}

// Passes a record to `get`. Returns the status and the record's elements, including padding, in the form of
// told().
template <typename Element, typename Record, typename Get>
std::string readAs(Get get) {
  Element elements[sizeof(Record) / sizeof(Element)];
  std::fill(std::begin(elements), std::end(elements), Element{kUnwritten});
  Record record;
  std::memcpy(&record, elements, sizeof elements);
  const int status = get(record);
  std::memcpy(elements, &record, sizeof elements);
  return told(status, elements);
}

template <typename T, typename... Sources>
std::string read(int (P::*get)(T&, const char*, Sources...), P& parser, const Ask& ask) {
  using Element = std::conditional_t<std::is_arithmetic_v<T>, T, int32_t>;
  return readAs<Element, T>([&](T& value) { return call(get, parser, ask, value); });
}

template <typename T, typename... Sources>
std::string read(int (P::*get)(T*, int, const char*, Sources...), P& parser, const Ask& ask) {
  struct Array {
    T values[5];
  };
  return readAs<T, Array>([&](Array& array) { return call(get, parser, ask, array.values, ask.capacity); });
}

// Returns the status and the buffer, with zero bytes as "." and unwritten bytes as "#". Omits the buffer if
// the getter only zeroed it.
template <typename... Sources>
std::string read(int (P::*get)(char*, int, const char*, Sources...), P& parser, const Ask& ask) {
  std::string buffer = "######";
  const int status = call(get, parser, ask, buffer.data(), ask.capacity);
  std::replace(buffer.begin(), buffer.end(), '\0', '.');
  const auto room = static_cast<size_t>(ask.capacity);
  const bool isZeroed = buffer == std::string(room, '.') + std::string(buffer.size() - room, '#');
  return std::to_string(status) + (isZeroed ? ":" : ": " + buffer);
}

template <typename... Sources>
std::string read(int (P::*get)(std::vector<std::string>&, const char*, Sources...), P& parser,
                 const Ask& ask) {
  std::vector<std::string> values = {"first"};
  const int status = call(get, parser, ask, values);
  std::string text;
  for (const std::string& value : values) text += " " + value;
  return std::to_string(status) + ":" + (text == " first" ? "" : text);
}

template <typename... Sources>
std::string read(int (P::*get)(_tagOrluFaceInfo&, int, const char*, Sources...), P& parser, const Ask& ask) {
  return readAs<int32_t, _tagOrluFaceInfo>(
      [&](_tagOrluFaceInfo& faces) { return call(get, parser, ask, faces, ask.capacity); });
}

template <typename... Sources>
std::string read(int (P::*get)(__tagOrluRect&, int32_t&, const char*, Sources...), P& parser,
                 const Ask& ask) {
  struct Region {
    __tagOrluRect rect;
    int32_t weight;
  };
  return readAs<int32_t, Region>(
      [&](Region& region) { return call(get, parser, ask, region.rect, region.weight); });
}

template <typename... Sources>
std::string read(int (P::*get)(GpsLocation&, const char*, Sources...), P& parser, const Ask& ask) {
  GpsLocation l = {kUnwritten, kUnwritten, kUnwritten, kUnwritten, kUnwritten, kUnwritten};
  const int status = call(get, parser, ask, l);
  return told(status,
              std::vector<double>{l.latitude, l.longitude, l.altitude, static_cast<double>(l.timestamp),
                                  static_cast<double>(l.hasAltitude)});
}

using Reader = std::string (*)(P&, const Ask&);

template <auto Get>
std::string reader(P& parser, const Ask& ask) {
  return read(Get, parser, ask);
}

enum Source { kResult, kParameter, kCharacteristics };

inline jobject fraction() {
  return newObject("android/util/Rational", "(II)V", 1, 2);
}

struct Getter : NamedCase {
  Source source;
  Reader read;
  const char* key;
  jobject (*value)();
  const char* text;               // expected outputs
  jobject (*wrong)() = fraction;  // makes a composition's value of a wrong type
};

inline constexpr char kInteger[] = "java/lang/Integer";
inline constexpr char kFloat[] = "java/lang/Float";

// clang-format off
#define RESULT(name) #name, kResult, reader<&P::name>
#define PARAMETER(name) #name, kParameter, reader<&P::name>
#define CHARACTERISTICS(name) #name, kCharacteristics, reader<&P::name>
#define JAVA(...) [] { return __VA_ARGS__; }
inline const Getter kGetters[] = {
    {RESULT(getInt),               "android.control.afMode",         JAVA(javaInt(-5)), "-5"},
    {RESULT(getFloat),             "android.control.zoomRatio",      JAVA(javaFloat(2.5F)), "2.5"},
    {RESULT(getLong),              "android.sensor.timestamp",       JAVA(javaLong(5'000'000'001)), "5000000001"},
    {RESULT(getString),            "orlu.control.localtime",         JAVA(javaString("abc")), "abc.##"},
    {RESULT(getArrayBytes),        "orlu.feedback.sensor_pdaf_info", JAVA(javaBytes({'a', 0, 'c'})), "a.c.##"},
    {RESULT(getIntArray),          "com.orlu.image_sizes",           JAVA(javaInts({1, 2, 3})), "1 2 3"},
    {RESULT(getFloatArray),        "orlu.control.filterinfo",        JAVA(javaFloats({1.5, 2, 3})), "1.5 2 3"},
    {RESULT(getDoubleArray),       "orlu.feedback.clarityScore",     JAVA(javaDoubles({0.1, 2, 3})), "0.1 2 3"},
    {RESULT(getLongArray),         "orlu.feedback.gtmPackedData",    JAVA(javaLongs({5'000'000'001, 2, 3})), "5000000001 2 3"},
    {RESULT(getStringArray),       "orlu.control.algoType",          JAVA(javaStrings({"hdr", "night"})), "first hdr night"},
    {RESULT(getFaceInfo),          "android.statistics.faces",       JAVA(javaFaces({{1, 2, 3, 4}, {5, 6, 7, 8}})), "2 1 2 3 4 5 6 7 8"},
    {RESULT(getIntFaceArray),      "orlu.feedback.satFaceRect",      JAVA(javaInts({1, 2, 3, 4, 5, 6, 7, 8})), "2 1 2 3 4 5 6 7 8"},
    {RESULT(getRectInfo),          "android.scaler.cropRegion",      JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"},
    {RESULT(getRectInfo_ex),       "android.scaler.cropRegion",      JAVA(javaRect({1, 2, 3, 4})), "1 3 2 4 0"},
    {RESULT(getMeteringRectangle), "android.control.afRegions",      JAVA(javaRegions({{1, 2, 3, 4}, {5, 6, 7, 8}}, 900)), "1 2 3 4 900"},
    {RESULT(getGpsLocation),       "android.jpeg.gpsLocation",       JAVA(javaLocation(48.5, -2.25, 30, 1'700'000'000'001)), "48.5 -2.25 30 1700000000001 1"},

    {PARAMETER(getIntOrlu),               "i",      JAVA(javaInt(4)), "4"},
    {PARAMETER(getLongOrlu),              "l",      JAVA(javaLong(5'000'000'001)), "5000000001"},
    {PARAMETER(getFloatOrlu),             "f",      JAVA(javaFloat(2.5F)), "2.5"},
    {PARAMETER(getStringOrlu),            "s",      JAVA(javaString("abc")), "abc.##"},
    {PARAMETER(getFaceInfoOrlu),          "faces",  JAVA(javaFaces({{1, 2, 3, 4}})), "1 1 2 3 4"},
    {PARAMETER(getRectInfoOrlu),          "rect",   JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"},
    {PARAMETER(getMeteringRectangleOrlu), "region", JAVA(javaRegions({{1, 2, 3, 4}, {5, 6, 7, 8}}, 9)), "1 2 3 4"},
    // The next two getters accept only boxed arrays.
    {PARAMETER(getIntArrayOrlu),          "ints",   JAVA(javaArray(kInteger, {javaInt(1), javaInt(2), javaInt(3)})), "1 2 3", JAVA(javaInts({1, 2, 3}))},
    {PARAMETER(getFloatArrayOrlu),        "floats", JAVA(javaArray(kFloat, {javaFloat(1), javaFloat(2), javaFloat(3)})), "1 2 3", JAVA(javaFloats({1, 2, 3}))},

    {CHARACTERISTICS(getCharacteristicsInt),         "android.lens.facing",                 JAVA(javaInt(4)), "4"},
    {CHARACTERISTICS(getCharacteristicsIntArray),    "com.orlu.image_sizes",                JAVA(javaInts({1, 2, 3})), "1 2 3"},
    {CHARACTERISTICS(getCharacteristicsRational),    "orlu.test.rational",                  JAVA(newObject("android/util/Rational", "(II)V", -1, 3)), "-1 3"},
    {CHARACTERISTICS(getCharacteristicsRectInfo),    "android.sensor.info.activeArraySize", JAVA(javaRect({1, 2, 3, 4})), "1 2 3 4"},
    {CHARACTERISTICS(getCharacteristicsRectInfo_ex), "android.sensor.info.activeArraySize", JAVA(javaRect({1, 2, 3, 4})), "1 3 2 4 0"},
};
// clang-format on
#undef RESULT
#undef PARAMETER
#undef CHARACTERISTICS
#undef JAVA

inline jobject compositionWith(const char* key, jobject value) {
  jobject composition = newComposition();
  putKey(composition, key, value);
  return composition;
}

// Returns the getter's source, with or without the example value.
inline jobject sourceOf(const Getter& getter, bool hasValue) {
  if (getter.source == kParameter) {
    return hasValue ? compositionWith(getter.key, getter.value()) : newComposition();
  }
  jobject rational =
      callStatic("android/hardware/camera2/impl/TagType", "valueOf",
                 "(Ljava/lang/String;)Landroid/hardware/camera2/impl/TagType;", javaString("RATIONAL"));
  callStatic("android/hardware/camera2/impl/TagTable", "register",
             "(Ljava/lang/String;Landroid/hardware/camera2/impl/TagType;)V", javaString("orlu.test.rational"),
             rational);
  jobject metadata = newMetadata();
  if (hasValue) setTag(metadata, getter.key, getter.value());
  return getter.source == kResult ? newCaptureResult(metadata) : newCharacteristics(metadata);
}

// Calls the getter. The test fails if local references, acquired arrays or an exception remain.
inline std::string readBy(P& parser, Reader read, const Ask& ask) {
  const JniTable table(env());
  std::string text = read(parser, ask);
  EXPECT_EQ(0, table.localReferences());
  EXPECT_EQ(0, table.heldArrays());
  EXPECT_FALSE(env()->ExceptionCheck());
  env()->ExceptionClear();
  return text;
}

// Returns a parser that could not find the class or member `hidden`.
inline P parserWithout(const std::string& hidden) {
  JniTable table(env());
  table.hide(hidden);
  return P(env());
}

// Returns the log: the parser's errors as "operation() message", other lines in full.
inline Lines parserErrors(const LogCapture& log) {
  Lines lines;
  for (const LogLine& line : log.lines()) {
    const bool isUsual = line.tag == "_V_VASJNI-CameraMetadataParser" && line.priority == ANDROID_LOG_ERROR &&
                         line.file.rfind("camera_metadata_parser", 0) == 0;
    lines.push_back(isUsual ? line.function + "() " + line.message : line.tag + ": " + line.text());
  }
  return lines;
}

}  // namespace orlu::test
