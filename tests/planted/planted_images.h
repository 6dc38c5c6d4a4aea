// The image faults of planted_algo.cpp.
#pragma once

#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::planted {

// Changes the record that the stand-in gets: "inputStride" and "outputStride" set the strides to the width,
// "swapped" sets the inputs' format to NV12, and "elsewhere" replaces the first output by the first input.
// Other kinds have no effect.
void spoilFrames(const std::string& kind, AlgoProcessRecord& record);

// Changes the stand-in's NV21 outputs: "black" and "clipped" (white) replace all pixels, "dark" divides the
// luma, "green" clears the chroma, and "half" clears the lower half of the luma. Other kinds have no effect.
void spoilOutputs(const std::string& kind, const std::vector<AlgoFrameInfo>& outputs);

// Overwrites the first bytes of `frame`, an input that must stay unchanged.
void stamp(const AlgoFrameInfo& frame);

}  // namespace orlu::planted
