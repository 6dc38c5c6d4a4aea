// Appends events to a file, with one write per line. Several processes can therefore share the file, and no
// event is lost when a process ends.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

namespace orlu::probe {

class EventFile {
public:
  // Reads ORLU_EVENTS. Returns true if later lines go to a different file than before. If the new file can't
  // be opened, prints the reason on standard error, returns false and drops later lines.
  bool open();

  bool isOn() const { return mDescriptor >= 0; }
  // Errors are ignored: a line, or the rest of a line, that can't be written is lost.
  void write(const std::string& line) const;

private:
  std::mutex mMutex;
  std::string mPath;
  std::atomic<int> mDescriptor{-1};  // never closed: another thread may be writing to it
};

}  // namespace orlu::probe
