// main() of the test programs that need no Java VM.

#include "test_main.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return orlu::test::runTests();
}
