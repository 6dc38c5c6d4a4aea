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

// Parses a number such as "7", "1/3" or "7+2i", where i is the frame.
template <typename T>
T parseNumber(const std::string& text, int frame) {
  const auto plain = [](const char* from, char** end) {
    if constexpr (std::is_integral_v<T>) return static_cast<T>(std::strtoll(from, end, 0));
    return static_cast<T>(std::strtod(from, end));
  };
  char* end = nullptr;
  T value = plain(text.c_str(), &end);
  if (*end == '/' && end[1] != '\0') {
    value = static_cast<T>(value / plain(end + 1, &end));
  } else if (*end == '+') {
    value = static_cast<T>(value + static_cast<T>(frame) * plain(end + 1, &end));
    if (*end != 'i') fail("not a number", text);
    ++end;
  }
  if (text.empty() || *end != '\0') fail("not a number", text);
  return value;
}

template <typename T>
void append(Bytes& bytes, const std::string& word, int frame) {
  const size_t star = word.find('*');
  const T value = parseNumber<T>(word.substr(0, star), frame);
  const int times = star == std::string::npos ? 1 : parseNumber<int>(word.substr(star + 1), 0);
  const auto* const raw = reinterpret_cast<const uint8_t*>(&value);
  for (int i = 0; i < times; ++i) bytes.insert(bytes.end(), raw, raw + sizeof value);
}

template <typename T>
std::string describeNumbers(const Bytes& bytes) {
  const std::vector<T> values = GoldenValue{"", bytes}.numbers<T>();
  std::ostringstream out;
  out << std::setprecision(std::numeric_limits<T>::max_digits10);
  for (size_t i = 0, times = 1; i < values.size(); i += times) {
    const auto isSame = [&](size_t other) { return std::memcmp(&values[i], &values[other], sizeof(T)) == 0; };
    for (times = 1; i + times < values.size() && isSame(i + times);) ++times;
    // Omits the sign of NaN, which differs between machines.
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

// Returns null for types that are not numeric. Treats "ints" as "int".
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

// Parses a quoted string, a location's four numbers, or numbers up to the end of `in`.
Bytes parseWords(const std::string& type, std::istream& in, int frame) {
  if (type == "text" || type == "string") {
    const std::string text = quotedText(in);
    return {text.begin(), text.end()};
  }
  Bytes bytes;
  std::string word;
  if (type == "location") {
    for (int i = 0; i < 3 && in >> word; ++i) append<double>(bytes, word, frame);
    in >> word;
    append<int64_t>(bytes, word, frame);
    return bytes;
  }
  const NumberType* const numbers = numberType(type);
  if (numbers == nullptr) fail("unknown type", type);
  while (in >> word) numbers->append(bytes, word, frame);
  return bytes;
}

void put(Bytes& bytes, size_t offset, const Bytes& part, const std::string& text) {
  if (part.empty() || offset + part.size() > bytes.size()) fail("does not fit the record", text);
  std::copy(part.begin(), part.end(), bytes.begin() + static_cast<ptrdiff_t>(offset));
}

// Writes one "offset:type=value,value" into a record.
void putPart(Bytes& bytes, std::string part, int frame) {
  const size_t colon = part.find(':');
  const size_t equals = part.find('=');
  if (equals == std::string::npos || equals < colon) fail("not a part of a record", part);
  const std::string type = part.substr(colon + 1, equals - colon - 1);
  if (type != "text") std::replace(part.begin(), part.end(), ',', ' ');
  std::istringstream in(part.substr(equals + 1));
  const auto offset = static_cast<size_t>(parseNumber<int>(part.substr(0, colon), 0));
  put(bytes, offset, parseWords(type, in, frame), part);
}

// Returns the nonzero words of a record, with their offsets.
std::string describeRecord(Bytes bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
  const std::vector<int32_t> words = GoldenValue{"", bytes}.numbers<int32_t>();
  std::ostringstream out;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == 0) continue;
    float real = 0;
    std::memcpy(&real, &words[i], sizeof real);
    out << ' ' << i * sizeof(int32_t) << ":int=" << words[i];
    if (std::abs(real) > 1e-20F) out << "(float=" << real << ')';
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
  const size_t bracket = value.type.find('[');
  if (bracket != std::string::npos) {
    const std::string size = value.type.substr(bracket + 1, value.type.size() - bracket - 2);
    value.bytes.resize(static_cast<size_t>(parseNumber<int>(size, 0)));
    value.type.resize(bracket);
    const bool isText = value.type == "text";
    if (!isText && value.type != "bytes" && value.type != "zero") fail("unknown type", text);
    if (isText) put(value.bytes, 0, parseWords("text", in, frame), text);
    for (std::string part; value.type == "bytes" && in >> part;) putPart(value.bytes, part, frame);
  } else if (value.type != "none") {
    value.bytes = parseWords(value.type, in, frame);
  }
  std::string rest;
  if (in.clear(), in >> rest) fail("too many words", text);
  return value;
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
