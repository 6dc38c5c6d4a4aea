// Translates the metadata of a golden request, the way the product does it for an image request, and compares
// what that comes to with the text.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "algo.h"
#include "golden_case.h"
#include "log_capture.h"
#include "metadata_updater.h"

namespace orlu::test {

// What translating a request came to.
struct GoldenRun {
  std::vector<GoldenWrite> writes;  // in order; their types are "bytes"
  std::vector<std::string> after;   // the lines that a text has below [after]
  // What a variation may ask for beside those lines: outputs that did not change, "no skip", the first
  // input's format and the bracketing.
  std::vector<std::string> more;
};

// `algo` records the calls, and is forgotten first. `inspect` sees the updater before its parameter block is
// destroyed.
GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect = {});

// Everything in which `run` differs from a text, as the line of the text that says otherwise and what is
// wrong: lines that are missing, values, lines too many, then order.
std::vector<GoldenLine> checkGoldenText(const GoldenCase& golden, const GoldenRun& run);
// The expectations of a variation that `run` and its log do not meet, each with what was found instead.
std::vector<GoldenLine> checkGoldenVariation(const GoldenCase& golden, const GoldenRun& run,
                                             const LogCapture& log);

}  // namespace orlu::test
