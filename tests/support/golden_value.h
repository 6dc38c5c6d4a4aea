// A value of a golden text: its type, and its bytes as they travel. tests/golden/README.md describes the
// notation.
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

  // Its numbers, as they stand in `bytes`.
  template <typename T>
  std::vector<T> numbers() const {
    std::vector<T> values(bytes.size() / sizeof(T));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
  }
};

// Reads one word, or several in quotes.
std::string quotedText(std::istream& in);

// Reads "type words..." as of a frame. Throws std::runtime_error for what it does not understand.
GoldenValue parseGoldenValue(const std::string& text, int frame);

// The bytes in the notation above, as values of `type`; as integers when they can't be. Other bytes have
// another text, but "not a number" is the same as any other.
std::string describeBytes(const std::string& type, const std::vector<uint8_t>& bytes);

}  // namespace orlu::test
