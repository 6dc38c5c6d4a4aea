#include "log_capture.h"

#include <algorithm>
#include <atomic>
#include <map>

namespace orlu::test {
namespace {

std::atomic<LogCapture*> gInnermost{nullptr};

// All captured lines that begin with a source position. The key joins priority, tag and text().
std::mutex gEverythingMutex;
std::map<std::string, LogLine> gEverything;

LogLine parseLine(const __android_log_message& logged) {
  LogLine line = {logged.priority, logged.tag, "", "", logged.message};
  const std::string& text = line.message;
  const size_t colon = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_");
  if (colon == std::string::npos || text.compare(colon, 5, ".cpp:") != 0) return line;
  const size_t blank = text.find_first_not_of("0123456789", colon + 5);
  const size_t end = text.find("() ", colon);
  if (blank == std::string::npos || blank == colon + 5 || text[blank] != ' ' || end == std::string::npos) {
    return line;
  }
  line.file = text.substr(0, colon + 4);
  line.function = text.substr(blank + 1, end - blank - 1);
  line.message = text.substr(end + 3);
  return line;
}

}  // namespace

LogCapture::LogCapture() : mOuter(gInnermost.exchange(this)) {
  __android_log_set_logger(log);
}

LogCapture::~LogCapture() {
  if (mOuter == nullptr) __android_log_set_logger(__android_log_stderr_logger);
  gInnermost = mOuter;
}

void LogCapture::log(const __android_log_message* message) {
  LogCapture* const capture = gInnermost;
  if (capture == nullptr) return;
  const LogLine line = parseLine(*message);
  {
    const std::lock_guard<std::mutex> lock(capture->mMutex);
    capture->mLines.push_back(line);
  }
  if (line.file.empty()) return;
  const std::lock_guard<std::mutex> lock(gEverythingMutex);
  gEverything.emplace(std::to_string(line.priority) + line.tag + line.text(), line);
}

std::vector<LogLine> LogCapture::everything() {
  const std::lock_guard<std::mutex> lock(gEverythingMutex);
  std::vector<LogLine> lines;
  for (const auto& [text, line] : gEverything) lines.push_back(line);
  return lines;
}

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(mMutex);
  return mLines;
}

void LogCapture::clear() {
  const std::lock_guard<std::mutex> lock(mMutex);
  mLines.clear();
}

int LogCapture::count(int priority, const std::string& tag, const std::string& message) const {
  const std::vector<LogLine> all = lines();
  return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const LogLine& line) {
    return line.priority == priority && line.tag == tag && line.message == message;
  }));
}

bool LogCapture::contains(const std::string& part) const {
  return text().find(part) != std::string::npos;
}

std::string LogCapture::text() const {
  std::string all;
  for (const LogLine& line : lines()) all += line.tag + ": " + line.text() + "\n";
  return all;
}

}  // namespace orlu::test
