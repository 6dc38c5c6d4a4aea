// The texts in golden/logs: the formats of all log lines that have a prefix. The prefix names an operation.
// Engineers search the log for this name, so a helper function's name must not replace it.
#pragma once

#include <string>
#include <vector>

#include "golden_case.h"
#include "log_capture.h"

namespace orlu::test {

class LogTexts {
public:
  // Reads all texts. Throws std::runtime_error, with the file and the line, on syntax errors.
  LogTexts();

  // Marks the texts that match these lines as seen; ignores lines without a prefix. Returns true if every
  // other line matches a text. Prints the lines that match none to standard error, each cut before its first
  // number, without duplicates.
  bool haveAll(const std::vector<LogLine>& lines);
  // Returns the texts of a class that haveAll() has not marked as seen.
  std::vector<GoldenLine> unseen(const std::string& clazz) const;

private:
  struct Form {
    GoldenLine line;
    std::string clazz;
    std::string pattern;  // for fnmatch(): "D _V_VASJNI-VRequest getImageData() get image data * * * *"
    bool isSeen = false;
  };

  std::vector<Form> mForms;
};

}  // namespace orlu::test
