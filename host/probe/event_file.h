// The file that events are appended to: one write for each line, so that several processes and languages can
// share it and nothing is lost when the process ends.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

namespace orlu::probe {

class EventFile {
public:
  // Looks at ORLU_EVENTS: true when from now on another file is written than before. A file that can't be
  // opened counts as none, and is named on standard error.
  bool open();

  bool isOn() const { return mDescriptor >= 0; }
  // A line that can't be written whole is lost.
  void write(const std::string& line) const;

private:
  std::mutex mMutex;
  std::string mPath;
  // Never closed, since another thread may be writing into it.
  std::atomic<int> mDescriptor{-1};
};

}  // namespace orlu::probe
