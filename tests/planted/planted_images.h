// What planted libraries do to images.
#pragma once

#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::planted {

// Changes what the stand-in is handed: "inputStride" and "outputStride" take the width for the stride,
// "swapped" NV12 for the inputs' NV21, "elsewhere" the first input's memory for the first output's. Others
// change nothing.
void spoilFrames(const std::string& kind, AlgoProcessRecord& record);

// Changes what the stand-in made, in shared memory: "black", "dark", "clipped" to white, "green" without
// colour values, "half" without the lower rows. Others change nothing.
void spoilOutputs(const std::string& kind, const std::vector<AlgoFrameInfo>& outputs);

// Writes into the memory of a frame that was to be read only.
void stamp(const AlgoFrameInfo& frame);

}  // namespace orlu::planted
