// The other direction: what the service guarantees to algorithm libraries.
#pragma once

#include <string>

namespace orlu::conform {

// The guarantees in Markdown. docs/conformance.md contains the same text.
std::string contract();

}  // namespace orlu::conform
