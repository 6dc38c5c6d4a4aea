// Makes untrusted text safe for a terminal or a report.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace orlu::probe {

// Returns the length in bytes of the first UTF-8 character of a non-empty text; 0 if it is not valid UTF-8.
inline size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return 1;
  const size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) return 0;
  const std::string_view further = text.substr(1, length - 1);
  const auto isContinuation = [](unsigned char byte) { return (byte & 0xC0) == 0x80; };
  if (!std::all_of(further.begin(), further.end(), isContinuation)) return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogate = first == 0xED && second > 0x9F;
  const bool tooLarge = first == 0xF4 && second > 0x8F;
  return overlong || surrogate || tooLarge ? 0 : length;
}

// Returns the code point of one valid character, or the value of one invalid byte.
inline unsigned characterCode(std::string_view character) {
  unsigned code = static_cast<unsigned char>(character[0]);
  if (character.size() > 1) code &= 0x7FU >> character.size();
  for (const char byte : character.substr(1)) code = code << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  return code;
}

// Returns whether the code point is a line separator, a character that changes the text direction, or a
// control character other than line feed and tab.
inline bool isUnsafe(unsigned code) {
  const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
  const bool isDirection = code == 0x061C || code == 0x200E || code == 0x200F ||
                           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
  return (isControl && code != '\n' && code != '\t') || isDirection;
}

// Escapes unsafe characters (\u001b), and bytes that are not UTF-8 (\x80).
inline std::string printable(std::string_view text) {
  std::string safe;
  while (!text.empty()) {
    const size_t length = characterLength(text);
    const std::string_view character = text.substr(0, std::max<size_t>(length, 1));
    const unsigned code = characterCode(character);
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

}  // namespace orlu::probe
