// Translates the metadata of a golden request as the product does for an image request, and compares the
// result with the text.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "algo.h"
#include "golden_case.h"
#include "log_capture.h"
#include "metadata_updater.h"

namespace orlu::test {

// The result of translating a request.
struct GoldenRun {
  std::vector<GoldenWrite> writes;  // in order; their type is "bytes"
  std::vector<std::string> after;   // the lines that a text has below [after]
  // Other facts that variations can expect: unchanged outputs, "no skip", the first input's format and the
  // bracketing.
  std::vector<std::string> more;
};

// Clears `algo`, then records the calls in it. `inspect` gets the updater before its parameter block is
// destroyed.
GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect = {});

// The differences between `run` and a text, each with the line of the text and the reason: first missing
// lines, then wrong values, surplus lines, and order.
std::vector<GoldenLine> checkGoldenText(const GoldenCase& golden, const GoldenRun& run);
// The variation's expectations that `run` and its log do not meet, each with the actual result.
std::vector<GoldenLine> checkGoldenVariation(const GoldenCase& golden, const GoldenRun& run,
                                             const LogCapture& log);

}  // namespace orlu::test
