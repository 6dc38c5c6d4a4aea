#include "algo_list.h"

#include <gtest/gtest.h>

#include <tuple>

namespace orlu {
namespace {

using List = std::vector<std::string>;

TEST(AlgoListTest, PrintsNamesJoinedByBlanks) {
  EXPECT_EQ("", printAlgoList({}));
  EXPECT_EQ("night jpegEncode flip", printAlgoList({"night", "jpegEncode", "flip"}));
}

TEST(AlgoListTest, ComparesAFixedNumberOfBytes) {
  // clang-format off
  const std::tuple<List, const char*, int, bool> kCases[] = {
      {{"hdr"},           "hdr",   3, true},
      {{"nightPortrait"}, "night", 5, true},
      {{"nig"},           "night", 5, false},
      {{"nighX"},         "night", 5, false},
      {{""},              "hdr",   3, false},
      {{},                "hdr",   3, false},
      {{"flip", "hdr"},   "hdr",   3, true},
  };
  // clang-format on
  for (const auto& [names, asked, length, contained] : kCases) {
    SCOPED_TRACE(printAlgoList(names));
    EXPECT_EQ(contained, isAlgoListContains(names, asked, length));

    // Removal deletes every matching entry, even adjacent entries, and keeps the first and last entries.
    List list = {"first"};
    list.insert(list.end(), names.begin(), names.end());
    list.insert(list.end(), names.begin(), names.end());
    list.emplace_back("last");
    removeAlgoFromAlgoList(list, asked, length);
    EXPECT_FALSE(isAlgoListContains(list, asked, length));
    EXPECT_EQ("first", list.front());
    EXPECT_EQ("last", list.back());
    EXPECT_EQ(contained, list.size() != 2 * names.size() + 2);
  }
}

TEST(AlgoListTest, TakesTheLengthOfALiteral) {
  List list = {"superns", "supernsll", "hdr"};
  EXPECT_TRUE(isAlgoListContains(list, "supernsll"));
  removeAlgoFromAlgoList(list, "superns");
  EXPECT_EQ(List{"hdr"}, list);
}

TEST(AlgoListTest, FiltersByWholeNames) {
  List supported = {"a", "b"};
  List list = {"b", "c", "a", "ab", "b"};
  AlgoListSupportFilter(supported, list);
  EXPECT_EQ((List{"b", "a", "b"}), list);
  EXPECT_EQ((List{"a", "b"}), supported);
}

}  // namespace
}  // namespace orlu
