#include "camera_metadata_parser.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "camera_metadata_parser_getter_table.h"
#include "case_name.h"
#include "fixtures.h"
#include "jni_table.h"
#include "paths.h"

namespace orlu {
namespace {

using test::Lines;
using test::LogCapture;

constexpr char kComposition[] = "com/orlu/orlu3rdalgoservice/CaptureResultComposition";

struct Entry {
  std::string name;               // name in the parser's log
  std::string lookup;             // as JniTable reports it: "class" or "class.member signature"
  std::vector<std::string> told;  // names logged if the entry is missing; empty: only its own name
  std::string last;  // name of the last entry looked up if this one is missing; empty: the table's last
};

std::vector<Entry> readEntries() {
  std::vector<Entry> entries;
  std::ifstream in(test::goldenFolder() + "parser/lookups.txt");
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string first;
    if (!(words >> first) || first[0] == '#') continue;
    if (first == "told") {
      entries.back().told = {std::istream_iterator<std::string>(words), {}};
    } else if (first == "last") {
      words >> entries.back().last;
    } else {
      entries.push_back({first, "", {}, ""});
      std::getline(words >> std::ws, entries.back().lookup);
    }
  }
  return entries;
}

const std::vector<Entry> kEntries = readEntries();

std::string classOf(const Entry& entry) {
  return entry.lookup.substr(0, entry.lookup.find('.'));
}

std::string isNull(const std::string& name) {
  if (name.rfind("short:", 0) == 0) return "VASJNI-CameraMetadataParser: " + name.substr(6) + " is null";
  return "initFromEnv() " + name + " is null";
}

class CameraMetadataParserTest : public testing::Test {
protected:
  // Initialises the parser. The test fails if an exception remains.
  int init(bool withoutComposition) {
    const int result = mParser.initFromEnv(test::env(), withoutComposition);
    EXPECT_FALSE(test::env()->ExceptionCheck());
    test::env()->ExceptionClear();
    return result;
  }

  test::LocalFrame mFrame;
  CameraMetadataParser mParser{test::env()};  // loads the parser's classes before lookups are counted
  LogCapture mLog;
};

TEST_F(CameraMetadataParserTest, LooksEverythingUpInOrder) {
  for (const bool withoutComposition : {true, false}) {
    const test::JniTable table(test::env());
    EXPECT_EQ(0, init(withoutComposition));
    Lines lookups;
    for (const Entry& entry : kEntries) {
      if (!withoutComposition || classOf(entry) != kComposition) lookups.push_back(entry.lookup);
    }
    EXPECT_EQ(test::joined(lookups), test::joined(table.lookups()));
    EXPECT_EQ(withoutComposition ? 29 : 30, table.localReferences())
        << "only references to classes may remain";
  }
  EXPECT_EQ(Lines(), test::parserErrors(mLog));
}

TEST_F(CameraMetadataParserTest, NeedsAnEnvironment) {
  EXPECT_EQ(-1, mParser.initFromEnv(nullptr, false));
  EXPECT_EQ(Lines{isNull("mEnv")}, test::parserErrors(mLog));
}

class CameraMetadataParserMissingTest : public CameraMetadataParserTest,
                                        public testing::WithParamInterface<Entry> {};

TEST_P(CameraMetadataParserMissingTest, TellsWhatIsMissingAndGoesOn) {
  const Entry& missing = GetParam();
  test::JniTable table(test::env());
  table.hide(missing.lookup);
  EXPECT_EQ(-1, init(false));
  Lines errors;
  for (const std::string& name : missing.told) errors.push_back(isNull(name));
  EXPECT_EQ(missing.told.empty() ? Lines{isNull(missing.name)} : errors, test::parserErrors(mLog));
  // Neither the members of a missing class nor the entries after `missing.last` are looked up.
  Lines lookups;
  for (const Entry& entry : kEntries) {
    if (entry.name == missing.name || classOf(entry) != missing.lookup) lookups.push_back(entry.lookup);
    if (entry.name == missing.last) break;
  }
  EXPECT_EQ(test::joined(lookups), test::joined(table.lookups()));
}

INSTANTIATE_TEST_SUITE_P(Entries, CameraMetadataParserMissingTest, testing::ValuesIn(kEntries),
                         test::CaseName());

}  // namespace
}  // namespace orlu
