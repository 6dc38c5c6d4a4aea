// One event as a line of JSON. Fields are added in order. For an element of a list, pass null as the name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlu::probe {

// Returns the text as a quoted JSON string; invalid UTF-8 becomes U+FFFD.
std::string quoted(std::string_view value);

class EventLine {
public:
  // An event at the current time on this thread.
  explicit EventLine(const char* event);

  EventLine& call(uint64_t number, std::string_view operation);
  EventLine& number(const char* name, int64_t value);
  // An address, a handle or a 64-bit id: "0x7f12".
  EventLine& hex(const char* name, uint64_t value);
  EventLine& hex(const char* name, const void* value) {
    return hex(name, reinterpret_cast<uintptr_t>(value));
  }
  // Invalid UTF-8 becomes U+FFFD.
  EventLine& text(const char* name, std::string_view value);
  EventLine& texts(const char* name, const std::vector<std::string>& values);
  EventLine& numbers(const char* name, const int32_t* values, int count);
  // Adds at most kMostBytes bytes, in hexadecimal. Adds no field if `data` is null.
  EventLine& bytes(const char* name, const void* data, size_t size);
  // true, false, or null if unknown.
  EventLine& answer(const char* name, bool known, bool value);
  EventLine& null(const char* name);

  // An element of a list: "NAME+0xOFFSET".
  EventLine& place(std::string_view name, uint64_t offset);

  EventLine& beginList(const char* name);
  EventLine& endList() { return close(']'); }
  EventLine& beginObject(const char* name = nullptr);
  EventLine& endObject() { return close('}'); }

  // Closes and returns the line; nothing can be added afterwards.
  const std::string& finish();

  static constexpr size_t kMostBytes = size_t{1} << 20;

private:
  void begin(const char* name);
  void quote(std::string_view value);
  EventLine& close(char bracket);

  std::string mText;
};

}  // namespace orlu::probe
