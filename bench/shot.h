// The Java objects of one request, as the service passes them. They belong to the thread that created the
// Shot, and are freed with the Shot.
#pragma once

#include <jni.h>

#include <string>
#include <vector>

#include "fixtures.h"

namespace orlu::bench {

struct ShotPlan {
  std::string sample;  // the request file in samples/ that supplies the tags
  int frames = 1;      // number of frames; the sample's frames repeat if it has fewer
  int inputsPerFrame = 1;
  std::vector<std::string> algorithms;
  const char* format = "NV21";
  const char* outputFormat = "JPEG";
  bool hardwareBuffers = true;  // false: shared memory
  bool withTags = true;         // false: no tags, unless tagNum is set
  bool isFullAsync = false;
  int tagNum = -1;  // number of tags in each frame's capture result; -1: the sample's tags

  int images() const { return frames * inputsPerFrame + 1; }
};

class Shot {
public:
  explicit Shot(const ShotPlan& plan);

  // Removes the capture results that the library stored in the compositions.
  void refresh();

  const ShotPlan& plan() const { return mPlan; }
  jobject request() const { return mRequest; }
  jobject inputs() const { return mInputs; }
  jobject outputs() const { return mOutputs; }
  jobject compositions() const { return mCompositionList; }
  jobject firstComposition() const { return mCompositions.empty() ? nullptr : mCompositions.front(); }

private:
  void makeCompositions();
  void addService(jobject composition);
  jobject makeImages(int count, const char* format);

  test::LocalFrame mReferences;
  ShotPlan mPlan;
  std::vector<jobject> mCompositions;
  jobject mRequest = nullptr;
  jobject mInputs = nullptr;
  jobject mOutputs = nullptr;
  jobject mCompositionList = nullptr;
};

}  // namespace orlu::bench
