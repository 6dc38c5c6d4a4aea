#include "golden_run.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iomanip>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "algo_list.h"
#include "fixtures.h"
#include "frame_text.h"
#include "java_text.h"

namespace orlu::test {
namespace {

constexpr char kAlgoTypeKey[] = "orlu.control.algoType";
constexpr char kSectionPrefix[] = "orlu.algo.";
constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

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

// Returns the TagType constant for a golden file's type, such as INT_ARRAY for "ints".
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

// Sets a tag in a capture result. Throws for an unknown tag or a wrong type; putTag() accepts any value.
void setKnownTag(jobject metadata, const char* tag, const GoldenTag& value) {
  try {
    setTag(metadata, tag, javaValue(value));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(value.line.file + ':' + std::to_string(value.line.number) + ": " + error.what() +
                             "; " + tagTableHint(tag, tagTypeOf(value.type)));
  }
}

void putTag(jobject composition, const char* tag, const GoldenTag& value) {
  putKey(composition, tag, javaValue(value));
}

// Each tag creates several JNI references. A JNI local frame for each tag frees them.
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
    const bool isKnown = call.section.compare(0, prefix.size(), prefix) == 0;
    const std::string section = isKnown ? call.section.substr(prefix.size()) : "?" + call.section;
    writes.push_back({
        section + ' ' + call.key, {"bytes",        call.bytes},
             {              }
    });
  }
  return writes;
}

// Returns "output 0 unchanged", or the output's sizes in the form of a golden text. If other fields of the
// record changed too, appends the whole record and the expected record.
std::string describeOutput(size_t index, AlgoFrameInfo expected, const AlgoFrameInfo& after) {
  std::ostringstream out;
  out << "output " << index << ' ';
  if (std::memcmp(&after, &expected, sizeof after) == 0) return out.str() + "unchanged";
  expected.width = after.width;
  expected.height = after.height;
  expected.stride[0] = after.stride[0];
  expected.scanline[0] = after.scanline[0];
  std::copy_n(after.planeSize, 2, expected.planeSize);
  out << after.width << 'x' << after.height << " stride " << after.stride[0] << " scanline "
      << after.scanline[0] << " planes " << after.planeSize[0] << ' ' << after.planeSize[1];
  if (std::memcmp(&after, &expected, sizeof after) != 0)
    out << " of " << frameText(after) << " instead of " << frameText(expected);
  return out.str();
}

std::string algorithmsLine(const std::vector<std::string>& algorithms) {
  return algorithms.empty() ? "algorithms" : "algorithms " + printAlgoList(algorithms);
}

std::string numbersLine(const char* name, int first, int second) {
  return std::string(name) + ' ' + std::to_string(first) + ' ' + std::to_string(second);
}

GoldenLine failure(const GoldenLine& line, const std::string& text) {
  return {text, line.file, line.number};
}

// The n-th write of a key belongs to the n-th line of that key.
void compareWrites(std::vector<GoldenLine>& failures, const std::vector<GoldenWrite>& expected,
                   const std::vector<GoldenWrite>& found) {
  const std::vector<std::string> expectedNames = namesOf(expected);
  const std::vector<std::string> foundNames = namesOf(found);
  std::map<std::string, GoldenLine> lineOf;
  for (size_t i = 0; i < expected.size(); ++i) {
    const auto at = std::find(foundNames.begin(), foundNames.end(), expectedNames[i]);
    lineOf[expectedNames[i]] = expected[i].line;
    if (at == foundNames.end()) {
      failures.push_back(failure(expected[i].line, "missing: " + expectedNames[i]));
      continue;
    }
    const GoldenValue& value = expected[i].value;
    const std::string text = describeBytes(value.type, value.bytes);
    const std::string foundText =
        describeBytes(value.type, found[static_cast<size_t>(at - foundNames.begin())].value.bytes);
    if (foundText == text) continue;
    failures.push_back(
        failure(expected[i].line, expectedNames[i] + "\n  expected " + text + "\n  found    " + foundText));
  }
  for (size_t i = 0; i < found.size(); ++i) {
    if (lineOf.count(foundNames[i]) != 0) continue;
    const std::string before = i == 0 ? "nothing" : foundNames[i - 1];
    failures.push_back(failure(lineOf[before], "surplus: " + foundNames[i] + ' ' +
                                                   describeBytes("bytes", found[i].value.bytes) +
                                                   ", written after " + before));
  }
  for (size_t i = 0; failures.empty() && i < expected.size(); ++i) {
    if (foundNames[i] == expectedNames[i]) continue;
    failures.push_back(
        failure(expected[i].line, "order: expected " + expectedNames[i] + ", found " + foundNames[i]));
  }
}

// The result of a variation, for comparison with each of its expectations.
class Outcome {
public:
  Outcome(const GoldenRun& run, const LogCapture& log) : mRun(run), mLines(log.lines()) {}

  // Returns the expectation if it is met, else the actual result. Checks only the first put, and
  // only the first changed output (the first output if none changed).
  std::string found(const std::string& expectation) const {
    std::istringstream in(expectation);
    std::string word;
    in >> word;
    if (word == "times") return foundTimes(in);
    if (word == "short" || word == "log" || word == "error") return word + logged(in, word);
    if (word == "no") word = "skip";
    for (const auto& lines : {mRun.after, mRun.more}) {
      for (const std::string& line : lines) {
        if (line.compare(0, word.size(), word) == 0 || line == "no " + word) return line;
      }
    }
    return foundWrite(expectation, word, in);
  }

private:
  // Counts the writes of a key, for an expectation such as "times 2 system face_info".
  std::string foundTimes(std::istream& in) const {
    int expected = 0;
    std::string name;
    std::getline(in >> expected >> std::ws, name);
    const auto times = std::count_if(mRun.writes.begin(), mRun.writes.end(),
                                     [&name](const GoldenWrite& write) { return write.name == name; });
    return "times " + std::to_string(times) + ' ' + name;
  }

  // Counts log lines, for an expectation such as `log 2 "message"`. Lines of the short log tag have no source
  // position.
  std::string logged(std::istream& in, const std::string& kind) const {
    const bool isShort = kind == "short";
    int expected = 0;
    in >> expected;
    const std::string message = quotedText(in);
    const auto times = std::count_if(mLines.begin(), mLines.end(), [&](const LogLine& line) {
      return line.priority == (kind == "error" ? ANDROID_LOG_ERROR : ANDROID_LOG_DEBUG) &&
             line.tag == (isShort ? kShortLogTag : kLogTag) && line.message == message &&
             (isShort ? line.file.empty() : line.file.rfind("metadata_updater", 0) == 0);
    });
    std::ostringstream out;
    out << ' ' << times << ' ' << std::quoted(message);
    return out.str();
  }

  // Returns the last value written, for an expectation such as "system ae_weight int 7".
  std::string foundWrite(const std::string& expectation, const std::string& section, std::istream& in) const {
    std::string key;
    std::string text;
    std::getline(in >> key >> std::ws, text);
    const std::string name = section + ' ' + key;
    const GoldenValue expected = parseGoldenValue(text, 0);
    const auto last = std::find_if(mRun.writes.rbegin(), mRun.writes.rend(),
                                   [&name](const GoldenWrite& write) { return write.name == name; });
    if (last == mRun.writes.rend()) return name + " not written";
    const std::string found = describeBytes(expected.type, last->value.bytes);
    return found == describeBytes(expected.type, expected.bytes) ? expectation : name + ' ' + found;
  }

  const GoldenRun& mRun;
  const std::vector<LogLine> mLines;
};

}  // namespace

GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect) {
  const LocalFrame localFrame;
  for (const auto& [name, value] : golden.properties) property_set(name.c_str(), value.c_str());
  std::vector<jobject> compositions;
  for (const GoldenFrame& frame : golden.frames) compositions.push_back(compositionOf(frame));
  if (!compositions.empty()) putKey(compositions[0], kAlgoTypeKey, javaStrings(golden.algorithms));
  VRequest request(env(), newRequest(1, golden.requestType.c_str()), listOf(golden.inputs, imageOf),
                   listOf(golden.outputs, imageOf), javaList(compositions));

  CameraMetadataParser parser(env());
  std::vector<std::string> algorithms;
  parser.getStringArray(algorithms, kAlgoTypeKey, nullptr, request.firstComposition());
  AlgoNativeClient client(nullptr, 1, 0);
  const std::unique_ptr<void, std::function<void(void*)>> metadata(
      client.context().createMetadata(), [&client](void* block) { client.context().destroyMetadata(block); });
  const std::vector<AlgoFrameInfo> outputsBefore = request.outputFrames();
  MetadataUpdater updater(&client, algorithms, request, metadata.get(), &parser);
  algo.forget();
  const PutRecorder recorder(compositions);
  updater.updateMetadata();
  for (const auto& [name, value] : golden.properties) property_set(name.c_str(), "");

  GoldenRun run;
  run.writes = writesOf(algo.calls());
  run.after.push_back(algorithmsLine(algorithms));
  std::istringstream puts(recorder.text());
  for (std::string put; std::getline(puts, put);) run.after.push_back("put " + put);
  for (size_t i = 0; i < outputsBefore.size(); ++i) {
    const std::string line = describeOutput(i, outputsBefore[i], request.outputFrames()[i]);
    (line.find("unchanged") == std::string::npos ? run.after : run.more).push_back(line);
  }
  if (outputsBefore.empty()) run.more.emplace_back("output none");
  updater.skipAlgoProcess() ? run.after.emplace_back("skip") : run.more.emplace_back("no skip");
  if (inspect) inspect(updater);
  int hdrType = 7;
  int nightIndex = 7;
  updater.updateRawnrHDRFrameIndex(hdrType, nightIndex);
  run.more.push_back(numbersLine("rawnr", hdrType, nightIndex));
  run.more.push_back(numbersLine("format", updater.getImageFormat(), updater.isRawFormat()));
  return run;
}

std::vector<GoldenLine> checkGoldenText(const GoldenCase& golden, const GoldenRun& run) {
  std::vector<GoldenLine> failures;
  std::vector<std::string> surplus = run.after;
  for (const GoldenLine& line : golden.after) {
    const auto same = std::find(surplus.begin(), surplus.end(), line.text);
    if (same == surplus.end()) {
      failures.push_back(failure(line, "missing: " + line.text));
    } else {
      surplus.erase(same);
    }
  }
  for (const std::string& line : surplus) failures.push_back(failure(golden.after.at(0), "surplus: " + line));
  compareWrites(failures, golden.writes, run.writes);
  return failures;
}

std::vector<GoldenLine> checkGoldenVariation(const GoldenCase& golden, const GoldenRun& run,
                                             const LogCapture& log) {
  if (golden.expectations.empty())
    return {
        {golden.name + " has no expectations", "", 0}
    };
  const Outcome outcome(run, log);
  std::vector<GoldenLine> failures;
  for (const GoldenLine& line : golden.expectations) {
    const std::string found = outcome.found(line.text);
    if (found != line.text)
      failures.push_back(failure(line, "\n  expected " + line.text + "\n  found    " + found));
  }
  return failures;
}

}  // namespace orlu::test
