// Stress test of the parameter store with eight threads.
#pragma once

namespace orlu::conform {

// Fails the check if a value differs from what was set. Notes the number of attempts.
void hammerStore();

}  // namespace orlu::conform
