#include "paths.h"

namespace orlu::test {

std::string goldenFolder() {
  return ORLU_TEST_GOLDEN_FOLDER;
}

std::string libraryFolder() {
  return ORLU_TEST_LIBRARY_FOLDER;
}

std::string jarPath(const std::string& name) {
  return ORLU_TEST_JAVA_FOLDER + name + ".jar";
}

}  // namespace orlu::test
