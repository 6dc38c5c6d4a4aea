#include "paths.h"

#include <unistd.h>

#include <filesystem>

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

std::string temporaryFolder() {
  return access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : std::filesystem::temp_directory_path().string() + '/';
}

}  // namespace orlu::test
