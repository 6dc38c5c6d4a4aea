// The folders of this build that tests read at run time, and where they write.
#pragma once

#include <string>

namespace orlu::test {

// The golden texts, with a "/" at the end.
std::string goldenFolder();
// The libraries that a Java VM loads.
std::string libraryFolder();
// The path of a jar of ours: "orlu-service" is java/orlu-service.jar.
std::string jarPath(const std::string& name);

// Where tests make files, with a "/" at the end. In memory where there is such a folder: under the emulator a
// 32-bit process can't list one of a file system whose positions have 64 bits.
std::string temporaryFolder();

}  // namespace orlu::test
