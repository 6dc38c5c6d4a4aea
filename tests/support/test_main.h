// Runs a program's tests and shows the log of failing tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "log_capture.h"
#include "log_texts.h"

namespace orlu::test {

// Returns the last `count` lines of a text whose lines all end with a newline.
inline std::string lastLines(const std::string& text, size_t count) {
  size_t start = text.size();
  for (; count > 0 && start > 1; --count) start = text.rfind('\n', start - 2) + 1;  // npos + 1 is 0
  return text.substr(start);
}

// Hides the log of passing tests. Prints the last log lines of each failing test, then its failures again,
// because the log would bury the first report.
class LogOfFailures : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { mLog.clear(); }
  void OnTestEnd(const testing::TestInfo& test) override {
    const std::string text = test.result()->Failed() ? mLog.text() : "";
    if (text.empty()) return;
    const std::string end = lastLines(text, 30);
    std::fprintf(stderr, "%s uncaptured log lines of %s.%s:\n%s",
                 end.size() < text.size() ? "The last" : "All", test.test_suite_name(), test.name(),
                 end.c_str());
    for (int i = 0; i < test.result()->total_part_count(); ++i) {
      const testing::TestPartResult& part = test.result()->GetTestPartResult(i);
      if (part.failed()) printFailure(test, part);
    }
  }

  // Prints file, line, and enough of the message to recognise it.
  static void printFailure(const testing::TestInfo& test, const testing::TestPartResult& part) {
    constexpr size_t kMostBytes = 300;
    const std::string message = part.summary();
    std::fprintf(stderr, "FAILED %s.%s at %s:%d: %s%s\n", test.test_suite_name(), test.name(),
                 part.file_name() == nullptr ? "?" : part.file_name(), part.line_number(),
                 message.substr(0, kMostBytes).c_str(), message.size() > kMostBytes ? "..." : "");
  }

  LogCapture mLog;
};

// Runs all tests. Returns 1 if a test failed, or logged a line that is missing from golden/logs; else 0.
inline int runTests() {
  testing::UnitTest::GetInstance()->listeners().Append(new LogOfFailures());
  const int result = RUN_ALL_TESTS();
  return LogTexts().haveAll(LogCapture::everything()) ? result : 1;
}

}  // namespace orlu::test
