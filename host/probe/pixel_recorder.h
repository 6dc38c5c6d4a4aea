// Stores the pixels of requests: inputs when the algorithm library gets them, outputs when it calls back.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "event_file.h"
#include "table_watch.h"

namespace orlu::probe {

class PixelRecorder {
public:
  // Borrows `events`. Each image becomes an event with the name of the image's file, or why there is none.
  explicit PixelRecorder(const EventFile& events) : mEvents(events) {}

  // Reads two settings. ORLU_PIXELS names the folder, which is created if missing; without a folder, nothing
  // is stored. ORLU_PIXELS_BYTES limits the total size of the files that this process wrote and that still
  // exist; the default is 1 GiB.
  void open();

  void before(const WatchedCall& call);
  void after(const WatchedCall& call, const WatchedEnd& end);

private:
  // An output of a request that waits for its callback. The caller may close its own descriptor meanwhile.
  struct Output {
    int fd;  // a duplicate, owned
    int32_t size;
  };
  struct Request {
    uint64_t process;  // the number of the process() call
    uint64_t cookie;
    uint64_t nativeReq;
    uint64_t reqId;
    const void* client;
    std::vector<Output> outputs;
  };
  struct File {
    std::string path;
    uint64_t size;
  };
  // Identifies an image of `call`, which is the process() call or the callback of a request.
  struct Place {
    const WatchedCall& call;
    uint64_t reqId;
    const char* kind;
    size_t index;
  };

  void submit(const WatchedCall& call);
  void callBack(const WatchedCall& call);
  void keep(const Place& place, int fd, int32_t size);
  uint64_t bytesLeft();
  template <typename Which>
  void forget(Which which);

  const EventFile& mEvents;
  std::mutex mMutex;  // guards the members below
  std::string mFolder;
  uint64_t mMostBytes = 0;
  std::deque<Request> mRequests;
  std::vector<File> mFiles;
};

}  // namespace orlu::probe
