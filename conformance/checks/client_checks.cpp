// Checks of clients: lifetime, concurrent clients, and queries.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "checks.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr int kRefused = -1;
constexpr uint64_t kRequestsOfClient = 12;

// A client that works on its own thread, and the number of its callbacks after destroyClient.
struct Worker {
  Client client;
  Inbox inbox;
  std::atomic<bool> isGone{false};
  std::atomic<int> late{0};

  Worker() {
    inbox.onCallback([this](const Message&) {
      if (isGone) ++late;
    });
  }

  // Submits requests without waiting for their callbacks. Calls abort and flush once each in between, and
  // destroys the client at the end.
  void work() {
    const Image input;
    const Image output({}, 2);
    std::vector<std::unique_ptr<Block>> blocks;
    for (uint64_t id = 0; id < kRequestsOfClient; ++id) {
      blocks.push_back(std::make_unique<Block>());
      const int64_t flag = static_cast<int64_t>(id);
      blocks.back()->set(kControl, "frame_flag", &flag, sizeof flag);
      Request request;
      request.nativeReq = id;
      request.inputs = {&input};
      request.outputs = {&output};
      submit(client, inbox, *blocks.back(), request);
      if (id == kRequestsOfClient / 3) abort(flag);
      if (id == kRequestsOfClient / 2) client.flush();
    }
    client.end();
    isGone = true;
  }

  void abort(int64_t flag) {
    Block named;
    std::string key = "orlu.control.frameFlag";
    key.resize(128);
    named.set(kControl, "abort_key", key);
    named.set(kControl, "abort_val", &flag, sizeof flag);
    client.abort(named);
  }
};

void judge(const Worker& worker, size_t index) {
  const std::string who = "client " + std::to_string(index) + ": ";
  HOLDS(worker.late == 0) << who << worker.late << " callbacks came after destroyClient had returned";
  for (uint64_t id = 0; id < kRequestsOfClient; ++id) {
    const size_t count = worker.inbox.count(id);
    HOLDS(count <= 1) << who << count << " callbacks for request " << id;
  }
  for (const Message& message : worker.inbox.messages()) {
    HOLDS(message.nativeReq() < kRequestsOfClient || message.name() != kShotCallback)
        << who << "a callback for request " << message.nativeReq() << ", which it never submitted";
  }
}

void askFor(void* client, const std::string& command, const AlgoInterfaceCallbacks& table) {
  Block block;
  AlgoGetDataRecord record;
  record.cmd = command;
  record.block = block.handle();
  record.size = block.size();
  record.client = client;
  const std::string shown = "\"" + command.substr(0, 30) + (command.size() > 30 ? "...\"" : "\"");
  step("getData " + shown);
  call(kRefused, table.getData, record);
  // The service reads kQueryResultSize bytes into a zeroed buffer and uses the text up to the first zero.
  std::string answer(kQueryResultSize, '\0');
  block.get(kFeedback, kQueryResult, answer.data(), answer.size());
  int status = 0;
  const size_t size = block.written(kFeedback, kQueryResult, 2 * kQueryResultSize, status).size();
  HOLDS(size <= kQueryResultSize) << "the answer to " << shown << " has " << size << " bytes, more than "
                                  << kQueryResultSize;
  HOLDS(answer.find('\0') != std::string::npos)
      << "the answer to " << shown << " has no zero in its " << kQueryResultSize << " bytes";
}

void translateFile(void* client, const AlgoInterfaceCallbacks& table) {
  const int fd = memfd_create("parameters", MFD_CLOEXEC);
  const std::string bytes(5000, 'p');
  HOLDS(write(fd, bytes.data(), bytes.size()) == 5000) << "no memory for a parameter file";
  AlgoTranslateParamFileRecord record;
  record.client = client;
  record.fd = fd;
  record.size = static_cast<int32_t>(bytes.size());
  record.identifier = "conform";
  step("translateParamFile");
  call(kRefused, table.translateParamFile, record);
  HOLDS(fcntl(fd, F_GETFD) >= 0) << "translateParamFile closes the caller's file";
  close(fd);
}

}  // namespace

void checkClients() {
  OPEN_LIBRARY(library);
  Client first;
  Client second;
  HOLDS(first.handle() != second.handle()) << "two clients have the same handle, " << first.handle();
  for (int mode : {1, 2, 1, 0, 0}) {
    step("uninit with mode " + std::to_string(mode) + ", for the types 1, 2, 3 and 5");
    first.uninit(mode);
  }
  step("flush, uninit and destroyClient of the first of two clients");
  first.end();

  step("destroying a client that was never initialised");
  AlgoCreateClientRecord record;
  record.interfaceVersion = kAlgoTableVersion;
  void* const bare = call<void*>(nullptr, library->table().createClient, record);
  AlgoFlushRecord flush;
  flush.client = bare;
  call(kRefused, library->table().flush, flush);
  AlgoUninitRecord uninit;
  uninit.client = bare;
  for (int32_t type : {1, 2, 3, 5}) {
    uninit.type = type;
    call(kRefused, library->table().uninit, uninit);
  }
  call(kRefused, library->table().destroyClient, bare);

  step("a request of a new client");
  Scene scene;
  scene.run(1);
}

void checkConcurrency() {
  OPEN_LIBRARY(library);
  std::vector<std::unique_ptr<Worker>> workers;
  for (int i = 0; i < 4; ++i) workers.push_back(std::make_unique<Worker>());
  step("four clients on four threads: process, abort, flush, destroyClient");
  std::vector<std::thread> threads;
  threads.reserve(workers.size());
  for (const auto& worker : workers) threads.emplace_back([&worker] { worker->work(); });
  for (std::thread& thread : threads) thread.join();
  // Leaves time for callbacks that arrive after destroyClient.
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  size_t callbacks = 0;
  for (size_t i = 0; i < workers.size(); ++i) {
    judge(*workers[i], i);
    callbacks += workers[i]->inbox.messages().size();
  }
  note(std::to_string(callbacks) + " callbacks for " + std::to_string(4 * kRequestsOfClient) +
       " requests; destroyClient may drop requests");
  step("a request after all clients are destroyed");
  Scene scene;
  scene.run(1);
}

void checkQueries() {
  OPEN_LIBRARY(library);
  const AlgoInterfaceCallbacks& table = library->table();
  if (!table.getData && !table.translateParamFile) {
    GTEST_SKIP() << "getData and translateParamFile are not offered";
  }
  Client client;
  for (const std::string& command : {std::string("version"), std::string(), std::string("status"),
                                     std::string("no such question"), std::string(20000, 'q')}) {
    if (table.getData) askFor(client.handle(), command, table);
  }
  if (table.translateParamFile) translateFile(client.handle(), table);
  if (!table.getData) note("getData is not offered");
  if (!table.translateParamFile) note("translateParamFile is not offered");
}

}  // namespace orlu::conform
