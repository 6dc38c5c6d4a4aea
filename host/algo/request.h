// One request, from its process() call to its last callback. Contains copies of the record's values, and
// duplicates the descriptors of its images.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "algo_interface.h"
#include "algo_script.h"
#include "frame.h"
#include "parameter_set.h"

namespace orlu::standin {

class Request {
public:
  // If `parameters` is null, the request creates its own parameter set.
  Request(const AlgoProcessRecord& record, std::shared_ptr<const AlgoScript> script,
          std::shared_ptr<ParameterSet> parameters);

  bool asksFor(const char* algorithm) const;
  // Sends one "shotCb", on this thread.
  void callBack() const;
  // Sends the "lightStreamCb" of a light-stream request on this thread; does nothing for other requests.
  void sendLightStreamEvent() const;
  // Releases the images. Must precede callBack(): the receiver of the callback may assume that the images are
  // no longer used.
  void releaseImages();
  // Gets the size of the first input or, without inputs, of the first output. Without images, leaves the
  // arguments unchanged.
  void frameSize(int32_t& width, int32_t& height) const;

  const AlgoScript& script() const { return *mScript; }
  ParameterSet& parameters() const { return *mParameters; }
  void* client() const { return mClient; }
  uint64_t nativeReq() const { return mNativeReq; }
  const std::vector<std::string>& algoList() const { return mAlgoList; }
  std::vector<Frame>& inputs() { return mInputs; }
  std::vector<Frame>& outputs() { return mOutputs; }
  // Time before which callBack() is not called, unless the request is aborted.
  std::chrono::steady_clock::time_point due() const { return mDue; }

private:
  std::shared_ptr<const AlgoScript> mScript;
  std::shared_ptr<ParameterSet> mParameters;
  void* mClient;
  uint64_t mNativeReq;
  uint64_t mReqId;
  uint64_t mCookie;
  std::vector<std::string> mAlgoList;
  std::vector<Frame> mInputs;
  std::vector<Frame> mOutputs;
  std::chrono::steady_clock::time_point mDue;
};

}  // namespace orlu::standin
