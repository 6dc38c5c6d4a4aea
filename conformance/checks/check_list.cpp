#include "check.h"
#include "checks.h"

namespace orlu::conform {

const std::vector<Check>& allChecks() {
  // clang-format off
  static const std::vector<Check> checks = {
      {"loading",     "the library loads and fills every table it is given",                checkLoading},
      {"mandatory",   "the mandatory callables are present",                                checkMandatory},
      {"clients",     "clients are separate, and can be destroyed in any state",            checkClients},
      {"setValue",    "a block copies values and separates them by section and key",        checkSetValue},
      {"getValue",    "getValue writes no more than requested",                             checkGetValue},
      {"blocks",      "values persist, and results have the sizes that the service reads",  checkBlocks},
      {"keys",        "a block keeps a full request's values and compares whole names",     checkKeys},
      {"visitors",    "visitors get names and values, and may refuse",                      checkVisitors},
      {"process",     "process returns soon and keeps nothing of its record",               checkProcess},
      {"callbacks",   "each request is called back exactly once",                           checkCallbacks},
      {"java",        "callbacks come from threads attached to the Java VM",                checkJava},
      {"inside",      "Java may finish, submit, flush, abort or destroy inside a callback", checkInside},
      {"overlap",     "calls return while a callback is running",                           checkOverlap},
      {"flush",       "flush returns, ideally after the requests in flight",                checkFlush},
      {"requests",    "requests of every kind are called back",                             checkRequests},
      {"concurrency", "clients work in parallel, with no callback after destroyClient",     checkConcurrency},
      {"lives",       "clients leave nothing behind, and work again after uninit and init", checkLives},
      {"threads",     "eight threads read what they set; pictures are not mixed",           checkThreads},
      {"outputs",     "outputs are written inside their planes, inputs not at all",         checkOutputs},
      {"pixels",      "every plane of every output is written, at the output's strides",    checkPixels},
      {"repeats",     "equal requests give equal bytes",                                    checkRepeats},
      {"descriptors", "each descriptor is closed once, in every format",                    checkDescriptors},
      {"leaks",       "requests leak nothing",                                              checkLeaks},
      {"exceptions",  "no exception leaves a callable or stays pending",                    checkExceptions},
      {"layout",      "tables and records have the declared layout",                        checkLayout},
      {"queries",     "getData's text fits its buffer; translateParamFile closes no file",  checkQueries},
      {"hostile",     "random parameters do no harm",                                       checkHostile},
  };
  // clang-format on
  return checks;
}

}  // namespace orlu::conform
