// What a check needs to work with the library as the service does: clients, blocks, requests and where their
// callbacks arrive.
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

// A metadata block for the life of this object.
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
  // The bytes that getValue() wrote into a buffer of this size; `status` gets what it returned. Nothing of
  // the buffer's own bytes counts as written.
  std::string written(const char* section, const char* key, size_t size, int& status) const;
  unsigned size() const;
  void destroy();

private:
  void* mHandle;
};

// A client for the life of this object, which ends it as the service does: flush, uninit, destroy.
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
  std::vector<std::vector<int32_t>> handles;  // the words of each
  std::thread::id thread;
  int64_t tid = 0;
  std::chrono::steady_clock::time_point time;

  // By the callback's own bytes; "" and 0 when they are too short.
  std::string name() const;
  uint64_t nativeReq() const;
  size_t payloadSize() const;
};

// Where callbacks arrive. Its function stays valid until the process ends.
class Inbox {
public:
  Inbox();

  uint64_t cookie() const;
  std::vector<Message> messages() const;
  // Callbacks of this name for this request.
  size_t count(uint64_t nativeReq, const std::string& name = kShotCallback) const;
  // Waits for the first one, as long as the command line says. False when the time was over.
  bool waitFor(uint64_t nativeReq) const;
  // Keeps nothing of what arrived.
  void forget();
  // Called on the thread of each callback, before anything else. Set before the first request.
  void onCallback(std::function<void(const Message&)> look);

private:
  struct State;
  std::shared_ptr<State> mState;
  AlgoResultCallback* mFunction;
};

// How the evidence of a request begins that was not called back.
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

// Camera metadata as the service serialises it, of a few tags.
std::string cameraMetadata();

// Submits a request as the service does: with a camera-metadata block of its own that is destroyed when
// process() has returned. The status of process().
int submit(const Client& client, const Inbox& inbox, const Block& parameters, const Request& request);

// A client, an inbox, a parameter block and a pair of small images, for checks that need no more.
struct Scene {
  Client client;
  Inbox inbox;
  Block parameters;
  Image input{ImageShape(), 1};
  Image output{ImageShape(), 2};

  // One capture with the pair of images. False, and a failed check, when no callback came.
  bool run(uint64_t nativeReq, const std::vector<std::string>& algorithms = {});
};

// "64 x 48 NV21" and the like, for evidence.
std::string hex(uint64_t number);

}  // namespace orlu::conform
