#include "log_capture.h"

#include <algorithm>

namespace orlu::test {
namespace {

LogCapture* gCapture = nullptr;

// "file.cpp:12 function() message" -> "message"; a line without such a prefix as it is.
std::string withoutPrefix(const std::string& line) {
  const size_t end = line.find("() ");
  const size_t colon = line.find(':');
  return end == std::string::npos || colon == std::string::npos || colon > end ? line : line.substr(end + 3);
}

}  // namespace

LogCapture::LogCapture() {
  gCapture = this;
  __android_log_set_logger(log);
}

LogCapture::~LogCapture() {
  __android_log_set_logger([](const __android_log_message*) {});
  gCapture = nullptr;
}

void LogCapture::log(const __android_log_message* message) {
  LogCapture* const capture = gCapture;
  if (capture == nullptr) return;
  const std::lock_guard<std::mutex> lock(capture->mMutex);
  capture->mLines.push_back({message->priority, message->tag, message->message});
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
    return line.priority == priority && line.tag == tag &&
           (withoutPrefix(line.message) == message || line.message == message);
  }));
}

bool LogCapture::contains(const std::string& part) const {
  return text().find(part) != std::string::npos;
}

std::string LogCapture::text() const {
  std::string all;
  for (const LogLine& line : lines()) all += line.tag + ": " + line.message + "\n";
  return all;
}

}  // namespace orlu::test
