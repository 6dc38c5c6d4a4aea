// main() of the tests that need a Java VM. Starts the VM, runs the tests, and fails if the VM printed
// warnings about JNI calls.

#include "jvm.h"
#include "test_main.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!orlu::test::startCheckedJvm({"orlu-service", "orlu-host-framework", "orlu-tests"})) return 2;
  const int result = orlu::test::runTests();
  if (orlu::test::jvmIsQuiet()) return result;
  std::fprintf(stderr, "-Xcheck:jni printed the warnings above\n");
  return 3;
}
