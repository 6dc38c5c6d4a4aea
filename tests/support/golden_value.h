// A value of a golden text (see tests/golden/README.md): its type and its bytes as transferred.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <string>
#include <vector>

namespace orlu::test {

struct GoldenValue {
  std::string type;  // without its size
  std::vector<uint8_t> bytes;

  template <typename T>
  std::vector<T> numbers() const {
    std::vector<T> values(bytes.size() / sizeof(T));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
  }
};

// Reads one word, or several words in quotes.
std::string quotedText(std::istream& in);

// Parses "type words...", with `frame` as the i in "7+2i". Throws std::runtime_error on syntax errors.
GoldenValue parseGoldenValue(const std::string& text, int frame);

// Formats the bytes in the notation of golden texts as values of `type`, or as integers if that is
// impossible. Different bytes give different text, except that all NaNs are equal.
std::string describeBytes(const std::string& type, const std::vector<uint8_t>& bytes);

}  // namespace orlu::test
