// Shortens the timeout of a missing callback to ten milliseconds.
#pragma once

namespace orlu::fuzz {

// While an object exists, timed waits of its thread on condition variables take a thousandth of their time;
// after a timeout, the thread's steady clock has advanced by the full time. The linker option --wrap replaces
// the functions that wait and that read the clock, in the library and in the program.
class ShortWait {
public:
  ShortWait();
  ShortWait(const ShortWait&) = delete;
  ShortWait& operator=(const ShortWait&) = delete;
  ~ShortWait();
};

}  // namespace orlu::fuzz
