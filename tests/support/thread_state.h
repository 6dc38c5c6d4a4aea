// Waits until a thread sleeps.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

namespace orlu::test {

inline int threadId() {
  return static_cast<int>(syscall(SYS_gettid));
}

// Waits until `thread` contains a thread's id (it is 0 before), and until that thread sleeps in the kernel or
// has exited.
inline void untilAsleep(const std::atomic<int>& thread) {
  while (thread == 0) std::this_thread::yield();
  for (;;) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    // The state follows the name, which may contain blanks and brackets.
    if (!std::getline(stat, text) || text.compare(text.rfind(')') + 1, 2, " S") == 0) return;
    std::this_thread::yield();
  }
}

}  // namespace orlu::test
