// What picture files say of their pictures, read in a process of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "helpers/metadata/metadata_field.h"
#include "helpers/metadata/saved_exif.h"
#include "host/host_process.h"

namespace tessary {

struct MetadataQuery {
    std::wstring path{};               // full, of a picture file; empty:
    std::span<const uint8_t> bytes{};  // the beginning of one
    // With a width, EXIF data are wanted for a file that is to be made of it.
    metadata::SavedPicture saved{};
};

struct MetadataAnswer {
    metadata::Fields fields{};
    std::vector<uint8_t> exif{};
};

// Starts the process when it is first needed, and anew when it has ended. What damaged data do
// there, they do to nothing but the answer, which is empty then; nobody is told or blamed.
class MetadataHost {
  public:
    // `program`: full path of what is started.
    explicit MetadataHost(std::wstring program) : program_(std::move(program)) {}

    // From any thread, one after the other. Waits for the answer, a few seconds at most.
    MetadataAnswer Ask(const MetadataQuery& query);

    // Ends the process: it is not needed for a while. Not while somebody asks.
    void Rest();

  private:
    HostProcess* Host();

    const std::wstring program_;
    std::mutex mutex_;
    LentBytes lent_;
    std::unique_ptr<HostProcess> host_;
    ULONGLONG retryAt_ = 0;  // when one may be started after none could be, in ticks
};

// The one of this program. Threads that may outlive the first one keep what they get.
std::shared_ptr<MetadataHost> SharedMetadataHost();

}  // namespace tessary
