// One golden text: a request, and what translating its metadata must come to. tests/golden/README.md
// describes the notation.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "golden_value.h"

namespace orlu::test {

// Where a line of a text stands.
struct GoldenPlace {
  std::string file;
  int line = 0;
};

struct GoldenLine {
  std::string text;
  GoldenPlace place;
};

struct GoldenImage {
  std::string format;
  int width = 0;
  int height = 0;
  int stride = 0;  // bytes
  bool hardware = false;
};

struct GoldenTag : GoldenValue {
  GoldenPlace place;
};

// The tags of one frame: what the camera reported, and the composition over it. "none" is a value, too: the
// tag is not there.
struct GoldenFrame {
  std::map<std::string, GoldenTag> captureResult;
  std::map<std::string, GoldenTag> composition;
};

// One setValue() call.
struct GoldenWrite {
  std::string section;  // without "orlu.algo."
  std::string key;
  GoldenValue value;
  GoldenPlace place;  // of the line that gives its value

  std::string name() const { return section + ' ' + key; }
};

struct GoldenCase {
  // The lines that `frames` come from.
  std::vector<GoldenLine> tagLines;

  std::string requestType;
  std::vector<GoldenImage> inputs;
  std::vector<GoldenImage> outputs;
  std::vector<std::string> algorithms;
  std::vector<std::pair<std::string, std::string>> properties;
  std::vector<GoldenFrame> frames;

  std::vector<GoldenLine> after;  // as they are written
  std::vector<GoldenWrite> writes;
};

// Calls `read` for each line of a file that is neither empty nor a comment. Throws std::runtime_error, with
// the file and the line, for what `read` throws.
void readGoldenLines(const std::string& path, const std::function<void(const GoldenLine&)>& read);

// Reads a text of the folder of golden texts, by its name. Throws std::runtime_error, with the file and the
// line, for what it does not understand.
GoldenCase readGoldenCase(const std::string& name);

// Reads one more line of tags, such as "0 orlu.control.reqID int 5", or a line of the request, such as
// "algorithms night hdr", which takes the place of the lines that began like it; "and input ..." joins them.
void changeGolden(GoldenCase& golden, const GoldenLine& line);

// The same request with every tag in a composition, over another value in the capture result: whatever asks
// the capture result alone finds the other value. Tags that a composition has, be it "none", stay as they
// are.
GoldenCase withOverrides(const GoldenCase& golden);

}  // namespace orlu::test
