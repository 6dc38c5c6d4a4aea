// Checks that conformance/result_reads.inc lists exactly the values that result translation reads, and their
// sizes.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "algo.h"
#include "paths.h"
#include "result_scene.h"

namespace orlu::test {
namespace {

// Translates the results of these algorithms. Returns a line of result_reads.inc for each value read.
std::set<std::string> readsOf(const std::vector<std::string>& algorithms, const char* requestType) {
  Algo algo;
  ResultScene scene;
  scene.algorithms = algorithms;
  scene.requestType = requestType;
  scene.values = {left<int32_t>("parameter", "step_beauty_type", {1})};
  scene.compositions = {compositionAt(1), compositionAt(2)};
  scene.translate();
  std::set<std::string> rows;
  for (const RecordedCall& call : algo.calls()) {
    if (call.operation != "getValue") continue;
    rows.insert("{\"" + call.section + "\", \"" + call.key + "\", " + std::to_string(call.bytes.size()) +
                "},\n");
  }
  return rows;
}

TEST(ResultReadsTest, TheKitsListEqualsTheValuesRead) {
  std::set<std::string> rows = readsOf({"frameClarOnly"}, "capture");
  rows.merge(
      readsOf({"jpegBokehOnly", "ppt", "jpegEncode", "lightstream", "hdr", "singleBokeh", "bestMoment"},
              "stopProcess"));
  rows.merge(readsOf({"refocusJpegPack"}, "capture"));
  std::string recorded;
  for (const std::string& row : rows) recorded += row;

  const std::string path = goldenFolder() + "../../conformance/result_reads.inc";
  if (std::getenv("ORLU_WRITE_RESULT_READS") != nullptr) std::ofstream(path) << recorded;
  std::stringstream known;
  known << std::ifstream(path).rdbuf();
  EXPECT_EQ(recorded, known.str()) << "to update the file, run this test with ORLU_WRITE_RESULT_READS=1";
}

}  // namespace
}  // namespace orlu::test
