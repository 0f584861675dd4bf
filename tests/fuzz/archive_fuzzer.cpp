#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/archive_reader.h"

using namespace tessary;

namespace {

// Takes what comes, up to a size beyond which it only costs time.
class BoundedSink final : public files::ByteSink {
  public:
    bool Write(std::span<const uint8_t> bytes) noexcept override {
        constexpr uint64_t kMost = 1u << 20;
        written_ += bytes.size();
        return written_ <= kMost;
    }

  private:
    uint64_t written_ = 0;
};

constexpr size_t kMostMembers = 6;

}  // namespace

// The input is an archive: listed, then its first members extracted in order, and one again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    dib::MemorySource source({data, size});
    unpack::IsArchive({data, size}, "name");
    std::unique_ptr<unpack::ArchiveReader> reader;
    codec::Remark remark;
    if (unpack::OpenArchive(source, "name.gz", reader, remark) != codec::Result::kSuccess) return 0;
    const size_t count = std::min(reader->Members().size(), kMostMembers);
    codec::Progress progress([](int, int) { return true; });
    for (size_t i = 0; i <= count && count != 0; ++i) {
        BoundedSink sink;
        reader->Extract(i % count, sink, progress);
    }
    return 0;
}
