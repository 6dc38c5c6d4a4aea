// What the library logs while it is soaked: this shows that the plans really did to it what they say.
#pragma once

namespace orlu::fuzz {

// From now on lines are counted, and go nowhere else.
void watchLog();
// Requests of this thread that timed out since the last call.
int takeTimeouts();
// Prints the counts, and the first few error lines that no plan asks for. True when there was none.
bool printLogged();

}  // namespace orlu::fuzz
