// A clock of the soaks' own, so that the wait for a callback that never comes takes ten milliseconds.
#pragma once

namespace orlu::fuzz {

// While one lives, its thread's timed waits on a condition variable end after a thousandth of their time, and
// the thread's steady clock then shows the time that they should have taken. The programs' linker puts these
// functions before the system's (--wrap), for the library and the program alike.
class ShortWait {
public:
  ShortWait();
  ShortWait(const ShortWait&) = delete;
  ShortWait& operator=(const ShortWait&) = delete;
  ~ShortWait();
};

}  // namespace orlu::fuzz
