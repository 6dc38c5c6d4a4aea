#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>

#include "case_name.h"

namespace orlu {
namespace {

struct PropertyCase {
  const char* name;
  const char* value;         // null: never set
  const char* defaultValue;  // may be null
  std::string got;
};

class HostPropertiesTest : public testing::TestWithParam<PropertyCase> {};

TEST_P(HostPropertiesTest, AnswersTheValueOrTheDefault) {
  const PropertyCase& c = GetParam();
  const std::string key = std::string("test.") + c.name;
  if (c.value != nullptr) property_set(key.c_str(), c.value);
  char value[PROPERTY_VALUE_MAX + 4];
  std::fill(std::begin(value), std::end(value), '#');
  EXPECT_EQ(static_cast<int>(c.got.size()), property_get(key.c_str(), value, c.defaultValue));
  EXPECT_STREQ(c.got.c_str(), value);
  EXPECT_EQ('#', value[PROPERTY_VALUE_MAX]);
}

const std::string kLong(200, 'x');

INSTANTIATE_TEST_SUITE_P(
    Cases, HostPropertiesTest,
    testing::Values(PropertyCase{"Set", "1", "0", "1"}, PropertyCase{"Unset", nullptr, "0", "0"},
                    PropertyCase{"Empty", "", "0", "0"}, PropertyCase{"NoDefault", nullptr, nullptr, ""},
                    PropertyCase{"LongDefault", nullptr, kLong.c_str(), std::string(91, 'x')}),
    test::CaseName());

TEST(HostPropertiesSetTest, RefusesWhatIsTooLong) {
  EXPECT_EQ(-1, property_set("test.long", std::string(92, 'x').c_str()));
  EXPECT_EQ(0, property_set("test.long", std::string(91, 'y').c_str()));
}

}  // namespace
}  // namespace orlu
