// Inputs that a client, an application or the algorithm library may hand over, and that must not harm the
// process.

#include <android/sharedmem_jni.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "algo.h"
#include "algo_native_request_map.h"
#include "case_name.h"
#include "fixtures.h"
#include "jni_support.h"
#include "request_processor.h"

namespace {

int gDuplicated = 0;

}  // namespace

// Stands before the platform's function of this name.
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
using test::LocalFrame;

class HostileInputTest : public testing::Test {
protected:
  HostileInputTest() : mInst(RequestProcessor::create(env(), nullptr)) {}
  ~HostileInputTest() override { RequestProcessor::destroy(env(), mInst); }

  // Java's list of `count` times the same element.
  static jobject copies(int count, jobject element) {
    jclass clazz = test::findClass("java/util/Collections");
    jmethodID make = env()->GetStaticMethodID(clazz, "nCopies", "(ILjava/lang/Object;)Ljava/util/List;");
    jobject list = env()->CallStaticObjectMethod(clazz, make, count, element);
    test::expectNoException("nCopies");
    return list;
  }

  LocalFrame mFrame;
  test::Algo mAlgo;
  int64_t mInst;
};

TEST_F(HostileInputTest, DoesNotBelieveAListOfTwoThousandMillionFrames) {
  jobject endless = copies(0x7FFFFFFF, nullptr);
  VRequest request(env(), nullptr, endless, copies(1024, nullptr), endless);
  EXPECT_EQ(1024U, request.inputFrames().size());
  EXPECT_EQ(1024U, request.outputFrames().size());
  EXPECT_EQ(1024U, request.captureResults().size());
}

// The VM complains at the end of the tests when it doesn't.
TEST_F(HostileInputTest, ReservesReferencesForThreeLongLists) {
  jobject images = copies(100, test::newSmallImage());
  jobject compositions = copies(100, test::newComposition());
  env()->PushLocalFrame(16);
  const int result = RequestProcessor::processImage(env(), mInst, nullptr, images, images, compositions);
  env()->PopLocalFrame(nullptr);
  EXPECT_EQ(0, result);
}

// Another thread waits for it, and destroys its block.
TEST_F(HostileInputTest, DoesNotEndASynchronousRequestThatACompositionNames) {
  auto* const client = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(mInst));
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  void* const block = client->context().createMetadata();
  const uint64_t waitedFor = map->create(7, block, false);
  const int blocks = test::Algo::counts().parameterBlocks;

  jobject composition = test::newComposition();
  test::putKey(composition, "nativeRequestAddr", test::javaLong(static_cast<int64_t>(waitedFor)));
  jobject none = test::javaList({});
  jobject compositions = test::javaList({composition});
  EXPECT_EQ(0, RequestProcessor::processImageUpdateResult(env(), mInst, nullptr, none, none, compositions));
  EXPECT_EQ(blocks, test::Algo::counts().parameterBlocks);
  EXPECT_EQ(7, map->getRequestId(waitedFor));

  client->context().destroyMetadata(block);
  map->remove(waitedFor);
}

TEST_F(HostileInputTest, HandsABlockToOneOfThoseWhoEndARequest) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  int block = 0;
  const uint64_t request = map->create(7, &block, true);
  EXPECT_EQ(&block, map->takeMetadataHandle(request));
  EXPECT_EQ(nullptr, map->takeMetadataHandle(request));
  map->remove(request);
  EXPECT_EQ(nullptr, map->takeMetadataHandle(request));
}

TEST_F(HostileInputTest, AsksThePlatformForTheDescriptorOfSharedMemoryAlone) {
  gDuplicated = 0;
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, javaString("no memory"), nullptr));
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, nullptr, nullptr));
  EXPECT_EQ(0, gDuplicated);
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, test::newSharedMemory(64), nullptr));
  EXPECT_EQ(1, gDuplicated);
}

AlgoNativeClient* gToDestroy = nullptr;

// In place for the life of this object.
class DestroyingCallback {
public:
  explicit DestroyingCallback(AlgoNativeClient* client)
      : mTable(*env()->functions), mOriginal(env()->functions) {
    gToDestroy = client;
    mTable.CallStaticVoidMethodV = [](JNIEnv*, jclass, jmethodID, va_list) { delete gToDestroy; };
    env()->functions = &mTable;
  }
  ~DestroyingCallback() { env()->functions = mOriginal; }

private:
  JNINativeInterface_ mTable;
  const JNINativeInterface_* mOriginal;
};

// As a VM does that has no memory left.
jstring JNICALL throwInsteadOfString(JNIEnv* environment, const char*) {
  environment->ThrowNew(environment->FindClass("java/lang/OutOfMemoryError"), "no string");
  return nullptr;
}

TEST_F(HostileInputTest, LeavesNoExceptionOfAKeyThatCantBeMade) {
  CameraMetadataParser parser(env());
  JNINativeInterface_ table = *env()->functions;
  const JNINativeInterface_* const original = env()->functions;
  jobject noComposition = test::newRequest(1, "capture");
  table.NewStringUTF = throwInsteadOfString;
  env()->functions = &table;
  int32_t value = 5;
  EXPECT_EQ(-1, parser.getInt(value, "orlu.control.mirror", nullptr, noComposition));
  env()->functions = original;
  EXPECT_FALSE(env()->ExceptionCheck());
  env()->ExceptionClear();
  EXPECT_EQ(5, value);
}

// What it touches afterwards is found by AddressSanitizer.
TEST_F(HostileInputTest, LetsJavaDestroyTheClientFromItsCallback) {
  auto* const client = new AlgoNativeClient(env(), 1, 2);
  const uint64_t request = AlgoNativeRequestMap::getInstance()->create(7, nullptr, true);
  {
    DestroyingCallback callback(client);
    client->onPostProcessDataCommonShot(request);
  }
  EXPECT_TRUE(AlgoNativeRequestMap::getInstance()->remove(request));
}

struct TextCase {
  const char* name;
  const char* bytes;
  const char* shown;
};

class HostileTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(HostileTextTest, BecomesAJavaString) {
  LocalFrame frame;
  EXPECT_EQ(GetParam().shown, test::stringOf(newString(env(), GetParam().bytes)));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, HostileTextTest, testing::Values(
    TextCase{"Empty",             "",                  ""},
    TextCase{"Plain",             "orlu",              "orlu"},
    TextCase{"TwoBytes",          "\xC3\xA9x",         "\xC3\xA9x"},
    TextCase{"ThreeBytes",        "\xE4\xB8\xAD",      "\xE4\xB8\xAD"},
    TextCase{"CutAtTheEnd",       "a\xE4\xB8",         "a??"},
    TextCase{"CutInTheMiddle",    "\xE4\xB8z",         "??z"},
    TextCase{"LoneContinuation",  "\x80\xBF.",         "??."},
    TextCase{"FourBytesCut",      "\xF0\x9F\x98",      "???"},
    TextCase{"NoLead",            "\xFF\xFE\xF8",      "???"}),
    test::CaseName());
// clang-format on

}  // namespace
}  // namespace orlu
