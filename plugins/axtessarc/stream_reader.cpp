#include "plugins/axtessarc/stream_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <string_view>

#include "plugins/axtessarc/contained_read.h"

namespace tessary::unpack {
namespace {

using codec::Result;

// Bytes that are read at once, and handed on at once.
constexpr size_t kBlockSize = 64 * 1024;

// Bytes behind the last member that are unpacked for a check sum.
constexpr uint64_t kMostPadding = 16u << 20;

// Damaged headers in a row that the reader may step over.
constexpr int kMostRetries = 100;

void SupportFormat(archive* a, Format format, ZipMode zipMode) {
    switch (format) {
        case Format::kNone:
        case Format::kLzh:
            break;
        case Format::kZip:
            if (zipMode == ZipMode::kDirectory) {
                archive_read_support_format_zip_seekable(a);
            } else {
                archive_read_support_format_zip_streamable(a);
            }
            break;
        case Format::kSevenZip:
            archive_read_support_format_7zip(a);
            break;
        case Format::kRar:
            archive_read_support_format_rar(a);
            break;
        case Format::kRar5:
            archive_read_support_format_rar5(a);
            break;
        case Format::kCab:
            archive_read_support_format_cab(a);
            break;
        case Format::kGzip:  // GzipStream unpacks it
            archive_read_support_format_raw(a);
            archive_read_support_format_tar(a);
            break;
        case Format::kBzip2:
            archive_read_support_filter_bzip2(a);
            archive_read_support_format_raw(a);
            archive_read_support_format_tar(a);
            break;
        case Format::kXz:
            archive_read_support_filter_xz(a);
            archive_read_support_format_raw(a);
            archive_read_support_format_tar(a);
            break;
        case Format::kTar:
            archive_read_support_format_tar(a);
            break;
    }
}

// libarchive tells what it cannot do from what is damaged by its words only.
bool IsNotSupported(const char* message) {
    if (message == nullptr) return false;
    const std::string_view text(message);
    return std::ranges::any_of(
        std::array<std::string_view, 5>{"nsupported", "not supported", "support unavailable",
                                        "Unexpected codec", "Encryption"},
        [text](std::string_view part) { return text.find(part) != std::string_view::npos; });
}

}  // namespace

StreamReader::StreamReader(dib::ByteSource& source, Format format, ZipMode zipMode)
    : source_(source), format_(format), archive_(archive_read_new()) {
    if (archive_ == nullptr) throw std::bad_alloc();
    block_.resize(kBlockSize);
    archive* const a = archive_.get();
    SupportFormat(a, format, zipMode);
    archive_read_set_callback_data(a, this);
    archive_read_set_read_callback(a, OnRead);
    if (format == Format::kGzip) {
        gzip_.emplace([this](std::span<uint8_t> into) { return ReadSource(into); });
    } else {
        archive_read_set_skip_callback(a, OnSkip);
        archive_read_set_seek_callback(a, OnSeek);
    }
}

std::optional<size_t> StreamReader::ReadSource(std::span<uint8_t> into) noexcept {
    const auto got = ReadContained(source_, position_, into);
    readFailed_ |= !got;
    position_ += got.value_or(0);
    return got;
}

la_ssize_t StreamReader::OnRead(archive* a, void* reader, const void** block) {
    auto& self = *static_cast<StreamReader*>(reader);
    if (self.progress_ != nullptr && !self.progress_->Report(self.done_, self.total_)) {
        self.aborted_ = true;
        archive_set_error(a, EINTR, "stopped");
        return ARCHIVE_FATAL;
    }
    const auto got = self.gzip_ ? self.gzip_->Read(self.block_) : self.ReadSource(self.block_);
    if (!got) {
        const bool isFull = self.gzip_ && self.gzip_->IsOutOfMemory();
        archive_set_error(a, isFull ? ENOMEM : EIO, "not readable");
        return ARCHIVE_FATAL;
    }
    *block = self.block_.data();
    return static_cast<la_ssize_t>(*got);
}

la_int64_t StreamReader::OnSkip(archive*, void* reader, la_int64_t count) {
    auto& self = *static_cast<StreamReader*>(reader);
    const uint64_t left = self.source_.Size() - std::min(self.position_, self.source_.Size());
    const uint64_t skipped = std::min(left, static_cast<uint64_t>(std::max<int64_t>(count, 0)));
    self.position_ += skipped;
    return static_cast<la_int64_t>(skipped);
}

la_int64_t StreamReader::OnSeek(archive*, void* reader, la_int64_t offset, int origin) {
    auto& self = *static_cast<StreamReader*>(reader);
    const auto size = static_cast<int64_t>(self.source_.Size());
    int64_t base = 0;
    if (origin == SEEK_CUR) base = static_cast<int64_t>(self.position_);
    if (origin == SEEK_END) base = size;
    if (offset < -base || offset > size - base) return ARCHIVE_FAILED;
    self.position_ = static_cast<uint64_t>(base + offset);
    return base + offset;
}

archive_entry* StreamReader::Next(codec::Progress& progress) {
    progress_ = &progress;
    done_ = 0;
    archive_entry* entry = nullptr;
    archive* const a = archive_.get();
    // Opening reads already: only here somebody may stop it.
    if (!isOpen_) {
        isOpen_ = true;
        status_ = archive_read_open1(a);
        // Otherwise the packed bytes would pass for what was packed.
        if (status_ >= ARCHIVE_WARN && !HasFilter()) status_ = ARCHIVE_FATAL;
        if (status_ < ARCHIVE_WARN) return nullptr;
    }
    for (int i = 0; i < kMostRetries; ++i) {
        status_ = archive_read_next_header(a, &entry);
        if (status_ != ARCHIVE_RETRY) break;
    }
    progress_ = nullptr;
    return status_ == ARCHIVE_OK || status_ == ARCHIVE_WARN ? entry : nullptr;
}

Result StreamReader::ReadData(const Member& member, files::ByteSink& sink,
                              codec::Progress& progress) {
    progress_ = &progress;
    total_ = std::max<uint64_t>(member.size, 1);
    done_ = 0;
    std::vector<uint8_t> data(kBlockSize);
    while (true) {
        const la_ssize_t count = archive_read_data(archive_.get(), data.data(), data.size());
        status_ = count < 0 ? static_cast<int>(count) : ARCHIVE_OK;
        if (count < 0) return Failure();
        if (count == 0) break;
        const auto bytes = std::span(data).first(static_cast<size_t>(count));
        done_ += bytes.size();
        if (member.sizeIsKnown && done_ > member.size) return Result::kBrokenData;
        if (!sink.Write(bytes)) return Result::kInternalError;
        if (!progress.Report(std::min(done_, total_ - 1), total_)) return Result::kAborted;
    }
    progress_ = nullptr;
    return member.sizeIsKnown && done_ < member.size ? Result::kBrokenData : Result::kSuccess;
}

Result StreamReader::Failure() const {
    archive* const a = archive_.get();
    if (aborted_) return Result::kAborted;
    if (readFailed_) return Result::kReadError;
    if (status_ == ARCHIVE_EOF || status_ == ARCHIVE_OK) return Result::kSuccess;
    if (archive_errno(a) == ENOMEM) return Result::kOutOfMemory;
    return HasEncryption() || IsNotSupported(archive_error_string(a)) ? Result::kUnknownFormat
                                                                      : Result::kBrokenData;
}

bool StreamReader::IsDoubtful() {
    if (!gzip_) return false;
    // It stands behind what ends the list, and padding.
    for (uint64_t left = kMostPadding; left != 0 && Failure() == Result::kSuccess;) {
        const size_t got = gzip_->Read(block_).value_or(0);
        left = got == 0 ? 0 : left - std::min<uint64_t>(left, got);
    }
    return gzip_->IsDamaged();
}

bool StreamReader::HasFilter() const {
    const bool isNeeded = format_ == Format::kBzip2 || format_ == Format::kXz;
    return !isNeeded || archive_filter_code(archive_.get(), 0) != ARCHIVE_FILTER_NONE;
}

bool StreamReader::HasEncryption() const {
    // To be asked only where the format is known.
    return FormatCode() != 0 && archive_read_has_encrypted_entries(archive_.get()) > 0;
}

}  // namespace tessary::unpack
