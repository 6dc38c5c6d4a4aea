// The texts in golden/logs: every line that is logged under a prefix, with the operation that the prefix
// shows. An engineer who reads a log looks for the name that the line says, so that no helper's name may
// stand there.
#pragma once

#include <string>
#include <vector>

#include "golden_case.h"
#include "log_capture.h"

namespace orlu::test {

class LogTexts {
public:
  // Reads all texts. Throws std::runtime_error, with the file and the line, for what it does not understand.
  LogTexts();

  // Marks the texts of these lines as seen, and prints each line that has none, figures left out, once.
  // Returns whether all have one.
  bool haveAll(const std::vector<LogLine>& lines);
  // The texts of a class that haveAll() has not seen.
  std::vector<GoldenLine> unseen(const std::string& clazz) const;

private:
  struct Form {
    GoldenLine line;
    std::string clazz;
    std::string pattern;  // of fnmatch(): "D _V_VASJNI-VRequest getRequestInfo() request info: *"
    bool isSeen = false;
  };

  std::vector<Form> mForms;
};

}  // namespace orlu::test
