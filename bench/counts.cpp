#include "counts.h"

#include <algorithm>

namespace orlu::bench {

Counts countsOf(RequestRunner& runner) {
  runner.run();  // lets the VM create its one-time objects
  runner.record();
  Counts counts;
  int64_t most = 0;
  for (const JniRecording* recording : {&runner.first(), &runner.second()}) {
    for (const auto& [function, calls] : recording->counts()) {
      counts["jni:" + function] += calls;
      counts["jni"] += calls;
    }
    most = std::max<int64_t>(most, recording->mostLocalReferences());
  }
  const HeapUse heap = runner.heap();
  const LogLines lines = runner.logLines();
  counts["local_references"] = most;
  counts["allocations"] = heap.allocations;
  counts["allocated_bytes"] = heap.bytes;
  counts["debug_lines"] = lines.debug;
  counts["error_lines"] = lines.error;
  return counts;
}

}  // namespace orlu::bench
