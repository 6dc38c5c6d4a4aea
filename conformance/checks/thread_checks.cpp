// Checks of a parameter block with more values than any request sets, and of several threads that set values
// or send requests at the same time.
#include "checks.h"
#include "known_names.h"
#include "scene.h"
#include "store_hammer.h"

namespace orlu::conform {
namespace {

constexpr size_t kLongest = 120;        // letters of the longest name
constexpr size_t kStem = kLongest - 4;  // letters before the letter and number that make the name unique

struct Entry {
  std::string section;
  std::string key;
  std::string bytes;
};

// Returns bytes that depend on the entry's number.
std::string distinct(size_t number, size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(number * 37 + i * 11 + (number >> 3));
  return bytes;
}

// Returns an entry for each parameter of the service, and entries with long names. Some of the long names are
// prefixes of others, and some differ only at the end.
std::vector<Entry> allEntries() {
  std::vector<Entry> entries;
  for (const ParameterSize& row : kParameters) {
    entries.push_back({row.section, row.key, distinct(entries.size() + 1, std::max<size_t>(row.size, 1))});
  }
  std::string key = "conform_key_with_a_long_beginning";
  for (size_t i = 0; entries.size() < kMostValues; ++i) {
    if (i % 2 == 0 && key.size() < kStem) key += static_cast<char>('a' + i % 26);
    const std::string last = i % 2 == 0 ? "" : std::string(1, static_cast<char>('A' + i % 26));
    const char* const section = i % 3 == 0 ? kControl : kParameter;
    entries.push_back({section, key + last + (key.size() < kStem ? "" : std::to_string(i)),
                       distinct(entries.size() + 1, 1 + i % 300)});
  }
  return entries;
}

std::string wrongValue(const Block& block, const Entry& entry) {
  std::string seen(entry.bytes.size(), '\x5A');
  const int status = block.get(entry.section.c_str(), entry.key.c_str(), seen.data(), seen.size());
  const std::string what = entry.section + " " + entry.key + ", " + std::to_string(seen.size()) + " bytes, ";
  if (status != 0) return what + "is not found: getValue returned " + std::to_string(status);
  return seen == entry.bytes ? "" : what + "has wrong bytes";
}

std::string wrongValues(const Block& block, const std::vector<Entry>& entries) {
  size_t wrong = 0;
  std::string first;
  for (const Entry& entry : entries) {
    const std::string text = wrongValue(block, entry);
    if (text.empty()) continue;
    if (wrong++ == 0) first = text;
  }
  return wrong == 0
             ? ""
             : std::to_string(wrong) + " of " + std::to_string(entries.size()) + " are wrong; " + first;
}

// A client with its own pictures.
struct Painter {
  static constexpr size_t kPictures = 6;
  static constexpr ImageShape kShape = {kFormatNv21, 640, 480, 0, 0, false};

  Client client;
  Inbox inbox;
  std::vector<std::unique_ptr<Image>> inputs;
  std::vector<std::unique_ptr<Image>> outputs;
  std::vector<std::unique_ptr<Block>> blocks;

  explicit Painter(int filler) {
    for (size_t i = 0; i < kPictures; ++i) {
      inputs.push_back(std::make_unique<Image>(kShape, filler + static_cast<int>(i)));
      outputs.push_back(std::make_unique<Image>(kShape, 99));
      blocks.push_back(std::make_unique<Block>());
    }
  }
  void paint(bool waitsForEach) {
    for (size_t i = 0; i < kPictures; ++i) {
      Request request;
      request.nativeReq = i + 1;
      request.inputs = {inputs[i].get()};
      request.outputs = {outputs[i].get()};
      submit(client, inbox, *blocks[i], request);
      if (waitsForEach) inbox.waitFor(i + 1);
    }
    for (size_t i = 0; i < kPictures; ++i) {
      HOLDS(inbox.waitFor(i + 1)) << kNoCallback << "request " << i + 1 << " of a client's " << kPictures;
    }
  }
};

void paintAtOnce() {
  std::vector<std::unique_ptr<Painter>> alone;
  std::vector<std::unique_ptr<Painter>> together;
  for (int i = 0; i < 4; ++i) {
    step("the pictures of client " + std::to_string(i) + ", one after another");
    alone.push_back(std::make_unique<Painter>(i * 10));
    alone.back()->paint(true);
    together.push_back(std::make_unique<Painter>(i * 10));
  }
  step("the pictures of four clients in parallel");
  std::vector<std::thread> threads;
  threads.reserve(together.size());
  for (const auto& painter : together) threads.emplace_back([&painter] { painter->paint(false); });
  for (std::thread& thread : threads) thread.join();
  size_t different = 0;
  for (size_t client = 0; client < together.size(); ++client) {
    for (size_t i = 0; i < Painter::kPictures; ++i) {
      if (alone[client]->outputs[i]->bytes() != together[client]->outputs[i]->bytes()) ++different;
    }
  }
  const std::string text =
      "requests must give the same outputs in parallel as one after another: " + std::to_string(different) +
      " of 24 differ; usual cause: workers share a buffer";
  if (different > 0 && options().allowNoise) return warn(text);
  HOLDS(different == 0) << text;
}

}  // namespace

void checkKeys() {
  OPEN_LIBRARY(library);
  const std::vector<Entry> entries = allEntries();
  Block block;
  step("setting " + std::to_string(entries.size()) + " values on one thread");
  for (const Entry& entry : entries) block.set(entry.section.c_str(), entry.key.c_str(), entry.bytes);
  step("reading the values on another thread");
  std::string wrong;
  std::thread([&] { wrong = wrongValues(block, entries); }).join();
  HOLDS(wrong.empty())
      << "a block must store " << entries.size() << " values, and compare whole names of up to " << kLongest
      << " letters: " << wrong
      << "; usual cause: names are cut to a fixed length, or the values are in a fixed array";
  note(std::to_string(entries.size()) + " values, " + std::to_string(std::size(kParameters)) +
       " of them parameters of the service");
}

void checkThreads() {
  OPEN_LIBRARY(library);
  hammerStore();
  paintAtOnce();
  note("24 pictures in parallel");
}

}  // namespace orlu::conform
