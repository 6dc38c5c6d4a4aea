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

// A line of a file, or what is wrong with it.
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

// The tags of one frame: what the camera reported, and the composition over it. "none" is a value, too: the
// tag is not there.
struct GoldenFrame {
  std::map<std::string, GoldenTag> captureResult;
  std::map<std::string, GoldenTag> composition;
};

// One setValue() call.
struct GoldenWrite {
  std::string name;  // section and key, without "orlu.algo."
  GoldenValue value;
  GoldenLine line;  // that gives the value
};

struct GoldenCase {
  std::string name;  // "Variation of text", or the text's alone

  std::string requestType;
  std::vector<GoldenImage> inputs;
  std::vector<GoldenImage> outputs;
  std::vector<std::string> algorithms;
  std::vector<std::pair<std::string, std::string>> properties;
  std::vector<GoldenLine> tagLines;  // that `frames` come from
  std::vector<GoldenFrame> frames;

  std::vector<GoldenLine> after;  // as they are written
  std::vector<GoldenWrite> writes;
  std::vector<GoldenLine> expectations;  // of a variation, without their ">"
};

// Calls `read` for each line of a file that is neither empty nor a comment. Throws std::runtime_error, with
// the file and the line, for what `read` throws.
void readGoldenLines(const std::string& path, const std::function<void(const GoldenLine&)>& read);

// Reads a text of the folder of golden texts, by its name. This and the following throw std::runtime_error,
// with the file and the line, for what they do not understand.
GoldenCase readGoldenCase(const std::string& name);
// Every text of the folder; every variation of one.
std::vector<GoldenCase> allGoldenTexts();
std::vector<GoldenCase> allGoldenVariations();

// Reads one more line of tags, such as "0 orlu.control.reqID int 5", or a line of the request, such as
// "algorithms night hdr", which takes the place of the lines that began like it; "and input ..." joins them.
void changeGolden(GoldenCase& golden, const GoldenLine& line);

// The same request with every tag in a composition, over another value in the capture result: whatever asks
// the capture result alone finds the other value. Tags that a composition has, be it "none", stay as they
// are.
GoldenCase withOverrides(const GoldenCase& golden);

// The name of each write in order, with "#2" behind one that comes for the second time.
std::vector<std::string> namesOf(const std::vector<GoldenWrite>& writes);

}  // namespace orlu::test
