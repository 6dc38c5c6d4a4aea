// Helpers of the mutants. A mutant is the minimal library with one fault planted in its table.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "algo_interface.h"

namespace orlu::mutants {

using Table = AlgoInterfaceCallbacks;
using Bytes = std::vector<uint8_t>;
using Send = std::function<void(const Bytes&)>;  // calls the caller's function

struct Mutant {
  const char* name;
  void (*plant)(Table& table);
};

std::vector<Mutant> tableMutants();
std::vector<Mutant> blockMutants();
std::vector<Mutant> requestMutants();
std::vector<Mutant> lifeMutants();
std::vector<Mutant> descriptorMutants();

// The number of AlgoInterfaceEntry() calls in this process.
extern std::atomic<int> gEntries;

// Returns a callback's bytes: its header, this name, and `payload` zeros.
Bytes message(uint64_t nativeReq, const std::string& name, size_t payload = 0);

// Returns the request id in a callback's bytes.
uint64_t requestOf(const Bytes& bytes);

// Calls the caller's function, whose address is the cookie.
void sendTo(uint64_t cookie, const Bytes& bytes);

// Intercepts the minimal library's callbacks: calls change(bytes, send, block, list) instead of the caller's
// function. `block` is the first parameter block of the request, `list` the request's algorithm list.
template <typename Change>
void onCallback(Table& table, Change change) {
  table.process = [change, process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord changed = record;
    // The function deletes itself when it is called.
    auto* const own = new std::shared_ptr<AlgoResultCallback>(std::make_shared<AlgoResultCallback>());
    **own = [change, own, cookie = record.callbackCookie, block = record.metadata[0].block,
             list = record.algoList](const auto& data, const auto&, const auto&) {
      const std::unique_ptr<std::shared_ptr<AlgoResultCallback>> owner(own);
      const std::shared_ptr<AlgoResultCallback> kept = *owner;
      change(
          Bytes(data.begin(), data.end()), [cookie](const Bytes& bytes) { sendTo(cookie, bytes); }, block,
          list);
    };
    changed.callbackCookie = reinterpret_cast<uintptr_t>(own->get());
    return process(changed);
  };
}

// Calls before(record) at the start of each process(), before the minimal library gets the record.
template <typename Before>
void onProcess(Table& table, Before before) {
  table.process = [before, process = table.process](const AlgoProcessRecord& record) {
    before(record);
    return process(record);
  };
}

// Does the work on a new thread after a delay.
void later(int milliseconds, std::function<void()> work);

// Delays every callback by 25 ms.
void delayCallbacks(Table& table);

// Stores a result in a block, as an algorithm does.
void leaveResult(const Table& table, void* block, const char* section, const char* key, Bytes bytes);

// Returns whether the algorithm list starts with this name.
bool asksFor(const std::vector<std::string>& list, const char* name);

// Calls `change` with a mapping of the first `size` bytes of `fd`; `size` may exceed the image.
template <typename Change>
void touch(int fd, size_t size, Change change) {
  auto* const memory = static_cast<uint8_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  if (memory == MAP_FAILED) return;
  change(memory);
  munmap(memory, size);
}

// Calls change(frame, before, memory) for the first output of each request, when the minimal library has
// finished its work and before the caller gets the callback. `before` contains the bytes that the output had
// before process(); `memory` is a mapping of the output.
template <typename Change>
void onFinish(Table& table, Change change) {
  table.process = [change, process = table.process](const AlgoProcessRecord& record) {
    if (record.outputFrames.empty()) return process(record);
    AlgoProcessRecord changed = record;
    auto frame = record.outputFrames[0];
    const auto size = static_cast<size_t>(frame.size);
    auto before = std::make_shared<Bytes>(size);
    touch(frame.fd[0], size, [&](uint8_t* memory) { before->assign(memory, memory + size); });
    frame.fd[0] = fcntl(frame.fd[0], F_DUPFD_CLOEXEC, 0);
    auto* const own = new std::shared_ptr<AlgoResultCallback>(std::make_shared<AlgoResultCallback>());
    **own = [=, cookie = record.callbackCookie](const auto& data, const auto&, const auto&) {
      const std::unique_ptr<std::shared_ptr<AlgoResultCallback>> owner(own);
      const std::shared_ptr<AlgoResultCallback> kept = *owner;
      touch(frame.fd[0], size, [&](uint8_t* memory) { change(frame, *before, memory); });
      close(frame.fd[0]);
      sendTo(cookie, Bytes(data.begin(), data.end()));
    };
    changed.callbackCookie = reinterpret_cast<uintptr_t>(own->get());
    return process(changed);
  };
}

}  // namespace orlu::mutants
