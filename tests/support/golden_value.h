// A value of a golden text: its type, and its bytes as they travel.
//
//   int 5 | long 5 | float 1/3 | double 2.5 | byte 1            one number; a quotient is taken in its type
//   ints 1 2 0*8 | longs | floats | doubles                     several; "0*8" is eight of them
//   text[16] "SAT" | zero[64]                                   so many bytes
//   bytes[152] 0:long=5 16:floats=1.5,2                         so many bytes, zero where nothing stands
// and for tags alone
//   string "words" | rect l t r b | faces l t r b ... | regions l t r b weight | location lat long alt time |
//   none
//
// A number "7+2i" stands for 7 in frame 0, 9 in frame 1, and so on.
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
