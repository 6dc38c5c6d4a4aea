// Names of table rows, shown in test names and failures.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace orlu::test {

// Base of table rows. The name is a row's first value.
struct NamedCase {
  const char* name;

  friend std::ostream& operator<<(std::ostream& out, const NamedCase& named) { return out << named.name; }
};

struct CaseName {
  template <typename Case>
  std::string operator()(const testing::TestParamInfo<Case>& tested) const {
    return tested.param.name;
  }
};

}  // namespace orlu::test
