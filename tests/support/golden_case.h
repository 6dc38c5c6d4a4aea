// One golden text: a request, and what translating its metadata must come to. tests/golden/README.md tells
// the notation.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "golden_value.h"

namespace orlu::test {

struct GoldenImage {
  std::string format;
  int width = 0;
  int height = 0;
  int stride = 0;  // bytes
  bool hardware = false;
};

// The tags of one frame: what the camera reported, and the composition over it.
struct GoldenFrame {
  std::map<std::string, GoldenValue> captureResult;
  std::map<std::string, GoldenValue> composition;
};

// One setValue() call.
struct GoldenWrite {
  std::string section;  // without "orlu.algo."
  std::string key;
  GoldenValue value;
};

struct GoldenCase {
  // The lines that `frames` come from.
  std::vector<std::string> tagLines;

  std::string requestType;
  std::vector<GoldenImage> inputs;
  std::vector<GoldenImage> outputs;
  std::vector<std::string> algorithms;
  std::vector<std::pair<std::string, std::string>> properties;
  std::vector<GoldenFrame> frames;

  std::vector<std::string> algorithmsAfter;
  std::vector<std::string> puts;            // as they are written
  std::vector<std::string> changedOutputs;  // the same
  bool skip = false;
  std::vector<GoldenWrite> writes;
};

// Reads a text; "include" looks into the folder "shared" beside it. Throws std::runtime_error, with the file
// and the line, for what it does not understand.
GoldenCase readGoldenCase(const std::string& path);

// Reads one more line of tags, such as "0 orlu.control.reqID int 5", or a line of the request, such as
// "algorithms night hdr", which takes the place of the lines that began like it; "and input ..." joins them.
void changeGolden(GoldenCase& golden, const std::string& line);

// The writes, one line each. A value is shown by the type that `typedAs` has of its key.
std::string writeLines(const std::vector<GoldenWrite>& writes, const std::vector<GoldenWrite>& typedAs);

}  // namespace orlu::test
