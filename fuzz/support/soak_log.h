// Counts log lines during the soak, to prove that the plans have their intended effect.
#pragma once

namespace orlu::fuzz {

// From now on, counts error lines and prints the first few that no plan causes. Discards lines of lower
// priority, and the parser's errors about tags that the soak's requests lack.
void watchLog();
// Returns and clears the number of timed-out requests of this thread.
int takeTimeouts();
// Prints and clears the counts. Returns false if it counted error lines that no plan causes.
bool printLogged();

}  // namespace orlu::fuzz
