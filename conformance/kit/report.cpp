#include "report.h"

#include <nlohmann/json.hpp>

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

}  // namespace

std::string lineOf(const CheckResult& result) {
  const Outcome& outcome = result.outcome;
  std::vector<std::string> texts = outcome.evidence;
  if (texts.size() > kMostLines) {
    const size_t more = texts.size() - kMostLines;
    texts.resize(kMostLines);
    texts.push_back("and " + std::to_string(more) + " more");
  }
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
  nlohmann::ordered_json report;
  report["library"] = options().library;
  report["checks"] = nlohmann::ordered_json::array();
  for (const CheckResult& result : results) {
    report["checks"].push_back({
        {"name",     result.check->name            },
        {"promise",  result.check->promise         },
        {"verdict",  wordOf(result.outcome.verdict)},
        {"seconds",  result.outcome.seconds        },
        {"evidence", result.outcome.evidence       },
        {"warnings", result.outcome.warnings       },
        {"notes",    result.outcome.notes          }
    });
  }
  // What a library says of itself need not be UTF-8.
  return report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace orlu::conform
