// Translates the metadata of a golden text's request in the same way as RequestProcessor::processImage(), and
// compares the result with the text.
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
  std::vector<GoldenWrite> writes;  // in order; each value has the type "bytes"
  std::vector<std::string> after;   // lines in the form of a text's [after]
  // Lines that only variations can expect: "output N unchanged", "output none" (the request has no outputs),
  // "no skip", "rawnr" (HDR type and index of the night frame), and "format" (the first input's format, and 1
  // if it is raw, else 0).
  std::vector<std::string> more;
};

// Translates the metadata of `golden`. Clears the calls in `algo` before the translation, which adds its own.
// Calls `inspect` with the updater while the parameter block still exists.
GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect = {});

// Returns the differences between `run` and a text, each with the text's line and the reason. Compares the
// lines below [after], then the writes: missing and wrong values, surplus values, order.
std::vector<GoldenLine> checkGoldenText(const GoldenCase& golden, const GoldenRun& run);
// Returns the expectations of a variation that `run` and its log do not meet, each with the actual result.
std::vector<GoldenLine> checkGoldenVariation(const GoldenCase& golden, const GoldenRun& run,
                                             const LogCapture& log);

}  // namespace orlu::test
