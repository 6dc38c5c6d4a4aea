#include "report.h"

#include <cstdio>

#include "event_line.h"

namespace orlu::conform {
namespace {

constexpr size_t kMostLines = 5;  // maximum lines of evidence per check

const char* wordOf(Verdict verdict) {
  if (verdict == Verdict::kFailed) return "failed";
  return verdict == Verdict::kSkipped ? "skipped" : "passed";
}

std::string padded(std::string text, size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

std::string listOf(const std::vector<std::string>& texts) {
  std::string list = "[";
  for (const std::string& text : texts) list += (list.size() == 1 ? "" : ", ") + probe::quoted(text);
  return list + "]";
}

}  // namespace

std::string lineOf(const CheckResult& result) {
  const Outcome& outcome = result.outcome;
  std::vector<std::string> texts = outcome.evidence;
  if (texts.size() > kMostLines) {
    const size_t more = texts.size() - kMostLines;
    texts.resize(kMostLines);
    texts.push_back("and " + std::to_string(more) + " more");
  }
  if (outcome.verdict == Verdict::kFailed)
    texts.insert(texts.begin(), result.check->promise + std::string(":"));
  if (texts.empty()) {
    std::string notes;
    for (const std::string& note : outcome.notes) notes += (notes.empty() ? "" : "; ") + note;
    texts.push_back(std::string(result.check->promise) + (notes.empty() ? "" : " (" + notes + ")"));
  }
  for (const std::string& warning : outcome.warnings) texts.push_back("warning: " + warning);
  std::string line = padded(wordOf(outcome.verdict), 8) + padded(result.check->name, 12);
  for (size_t i = 0; i < texts.size(); ++i) line += (i == 0 ? "" : "\n" + std::string(20, ' ')) + texts[i];
  return line;
}

std::string jsonOf(const std::vector<CheckResult>& results) {
  std::string report = "{\n  \"library\": " + probe::quoted(options().library) + ",\n  \"checks\": [";
  const char* between = "";
  for (const CheckResult& result : results) {
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.6f", result.outcome.seconds);
    report += between;
    report += "\n    {\"name\": " + probe::quoted(result.check->name);
    report += ", \"promise\": " + probe::quoted(result.check->promise);
    report += ", \"verdict\": " + probe::quoted(wordOf(result.outcome.verdict));
    report += std::string(", \"seconds\": ") + seconds;
    report += ", \"evidence\": " + listOf(result.outcome.evidence);
    report += ", \"warnings\": " + listOf(result.outcome.warnings);
    report += ", \"notes\": " + listOf(result.outcome.notes) + "}";
    between = ",";
  }
  return report + "\n  ]\n}";
}

}  // namespace orlu::conform
