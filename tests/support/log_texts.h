// The texts in golden/logs: all log lines with a prefix. The prefix names an operation; engineers search the
// log for this name, so a helper function's name must not replace it.
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

  // Marks the texts of these lines as seen; ignores lines without a prefix. Prints lines without a text to
  // standard error: each cut before its first number, without duplicates. Returns true if all have a text.
  bool haveAll(const std::vector<LogLine>& lines);
  // Returns a class's texts that haveAll() has not seen.
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
