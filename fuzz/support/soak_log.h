// What the library logs while it is soaked: this shows that the plans really did to it what they say.
#pragma once

namespace orlu::fuzz {

// From now on lines are counted, and go nowhere else.
void watchLog();
// Requests of this thread that timed out since the last call.
int takeTimeouts();
// Prints the counts since the last call. Error lines that no plan asks for are shown as they come, the first
// few; false when there was one.
bool printLogged();

}  // namespace orlu::fuzz
