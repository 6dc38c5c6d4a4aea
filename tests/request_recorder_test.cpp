// Tests the service's recorder. A failure of the recorder must never affect the request.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "paths.h"
#include "recorder_calls.h"
#include "request_scene.h"

namespace orlu {
namespace {

class RequestRecorderTest : public test::RequestScene {
protected:
  RequestRecorderTest() {
    std::string name = test::temporaryFolder() + "recorder_XXXXXX";
    mFolder = mkdtemp(name.data());
    mAlgo.script.observer = [this, before = mAlgo.script.observer](const probe::WatchedCall& call) {
      before(call);
      if (call.operation == "process") mDuring();
    };
    mAlgo.use();
    mClient = test::newServiceClient(mService, mCompositions[0]);
  }
  void TearDown() override {
    test::destroyServiceClient(mService, mClient);
    std::filesystem::remove_all(mFolder);
    RequestScene::TearDown();
  }

  // Returns a recorder that writes to this subfolder of the test's folder.
  jobject newRecorder(const std::string& name, int count, int64_t bytes) const {
    return test::newRecorder(mFolder + "/" + name, count, bytes);
  }
  // Runs a request. Returns the status and the calls of the algorithm library, or "thrown" if it throws.
  std::string run(jobject recorder, jobject inputs, jobject compositions) {
    mTrace.clear();
    try {
      const int status = test::processImage(recorder, mService, mClient, test::newRequest(kReqId, "capture"),
                                            inputs, mOutputs, compositions);
      return std::to_string(status) + ": " + mTrace;
    } catch (const std::runtime_error& e) {
      test::env()->ExceptionClear();
      return "thrown";
    }
  }
  // Returns "NAME STATE" for each folder in this subfolder, sorted. The state is "" without outcome.json,
  // "failed" if that file reports a failure, else "end".
  std::vector<std::string> recordings(const std::string& name) const {
    std::vector<std::string> found;
    if (!std::filesystem::is_directory(mFolder + "/" + name)) return found;
    for (const auto& entry : std::filesystem::directory_iterator(mFolder + "/" + name)) {
      std::ifstream file(entry.path() / "outcome.json");
      std::string outcome;
      std::getline(file, outcome, '\0');
      const std::string last = outcome.empty()                             ? ""
                               : outcome.rfind("{\n  \"failed\":", 0) == 0 ? "failed"
                                                                           : "end";
      found.push_back(entry.path().filename().string() + " " + last);
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  const jobject mService = test::newService();
  std::string mFolder;
  jlong mClient = 0;
  std::function<void()> mDuring = [] {};  // called during the request
};

TEST_F(RequestRecorderTest, FailuresCostOnlyTheRecording) {
  std::ofstream(mFolder + "/file") << "no folder";
  const jobject closed = test::newSmallImage();
  test::call(test::objectField(closed, "mImageDataShmem", "Landroid/os/SharedMemory;"), "close", "()V");
  const jobject compositions = test::javaList(mCompositions);
  const jobject closedInputs = test::javaList({closed});
  const jobject throwing = test::javaList({test::newThrowingComposition()});
  const jobject nulls = test::newUnrulyList(1, false, false);
  const auto valued = [](const char* what) {
    const jobject composition = test::newComposition();
    test::putKey(
        composition, "odd",
        test::newObject("com/orlu/test/ThrowingValue", "(Ljava/lang/String;)V", test::javaString(what)));
    return test::javaList({composition});
  };
  const struct {
    const char* fault;
    const char* folder;
    int64_t bytes;
    jobject inputs;
    jobject compositions;
    const char* lastPart;
  } cases[] = {
      {"none",                     "plain",  1 << 20, mInputs,      compositions,        "end"   },
      {"no folder can be created", "file/x", 1 << 20, mInputs,      compositions,        nullptr },
      {"no bytes are left",        "full",   700,     mInputs,      compositions,        "failed"},
      {"closed memory",            "closed", 1 << 20, closedInputs, compositions,        "failed"},
      {"a composition throws",     "throws", 1 << 20, mInputs,      throwing,            "failed"},
      {"no compositions",          "null",   1 << 20, mInputs,      nullptr,             "failed"},
      {"a list of nulls",          "nulls",  1 << 20, mInputs,      nulls,               "failed"},
      {"toString() throws",        "text",   1 << 20, mInputs,      valued("exception"), "end"   },
      {"out of memory",            "memory", 1 << 20, mInputs,      valued("memory"),    "failed"},
      {"stack overflow",           "stack",  1 << 20, mInputs,      valued("stack"),     "failed"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    const std::string plain = run(nullptr, c.inputs, c.compositions);
    EXPECT_EQ(plain, run(newRecorder(c.folder, 4, c.bytes), c.inputs, c.compositions));
    std::vector<std::string> expected;
    if (c.lastPart != nullptr) expected.push_back(std::string("000001-request-8589934593 ") + c.lastPart);
    EXPECT_EQ(expected, recordings(c.folder));
  }
}

TEST_F(RequestRecorderTest, TheFolderMayDisappearDuringTheRequest) {
  const jobject compositions = test::javaList(mCompositions);
  const std::string plain = run(nullptr, mInputs, compositions);
  mDuring = [this] { std::filesystem::remove_all(mFolder + "/gone"); };
  EXPECT_EQ(plain, run(newRecorder("gone", 4, 1 << 20), mInputs, compositions));
  EXPECT_TRUE(recordings("gone").empty());
  // A folder takes the name of an output's pixel file.
  mDuring = [this] {
    std::filesystem::create_directories(mFolder + "/taken/000001-request-8589934593/output0.bin");
  };
  EXPECT_EQ(plain, run(newRecorder("taken", 4, 1 << 20), mInputs, compositions));
  EXPECT_EQ(recordings("taken"), std::vector<std::string>{"000001-request-8589934593 failed"});
}

TEST_F(RequestRecorderTest, OldRecordingsMakeWayAndNothingElse) {
  // Neither folder is a recording: the first name has another form, and the number in the second exceeds an
  // int.
  std::filesystem::create_directories(mFolder + "/few/000000-mine");
  std::filesystem::create_directories(mFolder + "/few/9999999999-request-1");
  const jobject recorder = newRecorder("few", 2, 1 << 20);
  for (int i = 0; i < 4; ++i) run(recorder, mInputs, test::javaList(mCompositions));
  // A new recorder continues after the newest recording.
  run(newRecorder("few", 2, 1 << 20), mInputs, test::javaList(mCompositions));
  const std::vector<std::string> kept = {"000000-mine ", "000004-request-8589934593 end",
                                         "000005-request-8589934593 end", "9999999999-request-1 "};
  EXPECT_EQ(kept, recordings("few"));
  // Recordings are ordered by number, not by text.
  std::filesystem::create_directories(mFolder + "/many/999999-request-1");
  std::filesystem::create_directories(mFolder + "/many/1000000-request-1");
  run(newRecorder("many", 2, 1 << 20), mInputs, test::javaList(mCompositions));
  const std::vector<std::string> latest = {"1000000-request-1 ", "1000001-request-8589934593 end"};
  EXPECT_EQ(latest, recordings("many"));
}

// Properties of the platform, set by `adb shell setprop`, apply if the Java properties are not set.
TEST_F(RequestRecorderTest, PropertiesSwitchItOn) {
  const auto set = [](const char* clazz, const char* signature, const char* name, const std::string& value) {
    test::callStatic(clazz, clazz[0] == 'a' ? "set" : "setProperty", signature, test::javaString(name),
                     test::javaString(value));
  };
  const auto setPlatform = [&](const char* name, const std::string& value) {
    set("android/os/SystemProperties", "(Ljava/lang/String;Ljava/lang/String;)V", name, value);
  };
  const auto setJava = [&](const char* name, const std::string& value) {
    set("java/lang/System", "(Ljava/lang/String;Ljava/lang/String;)Ljava/lang/String;", name, value);
  };
  const auto ofProperties = [] {
    return test::callStatic("com/orlu/orlu3rdalgoservice/record/RequestRecorder", "ofProperties",
                            "()Lcom/orlu/orlu3rdalgoservice/record/RequestRecorder;");
  };
  const jobject compositions = test::javaList(mCompositions);
  EXPECT_EQ(ofProperties(), nullptr);
  setPlatform("persist.vendor.orlu.record", mFolder + "/phone");
  setPlatform("persist.vendor.orlu.record.count", "1");
  const jobject recorder = ofProperties();
  ASSERT_NE(recorder, nullptr);
  for (int i = 0; i < 2; ++i) run(recorder, mInputs, compositions);
  EXPECT_EQ(recordings("phone"), std::vector<std::string>{"000002-request-8589934593 end"});
  setJava("orlu.record", mFolder + "/java");
  run(ofProperties(), mInputs, compositions);
  setJava("orlu.record", "");
  setPlatform("persist.vendor.orlu.record", "");
  setPlatform("persist.vendor.orlu.record.count", "");
  EXPECT_EQ(recordings("java"), std::vector<std::string>{"000001-request-8589934593 end"});
  EXPECT_EQ(ofProperties(), nullptr);
}

}  // namespace
}  // namespace orlu
