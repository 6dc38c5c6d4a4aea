// Folders of this build for tests.
#pragma once

#include <string>

namespace orlu::test {

// The folder of the golden texts, ending in "/".
std::string goldenFolder();
// The folder of the libraries that a Java VM loads.
std::string libraryFolder();
// The path of one of our jars: "orlu-service" is java/orlu-service.jar.
std::string jarPath(const std::string& name);

// The folder for files of tests, ending in "/". Prefers a folder in memory: under the emulator, a 32-bit
// process cannot list folders of a file system with 64-bit directory positions.
std::string temporaryFolder();

}  // namespace orlu::test
