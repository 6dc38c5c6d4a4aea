// Runs the algorithms that one request asks for: choosing and merging frames, changing the picture, and
// encoding it or copying it into the first output. Names that are not known here are ignored.
#pragma once

#include <string>
#include <vector>

#include "frame_selection.h"
#include "night_merge.h"
#include "request.h"

namespace orlu::standin {

// What was done, for the trace.
struct RunReport {
  struct FrameReport {
    double sharpness = 0;
    Shift shift;
    bool kept = false;
  };

  std::vector<std::string> ran;
  // Asked for and left alone knowingly: not known here, or with nothing to do.
  std::vector<std::string> skipped;
  double milliseconds = 0;
  std::vector<FrameReport> frames;  // one for each input, when they were judged
};

class AlgorithmChain {
public:
  explicit AlgorithmChain(Request& request) : mRequest(request) {}
  // To be called once.
  RunReport run();

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
  std::vector<ImageView> mInputs;  // without planes for a frame that can't be read
  FrameSelection mSelection;
  Picture mPicture;
};

}  // namespace orlu::standin
