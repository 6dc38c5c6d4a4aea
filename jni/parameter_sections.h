// Sections of the parameter set.
#pragma once

namespace orlu {

constexpr char kControl[] = "orlu.algo.control";      // control inputs of this request
constexpr char kParameter[] = "orlu.algo.parameter";  // algorithm parameters
constexpr char kSensor[] = "orlu.algo.sensor";        // sensor and camera facts
constexpr char kFeedback[] = "orlu.algo.feedback";    // what the algorithms report back
constexpr char kSystem[] = "orlu.algo.system";        // facts that all algorithms share
constexpr char kZoom[] = "orlu.algo.zoom";            // zoom ratios

}  // namespace orlu
