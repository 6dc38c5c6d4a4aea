// Death tests start their program a second time. Under the emulator the kernel knows no way to start one for
// another machine, unless the emulator is named: this execv() comes before the C library's, and names it.

#include <unistd.h>

#include <vector>

extern "C" int execv(const char* path, char* const argv[]) {
  std::vector<const char*> arguments = {"qemu-arm-static", "-L", ORLU_TEST_EMULATOR_ROOT, path};
  for (int i = 1; argv[0] != nullptr && argv[i] != nullptr; ++i) arguments.push_back(argv[i]);
  arguments.push_back(nullptr);
  return execvp(arguments[0], const_cast<char* const*>(arguments.data()));
}
