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

std::string keyOf(char priority, const std::string& clazz, const std::string& operation) {
  return std::string(1, priority) + " _V_VASJNI-" + clazz + ' ' + operation;
}

std::string keyOf(const LogLine& line) {
  return (line.priority == ANDROID_LOG_ERROR ? "E " : "D ") + line.tag + ' ' + line.function;
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
      if (quote != 2 || line.text.back() != '"') throw std::runtime_error("neither D nor E before a text");
      const std::string message = line.text.substr(quote + 1, line.text.size() - quote - 2);
      std::istringstream names(operations);
      for (std::string operation; names >> operation;) {
        mForms[keyOf(line.text[0], clazz, operation)].push_back({line, patternOf(message)});
      }
    });
  }
}

bool LogTexts::find(const LogLine& line) {
  LogLine ofAny = line;
  ofAny.function = "*";
  return findBelow(keyOf(line), line.message) || findBelow(keyOf(ofAny), line.message);
}

bool LogTexts::findBelow(const std::string& key, const std::string& message) {
  std::vector<Form>& forms = mForms[key];
  const auto form = std::find_if(forms.begin(), forms.end(), [&message](const Form& candidate) {
    return fnmatch(candidate.pattern.c_str(), message.c_str(), 0) == 0;
  });
  if (form != forms.end()) form->isSeen = true;
  return form != forms.end();
}

bool LogTexts::haveAll(const std::vector<LogLine>& lines) {
  std::set<std::string> missing;
  for (const LogLine& line : lines) {
    if (line.file.empty() || find(line)) continue;
    missing.insert(keyOf(line) + "() " + line.message.substr(0, line.message.find_first_of("0123456789")));
  }
  for (const std::string& line : missing) {
    const size_t clazz = line.find_last_of('-', line.find(' ', 2)) + 1;
    std::fprintf(stderr, "%slogs/%s.txt:1: no text for: %s\n", goldenFolder().c_str(),
                 line.substr(clazz, line.find(' ', clazz) - clazz).c_str(), line.c_str());
  }
  return missing.empty();
}

std::vector<GoldenLine> LogTexts::unseen(const std::string& clazz) const {
  std::vector<GoldenLine> lines;
  for (const auto& [key, forms] : mForms) {
    if (key.find("-" + clazz + ' ') == std::string::npos) continue;
    for (const Form& form : forms) {
      if (!form.isSeen) lines.push_back(form.line);
    }
  }
  return lines;
}

}  // namespace orlu::test
