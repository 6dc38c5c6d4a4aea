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

// Returns the folder for temporary files, ending in "/": in memory if possible, because a 32-bit process in
// the emulator can't list folders of a file system with 64-bit directory positions.
std::string temporaryFolder();

}  // namespace orlu::test
