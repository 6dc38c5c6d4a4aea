// Fixtures that use the library as the service does: clients, blocks, requests, and an inbox for callbacks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "image.h"
#include "library.h"

namespace orlu::conform {

// Owns a metadata block.
class Block {
public:
  explicit Block(int kind = kParameterBlock);
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { destroy(); }

  void* handle() const { return mHandle; }
  int set(const char* section, const char* key, const void* data, size_t size);
  int set(const char* section, const char* key, const std::string& bytes);
  int get(const char* section, const char* key, void* data, size_t size) const;
  // Passes a buffer of `size` bytes to getValue(), and returns the buffer up to the last byte that getValue()
  // wrote. `status` receives the return value of getValue().
  std::string written(const char* section, const char* key, size_t size, int& status) const;
  unsigned size() const;
  void destroy();

private:
  void* mHandle;
};

// Owns a client. Destroys it as the service does: flush, uninit, destroy.
class Client {
public:
  Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() { end(); }

  void* handle() const { return mHandle; }
  void uninit(int mode);
  void flush();
  int abort(Block& named);
  void end();

private:
  void* mHandle;
};

struct Message {
  std::string data;
  std::vector<std::vector<int32_t>> handles;  // the words of each handle
  std::thread::id thread;
  int64_t tid = 0;
  std::chrono::steady_clock::time_point time;

  // Each function decodes a field of `data`. Returns "" or 0 if `data` is too short.
  std::string name() const;
  uint64_t nativeReq() const;
  size_t payloadSize() const;
};

// Collects callbacks. The callback function stays valid until the process ends.
class Inbox {
public:
  Inbox();

  uint64_t cookie() const;
  std::vector<Message> messages() const;
  size_t count(uint64_t nativeReq, const std::string& name = kShotCallback) const;
  // Waits for the request's first shot callback: at most options().patienceSeconds, or 0.3 s once this
  // process has missed a callback. Returns false after a timeout.
  bool waitFor(uint64_t nativeReq) const;
  // Discards all callbacks received so far.
  void forget();
  // Calls `look` on the thread of each callback before storing the message. Set `look` before the first
  // request.
  void onCallback(std::function<void(const Message&)> look);

private:
  struct State;
  std::shared_ptr<State> mState;
  AlgoResultCallback* mFunction;
};

// Start of the failure message if a callback is missing; a description of the request follows.
constexpr char kNoCallback[] = "no callback for ";

struct Request {
  int32_t type = kRequestCapture;
  uint64_t nativeReq = 1;
  uint64_t reqId = 77;
  std::vector<std::string> algorithms;
  std::vector<const Image*> inputs;
  std::vector<const Image*> outputs;

  AlgoProcessRecord record(const Client& client, const Inbox& inbox, const Block& parameters,
                           void* raw) const;
};

// Returns camera metadata with a few tags, serialised in the service's format.
std::string cameraMetadata();

// Submits a request with a camera-metadata block. Like the service, destroys that block after process()
// returns. Returns the status of process().
int submit(const Client& client, const Inbox& inbox, const Block& parameters, const Request& request);

// A client, an inbox, a parameter block and two small images, for checks that need no more.
struct Scene {
  Client client;
  Inbox inbox;
  Block parameters;
  Image input{ImageShape(), 1};
  Image output{ImageShape(), 2};

  // Runs one capture with the two images. If the callback is missing, fails the check and returns false.
  bool run(uint64_t nativeReq, const std::vector<std::string>& algorithms = {});
};

std::string hex(uint64_t number);

}  // namespace orlu::conform
