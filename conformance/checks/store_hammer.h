// Stress test: eight threads use parameter blocks at once.
#pragma once

namespace orlu::conform {

// Fails the check if a thread reads a value that was not set. Notes the number of values.
void hammerStore();

}  // namespace orlu::conform
