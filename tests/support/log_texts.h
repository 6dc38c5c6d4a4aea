// The texts in golden/logs: every line that is logged under a prefix, with the operation that the prefix
// shows. An engineer who reads a log looks for the name that the line says, so that no helper's name may
// stand there.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "golden_case.h"
#include "log_capture.h"

namespace orlu::test {

class LogTexts {
public:
  // Reads all texts. Throws std::runtime_error, with the file and the line, for what it does not understand.
  LogTexts();

  // Marks the line's text as seen. False when the line has none.
  bool find(const LogLine& line);
  // Prints each of these lines that has no text, figures left out, once. Returns whether all have one.
  bool haveAll(const std::vector<LogLine>& lines);
  // The texts of a class that find() has not seen.
  std::vector<GoldenLine> unseen(const std::string& clazz) const;

private:
  struct Form {
    GoldenLine line;
    std::string pattern;  // of fnmatch()
    bool isSeen = false;
  };

  bool findBelow(const std::string& key, const std::string& message);

  // By "D _V_VASJNI-VRequest getRequestInfo".
  std::map<std::string, std::vector<Form>> mForms;
};

}  // namespace orlu::test
