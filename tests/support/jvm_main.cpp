// main() of the test programs that need a Java VM.

#include <gtest/gtest.h>

#include "jvm.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!orlu::test::startJvm()) return 2;
  const int result = RUN_ALL_TESTS();
  if (orlu::test::jvmIsQuiet()) return result;
  std::fprintf(stderr, "-Xcheck:jni was not quiet\n");
  return 3;
}
