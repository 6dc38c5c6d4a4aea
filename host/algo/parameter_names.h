// The sections of a parameter set that the algorithms read and write.
#pragma once

namespace orlu::standin {

constexpr char kControl[] = "orlu.algo.control";
constexpr char kParameter[] = "orlu.algo.parameter";
constexpr char kFeedback[] = "orlu.algo.feedback";

}  // namespace orlu::standin
