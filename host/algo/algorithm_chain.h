// Runs a request's algorithms: selects and merges frames, changes the picture, and encodes it into the first
// output or copies it into all outputs. With "ppt", the second output gets a JPEG instead of a copy. Unknown
// algorithms are only reported.
#pragma once

#include <string>
#include <vector>

#include "frame_selection.h"
#include "night_merge.h"
#include "request.h"

namespace orlu::standin {

// The work done, for the trace.
struct RunReport {
  struct FrameReport {
    double sharpness = 0;
    Shift shift;
    bool kept = false;
  };

  std::vector<std::string> ran;
  std::vector<std::string> skipped;  // have no bit in "processed_algo", or had nothing to do
  double milliseconds = 0;
  std::vector<FrameReport> frames;  // one per input; empty if frames were not judged
};

class AlgorithmChain {
public:
  explicit AlgorithmChain(Request& request) : mRequest(request) {}
  RunReport run();  // call once

private:
  bool asksFor(const char* algorithm) const { return mRequest.asksFor(algorithm); }
  bool asksForMerge() const;
  void markRan(const char* algorithm);
  void reportSkipped();
  void readInputs();
  void judgeFrames();
  void reportFrames(const std::vector<Shift>& shifts);
  void makePicture();
  void mergePicture();
  void changePicture();
  void deliver();
  void deliverPixels(Frame& output);
  void deliverJpeg(Frame* output);
  std::vector<uint8_t> encode(size_t room) const;
  void deliverDocument();
  void leaveRefocus();
  void leaveLightStream();
  void leaveProcessedAlgo() const;

  Request& mRequest;
  RunReport mReport;
  std::vector<ImageView> mInputs;  // an unreadable frame has no planes
  FrameSelection mSelection;
  Picture mPicture;
};

}  // namespace orlu::standin
