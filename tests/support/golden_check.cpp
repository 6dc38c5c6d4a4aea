#include "golden_check.h"

#include <algorithm>
#include <deque>

#include "algo_list.h"

namespace orlu::test {
namespace {

// What a text has below [after].
std::vector<std::string> afterLines(const GoldenRun& run) {
  const std::string list = printAlgoList(run.algorithms);
  std::vector<std::string> lines = {"algorithms" + (list.empty() ? "" : ' ' + list)};
  for (const std::string& put : run.puts) lines.push_back("put " + put);
  for (size_t i = 0; i < run.outputsAfter.size(); ++i) {
    const std::string output = describeOutput(run, i);
    if (output.find("unchanged") == std::string::npos) lines.push_back("output " + output);
  }
  if (run.skip) lines.emplace_back("skip");
  return lines;
}

class Check {
public:
  explicit Check(const GoldenCase& golden) : mGolden(golden) {}

  void compareAfter(const std::vector<std::string>& found) {
    std::vector<std::string> surplus = found;
    GoldenPlace place = mGolden.after.empty() ? GoldenPlace() : mGolden.after[0].place;
    for (const GoldenLine& line : mGolden.after) {
      const auto same = std::find(surplus.begin(), surplus.end(), line.text);
      if (same == surplus.end()) fail(line.place, "missing: " + line.text);
      if (same != surplus.end()) surplus.erase(same);
    }
    for (const std::string& line : surplus) fail(place, "surplus: " + line);
  }

  // The n-th write of a key belongs to the n-th line of that key.
  void compareWrites(const std::vector<GoldenWrite>& found) {
    std::map<std::string, std::deque<size_t>> places;
    for (size_t i = 0; i < found.size(); ++i) places[found[i].name()].push_back(i);
    std::vector<const GoldenWrite*> lineOf(found.size());
    for (const GoldenWrite& line : mGolden.writes) {
      std::deque<size_t>& left = places[line.name()];
      if (left.empty()) {
        mMissing.push_back(&line);
        continue;
      }
      compareValue(line, found[left.front()]);
      lineOf[left.front()] = &line;
      left.pop_front();
    }
    for (const GoldenWrite* line : mMissing) fail(line->place, "missing: " + line->name());
    reportSurplus(found, lineOf);
    if (mFailures.empty()) compareOrder(lineOf);
  }

  std::vector<GoldenFailure> failures() const { return mFailures; }

private:
  void fail(const GoldenPlace& place, const std::string& text) { mFailures.push_back({place, text}); }

  void compareValue(const GoldenWrite& line, const GoldenWrite& found) {
    const std::string expected = describeBytes(line.value.type, line.value.bytes);
    const std::string value = describeBytes(line.value.type, found.value.bytes);
    if (value != expected)
      fail(line.place, line.name() + "\n  expected " + expected + "\n  found    " + value);
  }

  void reportSurplus(const std::vector<GoldenWrite>& found, const std::vector<const GoldenWrite*>& lineOf) {
    const GoldenWrite* before = nullptr;
    for (size_t i = 0; i < found.size(); ++i) {
      if (lineOf[i] == nullptr) {
        fail(before == nullptr ? GoldenPlace() : before->place,
             "surplus: " + found[i].name() + ' ' + describeBytes("bytes", found[i].value.bytes) +
                 ", written behind " + (before == nullptr ? "nothing" : before->name()));
      } else {
        before = lineOf[i];
      }
    }
  }

  // All lines are there; the first one that comes at another time than the text says.
  void compareOrder(const std::vector<const GoldenWrite*>& lineOf) {
    for (size_t i = 0; i < lineOf.size(); ++i) {
      const GoldenWrite& expected = mGolden.writes[i];
      if (lineOf[i]->name() == expected.name()) continue;
      fail(expected.place, "order: expected " + expected.name() + ", found " + lineOf[i]->name());
      return;
    }
  }

  const GoldenCase& mGolden;
  std::vector<const GoldenWrite*> mMissing;
  std::vector<GoldenFailure> mFailures;
};

}  // namespace

std::vector<GoldenFailure> checkGolden(const GoldenCase& golden, const GoldenRun& run) {
  Check check(golden);
  check.compareAfter(afterLines(run));
  check.compareWrites(run.writes);
  return check.failures();
}

}  // namespace orlu::test
