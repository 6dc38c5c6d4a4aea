#include "golden_variation.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "algo_list.h"
#include "golden_run.h"
#include "log_capture.h"

namespace orlu::test {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

// What a variation came to, compared line by line.
class Outcome {
public:
  Outcome(const GoldenVariation& variation, bool isOverridden) {
    GoldenCase golden = readGoldenCase(variation.base);
    for (const GoldenLine& line : variation.changes) changeGolden(golden, line);
    if (isOverridden) golden = withOverrides(golden);
    Algo algo;
    const LogCapture log;
    mRun = runGolden(golden, algo, [this](MetadataUpdater& updater) {
      mFormat = {updater.getImageFormat(), updater.isRawFormat()};
      updater.updateRawnrHDRFrameIndex(mHdrIndex.first, mHdrIndex.second);
    });
    mLines = log.lines();
  }

  // The expectation itself when it is met, else what there is in its place.
  std::string found(const std::string& expectation) const {
    std::istringstream in(expectation);
    std::string word;
    in >> word;
    if (word == "algorithms") return "algorithms" + blankBefore(printAlgoList(mRun.algorithms));
    if (word == "skip" || word == "no") return mRun.skip ? "skip" : "no skip";
    if (word == "format") return "format " + numbers(mFormat);
    if (word == "rawnr") return "rawnr " + numbers(mHdrIndex);
    if (word == "output") return "output " + (mRun.outputsAfter.empty() ? "none" : describeOutput(mRun, 0));
    if (word == "times") return foundTimes(in);
    if (word == "short") return "short " + logged(in, kShortLogTag);
    if (word == "log" || word == "error") return word + ' ' + logged(in, kLogTag, word == "error" ? 6 : 3);
    return foundWrite(expectation, word, in);
  }

private:
  static std::string blankBefore(const std::string& text) { return text.empty() ? "" : ' ' + text; }

  static std::string numbers(const std::pair<int, int>& both) {
    return std::to_string(both.first) + ' ' + std::to_string(both.second);
  }

  // "2 system face_info": how often a key was written.
  std::string foundTimes(std::istream& in) const {
    std::string section;
    std::string key;
    int expected = 0;
    in >> expected >> section >> key;
    int times = 0;
    for (const GoldenWrite& write : mRun.writes)
      times += write.section == section && write.key == key ? 1 : 0;
    return "times " + std::to_string(times) + ' ' + section + ' ' + key;
  }

  // "2 "message"": how often a line was logged.
  std::string logged(std::istream& in, const std::string& tag, int priority = 3) const {
    int expected = 0;
    in >> expected;
    const std::string message = quotedText(in);
    int times = 0;
    for (const LogLine& line : mLines) {
      times += line.priority == priority && line.tag == tag && line.message == message && isOfUpdater(line)
                   ? 1
                   : 0;
    }
    std::ostringstream out;
    out << times << ' ' << std::quoted(message);
    return out.str();
  }

  // Lines of the short tag have no prefix.
  static bool isOfUpdater(const LogLine& line) {
    return line.tag == kShortLogTag ? line.file.empty() : line.file.rfind("metadata_updater", 0) == 0;
  }

  // "system ae_weight int 7": the value last written.
  std::string foundWrite(const std::string& expectation, const std::string& section, std::istream& in) const {
    std::string key;
    std::string text;
    in >> key;
    std::getline(in >> std::ws, text);
    const GoldenValue expected = parseGoldenValue(text, 0);
    const GoldenWrite* last = nullptr;
    for (const GoldenWrite& write : mRun.writes) {
      if (write.section == section && write.key == key) last = &write;
    }
    if (last == nullptr) return section + ' ' + key + " not written";
    const std::string found = describeBytes(expected.type, last->value.bytes);
    if (found == describeBytes(expected.type, expected.bytes)) return expectation;
    return section + ' ' + key + ' ' + found;
  }

  GoldenRun mRun;
  // What the updater says afterwards: the first input's format and whether it is raw, and what it wrote of
  // the bracketing.
  std::pair<int, int> mFormat;
  std::pair<int, int> mHdrIndex = {7, 7};
  std::vector<LogLine> mLines;
};

// Adds one line of a file to its variations; "= Name of base" begins another one.
void addLine(std::vector<GoldenVariation>& variations, const GoldenLine& line) {
  if (line.text[0] == '=') {
    std::istringstream in(line.text.substr(1));
    std::string of;
    GoldenVariation& added = variations.emplace_back();
    added.place = line.place;
    if (!(in >> added.name >> of >> added.base) || of != "of") throw std::runtime_error("no base");
    return;
  }
  if (variations.empty()) throw std::runtime_error("of no variation");
  if (line.text[0] == '>') {
    variations.back().expectations.push_back(
        {line.text.substr(line.text.find_first_not_of(' ', 1)), line.place});
  } else {
    variations.back().changes.push_back(line);
  }
}

}  // namespace

std::vector<GoldenVariation> readGoldenVariations(const std::string& path) {
  std::vector<GoldenVariation> variations;
  readGoldenLines(path, [&](const GoldenLine& line) { addLine(variations, line); });
  return variations;
}

std::vector<GoldenFailure> checkVariation(const GoldenVariation& variation) {
  if (variation.expectations.empty())
    return {
        {variation.place, "nothing is expected"}
    };
  std::vector<GoldenFailure> failures;
  for (const bool isOverridden : {false, true}) {
    const Outcome outcome(variation, isOverridden);
    for (const GoldenLine& line : variation.expectations) {
      const std::string found = outcome.found(line.text);
      if (found == line.text) continue;
      const char* const where = isOverridden ? "with every tag in a composition\n" : "\n";
      failures.push_back({line.place, where + ("  expected " + line.text) + "\n  found    " + found});
    }
  }
  return failures;
}

}  // namespace orlu::test
