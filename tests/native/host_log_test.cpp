// The log's line format and its filter.

#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "case_name.h"

namespace orlu {
namespace {

struct FilterCase {
  const char* name;
  const char* tags;  // ANDROID_LOG_TAGS
  const char* logged;
};

class HostLogDeathTest : public testing::TestWithParam<FilterCase> {};

// The variable is read when the library is loaded, so each case is a process of its own.
TEST_P(HostLogDeathTest, WritesTheLinesThatAreLetThrough) {
  const FilterCase& c = GetParam();
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  setenv("ANDROID_LOG_TAGS", c.tags, 1);
  EXPECT_EXIT(
      {
        __android_log_print(ANDROID_LOG_DEBUG, "A", "%s %d", "line", 1);
        __android_log_print(ANDROID_LOG_ERROR, "A", "line 2");
        __android_log_print(ANDROID_LOG_DEBUG, "_V_VASJNI-X", "line 3");
        std::exit(0);
      },
      testing::ExitedWithCode(0), c.logged);
  unsetenv("ANDROID_LOG_TAGS");
}

#define TIME "[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} +[0-9]+ +[0-9]+ "
// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, HostLogDeathTest, testing::Values(
    FilterCase{"All",      "",                        "^" TIME "D A       : line 1\n" TIME "E A       : line 2\n" TIME "D _V_VASJNI-X: line 3\n$"},
    FilterCase{"Errors",   "*:E",                     "^" TIME "E A       : line 2\n$"},
    FilterCase{"Silent",   "*:S",                     "^$"},
    FilterCase{"OneTag",   "_V_VASJNI-X:D *:S",       "^" TIME "D _V_VASJNI-X: line 3\n$"},
    FilterCase{"TagAlone", "*:S A",                   "^" TIME "D A       : line 1\n" TIME "E A       : line 2\n$"},
    FilterCase{"EachTag",  "A:E _V_VASJNI-X:S",       "^" TIME "E A       : line 2\n$"}),
    test::CaseName());
// clang-format on

}  // namespace
}  // namespace orlu
