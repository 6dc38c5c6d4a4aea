// main() of the test programs without a Java VM.

#include "test_main.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return orlu::test::runTests();
}
