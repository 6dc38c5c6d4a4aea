// Faults in images, for planted libraries.
#pragma once

#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::planted {

// Changes the stand-in's input: "inputStride" and "outputStride" set the stride to the width, "swapped" sets
// the inputs' format to NV12, "elsewhere" replaces the first output's memory by the first input's. Other
// kinds have no effect.
void spoilFrames(const std::string& kind, AlgoProcessRecord& record);

// Changes the stand-in's output in shared memory: "black", "dark", "clipped" to white, "green" without
// chroma, "half" without the lower rows. Other kinds have no effect.
void spoilOutputs(const std::string& kind, const std::vector<AlgoFrameInfo>& outputs);

// Writes to the memory of a read-only frame.
void stamp(const AlgoFrameInfo& frame);

}  // namespace orlu::planted
