#include "log_texts.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

#include "paths.h"

namespace orlu::test {
namespace {

// Replaces the message's conversions by "*" and escapes "[", "?" and "*" for fnmatch().
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

// Returns a prefix such as "D _V_VASJNI-VRequest getRequestInfo() ".
std::string prefixOf(const LogLine& line) {
  return (line.priority == ANDROID_LOG_ERROR ? "E " : "D ") + line.tag + ' ' + line.function + "() ";
}

}  // namespace

LogTexts::LogTexts() {
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + "logs")) {
    const std::string clazz = entry.path().stem();
    std::string operations;
    readGoldenLines(entry.path(), [&](const GoldenLine& line) {
      const size_t quote = line.text.find('"');
      if (quote == std::string::npos) {
        operations = line.text;
        return;
      }
      if (quote != 2 || line.text.back() != '"') throw std::runtime_error("expected D or E before a text");
      const std::string message = patternOf(line.text.substr(quote + 1, line.text.size() - quote - 2));
      std::istringstream names(operations);
      for (std::string operation; names >> operation;) {
        const std::string prefix = line.text.substr(0, 2) + "_V_VASJNI-" + clazz + ' ' + operation + "() ";
        mForms.push_back({line, clazz, prefix + message});
      }
    });
  }
}

bool LogTexts::haveAll(const std::vector<LogLine>& lines) {
  std::set<std::string> texts;
  for (const LogLine& line : lines) {
    if (!line.file.empty()) texts.insert(prefixOf(line) + line.message);
  }
  std::set<std::string> missing;
  for (const std::string& text : texts) {
    const auto form = std::find_if(mForms.begin(), mForms.end(), [&text](const Form& candidate) {
      return fnmatch(candidate.pattern.c_str(), text.c_str(), 0) == 0;
    });
    if (form != mForms.end()) form->isSeen = true;
    if (form == mForms.end())
      missing.insert(text.substr(0, text.find_first_of("0123456789", text.find('('))));
  }
  for (const std::string& line : missing) {
    const size_t clazz = line.find('-') + 1;
    std::fprintf(stderr, "%slogs/%s.txt:1: no text for: %s\n", goldenFolder().c_str(),
                 line.substr(clazz, line.find(' ', clazz) - clazz).c_str(), line.c_str());
  }
  return missing.empty();
}

std::vector<GoldenLine> LogTexts::unseen(const std::string& clazz) const {
  std::vector<GoldenLine> lines;
  for (const Form& form : mForms) {
    if (form.clazz == clazz && !form.isSeen) lines.push_back(form.line);
  }
  return lines;
}

}  // namespace orlu::test
