// Counts log lines during the soak, to prove that the plans have their intended effect.
#pragma once

namespace orlu::fuzz {

// Counts lines from now on and discards them.
void watchLog();
// Returns and clears the number of timed-out requests of this thread.
int takeTimeouts();
// Prints and clears the counts. Returns false if there were error lines that no plan causes; the first few
// are printed when they are logged.
bool printLogged();

}  // namespace orlu::fuzz
