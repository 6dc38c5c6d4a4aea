#include "event_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "setting.h"

namespace orlu::probe {

bool EventFile::open() {
  const std::string path = setting("ORLU_EVENTS");
  const std::lock_guard<std::mutex> lock(mMutex);
  if (path == mPath) return false;
  mPath = path;
  mDescriptor = path.empty() ? -1 : ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (!path.empty() && mDescriptor < 0) {
    std::fprintf(stderr, "ORLU_EVENTS: %s: %s\n", path.c_str(),
                 std::generic_category().message(errno).c_str());
  }
  return isOn();
}

void EventFile::write(const std::string& line) const {
  const int descriptor = mDescriptor;
  if (descriptor < 0) return;
  ssize_t written = 0;
  do {
    written = ::write(descriptor, line.data(), line.size());
  } while (written < 0 && errno == EINTR);
}

}  // namespace orlu::probe
