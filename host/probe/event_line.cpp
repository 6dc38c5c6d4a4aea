#include "event_line.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>

#include "printable.h"
#include "setting.h"

namespace orlu::probe {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

// Read once per thread: the value never changes.
int64_t threadNumber() {
  static thread_local const int64_t number = syscall(SYS_gettid);
  return number;
}

int64_t now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

int64_t pageFaults() {
  rusage usage = {};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_minflt + usage.ru_majflt;
}

template <typename Number>
void append(std::string& text, Number value, int base = 10) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, value, base).ptr);
}

// True for printable ASCII that needs no escape in JSON.
bool isPlain(char character) {
  return character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
}

}  // namespace

EventLine::EventLine(const char* event) {
  mText.reserve(512);
  mText += '{';
  number("t", now());
  number("tid", threadNumber());
  char name[16] = {};
  prctl(PR_GET_NAME, name);
  text("thread", name);
  text("event", event);
  static const bool countsFaults = !setting("ORLU_TIMES").empty();
  if (countsFaults) number("faults", pageFaults());
}

EventLine& EventLine::call(uint64_t number, std::string_view operation) {
  begin("n");
  append(mText, number);
  return text("op", operation);
}

EventLine& EventLine::number(const char* name, int64_t value) {
  begin(name);
  append(mText, value);
  return *this;
}

EventLine& EventLine::hex(const char* name, uint64_t value) {
  begin(name);
  mText += "\"0x";
  append(mText, value, 16);
  mText += '"';
  return *this;
}

EventLine& EventLine::text(const char* name, std::string_view value) {
  begin(name);
  quote(value);
  return *this;
}

EventLine& EventLine::texts(const char* name, const std::vector<std::string>& values) {
  beginList(name);
  for (const std::string& value : values) {
    begin(nullptr);
    quote(value);
  }
  return endList();
}

EventLine& EventLine::numbers(const char* name, const int32_t* values, int count) {
  beginList(name);
  for (int i = 0; i < count; ++i) {
    begin(nullptr);
    append(mText, values[i]);
  }
  return endList();
}

EventLine& EventLine::bytes(const char* name, const void* data, size_t size) {
  if (data == nullptr) return *this;
  begin(name);
  mText += '"';
  const auto* const bytes = static_cast<const uint8_t*>(data);
  const size_t count = std::min(size, kMostBytes);
  size_t place = mText.size();
  mText.resize(place + 2 * count);
  for (size_t i = 0; i < count; ++i) {
    mText[place++] = kDigits[bytes[i] >> 4];
    mText[place++] = kDigits[bytes[i] & 0xF];
  }
  mText += '"';
  return *this;
}

EventLine& EventLine::answer(const char* name, bool known, bool value) {
  begin(name);
  mText += !known ? "null" : value ? "true" : "false";
  return *this;
}

EventLine& EventLine::place(std::string_view name, uint64_t offset) {
  begin(nullptr);
  quote(name);
  mText.back() = '+';
  mText += "0x";
  append(mText, offset, 16);
  mText += '"';
  return *this;
}

EventLine& EventLine::beginList(const char* name) {
  begin(name);
  mText += '[';
  return *this;
}

EventLine& EventLine::beginObject(const char* name) {
  begin(name);
  mText += '{';
  return *this;
}

EventLine& EventLine::null(const char* name) {
  return answer(name, false, false);
}

const std::string& EventLine::finish() {
  mText += "}\n";
  return mText;
}

// Writes a comma if needed, then the field's name unless it is null.
void EventLine::begin(const char* name) {
  const char last = mText.back();
  if (last != '{' && last != '[') mText += ',';
  if (name == nullptr) return;
  ((mText += '"') += name) += "\":";
}

std::string quoted(std::string_view value) {
  std::string text;
  text += '"';
  while (!value.empty()) {
    const auto plain =
        static_cast<size_t>(std::find_if_not(value.begin(), value.end(), isPlain) - value.begin());
    text += value.substr(0, plain);
    value.remove_prefix(plain);
    if (value.empty()) break;
    const auto byte = static_cast<unsigned char>(value[0]);
    const size_t length = characterLength(value);
    if (length == 0) {
      text += "\\ufffd";
    } else if (byte == '"' || byte == '\\') {
      (text += '\\') += value[0];
    } else if (byte < 0x20) {
      ((text += "\\u00") += kDigits[byte >> 4]) += kDigits[byte & 0xF];
    } else {
      text += value.substr(0, length);
    }
    value.remove_prefix(std::max<size_t>(length, 1));
  }
  text += '"';
  return text;
}

void EventLine::quote(std::string_view value) {
  mText += quoted(value);
}

EventLine& EventLine::close(char bracket) {
  mText += bracket;
  return *this;
}

}  // namespace orlu::probe
