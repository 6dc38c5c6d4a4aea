// Stress test of the parameter store with eight threads.
#pragma once

namespace orlu::conform {

// Fails the check if a value differs from the one that was set. Notes the number of values.
void hammerStore();

}  // namespace orlu::conform
