// The contract between the service and algorithm libraries.
#pragma once

#include <string>

namespace orlu::conform {

// Returns the contract in Markdown. docs/conformance.md contains the same text.
std::string contract();

}  // namespace orlu::conform
