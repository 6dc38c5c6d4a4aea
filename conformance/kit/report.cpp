#include "report.h"

#include <algorithm>
#include <cstdio>

#include "event_line.h"

namespace orlu::conform {
namespace {

constexpr size_t kMostLines = 5;  // of evidence

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

bool isUnsafe(unsigned character) {
  const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
  const bool isDirection = character == 0x061C || character == 0x200E || character == 0x200F ||
                           (character >= 0x2028 && character <= 0x202E) ||
                           (character >= 0x2066 && character <= 0x2069);
  return (isControl && character != '\n' && character != '\t') || isDirection;
}

unsigned codeOf(std::string_view character) {
  unsigned code = static_cast<unsigned char>(character[0]);
  if (character.size() > 1) code &= 0x7FU >> character.size();
  for (const char byte : character.substr(1)) code = code << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  return code;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string safe;
  while (!text.empty()) {
    const size_t length = probe::characterLength(text);
    const std::string_view character = text.substr(0, std::max<size_t>(length, 1));
    const unsigned code = codeOf(character);
    if (length > 0 && !isUnsafe(code)) {
      safe += character;
    } else {
      char escape[16];
      std::snprintf(escape, sizeof escape, length > 0 ? "\\u%04x" : "\\x%02x", code);
      safe += escape;
    }
    text.remove_prefix(character.size());
  }
  return safe;
}

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
  // What a library says of itself need not be UTF-8.
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
