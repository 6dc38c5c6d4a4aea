// Appends events to a file, with one write per line. Several processes can therefore share the file, and no
// event is lost when a process ends.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

namespace orlu::probe {

class EventFile {
public:
  // Opens the file that ORLU_EVENTS names, if the name has changed. Returns true if a file was opened. If the
  // file can't be opened, prints the reason on standard error and returns false. After a failure or if the
  // name is empty, later lines are dropped.
  bool open();

  bool isOn() const { return mDescriptor >= 0; }
  // Ignores errors: if a line, or the rest of a partly written line, can't be written, it is lost.
  void write(const std::string& line) const;

private:
  std::mutex mMutex;
  std::string mPath;
  std::atomic<int> mDescriptor{-1};  // never closed: another thread may be writing to it
};

}  // namespace orlu::probe
