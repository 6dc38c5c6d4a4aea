// The Java objects of one request, as the service would hand them over. They belong to the thread that made
// them, and are freed with this object.
#pragma once

#include <jni.h>

#include <string>
#include <vector>

#include "fixtures.h"

namespace orlu::bench {

struct ShotPlan {
  std::string sample;  // the request file whose tags and images it has
  int frames = 1;      // its frames in turn, until there are so many
  int inputsPerFrame = 1;
  std::vector<std::string> algorithms;
  const char* format = "NV21";
  const char* outputFormat = "JPEG";
  bool hardwareBuffers = true;  // else shared memory
  bool withTags = true;         // without: every tag is absent
  bool isFullAsync = false;
  int tagNum = -1;  // instead of the sample's: so many tags in each frame's report

  int images() const { return frames * inputsPerFrame + 1; }
};

class Shot {
public:
  explicit Shot(const ShotPlan& plan);

  // Makes the compositions as good as new: what the library keeps in them is dropped.
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
