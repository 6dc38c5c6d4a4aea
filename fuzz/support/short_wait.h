// Shortens the wait for a missing callback from ten seconds to ten milliseconds.
#pragma once

namespace orlu::fuzz {

// While a ShortWait exists, its thread's timed waits on condition variables (steady clock) take a thousandth
// of their time. After a timeout, the thread's steady clock has still advanced by the full time. The linker
// option
// --wrap replaces the functions that wait and that read the clock, in the library and in the program.
class ShortWait {
public:
  ShortWait();
  ShortWait(const ShortWait&) = delete;
  ShortWait& operator=(const ShortWait&) = delete;
  ~ShortWait();
};

}  // namespace orlu::fuzz
