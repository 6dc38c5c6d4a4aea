// Names the cases of a table by their member `name`, in test names and failures.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace orlu::test {

struct CaseName {
  template <typename Case>
  std::string operator()(const testing::TestParamInfo<Case>& tested) const {
    return tested.param.name;
  }
};

}  // namespace orlu::test
