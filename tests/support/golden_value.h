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
  std::string type;  // without a size: "bytes" for "bytes[8]"
  std::vector<uint8_t> bytes;

  template <typename T>
  std::vector<T> numbers() const {
    std::vector<T> values(bytes.size() / sizeof(T));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
  }
};

// Reads one word, or several words in quotes. Returns them without the quotes.
std::string quotedText(std::istream& in);

// Parses "type words..."; `frame` is the value of i in "7+2i". Throws std::runtime_error on syntax errors.
GoldenValue parseGoldenValue(const std::string& text, int frame);

// Formats the bytes as values of `type`, in the notation of golden texts. If that is impossible, formats
// their size and the nonzero 32-bit integers. Different bytes give different text, except that all NaNs
// become "nan".
std::string describeBytes(const std::string& type, const std::vector<uint8_t>& bytes);

}  // namespace orlu::test
