// Mutants with faults in outputs, values, clients or threads, modelled on mistakes of real libraries. The
// headings of the groups are names of checks; mutants.txt lists the checks that each mutant fails.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>

#include "mutant.h"

namespace orlu::mutants {
namespace {

size_t lumaBytes(const AlgoFrameInfo& frame) {
  return static_cast<size_t>(frame.stride[0]) * static_cast<size_t>(frame.height);
}

// pixels
void writeNothing(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord changed = record;
    changed.outputFrames.clear();
    return process(changed);
  };
}
void ignoreSecondOutput(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord changed = record;
    if (changed.outputFrames.size() > 1) changed.outputFrames.resize(1);
    return process(changed);
  };
}
void useInputStrides(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    AlgoProcessRecord changed = record;
    for (AlgoFrameInfo& frame : changed.outputFrames) {
      if (changed.inputFrames.empty() || changed.inputFrames[0].format != frame.format) continue;
      const int32_t size = frame.size;
      const AlgoFrameInfo& input = changed.inputFrames[0];
      std::copy(std::begin(input.stride), std::end(input.stride), frame.stride);
      std::copy(std::begin(input.planeSize), std::end(input.planeSize), frame.planeSize);
      std::copy(std::begin(input.scanline), std::end(input.scanline), frame.scanline);
      frame.size = size;
    }
    return process(changed);
  };
}
void dropOddColumn(Table& table) {
  onFinish(table, [](const AlgoFrameInfo& frame, const Bytes& before, uint8_t* memory) {
    if (frame.planeCount < 2 || frame.width % 2 == 0) return;
    const auto begin = static_cast<size_t>(frame.planeSize[0]);
    for (int32_t row = 0; row < (frame.height + 1) / 2; ++row) {
      const size_t last = begin + static_cast<size_t>(row * frame.stride[1] + frame.width - 1);
      for (size_t i = last; i < last + 2; ++i) memory[i] = before[i];
    }
  });
}

// repeats
void showOldMemory(Table& table) {
  onFinish(table, [](const AlgoFrameInfo&, const Bytes&, uint8_t* memory) {
    const std::unique_ptr<uint8_t[]> fresh(new uint8_t[1000]);
    const volatile uint8_t* const unwritten = fresh.get();
    memory[0] = unwritten[500];
  });
}
void showLastRequest(Table& table) {
  onFinish(table, [](const AlgoFrameInfo&, const Bytes&, uint8_t* memory) {
    static std::atomic<int> sum{0};
    const int last = sum.exchange(memory[5]);
    memory[0] = static_cast<uint8_t>(memory[0] + last / 16);
  });
}

// outputs
void overflowJpeg(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    if (asksFor(record.algoList, "jpegEncode") && !record.outputFrames.empty()) {
      const Bytes file(600, 0xFF);
      [[maybe_unused]] const ssize_t written =
          pwrite(record.outputFrames[0].fd[0], file.data(), file.size(), 0);
    }
    return process(record);
  };
}

// keys
std::string cut(const char* key) {
  return std::string(key).substr(0, 31);
}
void cutKeys(Table& table) {
  AlgoMetadataOps& ops = table.metadataOps;
  ops.setValue = [set = ops.setValue](void* block, const char* section, const char* key, void* data,
                                      unsigned size) {
    return set(block, section, cut(key).c_str(), data, size);
  };
  ops.getValue = [get = ops.getValue](void* block, const char* section, const char* key, void* data,
                                      unsigned size) {
    return get(block, section, cut(key).c_str(), data, size);
  };
}
void keep128Values(Table& table) {
  static std::mutex mutex;
  static std::map<void*, std::set<std::string>> names;
  AlgoMetadataOps& ops = table.metadataOps;
  ops.setValue = [set = ops.setValue](void* block, const char* section, const char* key, void* data,
                                      unsigned size) {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      std::set<std::string>& known = names[block];
      const std::string name = std::string(section) + key;
      if (known.size() == 128 && known.count(name) == 0) return -1;
      known.insert(name);
    }
    return set(block, section, key, data, size);
  };
  ops.destroyMetadata = [destroy = ops.destroyMetadata](void* block) {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      names.erase(block);
    }
    destroy(block);
  };
}

// lives
void keepClientThreads(Table& table) {
  table.createClient = [create = table.createClient](const AlgoCreateClientRecord& record) {
    later(600'000, [] {});
    return create(record);
  };
}
void keepClientMemory(Table& table) {
  static std::map<int, std::string> kept;
  static std::mutex mutex;
  table.createClient = [create = table.createClient](const AlgoCreateClientRecord& record) {
    const std::lock_guard<std::mutex> lock(mutex);
    kept[static_cast<int>(kept.size())].resize(5000);
    return create(record);
  };
}
// Duplicates of output descriptors. `outputs` has those of the requests in flight. When a client is flushed,
// `flushed` gets those of its requests.
struct Unfinished {
  std::mutex mutex;
  std::map<void*, std::pair<void*, int>> outputs;  // by block: client and descriptor
  std::map<void*, std::vector<int>> flushed;       // by client
};
void startOutput(Unfinished& all, const AlgoProcessRecord& record) {
  if (record.outputFrames.empty()) return;
  const std::lock_guard<std::mutex> lock(all.mutex);
  const int fd = fcntl(record.outputFrames[0].fd[0], F_DUPFD_CLOEXEC, 0);
  all.outputs[record.metadata[0].block] = {record.client, fd};
}
void finishOutput(Unfinished& all, void* block) {
  const std::lock_guard<std::mutex> lock(all.mutex);
  const auto output = all.outputs.find(block);
  if (output == all.outputs.end()) return;
  close(output->second.second);
  all.outputs.erase(output);
}
// Writes to outputs after destroyClient has returned, like a library that does not wait for its workers.
void leaveWorkers(Table& table) {
  static Unfinished all;
  onProcess(table, [](const AlgoProcessRecord& record) { startOutput(all, record); });
  onCallback(table, [](const Bytes& bytes, const Send& send, void* block, const auto&) {
    finishOutput(all, block);
    send(bytes);
  });
  table.flush = [flush = table.flush](const AlgoFlushRecord& record) {
    {
      const std::lock_guard<std::mutex> lock(all.mutex);
      for (const auto& [block, output] : all.outputs) {
        if (output.first != record.client) continue;
        all.flushed[record.client].push_back(fcntl(output.second, F_DUPFD_CLOEXEC, 0));
      }
    }
    return flush(record);
  };
  table.destroyClient = [destroy = table.destroyClient](void* client) {
    const int status = destroy(client);
    const std::lock_guard<std::mutex> lock(all.mutex);
    later(5, [files = std::move(all.flushed[client])] {
      for (const int fd : files) {
        touch(fd, 64, [](uint8_t* memory) { ++memory[40]; });
        close(fd);
      }
    });
    all.flushed.erase(client);
    return status;
  };
}
std::atomic<bool> gIsReleased{false};
void refuseWhenReleased(Table& table) {
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    return gIsReleased ? -1 : process(record);
  };
  table.createClient = [create = table.createClient](const AlgoCreateClientRecord& record) {
    gIsReleased = false;
    return create(record);
  };
}
void refuseAfterUninit(Table& table) {
  refuseWhenReleased(table);
  static std::mutex mutex;
  static std::set<void*> released;
  table.uninit = [](const AlgoUninitRecord& record) {
    const std::lock_guard<std::mutex> lock(mutex);
    released.insert(record.client);
    return 0;
  };
  table.process = [process = table.process](const AlgoProcessRecord& record) {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      if (released.count(record.client) != 0) return -1;
    }
    return process(record);
  };
  table.destroyClient = [destroy = table.destroyClient](void* client) {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      released.erase(client);
    }
    return destroy(client);
  };
}
void refuseOthers(Table& table) {
  refuseWhenReleased(table);
  table.uninit = [](const AlgoUninitRecord& record) {
    if (record.mode != 0) gIsReleased = true;
    return 0;
  };
  table.init = [](const AlgoInitRecord&) {
    gIsReleased = false;
    return 0;
  };
}

// threads
void shareBuffer(Table& table) {
  static Bytes shared(1 << 20);
  onFinish(table, [](const AlgoFrameInfo& frame, const Bytes&, uint8_t* memory) {
    const size_t bytes = std::min(lumaBytes(frame), static_cast<size_t>(frame.size));
    if (bytes > shared.size() || bytes < 100'000) return;
    std::memcpy(shared.data(), memory, bytes);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    std::memcpy(memory, shared.data(), bytes);
  });
}

// Counts the requests in flight.
struct RequestsOut {
  std::mutex mutex;
  std::condition_variable changed;
  int count = 0;

  void finishWithCallbacks(Table& table) {
    onCallback(table, [this](const Bytes& bytes, const Send& send, void*, const auto&) {
      send(bytes);
      const std::lock_guard<std::mutex> lock(mutex);
      --count;
      changed.notify_all();
    });
  }
};

// overlap
void waitForPrevious(Table& table) {
  static RequestsOut out;
  out.finishWithCallbacks(table);
  onProcess(table, [](const AlgoProcessRecord&) {
    std::unique_lock<std::mutex> lock(out.mutex);
    // The timeout lets the check `overlap` fail before the call counts as a hang.
    out.changed.wait_for(lock, std::chrono::milliseconds(900), [] { return out.count == 0; });
    ++out.count;
  });
}

// inside
void lockWhileCalling(Table& table) {
  static std::mutex mutex;
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    const std::lock_guard<std::mutex> lock(mutex);
    send(bytes);
  });
  table.metadataOps.destroyMetadata = [destroy = table.metadataOps.destroyMetadata](void* block) {
    const std::lock_guard<std::mutex> lock(mutex);
    destroy(block);
  };
}
void waitForItself(Table& table) {
  static RequestsOut out;
  out.finishWithCallbacks(table);
  onProcess(table, [](const AlgoProcessRecord&) {
    const std::lock_guard<std::mutex> lock(out.mutex);
    ++out.count;
  });
  table.flush = [flush = table.flush](const AlgoFlushRecord& record) {
    flush(record);
    std::unique_lock<std::mutex> lock(out.mutex);
    out.changed.wait(lock, [] { return out.count <= 0; });
    return 0;
  };
}

// flush
void flushEarly(Table& table) {
  table.flush = [](const AlgoFlushRecord&) { return 0; };
}
void hangInFlush(Table& table) {
  table.flush = [](const AlgoFlushRecord&) -> int {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
  };
}

// leaks
void leak32Bytes(Table& table) {
  static std::atomic<void*> chain{nullptr};  // reachable, so leak checkers don't report it
  onProcess(table, [](const AlgoProcessRecord&) {
    auto** const link = static_cast<void**>(operator new(24));
    *link = chain.exchange(link);
  });
}

}  // namespace

std::vector<Mutant> lifeMutants() {
  return {
      {"write_nothing",        writeNothing      },
      {"ignore_second_output", ignoreSecondOutput},
      {"use_input_strides",    useInputStrides   },
      {"drop_odd_column",      dropOddColumn     },
      {"show_old_memory",      showOldMemory     },
      {"show_last_request",    showLastRequest   },
      {"overflow_jpeg",        overflowJpeg      },
      {"cut_keys",             cutKeys           },
      {"keep_128_values",      keep128Values     },
      {"keep_client_threads",  keepClientThreads },
      {"keep_client_memory",   keepClientMemory  },
      {"leave_workers",        leaveWorkers      },
      {"refuse_after_uninit",  refuseAfterUninit },
      {"refuse_others",        refuseOthers      },
      {"share_buffer",         shareBuffer       },
      {"wait_for_previous",    waitForPrevious   },
      {"lock_while_calling",   lockWhileCalling  },
      {"wait_for_itself",      waitForItself     },
      {"flush_early",          flushEarly        },
      {"hang_in_flush",        hangInFlush       },
      {"leak_32_bytes",        leak32Bytes       },
  };
}

}  // namespace orlu::mutants
