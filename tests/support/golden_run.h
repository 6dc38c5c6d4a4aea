// Translates the metadata of a golden request, the way the product does it for an image request.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "algo.h"
#include "golden_case.h"
#include "metadata_updater.h"

namespace orlu::test {

// What translating a request came to.
struct GoldenRun {
  std::vector<GoldenWrite> writes;      // in order; their types are "bytes"
  std::vector<std::string> algorithms;  // the list as the steps left it
  std::vector<std::string> puts;        // what the compositions hold beside what the request gave them
  std::vector<AlgoFrameInfo> outputsBefore;
  std::vector<AlgoFrameInfo> outputsAfter;
  bool skip = false;
};

// `algo` records the calls, and is forgotten first. `inspect` sees the updater before its parameter block is
// destroyed.
GoldenRun runGolden(const GoldenCase& golden, Algo& algo,
                    const std::function<void(MetadataUpdater&)>& inspect = {});

// An output after the translation: "0 unchanged", or its sizes as a golden text has them, and all of its
// record if anything else changed.
std::string describeOutput(const GoldenRun& run, size_t index);

}  // namespace orlu::test
