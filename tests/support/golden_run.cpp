#include "golden_run.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "fixtures.h"

namespace orlu::test {
namespace {

constexpr char kAlgoTypeKey[] = "orlu.control.algoType";
constexpr char kSectionPrefix[] = "orlu.algo.";

// Sets the system properties of a request, and empties them in the end.
class Properties {
public:
  explicit Properties(const GoldenCase& golden) : mGolden(golden) {
    for (const auto& [name, value] : golden.properties) property_set(name.c_str(), value.c_str());
  }
  Properties(const Properties&) = delete;
  Properties& operator=(const Properties&) = delete;
  ~Properties() {
    for (const auto& [name, value] : mGolden.properties) property_set(name.c_str(), "");
  }

private:
  const GoldenCase& mGolden;
};

std::vector<__tagOrluRect> rectsOf(const GoldenValue& value) {
  const std::vector<int32_t> numbers = value.numbers<int32_t>();
  std::vector<__tagOrluRect> rects;
  for (size_t i = 0; i + 4 <= numbers.size(); i += 4) {
    rects.push_back({numbers[i], numbers[i + 1], numbers[i + 2], numbers[i + 3]});
  }
  return rects;
}

jobject regionsOf(const GoldenValue& value) {
  const std::vector<int32_t> numbers = value.numbers<int32_t>();
  return javaRegions(rectsOf(value), numbers.empty() ? 0 : numbers.back());
}

jobject locationOf(const GoldenValue& value) {
  const std::vector<double> angles = value.numbers<double>();
  return javaLocation(angles.at(0), angles.at(1), angles.at(2), value.numbers<int64_t>().at(3));
}

jobject javaValue(const GoldenValue& value) {
  const std::string& type = value.type;
  if (type == "int") return javaInt(value.numbers<int32_t>().at(0));
  if (type == "long") return javaLong(value.numbers<int64_t>().at(0));
  if (type == "float") return javaFloat(value.numbers<float>().at(0));
  if (type == "double") return javaDouble(value.numbers<double>().at(0));
  if (type == "ints") return javaInts(value.numbers<int32_t>());
  if (type == "longs") return javaLongs(value.numbers<int64_t>());
  if (type == "floats") return javaFloats(value.numbers<float>());
  if (type == "doubles") return javaDoubles(value.numbers<double>());
  if (type == "bytes") return javaBytes(value.bytes);
  if (type == "string") return javaString({value.bytes.begin(), value.bytes.end()});
  if (type == "rect") return javaRect(rectsOf(value).at(0));
  if (type == "faces") return javaFaces(rectsOf(value));
  if (type == "regions") return regionsOf(value);
  if (type == "location") return locationOf(value);
  throw std::runtime_error("no tag has the type " + type);
}

// The constant of TagType for a golden type: "ints" is INT_ARRAY.
std::string tagTypeOf(const std::string& type) {
  static const std::map<std::string, std::string> types = {
      {"bytes",   "BYTES"              },
      {"faces",   "FACES"              },
      {"regions", "METERING_RECTANGLES"}
  };
  const auto special = types.find(type);
  if (special != types.end()) return special->second;
  std::string name = type;
  for (char& letter : name) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  if (name.back() == 'S') name.replace(name.size() - 1, 1, "_ARRAY");
  return name;
}

// Only a capture result knows what tags there are, and their types.
void setKnownTag(jobject metadata, const char* tag, const GoldenTag& value) {
  try {
    setTag(metadata, tag, javaValue(value));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(value.place.file + ':' + std::to_string(value.place.line) + ": " + error.what() +
                             "; " + tagTableHint(tag, tagTypeOf(value.type)));
  }
}

void putTag(jobject composition, const char* tag, const GoldenTag& value) {
  putKey(composition, tag, javaValue(value));
}

// One tag makes several references; with a frame for each, a long burst needs no more than a short one.
void fill(const std::map<std::string, GoldenTag>& tags, jobject target,
          void (*set)(jobject, const char*, const GoldenTag&)) {
  for (const auto& [tag, value] : tags) {
    if (value.type == "none") continue;
    const LocalFrame frame;
    set(target, tag.c_str(), value);
  }
}

jobject compositionOf(const GoldenFrame& frame) {
  jobject metadata = newMetadata();
  fill(frame.captureResult, metadata, setKnownTag);
  jobject composition = newComposition(metadata);
  fill(frame.composition, composition, putTag);
  return composition;
}

jobject imageOf(const GoldenImage& image) {
  ImageSpec spec;
  spec.format = image.format.c_str();
  spec.width = image.width;
  spec.height = image.height;
  spec.strides = {image.stride, image.stride};
  spec.planeSizes = {image.stride * image.height, image.stride * image.height / 2};
  if (image.hardware) {
    spec.hardwareBuffer = newHardwareBuffer(std::max(1, image.width), std::max(1, image.height), 0x23);
  } else {
    spec.sharedMemory = newSharedMemory(std::max(1, spec.planeSizes[0] + spec.planeSizes[1]));
  }
  return newImage(spec);
}

template <typename From>
jobject listOf(const std::vector<From>& elements, jobject (*make)(const From&)) {
  std::vector<jobject> objects;
  for (const From& element : elements) objects.push_back(make(element));
  return javaList(objects);
}

std::vector<GoldenWrite> writesOf(const std::vector<RecordedCall>& calls) {
  std::vector<GoldenWrite> writes;
  const std::string prefix = kSectionPrefix;
  for (const RecordedCall& call : calls) {
    if (call.operation != "setValue") continue;
    const bool known = call.section.compare(0, prefix.size(), prefix) == 0;
    writes.push_back({
        known ? call.section.substr(prefix.size()) : "?" + call.section,
        call.key,
        {"bytes",   call.bytes},
        {         }
    });
  }
  return writes;
}

// "0 orlu.control.sth int 5"
std::string putLine(int frame, const std::string& key, jobject value) {
  const bool isInt = env()->IsInstanceOf(value, findClass("java/lang/Integer"));
  return std::to_string(frame) + ' ' + key + (isInt ? " int " + std::to_string(intOf(value)) : " not an int");
}

void addPuts(std::vector<std::string>& puts, const GoldenFrame& given, jobject composition, int frame) {
  jobject map = callObject(composition, "snapshot", "()Ljava/util/Map;");
  jobject keys = callObject(map, "keySet", "()Ljava/util/Set;");
  const auto array = static_cast<jobjectArray>(callObject(keys, "toArray", "()[Ljava/lang/Object;"));
  for (jsize i = 0; i < env()->GetArrayLength(array); ++i) {
    const std::string key = stringOf(env()->GetObjectArrayElement(array, i));
    if (key == kAlgoTypeKey || given.composition.count(key) != 0) continue;
    puts.push_back(putLine(frame, key, getKey(composition, key.c_str())));
  }
}

// All fields of an image's record.
std::string describeFrame(const AlgoFrameInfo& frame) {
  std::ostringstream out;
  out << "format " << frame.format << ' ' << frame.width << 'x' << frame.height << " size " << frame.size
      << " planes " << frame.planeCount << " handle " << frame.nativeHandle << " reserved " << frame.reserved
      << " fds " << frame.fdCount;
  for (int i = 0; i < kMaxPlanes; ++i) {
    out << " | " << frame.stride[i] << ' ' << frame.scanline[i] << ' ' << frame.planeSize[i] << ' '
        << frame.planeData[i] << ' ' << frame.fd[i] << ' ' << frame.fdSize[i];
  }
  return out.str();
}

}  // namespace

GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect) {
  const LocalFrame localFrame;
  const Properties properties(golden);
  std::vector<jobject> compositions;
  for (const GoldenFrame& frame : golden.frames) compositions.push_back(compositionOf(frame));
  if (!compositions.empty()) putKey(compositions[0], kAlgoTypeKey, javaStrings(golden.algorithms));
  VRequest request(env(), newRequest(1, golden.requestType.c_str()), listOf(golden.inputs, imageOf),
                   listOf(golden.outputs, imageOf), javaList(compositions));

  GoldenRun run;
  CameraMetadataParser parser(env());
  parser.getStringArray(run.algorithms, kAlgoTypeKey, nullptr, request.firstComposition());
  AlgoNativeClient client(nullptr, 1, 0);
  const std::unique_ptr<void, std::function<void(void*)>> metadata(
      client.context().createMetadata(), [&client](void* block) { client.context().destroyMetadata(block); });
  run.outputsBefore = request.outputFrames();
  MetadataUpdater updater(&client, run.algorithms, request, metadata.get(), &parser);
  algo.forget();
  updater.updateMetadata();
  run.writes = writesOf(algo.calls());
  run.skip = updater.skipAlgoProcess();
  run.outputsAfter = request.outputFrames();
  if (inspect) inspect(updater);
  for (size_t i = 0; i < compositions.size(); ++i) {
    const LocalFrame frame;
    addPuts(run.puts, golden.frames[i], compositions[i], static_cast<int>(i));
  }
  return run;
}

std::string describeOutput(const GoldenRun& run, size_t index) {
  const AlgoFrameInfo& after = run.outputsAfter[index];
  AlgoFrameInfo expected = run.outputsBefore[index];
  if (describeFrame(after) == describeFrame(expected)) return std::to_string(index) + " unchanged";
  expected.width = after.width;
  expected.height = after.height;
  expected.stride[0] = after.stride[0];
  expected.scanline[0] = after.scanline[0];
  std::copy_n(after.planeSize, 2, expected.planeSize);
  std::ostringstream out;
  out << index << ' ' << after.width << 'x' << after.height << " stride " << after.stride[0] << " scanline "
      << after.scanline[0] << " planes " << after.planeSize[0] << ' ' << after.planeSize[1];
  if (describeFrame(after) != describeFrame(expected)) out << " of " << describeFrame(after);
  return out.str();
}

}  // namespace orlu::test
