// notify() kills the process, so each test calls it in a forked child. The death test style "threadsafe" is
// unusable: it starts this program again in the child, and emulated processes can't start programs.

#include <android/log.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

#include "algo.h"
#include "request_processor.h"

namespace orlu {
namespace {

// Prints the called operation of the algorithm library to standard error, in brackets. For a command, adds
// the size of the data, the data with zero bytes as '0', and the size of the metadata.
void showOperation(const probe::WatchedCall& call) {
  std::string text(call.operation);
  if (call.command != nullptr) {
    const std::vector<uint8_t>& data = call.command->data;
    text += ' ' + std::to_string(data.size()) + ' ';
    for (const uint8_t byte : data) text += byte == 0 ? '0' : static_cast<char>(byte);
    text += ' ' + std::to_string(call.command->metadata.size());
  }
  std::fprintf(stderr, "[%s]", text.c_str());
}

class RequestProcessorNotifyDeathTest : public testing::Test {
protected:
  RequestProcessorNotifyDeathTest() {
    __android_log_set_logger(nullptr);  // the log goes to standard error
    mAlgo.script.observer = showOperation;
    mAlgo.use();
  }

  test::Algo mAlgo;
};

TEST_F(RequestProcessorNotifyDeathTest, TellsTheLibraryAndAborts) {
  EXPECT_EXIT(
      RequestProcessor::notify(
          nullptr, static_cast<int64_t>(reinterpret_cast<uintptr_t>(new AlgoNativeClient(nullptr, 1, 2))),
          nullptr),
      testing::KilledBySignal(SIGABRT),
      R"(\[createClient\].*notify inst 0x[^,]*\[command 12 notify:kill0 0\][^[]*notify inst 0x.*, service abort)");
}

// Calls the entry point that the product exports.
TEST_F(RequestProcessorNotifyDeathTest, MakesAClientForHandleZero) {
  void* const product = dlopen("liborlu.vas.native.interface.so", RTLD_NOW);
  ASSERT_NE(nullptr, product) << dlerror();
  const auto notify = reinterpret_cast<void (*)(JNIEnv*, jobject, jlong, jobject)>(
      dlsym(product, "Java_com_orlu_orlu3rdalgoservice_Orlu3rdAlgoService_notify"));
  ASSERT_NE(nullptr, notify) << dlerror();
  EXPECT_EXIT(notify(nullptr, nullptr, 0, nullptr), testing::KilledBySignal(SIGABRT),
              R"(notify inst \(nil\).*\[createClient\].*\[command 12 notify:kill0 0\].*\[destroyClient\])"
              R"(.*notify inst \(nil\), service abort)");
}

}  // namespace
}  // namespace orlu
