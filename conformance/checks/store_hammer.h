// Eight threads at the parameter store at once.
#pragma once

namespace orlu::conform {

// Fails the check if a value is not what was set. Notes how often it was tried.
void hammerStore();

}  // namespace orlu::conform
