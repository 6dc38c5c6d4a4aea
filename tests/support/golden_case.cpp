#include "golden_case.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <stdexcept>

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

void setTag(std::map<std::string, GoldenValue>& tags, const std::string& tag, const std::string& text,
            int frame) {
  const GoldenValue value = parseGoldenValue(text, frame);
  tags.erase(tag);
  if (value.type != "none") tags[tag] = value;
}

// "c2 orlu.control.reqID int 5" goes into the composition of frame 2, "* ..." into every capture result.
void addTag(std::vector<GoldenFrame>& frames, const std::string& line) {
  std::istringstream in(line);
  std::string where;
  std::string tag;
  in >> where >> tag;
  const std::string value = restOf(in);
  const bool composition = where[0] == 'c';
  const std::string which = where.substr(composition ? 1 : 0);
  for (size_t i = 0; i < frames.size(); ++i) {
    if (which == "*" || which == std::to_string(i)) {
      setTag(composition ? frames[i].composition : frames[i].captureResult, tag, value, static_cast<int>(i));
    }
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
    for (const std::string& line : golden.tagLines) addTag(golden.frames, line);
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

  void readFile(const std::string& path, const std::string& shared) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error(path + ": can't be read");
    int number = 0;
    for (std::string line; std::getline(in, line);) {
      ++number;
      try {
        readLine(line, shared);
      } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ':' + std::to_string(number) + ": " + error.what());
      }
    }
  }

private:
  void readLine(const std::string& line, const std::string& shared) {
    std::istringstream in(line);
    std::string word;
    if (!(in >> word) || word[0] == '#') return;
    if (word[0] == '[') {
      mSection = word;
    } else if (word == "include") {
      in >> word;
      readFile(shared + word + ".txt", shared);
    } else if (mSection == "[request]") {
      readRequest(mGolden, word, in);
    } else if (mSection == "[tags]") {
      changeGolden(mGolden, line);
    } else if (mSection == "[after]") {
      readAfter(word, in);
    } else {
      expect(mSection == "[writes]", "no section");
      readWrite(word, in);
    }
  }

  void readAfter(const std::string& word, std::istream& in) {
    if (word == "algorithms") {
      mGolden.algorithmsAfter = wordsOf(in);
    } else if (word == "put") {
      mGolden.puts.push_back(restOf(in));
    } else if (word == "output") {
      mGolden.changedOutputs.push_back(restOf(in));
    } else {
      expect(word == "skip", "unknown line of an outcome");
      mGolden.skip = true;
    }
  }

  void readWrite(const std::string& word, std::istream& in) {
    GoldenWrite write;
    const bool isReplacing = word == "~";
    write.section = word;
    if (isReplacing) in >> write.section;
    in >> write.key;
    write.value = parseGoldenValue(restOf(in), 0);
    if (isReplacing) {
      replacedValue(write) = write.value;
    } else {
      mGolden.writes.push_back(write);
    }
  }

  // The value that stands so far under a section and a key, which "key#2" says which of.
  GoldenValue& replacedValue(const GoldenWrite& write) {
    const size_t hash = write.key.find('#');
    const std::string key = write.key.substr(0, hash);
    int left = hash == std::string::npos ? 1 : std::stoi(write.key.substr(hash + 1));
    for (GoldenWrite& candidate : mGolden.writes) {
      if (candidate.section == write.section && candidate.key == key && --left == 0) return candidate.value;
    }
    throw std::runtime_error("nothing to replace");
  }

  GoldenCase& mGolden;
  std::string mSection;
};

}  // namespace

GoldenCase readGoldenCase(const std::string& path) {
  GoldenCase golden;
  Reader(golden).readFile(path, path.substr(0, path.rfind('/') + 1) + "shared/");
  return golden;
}

void changeGolden(GoldenCase& golden, const std::string& line) {
  std::istringstream in(line);
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

std::string writeLines(const std::vector<GoldenWrite>& writes, const std::vector<GoldenWrite>& typedAs) {
  std::map<std::string, std::string> types;
  for (const GoldenWrite& write : typedAs) types.emplace(write.section + write.key, write.value.type);
  std::string lines;
  for (const GoldenWrite& write : writes) {
    const auto type = types.find(write.section + write.key);
    lines += write.section + ' ' + write.key + ' ' +
             describeBytes(type == types.end() ? "bytes" : type->second, write.value.bytes) + '\n';
  }
  return lines;
}

}  // namespace orlu::test
