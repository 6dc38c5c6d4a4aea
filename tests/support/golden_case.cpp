#include "golden_case.h"

#include <algorithm>
#include <cctype>
#include <fstream>
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

std::vector<std::string> wordsOf(std::istream& in) {
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

void expect(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

// "640x480"
void parseSize(const std::string& text, int& width, int& height) {
  char by = 0;
  std::istringstream in(text);
  expect(in >> width >> by >> height && by == 'x', "a size is missing");
}

int defaultStride(const std::string& format, int width) {
  return format.compare(0, 3, "RAW") == 0 ? 2 * width : width;
}

// "NV21 640x480 [stride 640] shared|hardware [x5]", or "none"
void addImages(std::vector<GoldenImage>& images, std::istream& in) {
  GoldenImage image;
  std::string size;
  in >> image.format >> size;
  if (image.format == "none") return;
  parseSize(size, image.width, image.height);
  image.stride = defaultStride(image.format, image.width);
  int times = 1;
  for (std::string word; in >> word;) {
    if (word == "stride") {
      in >> image.stride;
    } else if (word[0] == 'x') {
      times = std::stoi(word.substr(1));
    } else {
      expect(word == "shared" || word == "hardware", "the memory is missing");
      image.hardware = word == "hardware";
    }
  }
  images.insert(images.end(), static_cast<size_t>(times), image);
}

// "c2 orlu.control.reqID int 5" goes into the composition of frame 2, "* ..." into every capture result.
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
    tags[tag] = {parseGoldenValue(value, static_cast<int>(i)), line.place};
  }
}

void readRequest(GoldenCase& golden, const std::string& word, std::istream& in) {
  if (word == "type") {
    in >> golden.requestType;
  } else if (word == "input") {
    addImages(golden.inputs, in);
  } else if (word == "output") {
    addImages(golden.outputs, in);
  } else if (word == "frames") {
    size_t count = 0;
    in >> count;
    golden.frames.assign(count, {});
    for (const GoldenLine& line : golden.tagLines) addTag(golden.frames, line);
  } else if (word == "algorithms") {
    golden.algorithms = wordsOf(in);
  } else {
    expect(word == "property", "unknown line of a request");
    std::string name;
    in >> name;
    golden.properties.emplace_back(name, restOf(in));
  }
}

class Reader {
public:
  explicit Reader(GoldenCase& golden) : mGolden(golden) {}

  // `name` is relative to the folder of golden texts.
  void readFile(const std::string& name) {
    readGoldenLines(goldenFolder() + name + ".txt", [this](const GoldenLine& line) { readLine(line); });
  }

private:
  void readLine(const GoldenLine& line) {
    std::istringstream in(line.text);
    std::string word;
    in >> word;
    if (word[0] == '[') {
      mSection = word;
    } else if (word == "include") {
      in >> word;
      readFile("shared/" + word);
    } else if (mSection == "[request]") {
      readRequest(mGolden, word, in);
    } else if (mSection == "[tags]") {
      changeGolden(mGolden, line);
    } else if (mSection == "[after]") {
      mGolden.after.push_back(line);
    } else {
      expect(mSection == "[writes]", "no section");
      readWrite(word, in, line.place);
    }
  }

  void readWrite(const std::string& word, std::istream& in, const GoldenPlace& place) {
    GoldenWrite write = {word, "", {}, place};
    const bool isReplacing = word == "~";
    if (isReplacing) in >> write.section;
    in >> write.key;
    write.value = parseGoldenValue(restOf(in), 0);
    if (isReplacing) {
      replace(write);
    } else {
      mGolden.writes.push_back(write);
    }
  }

  // Replaces what stands so far under a section and a key, which "key#2" says which of.
  void replace(GoldenWrite write) {
    const size_t hash = write.key.find('#');
    int left = hash == std::string::npos ? 1 : std::stoi(write.key.substr(hash + 1));
    write.key.resize(std::min(hash, write.key.size()));
    for (GoldenWrite& candidate : mGolden.writes) {
      if (candidate.name() != write.name() || --left > 0) continue;
      candidate = write;
      return;
    }
    throw std::runtime_error("nothing to replace");
  }

  GoldenCase& mGolden;
  std::string mSection;
};

}  // namespace

void readGoldenLines(const std::string& path, const std::function<void(const GoldenLine&)>& read) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error(path + ": can't be read");
  GoldenLine line = {
      "", {path, 0}
  };
  while (std::getline(in, line.text)) {
    ++line.place.line;
    if (line.text.empty() || line.text[0] == '#') continue;
    try {
      read(line);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(path + ':' + std::to_string(line.place.line) + ": " + error.what());
    }
  }
}

GoldenCase readGoldenCase(const std::string& name) {
  GoldenCase golden;
  Reader(golden).readFile(name);
  return golden;
}

void changeGolden(GoldenCase& golden, const GoldenLine& line) {
  std::istringstream in(line.text);
  std::string word;
  in >> word;
  if (word[0] == '*' || word[0] == 'c' || std::isdigit(static_cast<unsigned char>(word[0]))) {
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
      if (frame.composition.emplace(tag, value).second) value.bytes = otherValue(value).bytes;
    }
  }
  return changed;
}

}  // namespace orlu::test
