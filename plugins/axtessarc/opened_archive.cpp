#include "plugins/axtessarc/opened_archive.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "helpers/files/file_name.h"
#include "helpers/susiectl/susie_interface.h"
#include "plugins/axtessarc/member_name.h"
#include "plugins/axtessarc/name_encoding.h"
#include "plugins/common/susie_source.h"

namespace tessary::unpack {

using codec::Result;

namespace {

// Blocks up to this size are compared whole.
constexpr uint64_t kSmallBlock = 1u << 20;
constexpr size_t kSampleSize = 4096;
constexpr uint64_t kSamples = 64;

// A check sum of the first and last bytes, where directories stand, and for `samples` above 2 of
// places between them.
uint32_t Stamp(dib::ByteSource& source, uint64_t samples) {
    std::array<uint8_t, kSampleSize> sample;
    uLong sum = 0;
    const uint64_t last = source.Size() - std::min<uint64_t>(source.Size(), sample.size());
    for (uint64_t i = 0; i < samples; ++i) {
        const uint64_t offset = last / (samples - 1) * i;
        const auto count = source.ReadAt(i + 1 == samples ? last : offset, sample);
        sum = crc32(sum, sample.data(), static_cast<uInt>(count.value_or(0)));
    }
    return static_cast<uint32_t>(sum);
}

// What a host calls an archive.
struct Place {
    std::wstring path;            // in full; empty for a block
    const char* block = nullptr;  // hosts put other data where one was

    bool operator==(const Place&) const = default;
};

bool IsBlock(uint32_t flag) {
    return (flag & 7) == susie::kSourceMemory;
}

Place PlaceOf(const char* source, uint32_t flag) {
    if (IsBlock(flag)) return {{}, source};
    return {files::ExtendedFullName(files::FileNameOf(source)), nullptr};
}

// What tells one archive from another between two calls.
struct Identity {
    Place place;
    LONG_PTR length = 0;  // as the host gave it
    uint64_t size = 0;
    uint64_t writeTime = 0;
    uint32_t stamp = 0;

    bool operator==(const Identity&) const = default;
};

Identity IdentityOf(const char* source, LONG_PTR length, uint32_t flag, dib::ByteSource& bytes) {
    Identity identity{PlaceOf(source, flag), length, bytes.Size()};
    if (IsBlock(flag)) {
        const bool isSmall = identity.size <= kSmallBlock;
        identity.stamp = Stamp(bytes, isSmall ? kSmallBlock / kSampleSize + 1 : kSamples);
        return identity;
    }
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    GetFileAttributesExW(identity.place.path.c_str(), GetFileExInfoStandard, &attributes);
    const FILETIME& time = attributes.ftLastWriteTime;
    identity.writeTime = uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    identity.stamp = Stamp(bytes, 2);
    return identity;
}

// Stands for the bytes of the call under way; readers keep it between calls.
class CurrentSource final : public dib::ByteSource {
  public:
    void Set(dib::ByteSource* source) { source_ = source; }
    uint64_t Size() const override { return source_ == nullptr ? 0 : source_->Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        if (source_ == nullptr) return std::nullopt;
        return source_->ReadAt(offset, into);
    }

  private:
    dib::ByteSource* source_ = nullptr;
};

}  // namespace

struct RememberedArchive {
    Identity identity;
    CurrentSource source;
    std::unique_ptr<ArchiveReader> reader;
    codec::Remark remark;                            // on the list
    std::unordered_map<std::wstring, size_t> names;  // comparable ones; filled when first asked
};

namespace {

// Archives of which is kept what they were: more than a host has open at a time.
constexpr size_t kMostNoted = 32;

// The only state of the plug-in. The archive is taken out for a call, so that a second call at the
// same time (from another thread, or from the host's callback) works on one of its own.
class Memory {
  public:
    std::unique_ptr<RememberedArchive> Exchange(std::unique_ptr<RememberedArchive> archive) {
        const std::lock_guard lock(mutex_);
        return std::exchange(last_, std::move(archive));
    }

    void Note(const Identity& identity) {
        const std::lock_guard lock(mutex_);
        std::erase_if(noted_, [&](const Identity& known) { return known.place == identity.place; });
        if (noted_.size() == kMostNoted) noted_.pop_back();
        noted_.insert(noted_.begin(), identity);
    }

    // The latest one first.
    std::vector<Identity> Noted() {
        const std::lock_guard lock(mutex_);
        return noted_;
    }

  private:
    std::mutex mutex_;
    std::unique_ptr<RememberedArchive> last_;
    std::vector<Identity> noted_;  // one of each place
};

Memory& TheMemory() {
    static Memory memory;
    return memory;
}

bool IsReadable(const char* block, LONG_PTR length) {
    const auto start = reinterpret_cast<uintptr_t>(block);
    for (uintptr_t done = 0; done < static_cast<uintptr_t>(length);) {
        MEMORY_BASIC_INFORMATION region{};
        if (VirtualQuery(block + done, &region, sizeof region) == 0 || region.State != MEM_COMMIT ||
            (region.Protect & (PAGE_NOACCESS | PAGE_GUARD)) != 0) {
            return false;
        }
        done = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize - start;
    }
    return true;
}

bool IsCopyOf(const char* block, const Identity& known, uint32_t flag) {
    std::unique_ptr<dib::ByteSource> bytes;
    return spi::OpenSource(block, known.length, flag, bytes) == Result::kSuccess &&
           IdentityOf(block, known.length, flag, *bytes).stamp == known.stamp;
}

// The length of a block that was listed: here with these contents, elsewhere before the host moved
// it, or here with others, in this order.
std::optional<LONG_PTR> LengthOfBlock(const char* block, uint32_t flag) {
    std::vector<Identity> candidates = TheMemory().Noted();
    std::erase_if(candidates, [block](const Identity& known) {
        return known.place.block == nullptr || !IsReadable(block, known.length);
    });
    const auto here =
        std::find_if(candidates.begin(), candidates.end(),
                     [&](const Identity& known) { return known.place.block == block; });
    const bool isHere = here != candidates.end();
    if (isHere) std::rotate(candidates.begin(), here, here + 1);
    for (const Identity& known : candidates) {
        if (IsCopyOf(block, known, flag)) return known.length;
    }
    return isHere ? std::optional(candidates.front().length) : std::nullopt;
}

// The offset at which the archive begins in its file, which was listed before or begins at 0.
LONG_PTR OffsetInFile(const Place& file) {
    for (const Identity& known : TheMemory().Noted()) {
        if (known.place == file) return known.length;
    }
    return 0;
}

std::string NameWithoutFolder(const std::wstring& path) {
    return Utf8FromWide(path.c_str() + path.find_last_of(L"\\/") + 1);
}

}  // namespace

OpenedArchive::OpenedArchive() = default;
OpenedArchive::~OpenedArchive() = default;

Result OpenedArchive::Open(const char* source, LONG_PTR length, uint32_t flag) {
    if (const Result opened = spi::OpenSource(source, length, flag, bytes_);
        opened != Result::kSuccess) {
        return opened;
    }
    Identity identity = IdentityOf(source, length, flag, *bytes_);
    TheMemory().Note(identity);
    archive_ = TheMemory().Exchange(nullptr);
    if (archive_ != nullptr && archive_->identity == identity) {
        archive_->source.Set(bytes_.get());
        return Result::kSuccess;
    }
    archive_ = std::make_unique<RememberedArchive>();
    archive_->identity = std::move(identity);
    archive_->source.Set(bytes_.get());
    return OpenArchive(archive_->source, NameWithoutFolder(archive_->identity.place.path),
                       archive_->reader, archive_->remark);
}

Result OpenedArchive::OpenListed(const char* source, uint32_t flag) {
    if (source == nullptr) return Result::kInternalError;
    if (!IsBlock(flag)) return Open(source, OffsetInFile(PlaceOf(source, flag)), flag);
    const auto length = LengthOfBlock(source, flag);
    return length ? Open(source, *length, flag) : Result::kInternalError;
}

codec::Remark OpenedArchive::Told() const {
    return archive_ == nullptr ? codec::Remark{} : archive_->remark;
}

ArchiveReader& OpenedArchive::Reader() {
    return *archive_->reader;
}

std::optional<size_t> OpenedArchive::Find(const char* name) {
    auto& names = archive_->names;
    if (names.empty()) {
        const std::vector<Member>& members = Reader().Members();
        for (size_t i = 0; i < members.size(); ++i) {
            const ListedName listed = ListedNameOf(members[i]);
            names.emplace(ComparableName(listed.folder + listed.file), i);
        }
        // A bare name does as long as no member is called so in full.
        for (size_t i = 0; i < members.size(); ++i)
            names.emplace(ComparableName(ListedNameOf(members[i]).file), i);
    }
    const auto found = names.find(ComparableName(name));
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

void OpenedArchive::Remember() {
    archive_->source.Set(nullptr);
    TheMemory().Exchange(std::move(archive_));
}

}  // namespace tessary::unpack
