#include "perf.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>

#include "event_line.h"
#include "holdings.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr char kCopy[] = "copy";  // a request without an algorithm
constexpr int kRepeats = 9;
constexpr int kMostSeconds = 3600;
// Changes up to this fraction of the baseline's time are ignored: caches and clocks cause them.
constexpr double kLeastChange = 0.05;
constexpr double kNoises = 4;  // changes up to this multiple of both rows' noise are ignored
constexpr std::array<std::array<int32_t, 2>, 3> kSizes = {
    {{640, 480}, {1920, 1080}, {4080, 3072}}
};

std::string jsonOf(const PerfRow& row) {
  char text[300];
  std::snprintf(text, sizeof text,
                R"({"algorithm": "%s", "format": %d, "width": %d, "height": %d, "ms": %.4f, "noise": %.4f, )"
                R"("peak_kb": %)" PRId64 R"(, "threads": %)" PRId64 "}",
                row.algorithm.c_str(), row.format, row.width, row.height, row.milliseconds, row.noise,
                row.peakKilobytes, row.threads);
  return text;
}

// Returns the end of a JSON line, beginning with the value of `name`; "" if the name is absent.
std::string valueOf(const std::string& line, const std::string& name) {
  const std::string before = '"' + name + "\": ";
  const size_t found = line.find(before);
  return found == std::string::npos ? "" : line.substr(found + before.size());
}

std::optional<PerfRow> rowOf(const std::string& line) {
  const std::string algorithm = valueOf(line, "algorithm");
  if (algorithm.empty()) return std::nullopt;
  const auto number = [&line](const char* name) { return std::strtod(valueOf(line, name).c_str(), nullptr); };
  PerfRow row;
  row.algorithm = algorithm.substr(1, algorithm.find('"', 1) - 1);
  row.format = static_cast<int32_t>(number("format"));
  row.width = static_cast<int32_t>(number("width"));
  row.height = static_cast<int32_t>(number("height"));
  row.milliseconds = number("ms");
  row.noise = number("noise");
  row.peakKilobytes = static_cast<int64_t>(number("peak_kb"));
  row.threads = static_cast<int64_t>(number("threads"));
  return row;
}

// Returns the number in the line of /proc/self/status that begins with `name`, such as "VmHWM:    1234 kB";
// 0 if the line is absent.
int64_t kilobytesOf(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(name, 0) == 0) return std::strtoll(line.c_str() + name.size(), nullptr, 10);
  }
  return 0;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Runs requests one after another. The first request of each measurement warms up; its time is ignored.
class Meter {
public:
  void measure(const std::string& algorithm, const ImageShape& shape) {
    PerfRow row = {algorithm.empty() ? kCopy : algorithm, shape.format, shape.width, shape.height};
    step(row.algorithm + " of " + describe(Image(shape).frame()));
    const Image input(shape, 5);
    const Image output(algorithm == "jpegEncode" ? jpegOf(shape) : shape, 70);
    const int64_t kilobytes = kilobytesOf("VmRSS:");
    std::ofstream("/proc/self/clear_refs") << "5";  // resets VmHWM
    std::vector<double> times;
    for (int i = 0; i <= kRepeats; ++i) {
      const double time = millisecondsOf(algorithm, input, output);
      if (time < 0) return;
      if (i > 0) times.push_back(time);
      row.threads = std::max(row.threads, Holdings::now().threads - mThreads);
    }
    row.milliseconds = median(times);
    for (double& time : times) time = std::fabs(time - row.milliseconds);
    row.noise = median(times);
    row.peakKilobytes = std::max<int64_t>(kilobytesOf("VmHWM:") - kilobytes, 0);
    note(jsonOf(row));
  }

private:
  // An output of width * height bytes; no JPEG here is larger.
  static ImageShape jpegOf(const ImageShape& shape) {
    return {kFormatJpeg, shape.width, shape.height, 0, 0, false};
  }

  double millisecondsOf(const std::string& algorithm, const Image& input, const Image& output) {
    Request request;
    request.nativeReq = ++mLast;
    if (!algorithm.empty()) request.algorithms = {algorithm};
    request.inputs = {&input};
    request.outputs = {&output};
    const Block parameters;
    const auto start = std::chrono::steady_clock::now();
    submit(mClient, mInbox, parameters, request);
    const bool came = mInbox.waitFor(mLast);
    HOLDS(came) << kNoCallback << "a request for \"" << algorithm << "\"";
    if (!came) return -1;
    const auto end = mInbox.messages().front().time;
    mInbox.forget();
    return std::chrono::duration<double, std::milli>(end - start).count();
  }

  const int64_t mThreads = Holdings::now().threads;
  Client mClient;
  Inbox mInbox;
  uint64_t mLast = 0;
};

std::vector<std::string> gWanted;  // algorithms to measure; all if empty

bool isWanted(const std::string& algorithm) {
  return gWanted.empty() || std::find(gWanted.begin(), gWanted.end(), algorithm) != gWanted.end();
}

void measureAll() {
  OPEN_LIBRARY(library);
  Meter meter;
  for (int32_t format : Image::formats()) {
    if (!isWanted(kCopy) || !Image::hasKnownLayout(format)) continue;
    meter.measure("", {format, kSizes[1][0], kSizes[1][1], 0, 0, false});
  }
  for (const char* algorithm : kAlgorithms) {
    if (!isWanted(algorithm)) continue;
    for (const auto& size : kSizes) meter.measure(algorithm, {kFormatNv21, size[0], size[1], 0, 0, false});
  }
}

// Adds names, separated by commas, to gWanted. Returns the first unknown name, or "".
std::string want(const std::string& algorithms) {
  std::istringstream list(algorithms);
  for (std::string name; std::getline(list, name, ',');) {
    const auto* const end = std::end(kAlgorithms);
    if (name != kCopy && std::find(std::begin(kAlgorithms), end, name) == end) return name;
    gWanted.push_back(name);
  }
  return "";
}

std::vector<PerfRow> rowsOf(const std::vector<std::string>& lines) {
  std::vector<PerfRow> rows;
  for (const std::string& line : lines) {
    if (const auto row = rowOf(line)) rows.push_back(*row);
  }
  return rows;
}

const PerfRow* find(const std::vector<PerfRow>& rows, const PerfRow& wanted) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const PerfRow& row) {
    return row.algorithm == wanted.algorithm && row.format == wanted.format && row.width == wanted.width &&
           row.height == wanted.height;
  });
  return found == rows.end() ? nullptr : &*found;
}

// Returns the change from `before` to `row` as a fraction of the time in `before`. Returns 0 if the change is
// at most kNoises times the sum of both rows' noise, or at most the fraction kLeastChange.
double change(const PerfRow& row, const PerfRow& before) {
  const double by = row.milliseconds - before.milliseconds;
  const double noise = std::max(kNoises * (row.noise + before.noise), kLeastChange * before.milliseconds);
  return std::fabs(by) <= noise ? 0 : by / before.milliseconds;
}

void printTable(const std::vector<PerfRow>& rows, const std::vector<PerfRow>& before) {
  std::printf("%-22s %6s %11s %10s %9s %9s %8s%s\n", "algorithm", "format", "size", "ms", "noise", "peak KB",
              "threads", before.empty() ? "" : "  baseline     change");
  for (const PerfRow& row : rows) {
    const std::string size = std::to_string(row.width) + "x" + std::to_string(row.height);
    std::printf("%-22s %6d %11s %10.3f %9.3f %9" PRId64 " %8" PRId64, row.algorithm.c_str(), row.format,
                size.c_str(), row.milliseconds, row.noise, row.peakKilobytes, row.threads);
    if (const PerfRow* const old = find(before, row)) {
      const double by = change(row, *old);
      std::printf(" %10.3f ", old->milliseconds);
      std::printf(by == 0 ? "     noise" : "%+8.0f %%", 100 * by);
    }
    std::printf("\n");
  }
  std::printf(
      "Each time is the median of %d requests, from process to the callback; noise is the median\n"
      "distance from it. A change is shown if it exceeds %g %% and %g times the noise of both runs.\n",
      kRepeats, 100 * kLeastChange, kNoises);
}

void printJson(const std::vector<PerfRow>& rows) {
  std::printf("{\"format\": \"orlu-perf\", \"version\": 1, \"library\": %s, \"rows\": [",
              probe::quoted(options().library).c_str());
  for (size_t i = 0; i < rows.size(); ++i) std::printf("%s\n%s", i == 0 ? "" : ",", jsonOf(rows[i]).c_str());
  std::printf("\n]}\n");
}

}  // namespace

int runPerf(const std::string& algorithms, bool isJson, const std::string& baseline) {
  const std::string unknown = want(algorithms);
  if (!unknown.empty()) {
    std::fprintf(stderr, "run: error: no such algorithm: %s\n", unknown.c_str());
    return 2;
  }
  std::vector<std::string> lines;
  std::ifstream file(baseline);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  if (!baseline.empty() && (!file.is_open() || file.bad())) {
    std::fprintf(stderr, "%s: error: can't be read: %s\n", baseline.c_str(),
                 std::generic_category().message(errno).c_str());
    return 2;
  }
  const std::vector<PerfRow> before = rowsOf(lines);
  if (!baseline.empty() && before.empty()) {
    std::fprintf(stderr, "%s: error: expected the output of --perf --json\n", baseline.c_str());
    return 2;
  }
  options().budgetSeconds = 0;
  options().limitSeconds = kMostSeconds;
  const Outcome outcome = runApart({"perf", "", measureAll});
  const std::vector<PerfRow> rows = rowsOf(outcome.notes);
  if (isJson) {
    printJson(rows);
  } else {
    printTable(rows, before);
  }
  for (const std::string& text : outcome.evidence) std::fprintf(stderr, "run: error: %s\n", text.c_str());
  const bool isSlower = std::any_of(rows.begin(), rows.end(), [&](const PerfRow& row) {
    const PerfRow* const old = find(before, row);
    return old != nullptr && change(row, *old) > 0;
  });
  return outcome.verdict != Verdict::kPassed || isSlower ? 1 : 0;
}

}  // namespace orlu::conform
