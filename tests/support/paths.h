// The folders of this build that tests read at run time.
#pragma once

#include <string>

namespace orlu::test {

// The golden texts, with a "/" at the end.
std::string goldenFolder();
// The libraries that a Java VM loads.
std::string libraryFolder();
// The path of a jar of ours: "orlu-service" is java/orlu-service.jar.
std::string jarPath(const std::string& name);

}  // namespace orlu::test
