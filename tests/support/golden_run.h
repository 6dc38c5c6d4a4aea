// Translates the metadata of a golden text's request as the product does for an image request, and compares
// the result with the text.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "algo.h"
#include "golden_case.h"
#include "log_capture.h"
#include "metadata_updater.h"

namespace orlu::test {

struct GoldenRun {
  std::vector<GoldenWrite> writes;  // in order; their type is "bytes"
  std::vector<std::string> after;   // lines in the form of a text's [after]
  // Other facts that variations can expect: unchanged outputs, "output none", "no skip", "rawnr" (the HDR
  // type and the night frame's index), and "format" (the first input's format, and whether it is raw).
  std::vector<std::string> more;
};

// Clears `algo`, then records the calls in it. `inspect` gets the updater before its parameter block is
// destroyed.
GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect = {});

// Returns the differences between `run` and a text, each with the text's line and the reason. Compares the
// lines below [after], then the writes: missing and wrong values, surplus values, order.
std::vector<GoldenLine> checkGoldenText(const GoldenCase& golden, const GoldenRun& run);
// Returns the expectations of a variation that `run` and its log do not meet, each with the actual result.
std::vector<GoldenLine> checkGoldenVariation(const GoldenCase& golden, const GoldenRun& run,
                                             const LogCapture& log);

}  // namespace orlu::test
