#include "plugins/axtessarc/archive_reader.h"

#include <array>

#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/lzh_archive.h"
#include "plugins/axtessarc/stream_archive.h"
#include "plugins/axtessarc/zip_archive.h"

namespace tessary::unpack {
namespace {

using codec::Condition;
using codec::Remark;
using codec::Result;

const Remark kVolume{Condition::kVolumeMissing,
                     L"分割された書庫の一部です。分割されたままでは展開できません"};

Remark RemarkOnDamage(const ArchiveMarks& marks) {
    if (marks.isVolume || marks.mayBePiece) return kVolume;
    return {Condition::kDamaged, L"書庫が壊れているか、途中で切れています"};
}

// What there is to tell of a list that ended so.
Remark RemarkOnList(Result end, const ArchiveMarks& marks) {
    switch (end) {
        case Result::kSuccess:
            return marks.isVolume ? kVolume : Remark{};
        case Result::kUnknownFormat:
            if (marks.directoryIsEncrypted) {
                return {Condition::kDirectoryEncrypted,
                        L"書庫の一覧が暗号化されています。パスワードの付いた書庫は展開できません"};
            }
            return {Condition::kKindNotRead, L"この書庫の圧縮方式には対応していません"};
        case Result::kBrokenData:
            return RemarkOnDamage(marks);
        default:
            return {};
    }
}

Remark RemarkOnMember(Result result, const Member& member, const ArchiveMarks& marks) {
    switch (result) {
        case Result::kUnknownFormat:
            if (member.encrypted) {
                return {Condition::kPasswordNeeded,
                        L"暗号化されています。パスワードの付いた書庫は展開できません"};
            }
            return {Condition::kKindNotRead,
                    L"圧縮方式 " + std::wstring(member.method.begin(), member.method.end()) +
                        L" のデータの展開には対応していません"};
        case Result::kBrokenData:
            return RemarkOnDamage(marks);
        default:
            return {};
    }
}

Result OpenKnown(dib::ByteSource& source, Format format, const std::string& fileName,
                 std::unique_ptr<ArchiveReader>& reader, ArchiveMarks& marks) {
    switch (format) {
        case Format::kNone:
            return Result::kUnknownFormat;
        case Format::kLzh:
            return LzhArchive::Open(source, reader);
        case Format::kZip:
            // Without a directory at its end (cut short, say) it is read from front to back.
            if (const Result result = ZipArchive::Open(source, reader);
                result != Result::kBrokenData) {
                return result;
            }
            [[fallthrough]];
        default:
            if (marks.directoryIsEncrypted) return Result::kUnknownFormat;
            return StreamArchive::Open(source, format, fileName, reader,
                                       marks.directoryIsEncrypted);
    }
}

}  // namespace

Result ArchiveReader::Extract(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    const Result result = Unpack(index, sink, progress);
    if (result == Result::kSuccess && isDoubtful_) {
        progress.Tell(Condition::kDamaged,
                      L"書庫全体の検査値が合わないため、壊れている恐れがあります");
    }
    Remark remark = RemarkOnMember(result, members_[index], marks_);
    if (remark.condition != Condition::kNone) {
        progress.Tell(remark.condition, std::move(remark.text));
    }
    return result;
}

Result OpenArchive(dib::ByteSource& source, const std::string& fileName,
                   std::unique_ptr<ArchiveReader>& reader, Remark& remark) {
    std::array<uint8_t, 512> header{};
    const auto count = source.ReadAt(0, header);
    if (!count) return Result::kReadError;
    Format format = DetectFormat(std::span(header).first(*count));
    if (format == Format::kNone && IsLastZipVolume(source)) format = Format::kZip;
    if (format == Format::kNone) {
        if (IsPieceName(fileName)) remark = kVolume;
        return Result::kUnknownFormat;
    }
    ArchiveMarks marks = ReadMarks(source, format, fileName);
    const Result result = OpenKnown(source, format, fileName, reader, marks);
    if (result == Result::kSuccess) reader->marks_ = marks;
    remark = RemarkOnList(result == Result::kSuccess ? reader->listEnd_ : result, marks);
    return result;
}

}  // namespace tessary::unpack
