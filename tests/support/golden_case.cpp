#include "golden_case.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "paths.h"

namespace orlu::test {
namespace {

std::string restOf(std::istream& in) {
  std::string rest;
  std::getline(in >> std::ws, rest);
  return rest;
}

void expect(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

// Parses "NV21 640x480 [stride 640] shared|hardware [x5]", or "none".
void addImages(std::vector<GoldenImage>& images, std::istream& in) {
  GoldenImage image;
  char by = 0;
  if (in >> image.format; image.format == "none") return;
  expect(in >> image.width >> by >> image.height && by == 'x', "expected WIDTHxHEIGHT");
  image.stride = image.format.compare(0, 3, "RAW") == 0 ? 2 * image.width : image.width;
  int times = 1;
  for (std::string word; in >> word;) {
    if (word == "stride") {
      in >> image.stride;
    } else if (word[0] == 'x') {
      times = std::stoi(word.substr(1));
    } else {
      expect(word == "shared" || word == "hardware", "expected shared or hardware");
      image.hardware = word == "hardware";
    }
  }
  images.insert(images.end(), static_cast<size_t>(times), image);
}

// "c2 orlu.control.reqID int 5" sets a tag in the composition of frame 2, "2 ..." in the capture result of
// frame 2, "* ..." in every capture result.
void addTag(std::vector<GoldenFrame>& frames, const GoldenLine& line) {
  std::istringstream in(line.text);
  std::string where;
  std::string tag;
  in >> where >> tag;
  const std::string value = restOf(in);
  const bool composition = where[0] == 'c';
  const std::string which = where.substr(composition ? 1 : 0);
  for (size_t i = 0; i < frames.size(); ++i) {
    if (which != "*" && which != std::to_string(i)) continue;
    auto& tags = composition ? frames[i].composition : frames[i].captureResult;
    tags[tag] = {parseGoldenValue(value, static_cast<int>(i)), line};
  }
}

void readRequest(GoldenCase& golden, const std::string& word, std::istream& in) {
  if (word == "type") {
    in >> golden.requestType;
  } else if (word == "input" || word == "output") {
    addImages(word == "input" ? golden.inputs : golden.outputs, in);
  } else if (word == "frames") {
    size_t count = 0;
    in >> count;
    golden.frames.assign(count, {});
    for (const GoldenLine& line : golden.tagLines) addTag(golden.frames, line);
  } else if (word == "algorithms") {
    golden.algorithms.assign(std::istream_iterator<std::string>(in), std::istream_iterator<std::string>());
  } else {
    expect(word == "property", "unknown line of a request");
    std::string name;
    in >> name;
    golden.properties.emplace_back(name, restOf(in));
  }
}

// Parses "section key value", or "~ section key value", which replaces an earlier write. "key#2" names
// the second write of a key.
void readWrite(GoldenCase& golden, const std::string& first, std::istream& in, const GoldenLine& line) {
  const bool isReplacing = first == "~";
  std::string section = first;
  std::string key;
  if (isReplacing) in >> section;
  in >> key;
  GoldenWrite write = {section + ' ' + key, parseGoldenValue(restOf(in), 0), line};
  if (!isReplacing) return golden.writes.push_back(write);
  const std::vector<std::string> names = namesOf(golden.writes);
  const auto at = std::find(names.begin(), names.end(), write.name);
  expect(at != names.end(), "no earlier write of this key to replace");
  GoldenWrite& replaced = golden.writes[static_cast<size_t>(at - names.begin())];
  write.name = replaced.name;
  replaced = write;
}

// `name` is relative to the folder of the golden texts.
void readText(GoldenCase& golden, const std::string& name, std::string section) {
  readGoldenLines(goldenFolder() + name + ".txt", [&](const GoldenLine& line) {
    std::istringstream in(line.text);
    std::string word;
    in >> word;
    if (word[0] == '[') {
      section = word;
    } else if (word == "include") {
      readText(golden, "shared/" + restOf(in), section);
    } else if (section == "[request]") {
      readRequest(golden, word, in);
    } else if (section == "[tags]") {
      changeGolden(golden, line);
    } else if (section == "[after]") {
      golden.after.push_back(line);
    } else {
      expect(section == "[writes]", "not in a known section");
      readWrite(golden, word, in, line);
    }
  });
}

// "= NAME of TEXT" starts a variation of the golden text TEXT. In a variation, "> ..." is an expectation, and
// any other line is a change of the text.
void readVariationLine(std::vector<GoldenCase>& variations, const GoldenLine& line) {
  std::istringstream in(line.text.substr(1));
  if (line.text[0] == '=') {
    const std::string name = restOf(in);
    const size_t of = name.find(" of ");
    expect(of != std::string::npos, "expected = NAME of TEXT");
    variations.push_back(readGoldenCase(name.substr(of + 4)));
    variations.back().name = name;
    return;
  }
  expect(!variations.empty(), "expected = NAME of TEXT first");
  if (line.text[0] == '>') {
    variations.back().expectations.push_back({restOf(in), line.file, line.number});
  } else {
    changeGolden(variations.back(), line);
  }
}

// Returns the sorted paths of all texts in `folder`, which is relative to the folder of the golden texts.
std::vector<std::filesystem::path> textsIn(const std::string& folder) {
  std::vector<std::filesystem::path> texts;
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + folder)) {
    if (entry.path().extension() == ".txt") texts.push_back(entry.path());
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

}  // namespace

void readGoldenLines(const std::string& path, const std::function<void(const GoldenLine&)>& read) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error(path + ": can't be read");
  GoldenLine line = {"", path, 0};
  while (std::getline(in, line.text)) {
    ++line.number;
    if (line.text.empty() || line.text[0] == '#') continue;
    try {
      read(line);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(path + ':' + std::to_string(line.number) + ": " + error.what());
    }
  }
}

GoldenCase readGoldenCase(const std::string& name) {
  GoldenCase golden;
  golden.name = name;
  readText(golden, name, "");
  return golden;
}

std::vector<GoldenCase> allGoldenTexts() {
  std::vector<GoldenCase> texts;
  for (const auto& path : textsIn("")) texts.push_back(readGoldenCase(path.stem()));
  return texts;
}

std::vector<GoldenCase> allGoldenVariations() {
  std::vector<GoldenCase> all;
  for (const auto& path : textsIn("variations")) {
    readGoldenLines(path, [&all](const GoldenLine& line) { readVariationLine(all, line); });
  }
  return all;
}

void changeGolden(GoldenCase& golden, const GoldenLine& line) {
  std::istringstream in(line.text);
  std::string word;
  in >> word;
  if (word.find_first_of("*c0123456789") == 0) {
    golden.tagLines.push_back(line);
    addTag(golden.frames, line);
    return;
  }
  const bool isAdded = word == "and";
  if (isAdded) in >> word;
  if (word == "input" && !isAdded) golden.inputs.clear();
  if (word == "output" && !isAdded) golden.outputs.clear();
  readRequest(golden, word, in);
}

GoldenCase withOverrides(const GoldenCase& golden) {
  GoldenCase changed = golden;
  for (GoldenFrame& frame : changed.frames) {
    for (auto& [tag, value] : frame.captureResult) {
      if (!frame.composition.emplace(tag, value).second) continue;
      for (uint8_t& byte : value.bytes) byte = byte == 1 ? 2 : 1;
    }
  }
  return changed;
}

std::vector<std::string> namesOf(const std::vector<GoldenWrite>& writes) {
  std::map<std::string, int> times;
  std::vector<std::string> names;
  for (const GoldenWrite& write : writes) {
    const int turn = ++times[write.name];
    names.push_back(write.name + (turn == 1 ? "" : "#" + std::to_string(turn)));
  }
  return names;
}

}  // namespace orlu::test
