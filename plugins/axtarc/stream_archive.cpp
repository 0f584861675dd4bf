#include "plugins/axtarc/stream_archive.h"

#include <algorithm>
#include <array>

#include "plugins/axtarc/little_endian.h"
#include "plugins/axtarc/name_encoding.h"

namespace tessary::unpack {
namespace {

using codec::Result;

const char* MethodName(int formatCode, Format format) {
    switch (formatCode & ARCHIVE_FORMAT_BASE_MASK) {
        case ARCHIVE_FORMAT_ZIP:
            return "zip";
        case ARCHIVE_FORMAT_7ZIP:
            return "7z";
        case ARCHIVE_FORMAT_RAR:
        case ARCHIVE_FORMAT_RAR_V5:
            return "rar";
        case ARCHIVE_FORMAT_CAB:
            return "cab";
        default:
            break;
    }
    switch (format) {
        case Format::kGzip:
            return "gzip";
        case Format::kBzip2:
            return "bzip2";
        case Format::kXz:
            return "xz";
        default:
            return "store";
    }
}

void TakeName(archive_entry* entry, Format format, Member& member) {
    const char* bytes = archive_entry_pathname(entry);
    if (bytes != nullptr) member.name = bytes;
    member.nameIsUtf8 = LooksLikeUtf8(member.name);
    if (member.nameIsUtf8) return;
    // libarchive turns the separators of RAR into `/` byte by byte.
    if (format == Format::kRar && RestoreSecondHalves(member.name)) return;
    if (const wchar_t* wide = archive_entry_pathname_w(entry); wide != nullptr) {
        member.name = Utf8FromWide(wide);
        member.nameIsUtf8 = true;
    }
}

// The name of what was compressed into a file of the name `packed`.
std::string NameWithoutPacking(const std::string& packed) {
    const size_t dot = packed.rfind('.');
    if (dot == std::string::npos || dot == 0) return packed;
    const bool isTar = packed.compare(dot + 1, 1, "t") == 0 || packed.compare(dot + 1, 1, "T") == 0;
    return packed.substr(0, dot) + (isTar ? ".tar" : "");
}

// gzip ends with the size of its contents, modulo 4 GiB.
uint64_t GzipContentSize(dib::ByteSource& source) {
    std::array<uint8_t, 4> field{};
    if (source.Size() < field.size()) return 0;
    const auto count = source.ReadAt(source.Size() - field.size(), field);
    return count == field.size() ? Read32(field, 0) : 0;
}

}  // namespace

Result StreamArchive::Open(dib::ByteSource& source, Format format, const std::string& fileName,
                           std::unique_ptr<ArchiveReader>& reader) {
    std::unique_ptr<StreamArchive> archive(new StreamArchive(source, format));
    const Result result = archive->ReadList(fileName);
    if (result == Result::kSuccess) reader = std::move(archive);
    return result;
}

Result StreamArchive::ReadList(const std::string& fileName) {
    codec::Progress nobody;
    StreamReader reader(source_, format_);
    size_t number = 0;
    while (archive_entry* entry = reader.Next(nobody)) {
        const size_t entryNumber = number++;
        if (archive_entry_filetype(entry) != AE_IFREG || archive_entry_hardlink(entry) != nullptr) {
            continue;
        }
        Member member;
        TakeName(entry, format_, member);
        member.method = MethodName(reader.FormatCode(), format_);
        member.sizeIsKnown = archive_entry_size_is_set(entry) != 0;
        member.size = static_cast<uint64_t>(std::max<int64_t>(archive_entry_size(entry), 0));
        member.encrypted = archive_entry_is_data_encrypted(entry) != 0;
        member.time = archive_entry_mtime(entry);
        if (reader.FormatCode() == ARCHIVE_FORMAT_RAW) {
            if (!fileName.empty()) {
                member.name = NameWithoutPacking(fileName);
                member.nameIsUtf8 = true;
            }
            member.sizeIsKnown = false;
            if (format_ == Format::kGzip) member.size = GzipContentSize(source_);
            member.compressedSize = source_.Size();
        } else {
            // These formats pack members together or do not tell.
            member.compressedSize = member.size;
        }
        members_.push_back(std::move(member));
        entries_.push_back(entryNumber);
    }
    return members_.empty() ? reader.Failure() : Result::kSuccess;
}

Result StreamArchive::Extract(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    if (members_[index].encrypted) return Result::kUnknownFormat;
    const Result result = ExtractEntry(index, sink, progress);
    // Behind a failure nothing is certain; behind the last member there is nothing to wait for.
    if (result != Result::kSuccess || index + 1 == members_.size()) reader_.reset();
    return result;
}

Result StreamArchive::ExtractEntry(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    const size_t wanted = entries_[index];
    if (reader_ == nullptr || nextEntry_ > wanted) {
        reader_ = std::make_unique<StreamReader>(source_, format_);
        nextEntry_ = 0;
    }
    while (nextEntry_ <= wanted) {
        if (reader_->Next(progress) == nullptr) {
            const Result failure = reader_->Failure();
            return failure == Result::kSuccess ? Result::kBrokenData : failure;
        }
        ++nextEntry_;
    }
    return reader_->ReadData(members_[index], sink, progress);
}

}  // namespace tessary::unpack
