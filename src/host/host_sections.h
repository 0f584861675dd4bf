// The host's sections in the program's memory.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/host_messages.h"
#include "host/section.h"

namespace tessary {

// Keeps sections that come again mapped for a while. Shared by a host and the pictures that lie in
// its sections, which may live longer and end on any thread.
class HostSections : public std::enable_shared_from_this<HostSections> {
  public:
    // Bytes in a section, which may be read until this ends. Then the host may write there anew.
    class Lease {
      public:
        Lease(std::shared_ptr<HostSections> sections, std::shared_ptr<Section> section, size_t size,
              uint32_t id)
            : sections_(std::move(sections)), section_(std::move(section)), size_(size), id_(id) {}
        Lease(Lease&&) = default;
        Lease& operator=(Lease&&) = delete;
        ~Lease();

        std::span<const uint8_t> Bytes() const { return section_->Bytes().first(size_); }

      private:
        std::shared_ptr<HostSections> sections_;  // empty when it was moved away
        std::shared_ptr<Section> section_;
        size_t size_;
        uint32_t id_;
    };

    enum class Opened { kOpen, kNoMemory, kNoSection };  // the last: none of that size is there

    // What a process has told of.
    Opened Open(HANDLE process, const WireSection& wire, std::optional<Lease>& lease);

    // The ids of the sections that were given back since this was asked last.
    std::vector<uint32_t> TakeReturned() {
        const std::lock_guard lock(mutex_);
        return std::exchange(returned_, {});
    }

  private:
    struct Mapped {
        uint32_t id;
        std::shared_ptr<Section> section;
    };

    static Opened Map(HANDLE process, const WireSection& wire, std::shared_ptr<Section>& section);
    void Return(uint32_t id);
    void DropOldest();

    std::vector<Mapped> mapped_;  // the newest last
    std::mutex mutex_;            // of what follows
    std::vector<uint32_t> returned_;
};

}  // namespace tessary
