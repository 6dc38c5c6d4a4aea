// The other direction: what the service's side promises to the algorithm library.
#pragma once

#include <string>

namespace orlu::conform {

// A page of Markdown; docs/conformance.md holds the same text.
std::string contract();

}  // namespace orlu::conform
