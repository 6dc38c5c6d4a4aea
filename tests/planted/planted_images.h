// The image faults of planted_algo.cpp.
#pragma once

#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::planted {

// Changes the record that the stand-in gets: "inputStride" sets each input's strides to its width,
// "outputStride" does so for the outputs, "swapped" sets the inputs' format to NV12, and "elsewhere" puts the
// first input in place of the first output. Other kinds have no effect.
void spoilFrames(const std::string& kind, AlgoProcessRecord& record);

// Changes the pixels of the stand-in's NV21 outputs: "black" makes them black, "clipped" makes them white,
// "dark" divides the luma, "green" sets the chroma to 0, and "half" sets the lower half of the luma to 0.
// Other kinds have no effect.
void spoilOutputs(const std::string& kind, const std::vector<AlgoFrameInfo>& outputs);

// Overwrites the first bytes of `frame`, an input that must stay unchanged.
void stamp(const AlgoFrameInfo& frame);

}  // namespace orlu::planted
