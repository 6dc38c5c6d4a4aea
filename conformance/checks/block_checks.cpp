// Checks of metadata blocks: set, get, visit, and the sizes of values.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "checks.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr char kKey[] = "conform_key";
constexpr char kOtherKey[] = "conform_key2";

std::string pattern(size_t size, int seed) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + static_cast<size_t>(seed));
  return bytes;
}

std::string read(const Block& block, const char* section, const char* key, size_t size) {
  std::string bytes(size, '\x5A');
  block.get(section, key, bytes.data(), bytes.size());
  return bytes;
}

// Buffer that ends at a page boundary; the next page is inaccessible.
class EdgeBuffer {
public:
  explicit EdgeBuffer(size_t size) : mSize(size) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    mBytes = (size + page - 1) / page * page + page;
    mMemory =
        static_cast<char*>(mmap(nullptr, mBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(mMemory + mBytes - page, page, PROT_NONE);
    mBegin = mMemory + mBytes - page - size;
    std::memset(mMemory, '\x5A', mBytes - page);
  }
  EdgeBuffer(const EdgeBuffer&) = delete;
  EdgeBuffer& operator=(const EdgeBuffer&) = delete;
  ~EdgeBuffer() { munmap(mMemory, mBytes); }

  char* data() { return mBegin; }
  std::string text() const { return {mBegin, mSize}; }
  bool isUntouchedBefore() const {
    return std::all_of(mMemory, mBegin, [](char byte) { return byte == '\x5A'; });
  }

private:
  const size_t mSize;
  size_t mBytes = 0;
  char* mMemory = nullptr;
  char* mBegin = nullptr;
};

void setSizes(Block& block) {
  for (size_t size : {size_t{1}, size_t{4}, size_t{40}, size_t{255}, size_t{256}, size_t{4096}, kMostBytes}) {
    std::string bytes = pattern(size, static_cast<int>(size));
    const std::string wanted = bytes;
    step("setValue with " + std::to_string(size) + " bytes");
    const int status = block.set(kParameter, kKey, bytes);
    HOLDS(status == 0) << "setValue returned " << status << " for " << size << " bytes";
    std::fill(bytes.begin(), bytes.end(), '\xEE');
    HOLDS(read(block, kParameter, kKey, size) == wanted)
        << "a value of " << size
        << " bytes differs from the value that was set, after the caller overwrote its buffer";
  }
  step("setValue with no bytes");
  block.set(kParameter, kOtherKey, nullptr, 0);
}

void measureResults(Scene& scene, std::map<std::string, size_t>& sizes) {
  for (const ResultRead& row : kResultReads) {
    int status = 0;
    std::string found = scene.parameters.written(row.section, row.key, 2 * row.size + 16, status);
    // A library may refuse to return more bytes than it stores.
    if (status != 0) found = scene.parameters.written(row.section, row.key, row.size, status);
    if (status == 0) sizes[std::string(row.section) + " " + row.key] = found.size();
  }
}

void checkResultSizes() {
  std::map<std::string, size_t> sizes;
  std::vector<std::vector<std::string>> lists = {{}};
  for (const char* name : kAlgorithms) lists.push_back({name});
  lists.push_back({"jpegEncode", "dualBokeh"});
  for (const auto& algorithms : lists) {
    Scene scene;
    step("a request for " + (algorithms.empty() ? std::string("nothing") : algorithms.back()));
    if (scene.run(1, algorithms)) measureResults(scene, sizes);
  }
  for (const ResultRead& row : kResultReads) {
    const auto found = sizes.find(std::string(row.section) + " " + row.key);
    if (found == sizes.end()) continue;
    HOLDS(found->second == row.size) << found->first << " has " << found->second
                                     << " bytes, but the service reads " << row.size;
  }
  note(std::to_string(sizes.size()) + " of " + std::to_string(std::size(kResultReads)) +
       " results are set by at least one algorithm");
}

}  // namespace

void checkSetValue() {
  OPEN_LIBRARY(library);
  Block block;
  setSizes(block);
  const std::string withZero("ab\0cd", 5);
  block.set(kControl, kKey, withZero);
  HOLDS(read(block, kControl, kKey, 5) == withZero) << "a value is cut at a zero byte";
  HOLDS(read(block, kParameter, kKey, kMostBytes) == pattern(kMostBytes, static_cast<int>(kMostBytes)))
      << "setting a key in one section changes the value of this key in another section";

  Block other;
  other.set(kControl, kKey, "other");
  HOLDS(read(block, kControl, kKey, 5) == withZero)
      << "setting a key in one block changes its value in another block";
  block.set(kControl, kKey, "later");
  HOLDS(read(block, kControl, kKey, 5) == "later") << "a value that is set again keeps its old bytes";
  HOLDS(read(other, kControl, kKey, 5) == "other")
      << "setting a key in one block changes its value in another block";
  block.set(kControl, kKey, "xy");
  int status = 0;
  HOLDS(block.written(kControl, kKey, 5, status).size() <= 2)
      << "bytes of a longer value remain after a shorter one is set";
}

void checkGetValue() {
  OPEN_LIBRARY(library);
  Block block;
  const std::string value = pattern(100, 3);
  block.set(kParameter, kKey, value);
  for (size_t size : {size_t{1}, size_t{99}, size_t{100}, size_t{101}, size_t{5000}}) {
    step("getValue with " + std::to_string(size) + " bytes for a value of 100 bytes");
    EdgeBuffer buffer(size);
    const int status = block.get(kParameter, kKey, buffer.data(), size);
    HOLDS(buffer.isUntouchedBefore()) << "getValue writes before its buffer of " << size << " bytes";
    const size_t common = std::min(size, value.size());
    HOLDS(status != 0 || buffer.text().compare(0, common, value, 0, common) == 0)
        << "getValue with " << size << " bytes returns 0, but not the bytes that were set";
    const std::string rest = buffer.text().substr(common);
    HOLDS(rest.find_first_not_of('\x5A') == std::string::npos)
        << "getValue with " << size << " bytes changes memory after the 100 bytes of the value";
    HOLDS(status == 0 || size > value.size()) << "getValue with " << size << " bytes returned " << status;
  }
  step("getValue for a key that was never set");
  EdgeBuffer buffer(64);
  const int status = block.get(kFeedback, "conform_never_set", buffer.data(), 64);
  HOLDS(status != 0) << "getValue returns 0 for a key that was never set";
  HOLDS(buffer.text().find_first_not_of('\x5A') == std::string::npos)
      << "getValue changes the buffer for a key that was never set";
}

void checkBlocks() {
  OPEN_LIBRARY(library);
  {
    Scene scene;
    const std::string value = pattern(300, 9);
    scene.parameters.set(kControl, kKey, value);
    scene.parameters.set(kSystem, kKey, "system");
    HOLDS(scene.parameters.size() > 0) << "getSize returns 0 for a block of 306 bytes";
    std::string inside(value.size(), '\0');
    scene.inbox.onCallback(
        [&](const Message&) { scene.parameters.get(kControl, kKey, inside.data(), inside.size()); });
    if (!scene.run(1)) return;
    HOLDS(inside == value) << "a value set before process() is missing inside the callback";
    HOLDS(read(scene.parameters, kSystem, kKey, 6) == "system")
        << "a value set before process() is missing after the callback";
  }
  step("setRaw with the camera metadata of a capture result");
  Block raw(kCameraMetadataBlock);
  const std::string bytes = cameraMetadata();
  const int status = call(-1, library->table().metadataOps.setRaw, raw.handle(), bytes.data(),
                          static_cast<unsigned>(bytes.size()));
  HOLDS(status == 0) << "setRaw returned " << status << " for " << bytes.size()
                     << " bytes of camera metadata";
  raw.size();
  checkResultSizes();
}

void checkVisitors() {
  OPEN_LIBRARY(library);
  const AlgoMetadataOps& ops = library->table().metadataOps;
  if (!ops.paramAlgoUpdateToSystem && !ops.paramSystemDownloadToAlgo) {
    GTEST_SKIP() << "paramAlgoUpdateToSystem and paramSystemDownloadToAlgo are not offered";
  }
  Scene scene;
  if (!scene.run(1, {"frameClarOnly"})) return;
  Block& block = scene.parameters;
  block.set(kFeedback, kKey, "value");
  const std::thread::id self = std::this_thread::get_id();
  for (int answer : {0, -1, 7}) {
    int visits = 0;
    const AlgoMetadataVisitor visitor = [&](const char* section, const char* key, void* data, unsigned size) {
      ++visits;
      HOLDS(section != nullptr && key != nullptr) << "a visitor gets a null section or key";
      HOLDS(data != nullptr && size > 0) << "a visitor gets " << size << " bytes at " << data;
      HOLDS(std::this_thread::get_id() == self) << "a visitor is called on another thread";
      // Deadlocks if the library holds a lock during the visit.
      block.set(kControl, kOtherKey, "inside");
      HOLDS(read(block, kControl, kOtherKey, 6) == "inside") << "set and get fail inside a visitor";
      return answer;
    };
    step("paramAlgoUpdateToSystem with a visitor that answers " + std::to_string(answer));
    call(-1, ops.paramAlgoUpdateToSystem, block.handle(), visitor);
    const int updates = visits;
    step("paramSystemDownloadToAlgo with a visitor that answers " + std::to_string(answer));
    call(-1, ops.paramSystemDownloadToAlgo, block.handle(), visitor);
    if (answer == 0) {
      note(std::to_string(updates) + " values passed to the system, " + std::to_string(visits - updates) +
           " requested");
    }
    HOLDS(read(block, kFeedback, kKey, 5) == "value")
        << "a visitor's answer " << answer << " changed a value";
  }
}

}  // namespace orlu::conform
