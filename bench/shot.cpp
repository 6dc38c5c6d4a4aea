#include "shot.h"

namespace orlu::bench {
namespace {

using test::env;

constexpr char kRequests[] = "com/orlu/orlu3rdalgoservice/tool/request/";

std::string requestClass(const char* name) {
  return std::string(kRequests) + name;
}

jobject staticCall(const std::string& clazz, const char* method, const std::string& signature,
                   jobject a = nullptr, jobject b = nullptr) {
  jclass found = test::findClass(clazz.c_str());
  jmethodID id = env()->GetStaticMethodID(found, method, signature.c_str());
  test::expectNoException(method);
  jobject answer = env()->CallStaticObjectMethod(found, id, a, b);
  test::expectNoException(method);
  return answer;
}

std::vector<jobject> elementsOf(jobject array) {
  const auto typed = static_cast<jobjectArray>(array);
  std::vector<jobject> elements;
  for (jsize i = 0; i < env()->GetArrayLength(typed); ++i) {
    elements.push_back(env()->GetObjectArrayElement(typed, i));
  }
  return elements;
}

// Reads a request file as ./run does, and returns its frames.
std::vector<jobject> sampleFrames(const std::string& sample) {
  const std::string path = std::string(ORLU_BENCH_SAMPLES) + sample;
  jobject file =
      staticCall("java/nio/file/Path", "of", "(Ljava/lang/String;[Ljava/lang/String;)Ljava/nio/file/Path;",
                 test::javaString(path), test::javaStrings({}));
  jobject request = staticCall(
      requestClass("RequestFileReader"), "read",
      "(Ljava/nio/file/Path;Ljava/nio/file/Path;)L" + requestClass("RequestFile") + ";", file, nullptr);
  jobject set = test::callObject(request, "frames", ("()L" + requestClass("FrameSetPlan") + ";").c_str());
  jobject frames = test::callObject(set, "frames", "()Ljava/util/List;");
  return elementsOf(test::callObject(frames, "toArray", "()[Ljava/lang/Object;"));
}

void putAll(jobject composition, jobject map) {
  jobject entries = test::callObject(map, "entrySet", "()Ljava/util/Set;");
  for (jobject entry : elementsOf(test::callObject(entries, "toArray", "()[Ljava/lang/Object;"))) {
    const std::string key = test::stringOf(test::callObject(entry, "getKey", "()Ljava/lang/Object;"));
    test::putKey(composition, key.c_str(), test::callObject(entry, "getValue", "()Ljava/lang/Object;"));
  }
}

jobject sampleComposition(jobject frame) {
  jobject report =
      test::callObject(frame, "captureResult", "()Landroid/hardware/camera2/impl/CameraMetadataNative;");
  jobject composition = test::newComposition(report);
  putAll(composition, test::callObject(frame, "composition", "()Ljava/util/Map;"));
  return composition;
}

// Returns a zero or empty value of this type, which enables no feature; null for rarely used types.
jobject zeroOf(const std::string& type) {
  if (type == "INT") return test::javaInt(0);
  if (type == "LONG") return test::javaLong(0);
  if (type == "FLOAT") return test::javaFloat(0);
  if (type == "INT_ARRAY") return test::javaInts({0, 0});
  if (type == "FLOAT_ARRAY") return test::javaFloats({0, 0});
  if (type == "STRING") return test::javaString("");
  if (type == "RECT") return test::javaRect({0, 0, 0, 0});
  return nullptr;
}

std::string typeName(const std::string& tag) {
  constexpr char kTable[] = "android/hardware/camera2/impl/TagTable";
  jobject type = staticCall(kTable, "typeOf", "(Ljava/lang/String;)Landroid/hardware/camera2/impl/TagType;",
                            test::javaString(tag));
  return test::stringOf(test::callObject(type, "name", "()Ljava/lang/String;"));
}

// Registers an int tag that the library never reads, in place of a camera's private tag.
void registerUnread(const std::string& tag) {
  constexpr char kTable[] = "android/hardware/camera2/impl/TagTable";
  constexpr char kType[] = "android/hardware/camera2/impl/TagType";
  jobject integer =
      staticCall(kType, "valueOf", "(Ljava/lang/String;)Landroid/hardware/camera2/impl/TagType;",
                 test::javaString("INT"));
  staticCall(kTable, "register", "(Ljava/lang/String;Landroid/hardware/camera2/impl/TagType;)V",
             test::javaString(tag), integer);
}

// Returns metadata with `tagNum` tags: first known tags, then tags that the library never reads.
jobject reportOf(int tagNum) {
  jobject report = test::newMetadata();
  jobject names = staticCall("android/hardware/camera2/impl/TagTable", "names", "()Ljava/util/Set;");
  int set = 0;
  for (jobject name : elementsOf(test::callObject(names, "toArray", "()[Ljava/lang/Object;"))) {
    if (set == tagNum) return report;
    const std::string tag = test::stringOf(name);
    jobject value = tag.rfind("orlu.unread.", 0) == 0 ? nullptr : zeroOf(typeName(tag));
    if (value == nullptr) continue;
    test::setTag(report, tag.c_str(), value);
    ++set;
  }
  for (; set < tagNum; ++set) {
    const std::string tag = "orlu.unread." + std::to_string(set);
    registerUnread(tag);
    test::setTag(report, tag.c_str(), test::javaInt(set));
  }
  return report;
}

}  // namespace

Shot::Shot(const ShotPlan& plan) : mPlan(plan) {
  makeCompositions();
  mRequest = test::newRequest(101, "capture");
  mInputs = makeImages(plan.frames * plan.inputsPerFrame, plan.format);
  mOutputs = makeImages(1, plan.outputFormat);
  mCompositionList = test::javaList(mCompositions);
}

void Shot::makeCompositions() {
  if (mPlan.frames == 0) return;
  const std::vector<jobject> frames =
      mPlan.withTags && mPlan.tagNum < 0 ? sampleFrames(mPlan.sample) : std::vector<jobject>();
  jobject report = mPlan.tagNum < 0 ? test::newMetadata() : reportOf(mPlan.tagNum);
  for (int i = 0; i < mPlan.frames; ++i) {
    mCompositions.push_back(frames.empty()
                                ? test::newComposition(report)
                                : sampleComposition(frames[static_cast<size_t>(i) % frames.size()]));
  }
  addService(mCompositions.front());
}

// Adds the entries that the service itself sets. A plan without tags has them, too.
void Shot::addService(jobject composition) {
  test::putKey(composition, "isFullAsync", test::javaInt(mPlan.isFullAsync ? 1 : 0));
  test::putKey(composition, "orlu.control.algoType", test::javaStrings(mPlan.algorithms));
}

jobject Shot::makeImages(int count, const char* format) {
  constexpr int kSide = 64;
  constexpr int kBytes = kSide * kSide * 3 / 2;
  constexpr int kPlatformNv21 = 0x23;
  std::vector<jobject> images;
  for (int i = 0; i < count; ++i) {
    test::ImageSpec spec;
    spec.format = format;
    spec.width = kSide;
    spec.height = kSide;
    spec.strides = {kSide, kSide};
    spec.planeSizes = {kSide * kSide, kBytes - kSide * kSide};
    if (mPlan.hardwareBuffers) {
      spec.hardwareBuffer = test::newHardwareBuffer(kSide, kSide, kPlatformNv21);
    } else {
      spec.sharedMemory = test::newSharedMemory(kBytes);
    }
    images.push_back(test::newImage(spec));
  }
  return test::javaList(images);
}

void Shot::refresh() {
  if (mCompositions.empty()) return;
  static const jfieldID field =
      env()->GetFieldID(test::findClass("com/orlu/orlu3rdalgoservice/CaptureResultComposition"),
                        "mCaptureResult", "Landroid/hardware/camera2/CaptureResult;");
  for (jobject composition : mCompositions) env()->SetObjectField(composition, field, nullptr);
}

}  // namespace orlu::bench
