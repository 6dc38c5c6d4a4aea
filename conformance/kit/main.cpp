// The program of ./run conform: runs the checks on one algorithm library.
#include <getopt.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "contract.h"
#include "library.h"
#include "perf.h"
#include "report.h"

namespace orlu::conform {
namespace {

constexpr char kUsage[] =
    "Usage: ./run conform [options] [LIBRARY]\n"
    "\n"
    "Check an algorithm library; without LIBRARY, check the stand-in\n"
    "(docs/conformance.md).\n"
    "\n"
    "Options:\n"
    "  --only CHECK[,...]     Run only these checks\n"
    "  --list                 List the checks\n"
    "  --json                 Print the report as JSON\n"
    "  --junit FILE           Write the report as JUnit XML\n"
    "  --contract             Print the contract of the service and the library\n"
    "  --hostile SECONDS      Send random parameters for SECONDS (default: 3)\n"
    "  --long                 Same as --hostile 60 --budget 0\n"
    "  --hammer SECONDS       Set values from eight threads for SECONDS (default: 3)\n"
    "  --seed NUMBER          Set the seed of random parameters (default: 1)\n"
    "  --repeat ROUNDS        Run the checks ROUNDS times, with increasing seeds\n"
    "  --shuffle SEED         Run the checks in random order\n"
    "  --patience SECONDS     Wait SECONDS for each callback (default: 10)\n"
    "  --limit SECONDS        Limit each check to SECONDS (default: 120)\n"
    "  --budget SECONDS       Limit all checks to SECONDS (default: 110; 0: no limit)\n"
    "  --allow-noise          Only warn if outputs of equal requests differ\n"
    "  --perf                 Measure algorithms instead; --only names them\n"
    "                         (\"copy\": no algorithm)\n"
    "  --baseline FILE        With --perf: compare with an earlier --perf --json\n"
    "  --arm                  Check a 32-bit ARM library in an emulator\n"
    "  --help                 Print this help\n"
    "\n"
    "Examples:\n"
    "  ./run conform /path/to/liborlu.vac.interface.so\n"
    "  ./run conform --only setValue,getValue\n"
    "\n"
    "Each check runs in its own process. The exit status is 1 if a check fails,\n"
    "can't use the library or is not run for lack of time, 2 if the command line or\n"
    "the baseline is invalid, and 0 otherwise. With --perf, it is also 1 if a row is\n"
    "slower than in the baseline.\n";

std::vector<CheckResult> gResults;
bool gIsQuiet = false;
bool gIsPerf = false;
std::string gBaseline;
std::string gAlgorithms;

// A GoogleTest test that runs the check in a child process.
class CheckTest : public testing::Test {
public:
  explicit CheckTest(const Check& check) : mCheck(check) {}

  void TestBody() override {
    const Outcome outcome = runApart(mCheck);
    for (const std::string& text : outcome.evidence) {
      if (outcome.verdict == Verdict::kFailed) ADD_FAILURE() << text;
    }
    gResults.push_back({&mCheck, outcome});
    if (!gIsQuiet) {
      std::printf("%s\n", lineOf(gResults.back()).c_str());
      std::fflush(stdout);
    }
    if (outcome.verdict == Verdict::kSkipped)
      GTEST_SKIP() << (outcome.evidence.empty() ? "" : outcome.evidence[0]);
  }

private:
  const Check& mCheck;
};

// Gives each round of --repeat a new seed and a new time budget.
class Rounds : public testing::EmptyTestEventListener {
  void OnTestIterationStart(const testing::UnitTest& test, int round) override {
    startBudget();
    if (round > 0) ++options().seed;
    const bool isShuffled = testing::GTEST_FLAG(shuffle);
    if (gIsQuiet || (testing::GTEST_FLAG(repeat) == 1 && !isShuffled)) return;
    std::printf("round %d (to repeat it: --seed %u%s)\n", round + 1, options().seed,
                isShuffled ? (" --shuffle " + std::to_string(test.random_seed())).c_str() : "");
  }
};

enum Flag {
  kOnly = 1,
  kList,
  kJson,
  kJunit,
  kContract,
  kHostile,
  kLong,
  kHammer,
  kSeed,
  kPatience,
  kLimit,
  kBudget,
  kAllowNoise,
  kRepeat,
  kShuffle,
  kPerf,
  kBaseline,
  kHelp
};

constexpr option kFlags[] = {
    {"only",        required_argument, nullptr, kOnly      },
    {"list",        no_argument,       nullptr, kList      },
    {"json",        no_argument,       nullptr, kJson      },
    {"junit",       required_argument, nullptr, kJunit     },
    {"contract",    no_argument,       nullptr, kContract  },
    {"hostile",     required_argument, nullptr, kHostile   },
    {"long",        no_argument,       nullptr, kLong      },
    {"hammer",      required_argument, nullptr, kHammer    },
    {"seed",        required_argument, nullptr, kSeed      },
    {"patience",    required_argument, nullptr, kPatience  },
    {"limit",       required_argument, nullptr, kLimit     },
    {"budget",      required_argument, nullptr, kBudget    },
    {"allow-noise", no_argument,       nullptr, kAllowNoise},
    {"repeat",      required_argument, nullptr, kRepeat    },
    {"shuffle",     required_argument, nullptr, kShuffle   },
    {"perf",        no_argument,       nullptr, kPerf      },
    {"baseline",    required_argument, nullptr, kBaseline  },
    {"help",        no_argument,       nullptr, kHelp      },
    {nullptr,       0,                 nullptr, 0          },
};

// NOLINTBEGIN(concurrency-mt-unsafe): the command line is read before there is a second thread.
[[noreturn]] void refuse(const std::string& text) {
  std::fprintf(stderr, "run: error: %s; see ./run conform --help\n", text.c_str());
  std::exit(2);
}

bool isCheck(const std::string& name) {
  for (const Check& check : allChecks()) {
    if (name == check.name) return true;
  }
  return false;
}

// Converts the names of checks to a GoogleTest filter.
std::string filterFor(const std::string& names) {
  std::string filter;
  std::istringstream list(names);
  for (std::string name; std::getline(list, name, ',');) {
    if (!isCheck(name)) refuse("no such check: " + name + "; --list prints all");
    filter += ":conform." + name;
  }
  return filter;
}

void refuseNumber(const char* text, const char* flag, const char* kind) {
  refuse(std::string("--") + flag + ": expected " + kind + " from 0 to 1000000, found \"" + text + "\"");
}

double nonNegative(const char* text, const char* flag, const char* kind = "a number") {
  char* end = nullptr;
  const double number = std::strtod(text, &end);
  // A NaN is not in the range either.
  if (*text == '\0' || *end != '\0' || !(number >= 0 && number <= 1e6)) refuseNumber(text, flag, kind);
  return number;
}

int wholeNumber(const char* text, const char* flag) {
  constexpr const char* kKind = "a whole number";
  const double number = nonNegative(text, flag, kKind);
  if (static_cast<int>(number) != number) refuseNumber(text, flag, kKind);
  return static_cast<int>(number);
}

// Returns the seed for GoogleTest. Rejects 0, because GoogleTest would use the time of day instead.
int shuffleSeed(const char* text) {
  const int seed = wholeNumber(text, "shuffle");
  if (seed < 1 || seed > 99999) refuse(std::string("--shuffle: expected 1 to 99999, found ") + text);
  return seed;
}

void listChecks() {
  for (const Check& check : allChecks()) std::printf("%-12s%s\n", check.name, check.promise);
}

// Reads the options. Exits on errors, and after --list, --contract and --help.
void readCommandLine(int argc, char** argv) {
  std::string only;
  int index = 0;
  // ":" disables getopt's own messages, which would start with the path of this program.
  for (int flag = 0; (flag = getopt_long(argc, argv, ":", kFlags, &index)) != -1;) {
    Options& taken = options();
    switch (flag) {
      case kOnly:
        only += std::string(only.empty() ? "" : ",") + optarg;
        break;
      case kJson:
        gIsQuiet = true;
        break;
      case kJunit:
        testing::GTEST_FLAG(output) = std::string("xml:") + optarg;
        break;
      case kHostile:
        taken.hostileSeconds = nonNegative(optarg, "hostile");
        break;
      case kLong:
        taken.hostileSeconds = 60;
        taken.budgetSeconds = 0;
        break;
      case kHammer:
        taken.hammerSeconds = nonNegative(optarg, "hammer");
        break;
      case kSeed:
        taken.seed = static_cast<unsigned>(wholeNumber(optarg, "seed"));
        break;
      case kPatience:
        taken.patienceSeconds = wholeNumber(optarg, "patience");
        break;
      case kLimit:
        taken.limitSeconds = wholeNumber(optarg, "limit");
        break;
      case kAllowNoise:
        taken.allowNoise = true;
        break;
      case kRepeat:
        testing::GTEST_FLAG(repeat) = std::max(wholeNumber(optarg, "repeat"), 1);
        break;
      case kShuffle:
        testing::GTEST_FLAG(shuffle) = true;
        testing::GTEST_FLAG(random_seed) = shuffleSeed(optarg);
        break;
      case kBudget:
        taken.budgetSeconds = wholeNumber(optarg, "budget");
        break;
      case kPerf:
        gIsPerf = true;
        break;
      case kBaseline:
        gBaseline = optarg;
        break;
      case kList:
        listChecks();
        std::exit(0);
      case kContract:
        std::fputs(contract().c_str(), stdout);
        std::exit(0);
      case kHelp:
        std::fputs(kUsage, stdout);
        std::exit(0);
      case ':':
        refuse(std::string(argv[optind - 1]) + " requires a value");
      default:
        refuse(std::string("unknown option ") + argv[optind - 1]);
    }
  }
  if (optind < argc) options().library = argv[optind++];
  if (options().library.empty()) refuse("missing LIBRARY");
  if (!gBaseline.empty() && !gIsPerf) refuse("--baseline requires --perf");
  if (optind < argc) refuse(std::string("unexpected argument ") + argv[optind]);
  // NOLINTEND(concurrency-mt-unsafe)
  if (gIsPerf) {
    gAlgorithms = only;
  } else if (!only.empty()) {
    testing::GTEST_FLAG(filter) = filterFor(only).substr(1);
  }
}

void registerChecks() {
  for (const Check& check : allChecks()) {
    testing::RegisterTest("conform", check.name, nullptr, nullptr, __FILE__, __LINE__,
                          [&check]() -> testing::Test* { return new CheckTest(check); });
  }
  testing::UnitTest::GetInstance()->listeners().Append(new Rounds());
}

int runChecks() {
  int status = RUN_ALL_TESTS();
  size_t counts[3] = {};
  for (const CheckResult& result : gResults) {
    ++counts[static_cast<int>(result.outcome.verdict)];
    for (const char* why : {kUnusable, kOutOfTime}) {
      if (result.outcome.evidence == std::vector<std::string>{why}) status = 1;
    }
  }
  if (gIsQuiet) {
    std::printf("%s\n", jsonOf(gResults).c_str());
  } else {
    std::printf("%zu passed, %zu failed, %zu skipped\n", counts[0], counts[1], counts[2]);
  }
  return status;
}

}  // namespace
}  // namespace orlu::conform

// Keeps ASan from handling signals: the kit handles them to name the crashed operation, and the Java VM uses
// SIGSEGV.
extern "C" const char* __asan_default_options() {
  return "handle_segv=0:handle_abort=0";
}

int main(int argc, char** argv) {
  using namespace orlu::conform;
#ifdef ORLU_CONFORM_LIBRARY
  // In the build folder, the defaults are the stand-in and the VM of the build.
  options().library = ORLU_CONFORM_LIBRARY;
  options().jvm = ORLU_CONFORM_JVM;
#endif
  readCommandLine(argc, argv);
  int count = 1;
  testing::InitGoogleTest(&count, argv);
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(newCheckListener());
  if (gIsPerf) return runPerf(gAlgorithms, gIsQuiet, gBaseline);
  registerChecks();
  return runChecks();
}
