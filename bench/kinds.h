// The four shots that the benchmarks measure. Each takes its tags from a sample file.
#pragma once

#include "shot.h"

namespace orlu::bench {

struct Kind {
  const char* name;
  ShotPlan plan;
};

inline std::vector<Kind> kinds() {
  std::vector<Kind> all(4);
  all[0].name = "capture";
  all[0].plan.sample = "capture.json";
  all[0].plan.algorithms = {"jpegEncode"};
  all[1].name = "night";
  all[1].plan.sample = "night.json";
  all[1].plan.frames = 7;
  all[1].plan.algorithms = {"night", "jpegEncode"};
  all[2].name = "two_camera";
  all[2].plan.sample = "bokeh-interleaved.json";
  all[2].plan.frames = 12;
  all[2].plan.algorithms = {"dualBokeh", "beauty", "jpegEncode"};
  all[3].name = "clarity";
  all[3].plan.sample = "clarity.json";
  all[3].plan.frames = 50;
  all[3].plan.algorithms = {"frameClarOnly"};
  all[3].plan.outputFormat = "NV21";
  return all;
}

}  // namespace orlu::bench
