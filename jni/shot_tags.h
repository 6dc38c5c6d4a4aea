// Reads the tags of a shot's frames. The C++ type of a value selects the parser's getter.
#pragma once

#include <jni.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "camera_metadata_parser.h"
#include "frame_values.h"
#include "metadata_records.h"

namespace orlu {

template <size_t N>
using Ints = std::array<int32_t, N>;
template <size_t N>
using Longs = std::array<int64_t, N>;
template <size_t N>
using Floats = std::array<float, N>;
template <size_t N>
using Doubles = std::array<double, N>;

// A string of at most N - 1 bytes, always terminated.
template <size_t N>
struct Text {
  char data[N] = {};
};
// A string of at most N bytes; not terminated if it fills them.
template <size_t N>
struct Chars {
  char data[N] = {};
};
// The raw bytes of a byte-array tag.
template <size_t N>
struct Bytes {
  uint8_t data[N] = {};
};
// The first N bytes of a large byte array; zero-padded. Allocates memory only if the tag is present.
template <size_t N>
struct LargeBytes {
  std::unique_ptr<char[]> data;

  const char* orZeros() const { return data ? data.get() : gNoBytes; }

private:
  // Never written to. Not const, because const data would take up space in the library's file.
  alignas(8) inline static char gNoBytes[N] = {};
};
// The raw bytes of a tag, at most `size`, read into the caller's memory.
struct ByteBuffer {
  void* data;
  int size;
};

// The faces of a tag with four ints per face: left, top, right, bottom.
struct IntFaces {
  _tagOrluFaceInfo faces;
};

// The first rectangle of a tag that lists metering rectangles.
struct MeteringRegion {
  __tagOrluRect rect;
  int32_t weight = 0;
};

// The source of a tag: a capture result and the composition that overrides it key by key. Either may be null;
// both are borrowed.
struct Frame {
  jobject captureResult = nullptr;
  jobject composition = nullptr;

  Frame captureResultOnly() const { return {captureResult, nullptr}; }
  Frame compositionOnly() const { return {nullptr, composition}; }
};

// Capture results and their compositions, in the order of the frames. Borrows both lists.
class FrameList {
public:
  FrameList(const std::vector<jobject>& captureResults, const std::vector<jobject>& compositions)
      : mCaptureResults(&captureResults), mCompositions(&compositions) {}

  // The number of capture results.
  int size() const { return static_cast<int>(mCaptureResults->size()); }
  // For an index outside both lists, returns an empty frame, where every tag is missing.
  Frame at(int index) const { return {element(*mCaptureResults, index), element(*mCompositions, index)}; }
  Frame first() const { return at(0); }
  Frame last() const { return at(size() - 1); }
  // For an index past the last capture result, returns the last frame.
  Frame atOrLast(int index) const { return index < size() ? at(index) : last(); }

private:
  static jobject element(const std::vector<jobject>& objects, int index) {
    const auto position = static_cast<size_t>(index);
    return index >= 0 && position < objects.size() ? objects[position] : nullptr;
  }

  const std::vector<jobject>* mCaptureResults;
  const std::vector<jobject>* mCompositions;
};

// Maps each type to the parser's getter.
namespace getter {

using P = CameraMetadataParser;

inline int get(P& p, int32_t& v, const char* tag, const Frame& f) {
  return p.getInt(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, int64_t& v, const char* tag, const Frame& f) {
  return p.getLong(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, float& v, const char* tag, const Frame& f) {
  return p.getFloat(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, __tagOrluRect& v, const char* tag, const Frame& f) {
  return p.getRectInfo(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, SCR_Type& v, const char* tag, const Frame& f) {
  return p.getRectInfo_ex(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, GpsLocation& v, const char* tag, const Frame& f) {
  return p.getGpsLocation(v, tag, f.captureResult, f.composition);
}
inline int get(P& p, _tagOrluFaceInfo& v, const char* tag, const Frame& f) {
  return p.getFaceInfo(v, kMaxFaces, tag, f.captureResult, f.composition);
}
inline int get(P& p, IntFaces& v, const char* tag, const Frame& f) {
  return p.getIntFaceArray(v.faces, kMaxFaces, tag, f.captureResult, f.composition);
}
inline int get(P& p, MeteringRegion& v, const char* tag, const Frame& f) {
  return p.getMeteringRectangle(v.rect, v.weight, tag, f.captureResult, f.composition);
}
inline int get(P& p, ByteBuffer& v, const char* tag, const Frame& f) {
  return p.getArrayBytes(static_cast<char*>(v.data), v.size, tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, LargeBytes<N>& v, const char* tag, const Frame& f) {
  return p.getNewArrayBytes(v.data, static_cast<int>(N), tag, f.captureResult, f.composition);
}
// Reads at most v.size() values.
inline int get(P& p, FrameValues<double>& v, const char* tag, const Frame& f) {
  return p.getDoubleArray(v.data(), static_cast<int>(v.size()), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Ints<N>& v, const char* tag, const Frame& f) {
  return p.getIntArray(v.data(), static_cast<int>(N), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Longs<N>& v, const char* tag, const Frame& f) {
  return p.getLongArray(v.data(), static_cast<int>(N), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Floats<N>& v, const char* tag, const Frame& f) {
  return p.getFloatArray(v.data(), static_cast<int>(N), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Text<N>& v, const char* tag, const Frame& f) {
  return p.getString(v.data, static_cast<int>(N - 1), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Chars<N>& v, const char* tag, const Frame& f) {
  return p.getString(v.data, static_cast<int>(N), tag, f.captureResult, f.composition);
}
template <size_t N>
int get(P& p, Bytes<N>& v, const char* tag, const Frame& f) {
  return p.getArrayBytes(reinterpret_cast<char*>(v.data), static_cast<int>(N), tag, f.captureResult,
                         f.composition);
}

}  // namespace getter

// The frames of one shot and the parser that reads them. Calls without a frame read the first frame.
class ShotTags {
public:
  // Borrows both arguments.
  ShotTags(CameraMetadataParser& parser, const FrameList& frames) : mParser(&parser), mFrames(frames) {}

  const FrameList& frames() const { return mFrames; }
  Frame first() const { return mFrames.first(); }

  // Reads a tag into `value`. Returns 0, or -1 if the tag is missing, has the wrong type, or is an empty list
  // of metering rectangles. On failure, text and bytes become zero; other values stay unchanged.
  template <typename T>
  int read(const Frame& frame, const char* tag, T& value) const {
    return getter::get(*mParser, value, tag, frame);
  }
  template <typename T>
  int read(const char* tag, T& value) const {
    return read(first(), tag, value);
  }

  // Returns the tag's value, or `initial` if read() fails. If the tag's array is shorter than T, the rest of
  // `initial` is kept. Text and bytes ignore `initial`.
  template <typename T>
  T readOr(const Frame& frame, const char* tag, std::common_type_t<T> initial = T()) const {
    read(frame, tag, initial);
    return initial;
  }
  template <typename T>
  T readOr(const char* tag, std::common_type_t<T> initial = T()) const {
    return readOr<T>(first(), tag, initial);
  }

  // While the returned object exists, reading `tag` from several frames creates its Java key only once. `tag`
  // must outlive the object.
  CameraMetadataParser::RepeatedTag repeated(const char* tag) const {
    return CameraMetadataParser::RepeatedTag(*mParser, tag);
  }

private:
  CameraMetadataParser* mParser;
  FrameList mFrames;
};

// A tag that several steps read from the first frame. A present value is cached; a missing value is looked up
// and logged each time. The tag's string must outlive this object.
template <typename T>
class KeptTag {
public:
  explicit KeptTag(const char* tag) : mTag(tag) {}

  // Returns zero if the tag can't be read.
  T of(const ShotTags& tags) const {
    T value = mKept.value_or(T());
    if (!mKept && tags.read(mTag, value) == 0) mKept = value;
    return value;
  }

private:
  const char* mTag;
  mutable std::optional<T> mKept;
};

}  // namespace orlu
