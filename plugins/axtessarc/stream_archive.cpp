#include "plugins/axtessarc/stream_archive.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <string_view>

#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/name_encoding.h"

namespace tessary::unpack {
namespace {

using codec::Result;

// What may be unpacked to list an archive: so many bytes, and so many times its own size.
constexpr uint64_t kMostUnpacked = 1u << 30;
constexpr uint64_t kMostTimesUnpacked = 200;

// More than that no program can list: half a gigabyte of records.
constexpr size_t kMostMembers = 1'000'000;

// Whether stepping over a member means to unpack it.
bool UnpacksWhenSkipping(Format format) {
    return format != Format::kTar && format != Format::kRar && format != Format::kZip;
}

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

// Whether `wide` tells no more than `bytes`: on Windows libarchive makes a character of each byte
// of a name in no known encoding.
bool IsOnlyWidened(const wchar_t* wide, std::string_view bytes) {
    return std::equal(bytes.begin(), bytes.end(), wide, wide + std::wcslen(wide),
                      [](char byte, wchar_t character) {
                          return static_cast<wchar_t>(static_cast<uint8_t>(byte)) == character;
                      });
}

void TakeName(archive_entry* entry, Format format, Member& member) {
    const bool isAlwaysUnicode = format == Format::kSevenZip || format == Format::kRar5;
    const char* bytes = archive_entry_pathname(entry);
    if (bytes != nullptr) member.name = bytes;
    const wchar_t* wide = archive_entry_pathname_w(entry);
    if (wide != nullptr && (isAlwaysUnicode || !IsOnlyWidened(wide, member.name))) {
        member.name = Utf8FromWide(wide);
        member.nameIsUtf8 = true;
        return;
    }
    member.nameIsUtf8 = LooksLikeUtf8(member.name);
    // libarchive turns `\` in names of these formats into `/` byte by byte.
    const bool hasTurned =
        format == Format::kRar || format == Format::kCab || format == Format::kZip;
    if (!member.nameIsUtf8 && hasTurned) RestoreSecondHalves(member.name);
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
                           std::unique_ptr<ArchiveReader>& reader, bool& isEncrypted) {
    std::unique_ptr<StreamArchive> archive(new StreamArchive(source, format));
    const Result result = archive->ReadList(fileName, isEncrypted);
    if (result == Result::kSuccess) reader = std::move(archive);
    return result;
}

Result StreamArchive::ReadList(const std::string& fileName, bool& isEncrypted) {
    codec::Progress nobody;
    StreamReader reader(source_, format_);
    size_t number = 0;
    // Nobody could stop the unpacking of one huge member to get to the next.
    const uint64_t mostUnpacked = kMostUnpacked + kMostTimesUnpacked * source_.Size();
    uint64_t unpacked = 0;
    while (unpacked <= mostUnpacked && members_.size() < kMostMembers) {
        archive_entry* const entry = reader.Next(nobody);
        if (entry == nullptr) break;
        const size_t entryNumber = number++;
        const auto size = static_cast<uint64_t>(std::max<int64_t>(archive_entry_size(entry), 0));
        if (UnpacksWhenSkipping(format_)) unpacked += size;
        if (archive_entry_filetype(entry) != AE_IFREG || archive_entry_hardlink(entry) != nullptr) {
            continue;
        }
        Member member;
        TakeName(entry, format_, member);
        member.method = MethodName(reader.FormatCode(), format_);
        member.sizeIsKnown = archive_entry_size_is_set(entry) != 0;
        member.size = size;
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
    listEnd_ = reader.Failure();
    // A single member is read up to the check sum when it is extracted.
    isDoubtful_ = reader.FormatCode() != ARCHIVE_FORMAT_RAW && reader.IsDoubtful();
    if (isDoubtful_) listEnd_ = Result::kBrokenData;
    // A ZIP archive is only read this way when its directory is missing, which nobody encrypts.
    const bool isZip = format_ == Format::kZip;
    if (isZip && listEnd_ == Result::kUnknownFormat) listEnd_ = Result::kBrokenData;
    isEncrypted = !isZip && members_.empty() && reader.HasEncryption();
    return members_.empty() ? listEnd_ : Result::kSuccess;
}

Result StreamArchive::Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    if (members_[index].encrypted) return Result::kUnknownFormat;
    // Behind a failure nothing is certain; behind the last member there is nothing to wait for.
    std::unique_ptr<StreamReader> reader = std::move(reader_);
    const Result result = ExtractEntry(reader, index, sink, progress);
    if (result == Result::kSuccess && index + 1 != members_.size()) reader_ = std::move(reader);
    return result;
}

Result StreamArchive::ExtractEntry(std::unique_ptr<StreamReader>& reader, size_t index,
                                   files::ByteSink& sink, codec::Progress& progress) {
    const size_t wanted = entries_[index];
    if (reader == nullptr || nextEntry_ > wanted) {
        reader = std::make_unique<StreamReader>(source_, format_);
        nextEntry_ = 0;
    }
    while (nextEntry_ <= wanted) {
        if (reader->Next(progress) == nullptr) {
            const Result failure = reader->Failure();
            return failure == Result::kSuccess ? Result::kBrokenData : failure;
        }
        ++nextEntry_;
    }
    return reader->ReadData(members_[index], sink, progress);
}

}  // namespace tessary::unpack
