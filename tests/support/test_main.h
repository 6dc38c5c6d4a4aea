// main() of the test programs.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "log_capture.h"
#include "log_texts.h"

namespace orlu::test {

// Keeps the terminal free of the log of tests that pass. A test that fails shows the last lines of its own.
class LogOfFailures : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { mLog.clear(); }
  void OnTestEnd(const testing::TestInfo& test) override {
    const std::string text = test.result()->Passed() ? "" : mLog.text();
    if (text.empty()) return;
    constexpr size_t kMostBytes = 4'000;
    const size_t start = text.size() > kMostBytes ? text.find('\n', text.size() - kMostBytes) + 1 : 0;
    std::fprintf(stderr, "%s of %s.%s logged, as far as it was not captured:\n%s",
                 start > 0 ? "The last" : "All", test.test_suite_name(), test.name(), text.c_str() + start);
  }

  LogCapture mLog;
};

// Also fails when a test logged a line that no text in golden/logs has.
inline int runTests() {
  testing::UnitTest::GetInstance()->listeners().Append(new LogOfFailures());
  const int result = RUN_ALL_TESTS();
  return LogTexts().haveAll(LogCapture::everything()) ? result : 1;
}

}  // namespace orlu::test
