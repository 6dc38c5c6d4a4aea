// Mutants that misuse descriptors and mappings. They use the descriptors that the caller lends, or their own
// duplicates of these. They don't touch the minimal library's duplicates.
#include "mutant.h"

namespace orlu::mutants {
namespace {

// Calls work(descriptor, frame) for the first input of each request.
template <typename Work>
void onInput(Table& table, Work work) {
  onProcess(table, [work](const AlgoProcessRecord& record) {
    if (!record.inputFrames.empty()) work(record.inputFrames[0].fd[0], record.inputFrames[0]);
  });
}

int duplicate(int fd) {
  return fcntl(fd, F_DUPFD_CLOEXEC, 0);
}

size_t sizeOf(const AlgoFrameInfo& frame) {
  return static_cast<size_t>(frame.size);
}

void* mapped(int fd, size_t size) {
  return mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
}

void leaveRawDescriptor(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    if (frame.format == kFormatRaw16) [[maybe_unused]]
      const int kept = duplicate(fd);
  });
}
void leaveDup(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    if (frame.format == kFormatRgba8888) [[maybe_unused]]
      const int kept = dup(fd);  // NOLINT(android-cloexec-dup): a typical mistake
  });
}
void closeTwice(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo&) {
    const int own = duplicate(fd);
    close(own);
    close(own);
  });
}
// The second close may hit another file that reuses the number.
void closeAgainLater(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo&) {
    const int own = duplicate(fd);
    close(own);
    later(3, [own] { close(own); });
  });
  delayCallbacks(table);
}
void closeLent(Table& table) {
  onInput(table, [](int, const AlgoFrameInfo& frame) {
    if (frame.nativeHandle != nullptr) close(frame.nativeHandle->data[1]);
  });
}
void replaceLent(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    if (frame.nativeHandle != nullptr) dup2(fd, frame.nativeHandle->data[1]);
  });
}
void replaceErrors(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    if (frame.format == kFormatNv12) dup3(fd, STDERR_FILENO, O_CLOEXEC);
  });
}
void mapClosed(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    const int own = duplicate(fd);
    close(own);
    void* const memory = mapped(own, sizeOf(frame));
    if (memory != MAP_FAILED) munmap(memory, sizeOf(frame));
  });
}
// Maps 8 KiB more than the pixels, but unmaps only the pixels.
void unmapLess(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    void* const memory = mapped(fd, sizeOf(frame) + 8192);
    if (memory != MAP_FAILED) munmap(memory, sizeOf(frame));
  });
}
void unmapMore(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    // Finds an address with free space behind the mapping, so that nothing else is unmapped.
    const size_t more = sizeOf(frame) + 65536;
    void* const room = mmap(nullptr, more, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    munmap(room, more);
    void* const memory = mmap(room, sizeOf(frame), PROT_READ, MAP_SHARED, fd, 0);
    munmap(memory, memory == room ? more : sizeOf(frame));
  });
}
void unmapTwice(Table& table) {
  onInput(table, [](int fd, const AlgoFrameInfo& frame) {
    void* const memory = mapped(fd, sizeOf(frame));
    if (memory == MAP_FAILED) return;
    munmap(memory, sizeOf(frame));
    munmap(memory, sizeOf(frame));
  });
}

}  // namespace

std::vector<Mutant> descriptorMutants() {
  return {
      {"leave_raw_descriptor", leaveRawDescriptor},
      {"leave_dup",            leaveDup          },
      {"close_twice",          closeTwice        },
      {"close_again_later",    closeAgainLater   },
      {"close_lent",           closeLent         },
      {"replace_lent",         replaceLent       },
      {"replace_errors",       replaceErrors     },
      {"map_closed",           mapClosed         },
      {"unmap_less",           unmapLess         },
      {"unmap_more",           unmapMore         },
      {"unmap_twice",          unmapTwice        },
  };
}

}  // namespace orlu::mutants
