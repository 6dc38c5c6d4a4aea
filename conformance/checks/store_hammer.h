// Stress test: eight threads use parameter blocks at once.
#pragma once

namespace orlu::conform {

// Fails the check if a value that a thread reads is missing or differs from what was set. Notes the number of
// values and rounds.
void hammerStore();

}  // namespace orlu::conform
