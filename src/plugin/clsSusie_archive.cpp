// The members of a bound archive: listing and extracting them.
#include <algorithm>

#include "app/base/paths.h"
#include "plugin/clsSusie.h"
#include "plugin/file_stamp.h"
#include "plugin/member_file.h"
#include "plugin/member_file_name.h"
#include "plugin/private_folder.h"
#include "plugin/source_block.h"

namespace tessary {
namespace {

// Blocks are made somewhat longer than the member, by plug-ins or by the system.
constexpr size_t kMostSurplus = 16;

// How much of a block is the member. Sizes that are far off are wrong: then all of it. One of 0
// counts where there is nothing in the archive either, and nothing but zeros came.
size_t MemberSize(std::span<const uint8_t> block, const susie::FileInfo& member) {
    const bool isSurplus =
        member.fileSize < block.size() && block.size() - member.fileSize <= kMostSurplus;
    const bool isEmpty = member.compressedSize == 0 &&
                         std::ranges::count(block, 0) == static_cast<ptrdiff_t>(block.size());
    return isSurplus && (member.fileSize != 0 || isEmpty) ? static_cast<size_t>(member.fileSize)
                                                          : block.size();
}

void RequireContent(const OwnedBlock& content) {
    if (!IsLocalHandleValid(content.Get()) || LocalHandleSize(content.Get()) == 0) {
        throw DecodeError(susie::kBrokenData, kExtractingFailedText);
    }
}

// Whether the plug-in may be able to extract to a disk what it did not extract to memory, or the
// other way round. Those that know one way only say so in several ways; one that has told what is
// the matter with the member has not meant that.
bool IsWorthTheOtherWay(const ExtractedMember& extracted) {
    return extracted.condition.kind == susie::kConditionNone && !extracted.wasStopped &&
           (extracted.code == kResultNotExported || extracted.code == susie::kUnknownFormat ||
            extracted.code == susie::kInternalError);
}

}  // namespace

void clsSusie::ReadMembers(Binding& binding) {
    condition_ = {};
    const Source archive(binding);
    ListedArchive listed =
        Ask(L"GetArchiveInfo", archive.Get(), [&] { return connection_->List(archive.Get()); });
    condition_ = std::move(listed.condition);
    if (!listed.members) throw UnlistedArchiveError(listed.code);
    binding.members = *std::move(listed.members);
}

const ArchiveMembers& clsSusie::Members() {
    if (bound_.IsEmpty()) throw PluginError(kErrorNothingBound, kNothingBoundText);
    if (traits_.style != kStyleArchive) {
        throw PluginError(kErrorWrongPluginKind, kPropertyNotOfferedText);
    }
    return bound_.members;
}

const susie::FileInfo& clsSusie::MemberAt(int32_t index) {
    const ArchiveMembers& members = Members();
    if (index < 1 || static_cast<size_t>(index) > members.size()) {
        throw PluginError(kErrorInvalidMemberIndex, kInvalidMemberIndexText);
    }
    return members[static_cast<size_t>(index) - 1];
}

int32_t clsSusie::FileNumber() {
    return Member(L"Property Get FileNumber",
                  [&] { return static_cast<int32_t>(Members().size()); });
}

std::wstring clsSusie::Files(int32_t index) {
    return Member(L"Property Get Files(", [&] { return ArchiveMemberName(MemberAt(index)); });
}

uint64_t clsSusie::FileChanged(int32_t index) {
    return Member(L"Property Get FileChanged(", [&] { return MemberChanged(MemberAt(index)); });
}

std::vector<ListedMember> clsSusie::GetExpandFileList() {
    return Member(L"GetExpandFileList(", [&] { return FilesAmong(Members()); });
}

OwnedBlock clsSusie::DecodeArchive(int32_t index, const SusieProgress& progress) {
    return Member(L"DecodeArchive(", [&] {
        RequireNoCall();
        const susie::FileInfo& member = MemberAt(index);
        RequireModule();
        OwnedBlock content = Extract(member, progress);
        RequireContent(content);
        return content;
    });
}

void clsSusie::DecodeArchive(int32_t index, const std::wstring& folder,
                             const std::wstring& fileName, const SusieProgress& progress,
                             bool keepsDate) {
    Member(L"DecodeArchive(", [&] {
        RequireNoCall();
        const susie::FileInfo& member = MemberAt(index);
        RequireModule();
        const OwnedBlock content = Extract(member, progress);
        if (member.fileSize != 0) RequireContent(content);
        const BlockLock lock(content.Get());
        const size_t size = MemberSize(lock.Bytes(), member);
        const uint64_t changed = keepsDate ? MemberChanged(member) : 0;
        if (const uint32_t error =
                WriteMemberFile(folder, fileName, lock.Bytes().first(size), changed)) {
            throw UnwrittenFileError(error);
        }
    });
}

// The block may be missing or empty.
OwnedBlock clsSusie::Extract(const susie::FileInfo& member, const SusieProgress& progress) {
    condition_ = {};
    const Source archive(bound_);
    // A listed size of 0 may stand for one that the plug-in does not know. Some then make a block
    // of that size and write all of the member into it, which ends the process.
    const bool diskFirst = member.fileSize == 0;
    const auto extract = [&](bool overDisk) {
        return overDisk ? ExtractOverDisk(archive, member, progress)
                        : ExtractTo({}, archive, member, progress);
    };
    ExtractedMember extracted = extract(diskFirst);
    const bool knowsTheDisk = diskFirst && extractsToDisk_;
    if (!knowsTheDisk && IsWorthTheOtherWay(extracted)) {
        ExtractedMember other = extract(!diskFirst);
        if (other.HasSucceeded() || extracted.code == kResultNotExported) {
            extracted = std::move(other);
        }
    }
    if (!extracted.HasSucceeded()) {
        throw DecodeError(static_cast<uint32_t>(extracted.code), kExtractingFailedText);
    }
    return extracted.bytes.ReleaseBlock();
}

// To memory when no folder is given.
ExtractedMember clsSusie::ExtractTo(const std::optional<std::string>& folder, const Source& archive,
                                    const susie::FileInfo& member, const SusieProgress& progress) {
    ExtractedMember extracted = Ask(
        L"GetFile", archive.Get(),
        [&] { return connection_->Extract(archive.Get(), member, folder, progress); },
        L' ' + std::to_wstring(member.position));
    condition_ = extracted.condition;
    return extracted;
}

ExtractedMember clsSusie::ExtractOverDisk(const Source& archive, const susie::FileInfo& member,
                                          const SusieProgress& progress) {
    // The plug-in itself makes a file name of the member's.
    const std::wstring name = ArchiveMemberName(member);
    if (SafeMemberName(name) != name) throw DecodeError(susie::kBrokenData, kUnsafeMemberText);
    const PrivateFolder folder;
    const std::optional<std::string> target = AnsiPathOf(folder.Target());
    if (!target) return {};
    ExtractedMember extracted = ExtractTo(target, archive, member, progress);
    OwnedBlock content;
    if (extracted.HasSucceeded()) {
        const std::wstring file = folder.FirstFile();
        const std::optional<FileStamp> written = StampOf(file);
        content = ReadWholeFile(file);
        if (!written) {
            extracted.code = kResultNotExported;  // it has not written anything
        } else if (!content && written->size != 0) {
            extracted.code = susie::kReadError;
        } else {
            extractsToDisk_ = true;
        }
    }
    // Plug-ins have no answer that means this, and some do not notice.
    const auto size = static_cast<size_t>(content ? LocalHandleSize(content.Get()) : 0);
    const bool isWhole = extracted.HasSucceeded() && size >= member.fileSize;
    if (!isWhole && folder.IsDiskFull()) throw UnwrittenFileError(ERROR_DISK_FULL);
    if (!content && extracted.fault.message.empty()) {
        // The last error is not to stay that the plug-in cannot extract to memory.
        SetError(kExtractingFailedText, L"GetFile");
    }
    extracted.bytes = MemberBytes(std::move(content));
    return extracted;
}

}  // namespace tessary
