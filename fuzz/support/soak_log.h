// Counts log lines during the soak, to prove that the plans have their intended effect.
#pragma once

namespace orlu::fuzz {

// Counts error lines from now on, except those of missing tags, and prints the first few that no plan causes.
// Discards all other lines.
void watchLog();
// Returns and clears the number of timed-out requests of this thread.
int takeTimeouts();
// Prints and clears the counts. Returns false if there were lines that no plan causes.
bool printLogged();

}  // namespace orlu::fuzz
