// A golden text (see tests/golden/README.md): a request and the expected translation of its metadata.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "golden_value.h"

namespace orlu::test {

// A line of a file. In a failure, `text` is the message instead of the line's text.
struct GoldenLine {
  std::string text;
  std::string file;
  int number = 0;
};

struct GoldenImage {
  std::string format;
  int width = 0;
  int height = 0;
  int stride = 0;  // bytes
  bool hardware = false;
};

struct GoldenTag : GoldenValue {
  GoldenLine line;
};

// The tags of one frame: capture result and composition. The value "none" means an absent tag.
struct GoldenFrame {
  std::map<std::string, GoldenTag> captureResult;
  std::map<std::string, GoldenTag> composition;
};

// One setValue() call, expected or recorded.
struct GoldenWrite {
  std::string name;  // section and key, without "orlu.algo."
  GoldenValue value;
  GoldenLine line;  // the line with the expected value
};

struct GoldenCase {
  std::string name;  // "NAME of TEXT" for a variation, else the name of the text

  std::string requestType;
  std::vector<GoldenImage> inputs;
  std::vector<GoldenImage> outputs;
  std::vector<std::string> algorithms;
  std::vector<std::pair<std::string, std::string>> properties;
  std::vector<GoldenLine> tagLines;  // the lines that `frames` was read from
  std::vector<GoldenFrame> frames;

  std::vector<GoldenLine> after;  // the lines of [after], unparsed
  std::vector<GoldenWrite> writes;
  std::vector<GoldenLine> expectations;  // a variation's "> ..." lines, without ">"
};

// Calls `read` for each line of a file except empty lines and comments. If `read` throws std::runtime_error,
// adds the file and the line to its message.
void readGoldenLines(const std::string& path, const std::function<void(const GoldenLine&)>& read);

// This function and the next two throw std::runtime_error, with the file and the line, on syntax errors.
GoldenCase readGoldenCase(const std::string& name);
std::vector<GoldenCase> allGoldenTexts();
std::vector<GoldenCase> allGoldenVariations();

// Applies one line. A line of tags, such as "0 orlu.control.reqID int 5", sets a tag. A line of the request,
// such as "algorithms night hdr", replaces earlier lines with the same first word. But "and input ..." and
// "and output ..." add an image, and "property ..." adds a property. Throws std::runtime_error on syntax
// errors.
void changeGolden(GoldenCase& golden, const GoldenLine& line);

// Returns a copy of the case to detect code that reads only capture results. Each tag of a capture result
// is copied to the composition, and gets a wrong value in the capture result. Tags that the composition
// already contains, even as "none", stay unchanged in both.
GoldenCase withOverrides(const GoldenCase& golden);

// Returns the name of each write in order. The second write of a name gets the suffix "#2", etc.
std::vector<std::string> namesOf(const std::vector<GoldenWrite>& writes);

}  // namespace orlu::test
