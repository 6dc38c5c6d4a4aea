// cost_counts FILE: counts the cost of the shots in kinds.h, and exits with 1 if the counts differ from those
// in FILE. With --update before FILE, it writes the counts to FILE instead. Counts of the same code don't
// vary between runs.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "counts.h"
#include "jvm.h"
#include "kinds.h"

namespace orlu::bench {
namespace {

constexpr char kHeader[] =
    "# The cost of a request, in counts: allocations and their bytes on the C++ heap, JNI calls by function, "
    "the\n"
    "# largest number of local references at one time, and lines of the log at full verbosity. The counts of "
    "a\n"
    "# full-async request include both of its native calls. docs/cost.md has the main counts, and times.\n";

constexpr struct {
  const char* name;
  bool withTags;
  bool isFullAsync;
} kColumns[] = {
    {"tags",          true,  false},
    {"tags,async",    true,  true },
    {"no_tags",       false, false},
    {"no_tags,async", false, true },
};

// Writes a row per count and a column per variant of the shot.
void writeTable(std::ostream& out, const Kind& kind) {
  std::map<std::string, std::map<std::string, int64_t>> rows;
  out << '\n' << std::left << std::setw(32) << kind.name << std::right;
  for (const auto& column : kColumns) {
    ShotPlan plan = kind.plan;
    plan.withTags = column.withTags;
    plan.isFullAsync = column.isFullAsync;
    Shot shot(plan);
    RequestRunner runner(shot);
    for (const auto& [name, count] : countsOf(runner)) rows[name][column.name] = count;
    out << std::setw(15) << column.name;
  }
  out << '\n';
  for (auto& [name, counts] : rows) {
    out << std::left << std::setw(32) << name << std::right;
    for (const auto& column : kColumns) out << std::setw(15) << counts[column.name];
    out << '\n';
  }
}

std::string allTables() {
  std::ostringstream out;
  out << kHeader;
  for (const Kind& kind : kinds()) writeTable(out, kind);
  return out.str();
}

std::vector<std::string> linesOf(std::istream&& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Compares the tables with the file, line by line. Prints each pair of lines that differ, with the line
// number. Returns false if there are any.
bool isAsWritten(const std::string& tables, const std::string& path) {
  std::vector<std::string> expected = linesOf(std::ifstream(path));
  std::vector<std::string> found = linesOf(std::istringstream(tables));
  const size_t count = std::max(expected.size(), found.size());
  expected.resize(count);
  found.resize(count);
  for (size_t i = 0; i < count; ++i) {
    if (expected[i] == found[i]) continue;
    std::printf("%s:%zu:\n  expected %s\n  found    %s\n", path.c_str(), i + 1, expected[i].c_str(),
                found[i].c_str());
  }
  return expected == found;
}

}  // namespace
}  // namespace orlu::bench

int main(int argc, char** argv) {
  const bool isUpdate = argc == 3 && std::strcmp(argv[1], "--update") == 0;
  if (argc != 2 && !isUpdate) {
    std::fprintf(stderr, "usage: %s [--update] FILE\n", argv[0]);
    return 2;
  }
  const std::string path = argv[argc - 1];
  if (!orlu::test::startJvm({"orlu-service", "orlu-host-framework", "/usr/share/java/jackson-core.jar"},
                            {"-Xmx256m", "-XX:+UseSerialGC", "-XX:-UsePerfData"})) {
    return 2;
  }
  orlu::bench::silenceLog();
  const std::string tables = orlu::bench::allTables();
  if (isUpdate) return (std::ofstream(path) << tables).flush() ? 0 : 1;
  if (orlu::bench::isAsWritten(tables, path)) return 0;
  std::printf("If the change is intended, accept it with\n  %s --update %s\n", argv[0], path.c_str());
  return 1;
}
