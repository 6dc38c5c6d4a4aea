// A request whose algorithms have finished: images, compositions, and results in the parameter set.
// translate() translates the results, and records the log and the values that it puts into compositions.
#pragma once

#include <jni.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "algo_native_client.h"
#include "fixtures.h"
#include "java_text.h"
#include "log_capture.h"
#include "result_updater.h"

namespace orlu::test {

// An algorithm's result in the parameter set. `section` omits the prefix "orlu.algo.".
struct LeftValue {
  std::string section;
  std::string key;
  std::vector<uint8_t> bytes;
};

template <typename T = int32_t>
LeftValue left(const char* section, const char* key, const std::vector<T>& values) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(values.data());
  return {
      section, key, {bytes, bytes + values.size() * sizeof(T)}
  };
}

// Returns a composition with this timestamp in its capture result.
inline jobject compositionAt(int64_t timestamp) {
  jobject metadata = newMetadata();
  setTag(metadata, "android.sensor.timestamp", javaLong(timestamp));
  jobject composition = newComposition(metadata);
  // A wrong value, which must not be read.
  putKey(composition, "android.sensor.timestamp", javaLong(-timestamp));
  return composition;
}

class ResultScene {
public:
  ResultScene() {
    for (int i = 0; i < 2; ++i) mOutputs.push_back(newImage(ImageSpec()));
  }

  std::vector<std::string> algorithms;
  const char* requestType = "capture";
  std::vector<LeftValue> values;
  int inputs = 1;
  std::vector<jobject> compositions;
  bool hasOutputs = true;

  // Translates the results. Call it at most once.
  void translate() {
    mBlock = mClient.context().createMetadata();
    for (LeftValue& value : values) {
      mClient.context().setValue(mBlock, ("orlu.algo." + value.section).c_str(), value.key.c_str(),
                                 value.bytes.data(), static_cast<unsigned>(value.bytes.size()));
    }
    makeRequest();
    CameraMetadataParser parser(env());
    const LogCapture capture;
    const PutRecorder recorder(compositions);
    ResultUpdater(&mClient, algorithms, *mRequest, mBlock, &parser).updateResult();
    mPuts = recorder.text();
    for (const LogLine& line : capture.lines()) mLog += describe(line);
    mWholeLog = capture.text();
    mClient.context().destroyMetadata(mBlock);
  }

  const std::string& puts() const { return mPuts; }
  // Returns the priority and message of each line that the result updater logged, such as
  // "D updateMarkMode 4". Lines with the short log tag begin with "D*" or "E*".
  const std::string& log() const { return mLog; }
  // Returns all lines, formatted by LogCapture::text().
  const std::string& wholeLog() const { return mWholeLog; }
  // Returns the format, size and plane sizes of an output, first as seen by Java, then by the algorithms; ""
  // if translate() did not change them.
  std::string changeOfOutput(size_t index) const {
    const std::string now = describeOutput(index);
    return now == mOutputsBefore[index] ? "" : now;
  }

private:
  void makeRequest() {
    // Only the number of inputs matters.
    const std::vector<jobject> inputImages(static_cast<size_t>(inputs), nullptr);
    mRequest = std::make_unique<VRequest>(env(), newRequest(7, requestType), javaList(inputImages),
                                          javaList(hasOutputs ? mOutputs : std::vector<jobject>()),
                                          javaList(compositions));
    // Changes the width in Java, so that tests detect whether translate() sets it again.
    jclass imageClass = env()->GetObjectClass(mOutputs[0]);
    env()->SetIntField(mOutputs[0], env()->GetFieldID(imageClass, "mWidth", "I"), 1);
    for (size_t i = 0; i < mOutputs.size(); ++i) mOutputsBefore.push_back(describeOutput(i));
  }

  std::string describeOutput(size_t index) const {
    jobject image = mOutputs[index];
    std::ostringstream text;
    text << stringOf(objectField(image, "mFormat", "Ljava/lang/String;")) << ' ' << intField(image, "mWidth")
         << 'x' << intField(image, "mHeight");
    for (int32_t size : intsOf(objectField(image, "mPlaneSizes", "[I"))) text << ' ' << size;
    if (!hasOutputs) return text.str();
    const AlgoFrameInfo& frame = mRequest->outputFrames()[index];
    text << " | " << frame.format << ' ' << frame.width << 'x' << frame.height << ' ' << frame.size << ' '
         << frame.planeSize[0] << ' ' << frame.planeSize[1];
    return text.str();
  }

  static std::string describe(const LogLine& line) {
    const std::string priority(1, line.priority == ANDROID_LOG_ERROR ? 'E' : 'D');
    if (line.tag == "VASJNI-ResultUpdater") return priority + "* " + line.message + '\n';
    if (line.tag != "_V_VASJNI-ResultUpdater") return "";
    const bool hasPrefix = line.file.rfind("result_updater", 0) == 0;
    return priority + ' ' + (hasPrefix ? line.message : "without prefix: " + line.text()) + '\n';
  }

  LocalFrame mFrame;
  AlgoNativeClient mClient{nullptr, 1, 0};
  void* mBlock = nullptr;
  std::vector<jobject> mOutputs;
  std::unique_ptr<VRequest> mRequest;
  std::vector<std::string> mOutputsBefore;
  std::string mPuts;
  std::string mWholeLog;
  std::string mLog;
};

}  // namespace orlu::test
