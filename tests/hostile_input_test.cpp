// Hostile input from clients, applications or the algorithm library must not harm the process.

#include <android/sharedmem_jni.h>
#include <dlfcn.h>

#include "jni_support.h"
#include "jni_table.h"
#include "request_scene.h"

namespace {

int gDuplicated = 0;

}  // namespace

// Intercepts the platform's function of this name to count its calls.
int ASharedMemory_dupFromJava(JNIEnv* env, jobject sharedMemory) {
  ++gDuplicated;
  static const auto next =
      reinterpret_cast<int (*)(JNIEnv*, jobject)>(dlsym(RTLD_NEXT, "ASharedMemory_dupFromJava"));
  return next(env, sharedMemory);
}

namespace orlu {
namespace {

using test::env;
using test::javaString;

class HostileInputTest : public test::RequestScene {
protected:
  HostileInputTest() { create(); }

  static jobject copies(int count, jobject element) {
    return test::callStatic("java/util/Collections", "nCopies", "(ILjava/lang/Object;)Ljava/util/List;",
                            count, element);
  }
};

TEST_F(HostileInputTest, DoesNotBelieveAListOfTwoThousandMillionFrames) {
  jobject endless = copies(0x7FFFFFFF, nullptr);
  VRequest request(env(), nullptr, endless, copies(1024, nullptr), endless);
  EXPECT_EQ(1024U, request.inputFrames().size());
  EXPECT_EQ(1024U, request.outputFrames().size());
  EXPECT_EQ(1024U, request.captureResults().size());
}

// If VRequest reserved no local references for the lists, -Xcheck:jni would print a warning, and this program
// would fail after the last test.
TEST_F(HostileInputTest, ReservesReferencesForThreeLongLists) {
  jobject images = copies(100, test::newSmallImage());
  jobject compositions = copies(100, test::newComposition());
  env()->PushLocalFrame(16);
  const int result = RequestProcessor::processImage(env(), mInst, nullptr, images, images, compositions);
  env()->PopLocalFrame(nullptr);
  EXPECT_EQ(0, result);
}

// Only the thread that waits for a synchronous request may destroy the request's parameter block.
TEST_F(HostileInputTest, DoesNotEndASynchronousRequestThatACompositionNames) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  void* const block = client().context().createMetadata();
  const uint64_t waitedFor = map->create(7, block, false);
  EXPECT_EQ(0, updateResult(waitedFor));
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);
  EXPECT_EQ(7, map->getRequestId(waitedFor));
  client().context().destroyMetadata(block);
  map->remove(waitedFor);
}

TEST_F(HostileInputTest, AsksThePlatformForTheDescriptorOfSharedMemoryAlone) {
  gDuplicated = 0;
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, javaString("no memory"), nullptr));
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, nullptr, nullptr));
  EXPECT_EQ(0, gDuplicated);
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, test::newSharedMemory(64), nullptr));
  EXPECT_EQ(1, gDuplicated);
}

// Simulates a VM that is out of memory.
TEST_F(HostileInputTest, LeavesNoExceptionOfAKeyThatCantBeMade) {
  CameraMetadataParser parser(env());
  jobject noComposition = test::newRequest(1, "capture");
  test::JniTable table(env());
  table.fail("NewStringUTF");
  int32_t value = 5;
  EXPECT_EQ(-1, parser.getInt(value, "orlu.control.mirror", nullptr, noComposition));
  EXPECT_FALSE(env()->ExceptionCheck());
  env()->ExceptionClear();
  EXPECT_EQ(5, value);
}

TEST_F(HostileInputTest, BytesThatAreNoTextAreMended) {
  // clang-format off
  const std::pair<const char*, const char*> kTexts[] = {
    {"",                ""},
    {"\xC3\xA9x",       "\xC3\xA9x"},
    {"\xE4\xB8\xAD",    "\xE4\xB8\xAD"},
    {"a\xE4\xB8",       "a??"},
    {"\xE4\xB8z",       "??z"},
    {"\x80\xBF.",       "??."},
    {"\xF0\x9F\x98",    "???"},
    {"\xFF\xFE\xF8",    "???"},
  };
  // clang-format on
  for (const auto& [bytes, mended] : kTexts) {
    std::string text = bytes;
    mendText(text.data());
    EXPECT_EQ(mended, text);
  }
}

}  // namespace
}  // namespace orlu
