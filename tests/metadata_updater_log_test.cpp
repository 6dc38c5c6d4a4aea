// Which operation each line of the updater's log shows: an engineer who reads a log looks for the name that
// the line says, so that no helper's name may stand there.

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "golden_run.h"
#include "golden_variation.h"
#include "log_capture.h"
#include "paths.h"

namespace orlu::test {
namespace {

// A line of the text as a pattern of "D operation message".
struct LineForm {
  int number;
  std::string pattern;
  bool seen = false;
};

// The message's conversions become "*", and what fnmatch() would read otherwise is escaped.
std::string patternOf(const std::string& message) {
  std::string pattern;
  for (size_t i = 0; i < message.size(); ++i) {
    if (message[i] == '%') {
      pattern += '*';
      i = message.find_first_of("dfpsux", i);
      continue;
    }
    if (message[i] == '[' || message[i] == '?' || message[i] == '*') pattern += '\\';
    pattern += message[i];
  }
  return pattern;
}

std::vector<LineForm> readForms(const std::string& path) {
  std::vector<LineForm> forms;
  std::ifstream in(path);
  std::string operation;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.empty() || line[0] == '#') continue;
    const size_t quote = line.find('"');
    if (quote == std::string::npos) {
      operation = line;
      continue;
    }
    const std::string message = line.substr(quote + 1, line.size() - quote - 2);
    forms.push_back({number, line.substr(0, 2) + operation + "() " + patternOf(message)});
  }
  return forms;
}

// "D operation() message" of each prefixed line, once.
std::set<std::string> prefixedLines(const LogCapture& log) {
  std::set<std::string> lines;
  for (const LogLine& line : log.lines()) {
    if (line.tag != "_V_VASJNI-MetadataUpdater") continue;
    EXPECT_EQ(0U, line.file.rfind("metadata_updater", 0)) << line.text();
    lines.insert((line.priority == ANDROID_LOG_ERROR ? "E " : "D ") + line.function + "() " + line.message);
  }
  return lines;
}

// Every kind of capture, and every variation of one.
std::vector<GoldenCase> allCaptures() {
  std::vector<GoldenCase> captures;
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder())) {
    if (entry.path().extension() == ".txt") captures.push_back(readGoldenCase(entry.path().stem()));
  }
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + "variations")) {
    for (const GoldenVariation& variation : readGoldenVariations(entry.path())) {
      GoldenCase& capture = captures.emplace_back(readGoldenCase(variation.base));
      for (const GoldenLine& line : variation.changes) changeGolden(capture, line);
    }
  }
  return captures;
}

TEST(MetadataUpdaterLogTest, EveryLineShowsTheOperationThatItsTextNames) {
  const std::string path = goldenFolder() + "logs/metadata_updater.txt";
  std::vector<LineForm> forms = readForms(path);
  Algo algo;
  algo.script.wanted = {
      {"orlu.parameter", "remosaicOTPData", 8}
  };
  algo.use();
  const LogCapture log;
  for (const GoldenCase& capture : allCaptures()) {
    runGolden(capture, algo, [](MetadataUpdater& updater) {
      int type = 0;
      int index = 0;
      updater.updateRawnrHDRFrameIndex(type, index);
      updater.updateMetadata();  // which knows the master frames now from the beginning, and lists them
    });
  }
  std::set<std::string> unknown;  // cut before their first figure
  for (const std::string& line : prefixedLines(log)) {
    const auto isForm = [&line](const LineForm& form) {
      return fnmatch(form.pattern.c_str(), line.c_str(), 0) == 0;
    };
    const auto form = std::find_if(forms.begin(), forms.end(), isForm);
    if (form == forms.end()) {
      unknown.insert(line.substr(0, line.find_first_of("0123456789")));
    } else {
      form->seen = true;
    }
  }
  for (const std::string& line : unknown) ADD_FAILURE_AT(path.c_str(), 1) << "no line for: " << line;
  for (const LineForm& form : forms) {
    if (!form.seen) ADD_FAILURE_AT(path.c_str(), form.number) << "never logged: " << form.pattern;
  }
}

}  // namespace
}  // namespace orlu::test
