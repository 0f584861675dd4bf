// How much memory a host process may have for itself. What it shares with its program does not
// count.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tessary {

// In bytes: half of the machine's memory, but enough for pictures of 100 megapixels in plug-ins
// that keep several copies.
uint64_t DefaultMemoryBound();

// Watches a process, which must outlive this.
class HostMemory {
  public:
    HostMemory(HANDLE process, uint64_t bound) : process_(process), bound_(bound) {}

    // Whether it has more than it may.
    bool IsExceeded() const { return Used() > bound_; }
    // Whether it has kept so much, though nothing is asked of it, that a new process is better for
    // all. Looks only now and then.
    bool IsLittered();

  private:
    // In bytes; 0 when the system does not tell.
    uint64_t Used() const;

    HANDLE process_;
    uint64_t bound_;
    ULONGLONG lookedAt_ = 0;  // in ticks
};

}  // namespace tessary
