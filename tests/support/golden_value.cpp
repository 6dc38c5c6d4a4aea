#include "golden_value.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <type_traits>

namespace orlu::test {
namespace {

using Bytes = std::vector<uint8_t>;

[[noreturn]] void fail(const std::string& what, const std::string& text) {
  throw std::runtime_error(what + ": '" + text + "'");
}

template <typename T>
T parsePlain(const std::string& text, char** end) {
  if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(std::strtoll(text.c_str(), end, 0));
  } else if constexpr (std::is_same_v<T, float>) {
    return std::strtof(text.c_str(), end);
  } else {
    return std::strtod(text.c_str(), end);
  }
}

// A number, "number/number" or "number+numberi".
template <typename T>
T parseNumber(const std::string& text, int frame) {
  char* end = nullptr;
  T value = parsePlain<T>(text, &end);
  const std::string rest = end;
  const std::string second = rest.empty() ? "" : rest.substr(1);
  const char* unread = rest.c_str();
  if (!second.empty() && rest[0] == '/') {
    value = static_cast<T>(value / parsePlain<T>(second, &end));
    unread = end;
  } else if (!second.empty() && rest[0] == '+') {
    value = static_cast<T>(value + static_cast<T>(frame) * parsePlain<T>(second, &end));
    unread = std::strcmp(end, "i") == 0 ? "" : "?";
  }
  if (text.empty() || *unread != '\0') fail("not a number", text);
  return value;
}

template <typename T>
void append(Bytes& bytes, const std::string& word, int frame) {
  const size_t star = word.find('*');
  const T value = parseNumber<T>(word.substr(0, star), frame);
  const int times = star == std::string::npos ? 1 : parseNumber<int>(word.substr(star + 1), 0);
  for (int i = 0; i < times; ++i) {
    const size_t at = bytes.size();
    bytes.resize(at + sizeof value);
    std::memcpy(bytes.data() + at, &value, sizeof value);
  }
}

template <typename T>
std::string describeNumbers(const Bytes& bytes) {
  const std::vector<T> values = GoldenValue{"", bytes}.numbers<T>();
  std::ostringstream out;
  out << std::setprecision(std::numeric_limits<T>::max_digits10);
  for (size_t i = 0, times = 1; i < values.size(); i += times) {
    const auto isSame = [&](size_t other) { return std::memcmp(&values[i], &values[other], sizeof(T)) == 0; };
    for (times = 1; i + times < values.size() && isSame(i + times);) ++times;
    // "Not a number" has a sign, in which machines differ.
    const bool isNan = std::isnan(static_cast<double>(values[i]));
    isNan ? out << " nan" : out << ' ' << +values[i];
    if (times > 1) out << '*' << times;
  }
  return out.str();
}

struct NumberType {
  size_t size;
  void (*append)(Bytes&, const std::string&, int frame);
  std::string (*describe)(const Bytes&);
};

template <typename T>
constexpr NumberType kNumberType = {sizeof(T), append<T>, describeNumbers<T>};

// Answers null for a type that isn't a number. "ints" is as good as "int" here.
const NumberType* numberType(std::string type) {
  static const std::map<std::string, NumberType> types = {
      {"byte",   kNumberType<uint8_t>},
      {"int",    kNumberType<int32_t>},
      {"long",   kNumberType<int64_t>},
      {"float",  kNumberType<float>  },
      {"double", kNumberType<double> },
      {"rect",   kNumberType<int32_t>},
      {"face",   kNumberType<int32_t>},
      {"region", kNumberType<int32_t>}
  };
  if (!type.empty() && type.back() == 's') type.pop_back();
  const auto found = types.find(type);
  return found == types.end() ? nullptr : &found->second;
}

// One "offset:type=value,value" of a record.
void putPart(Bytes& bytes, const std::string& part, int frame) {
  const size_t colon = part.find(':');
  const size_t equals = part.find('=');
  if (colon == std::string::npos || equals == std::string::npos || equals < colon) {
    fail("not a part of a record", part);
  }
  std::string words = part.substr(equals + 1);
  const std::string type = part.substr(colon + 1, equals - colon - 1);
  Bytes packed;
  if (type == "text") {
    std::istringstream in(words);
    const std::string text = quotedText(in);
    packed.assign(text.begin(), text.end());
  } else {
    const NumberType* const numbers = numberType(type);
    std::replace(words.begin(), words.end(), ',', ' ');
    std::istringstream in(words);
    for (std::string word; numbers != nullptr && in >> word;) numbers->append(packed, word, frame);
  }
  const auto offset = static_cast<size_t>(parseNumber<int>(part.substr(0, colon), 0));
  if (packed.empty() || offset + packed.size() > bytes.size()) fail("does not fit the record", part);
  std::memcpy(bytes.data() + offset, packed.data(), packed.size());
}

// "bytes[152]" becomes "bytes", and its size is answered; 0 without one.
size_t takeSize(std::string& type) {
  const size_t bracket = type.find('[');
  if (bracket == std::string::npos) return 0;
  const int size = parseNumber<int>(type.substr(bracket + 1, type.size() - bracket - 2), 0);
  type.resize(bracket);
  return static_cast<size_t>(size);
}

Bytes parseSized(const std::string& type, size_t size, std::istream& in, int frame) {
  Bytes bytes(size);
  if (type != "text" && type != "bytes" && type != "zero") fail("unknown type", type);
  if (type == "text") {
    const std::string text = quotedText(in);
    if (text.size() > size) fail("text is too long", text);
    std::memcpy(bytes.data(), text.data(), text.size());
  }
  for (std::string part; type == "bytes" && in >> part;) putPart(bytes, part, frame);
  return bytes;
}

Bytes parseLocation(std::istream& in, int frame) {
  Bytes bytes;
  std::string word;
  for (int i = 0; i < 3 && in >> word; ++i) append<double>(bytes, word, frame);
  in >> word;
  append<int64_t>(bytes, word, frame);
  return bytes;
}

// The words of a record that aren't zero.
std::string describeRecord(Bytes bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
  const std::vector<int32_t> words = GoldenValue{"", bytes}.numbers<int32_t>();
  std::ostringstream out;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == 0) continue;
    float real = 0;
    std::memcpy(&real, &words[i], sizeof real);
    out << ' ' << i * sizeof(int32_t) << ":int=" << words[i];
    if (real > 1e-20F || real < -1e-20F) out << "(float=" << real << ')';
  }
  return out.str();
}

}  // namespace

std::string quotedText(std::istream& in) {
  std::string text;
  in >> std::ws >> std::quoted(text);
  return text;
}

GoldenValue parseGoldenValue(const std::string& text, int frame) {
  std::istringstream in(text);
  GoldenValue value;
  in >> value.type;
  const size_t size = takeSize(value.type);
  if (size > 0) {
    value.bytes = parseSized(value.type, size, in, frame);
  } else if (value.type == "string") {
    const std::string words = quotedText(in);
    value.bytes.assign(words.begin(), words.end());
  } else if (value.type == "location") {
    value.bytes = parseLocation(in, frame);
  } else if (const NumberType* const numbers = numberType(value.type); numbers != nullptr) {
    for (std::string word; in >> word;) numbers->append(value.bytes, word, frame);
  } else if (value.type != "none") {
    fail("unknown type", text);
  }
  std::string rest;
  if (in.clear(), in >> rest) fail("too many words", text);
  return value;
}

GoldenValue otherValue(const GoldenValue& value) {
  GoldenValue other = value;
  for (uint8_t& byte : other.bytes) byte = static_cast<uint8_t>(byte == 1 ? 2 : 1);
  return other;
}

std::string describeBytes(const std::string& type, const std::vector<uint8_t>& bytes) {
  const std::string size = '[' + std::to_string(bytes.size()) + ']';
  if (type == "text") {
    const std::string words(bytes.begin(), bytes.end());
    const size_t end = words.find('\0');
    const bool isText = end == std::string::npos || words.find_first_not_of('\0', end) == std::string::npos;
    if (isText) return type + size + " \"" + words.substr(0, end) + '"';
  }
  const NumberType* const numbers = numberType(type);
  if (numbers != nullptr && bytes.size() % numbers->size == 0) return type + numbers->describe(bytes);
  return "bytes" + size + describeRecord(bytes);
}

}  // namespace orlu::test
