#include "algo_list.h"

#include <gtest/gtest.h>

#include "case_name.h"

namespace orlu {
namespace {

using List = std::vector<std::string>;

TEST(AlgoListTest, PrintsNamesJoinedByBlanks) {
  EXPECT_EQ("", printAlgoList({}));
  EXPECT_EQ("night", printAlgoList({"night"}));
  EXPECT_EQ("night jpegEncode flip", printAlgoList({"night", "jpegEncode", "flip"}));
}

struct ContainsCase {
  const char* name;
  List list;
  const char* asked;
  int length;
  bool contained;
};

class AlgoListContainsTest : public testing::TestWithParam<ContainsCase> {};

TEST_P(AlgoListContainsTest, ComparesAFixedNumberOfBytes) {
  const ContainsCase& c = GetParam();
  EXPECT_EQ(c.contained, isAlgoListContains(c.list, c.asked, c.length));

  // What it finds is what removal takes away, adjacent entries too; the rest keep their order.
  List list = {"first"};
  list.insert(list.end(), c.list.begin(), c.list.end());
  list.insert(list.end(), c.list.begin(), c.list.end());
  list.emplace_back("last");
  removeAlgoFromAlgoList(list, c.asked, c.length);
  EXPECT_FALSE(isAlgoListContains(list, c.asked, c.length));
  EXPECT_EQ("first", list.front());
  EXPECT_EQ("last", list.back());
  EXPECT_EQ(c.contained ? list.size() : 2 * c.list.size() + 2, list.size());
}

INSTANTIATE_TEST_SUITE_P(Cases, AlgoListContainsTest,
                         testing::Values(
                             ContainsCase{
                                 "Equal", {"hdr"},
                                  "hdr", 3, true
},
                             ContainsCase{"Longer", {"nightPortrait"}, "night", 5, true},
                             ContainsCase{"Shorter", {"nig"}, "night", 5, false},
                             ContainsCase{"OtherEnd", {"nighX"}, "night", 5, false},
                             ContainsCase{"EmptyEntry", {""}, "hdr", 3, false},
                             ContainsCase{"EmptyList", {}, "hdr", 3, false},
                             ContainsCase{"Second", {"flip", "hdr"}, "hdr", 3, true}),
                         test::CaseName());

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
  List none;
  AlgoListSupportFilter(list, none);
  EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace orlu
