// Command-line options of the fuzzers. Each takes a number.
#pragma once

#include <getopt.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace orlu::fuzz {

struct NumberOption {
  const char* name;
  uint64_t* value;  // points to the default; readNumbers() overwrites it
  uint64_t least;
};

// NOLINTBEGIN(concurrency-mt-unsafe): a program reads its options before it has a second thread.
[[noreturn]] inline void endWithUsage(const char* program, const std::vector<NumberOption>& options) {
  std::fprintf(stderr, "usage: %s", program);
  for (const NumberOption& option : options) std::fprintf(stderr, " [--%s N]", option.name);
  std::fputc('\n', stderr);
  std::exit(2);
}

// Parses the command line. After any other argument or an invalid number, prints the usage and exits with 2.
inline void readNumbers(int argc, char** argv, const std::vector<NumberOption>& options) {
  std::vector<option> known;
  for (const NumberOption& option : options) known.push_back({option.name, required_argument, nullptr, 0});
  known.push_back({});
  for (int index = 0; optind < argc;) {
    if (getopt_long(argc, argv, "", known.data(), &index) != 0) endWithUsage(argv[0], options);
    const NumberOption& option = options[static_cast<size_t>(index)];
    uint64_t number = 0;
    const char* const end = optarg + std::strlen(optarg);
    const auto [rest, error] = std::from_chars(optarg, end, number);
    if (error != std::errc() || rest != end || number < option.least) {
      std::fprintf(stderr, "%s: --%s: expected a number of at least %llu, found \"%s\"\n", argv[0],
                   option.name, static_cast<unsigned long long>(option.least), optarg);
      endWithUsage(argv[0], options);
    }
    *option.value = number;
  }
}
// NOLINTEND(concurrency-mt-unsafe)

}  // namespace orlu::fuzz
