// Clients without an algorithm library. This program's folder contains the device's libraries except the
// algorithm library.

#include <gtest/gtest.h>

#include <filesystem>

#include "algo_native_context.h"
#include "error_lines.h"

namespace orlu {
namespace {

constexpr char kContextTag[] = "_V_VASJNI-AlgoNativeContext";
constexpr char kProviderTag[] = "_V_VASJNI-AlgoNativeProvider";

// Expects that every operation reports failure and does nothing else.
void expectNothingWorks(AlgoNativeContext& context, test::LogCapture& log) {
  log.clear();
  int32_t value = 7;
  context.init();
  context.process(kRequestCapture, {"night"}, 1, {AlgoFrameInfo()}, {}, nullptr, 2, 3, {4});
  context.abort(1, 2, nullptr);
  context.notify();
  EXPECT_TRUE(context.getData("version").empty());
  EXPECT_EQ(0, context.translateParamFile(-1, 1, "file"));
  EXPECT_EQ(nullptr, context.createMetadata());
  context.destroyMetadata(&value);
  EXPECT_EQ(-1, context.setValue(&value, "section", "key", &value, sizeof value));
  EXPECT_EQ(-1, context.getValue(&value, "section", "key", &value, sizeof value));
  EXPECT_EQ(-1, context.paramAlgoUpdateToSystem(&value, nullptr));
  EXPECT_EQ(-1, context.paramSystemDownloadToAlgo(&value, nullptr));
  context.flush();
  context.uninit(0);
  EXPECT_EQ(7, value);
  EXPECT_EQ(
      "init failed\nprocess failed\nabort failed\nnotify failed\nget data failed\n"
      "translateParamFile failed\ncreateMetadata failed\ndestroyMetadata failed\nflush failed\nuninit "
      "failed\n",
      test::errorText(log, kContextTag));
}

// A single test, because the loader remembers the names of opened libraries: once a library of this name is
// open, the process finds it even without the file.
TEST(LibraryAbsentTest, ClientsLiveWithoutTheLibraryAndWithoutItsEntry) {
  test::LogCapture log;
  const std::string noLibrary =
      ": * dlopen error: liborlu.vac.interface.so: cannot open shared object file: No such file or "
      "directory\n";
  const std::string noClient = "init algo interface failed\ncreate client failed\n";
  {
    AlgoNativeContext context;
    // The library is opened for the provider's table and for the context's table. Both attempts log an error.
    EXPECT_EQ(kProviderTag + noLibrary + kProviderTag + noLibrary + noClient,
              test::errorText(log, kContextTag));
    expectNothingWorks(context, log);
    log.clear();
  }
  EXPECT_EQ("destroy client failed\n", test::errorText(log, kContextTag));

  // Each new client looks for the library again.
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const auto impostor = folder / "liborlu.vac.interface.so";  // a link to another library
  std::filesystem::remove(impostor);
  std::filesystem::create_symlink(folder / "liblog.so", impostor);
  log.clear();
  AlgoNativeContext context;
  std::filesystem::remove(impostor);
  const std::string error = test::errorText(log, kContextTag);
  EXPECT_EQ(0U, error.find(std::string(kProviderTag) + ": * dlsym failed: ")) << error;
  EXPECT_NE(std::string::npos, error.find(" undefined symbol: AlgoInterfaceEntry\n" + noClient)) << error;
  expectNothingWorks(context, log);
}

}  // namespace
}  // namespace orlu
