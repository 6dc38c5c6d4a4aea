// Paths that tests use.
#pragma once

#include <string>

namespace orlu::test {

// Returns the folder of the golden texts, ending in "/".
std::string goldenFolder();
// Returns the folder of the libraries that a Java VM loads.
std::string libraryFolder();
// Returns the path of one of the build's jars, such as java/orlu-service.jar for "orlu-service".
std::string jarPath(const std::string& name);

// Returns the folder for files of tests, ending in "/". Prefers a folder in memory: under the emulator, a
// 32-bit process cannot list folders of a file system with 64-bit directory positions.
std::string temporaryFolder();

}  // namespace orlu::test
