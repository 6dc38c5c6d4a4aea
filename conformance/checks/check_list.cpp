#include "check.h"
#include "checks.h"

namespace orlu::conform {

const std::vector<Check>& allChecks() {
  // clang-format off
  static const std::vector<Check> checks = {
      {"loading",     "it loads, and fills every table that it is handed",              checkLoading},
      {"mandatory",   "what the service can't do without is offered",                   checkMandatory},
      {"clients",     "clients are told apart, and end in any state",                   checkClients},
      {"setValue",    "a block keeps copies of what is set, apart by section and key",  checkSetValue},
      {"getValue",    "getValue writes no more than it was asked for",                  checkGetValue},
      {"blocks",      "what was set stays, and results have the sizes that are read",   checkBlocks},
      {"keys",         "a block keeps every value of a full request, names compared whole", checkKeys},
      {"visitors",    "visitors get names and values, and may refuse",                  checkVisitors},
      {"process",     "process returns soon, and keeps nothing of its record",          checkProcess},
      {"callbacks",   "each request is called back exactly once",                       checkCallbacks},
      {"java",        "callbacks come from threads that the Java VM knows",             checkJava},
      {"inside",       "in a callback Java may end, submit, flush, abort and destroy",      checkInside},
      {"overlap",      "calls return while a callback has not",                             checkOverlap},
      {"flush",        "flush returns, and says when requests are still out",               checkFlush},
      {"requests",    "requests of every kind are called back",                         checkRequests},
      {"concurrency", "clients work at once, and nothing comes for one that is gone",   checkConcurrency},
      {"lives",        "clients leave nothing behind, and work again after uninit and init", checkLives},
      {"threads",      "eight threads at once read what they set; pictures are not mixed",  checkThreads},
      {"outputs",     "outputs are written inside their planes, inputs not at all",     checkOutputs},
      {"pixels",      "every plane of every output is written, at its own strides",     checkPixels},
      {"repeats",      "the same request gives the same bytes",                             checkRepeats},
      {"descriptors",  "each descriptor is closed once, in every format",                   checkDescriptors},
      {"leaks",        "requests leave nothing behind",                                     checkLeaks},
      {"exceptions",  "no exception leaves a callable, or is left in it",               checkExceptions},
      {"layout",      "tables and records are built from the same declaration",         checkLayout},
      {"queries",     "getData's answer fits, translateParamFile leaves the file open", checkQueries},
      {"hostile",     "parameters of random bytes are survived",                        checkHostile},
  };
  // clang-format on
  return checks;
}

}  // namespace orlu::conform
