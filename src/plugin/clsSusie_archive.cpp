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

}  // namespace

void clsSusie::ReadMembers(Binding& binding) {
    calls_.ForgetCondition();
    const Source archive(binding);
    if (!archive.IsValid()) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
    HLOCAL handle = nullptr;
    const int32_t result = calls_.GetArchiveInfo(archive.Get(), handle);
    const bool succeeded = result == susie::kSuccess;
    binding.members = ReadArchiveMembers(handle);
    const bool mayBeList =
        succeeded ? IsLocalHandleValid(handle) : Condition().kind == susie::kConditionNone;
    const bool isList = mayBeList && (succeeded || LooksLikeList(binding.members));
    // After a failure only what is a list for certain was not freed by the plug-in itself.
    if (succeeded || isList) {
        const OwnedBlock freed(handle);
    } else {
        FreeLeftHandle(handle);
    }
    if (!isList) throw UnlistedArchiveError(result);
}

const ArchiveMembers& clsSusie::Members() {
    if (bound_.IsEmpty()) throw PluginError(kErrorNothingBound, kNothingBoundText);
    if (dllStyle_ != kStyleArchive) {
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
                             const std::wstring& fileName, const SusieProgress& progress) {
    Member(L"DecodeArchive(", [&] {
        RequireNoCall();
        const susie::FileInfo& member = MemberAt(index);
        RequireModule();
        const OwnedBlock content = Extract(member, progress);
        if (member.fileSize != 0) RequireContent(content);
        const BlockLock lock(content.Get());
        const size_t size = MemberSize(lock.Bytes(), member);
        if (const uint32_t error = WriteMemberFile(folder, fileName, lock.Bytes().first(size))) {
            throw UnwrittenFileError(error);
        }
    });
}

// The block may be missing or empty.
OwnedBlock clsSusie::Extract(const susie::FileInfo& member, const SusieProgress& progress) {
    calls_.ForgetCondition();
    const Source archive(bound_);
    if (!archive.IsValid()) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
    const ProgressRelay relay(progress);
    OwnedBlock content;
    // A listed size of 0 may stand for one that the plug-in does not know. Some then make a block
    // of that size and write all of the member into it, which ends the process.
    const bool diskFirst = member.fileSize == 0;
    int32_t result = diskFirst ? ExtractOverDisk(archive, member, content)
                               : ExtractToMemory(archive, member, content);
    const bool knowsTheDisk = diskFirst && extractsToDisk_;
    if (!knowsTheDisk && IsWorthTheOtherWay(result)) {
        const int32_t otherResult = diskFirst ? ExtractToMemory(archive, member, content)
                                              : ExtractOverDisk(archive, member, content);
        if (result == kResultNotExported || otherResult == susie::kSuccess) result = otherResult;
    }
    if (result != susie::kSuccess) {
        throw DecodeError(static_cast<uint32_t>(result), kExtractingFailedText);
    }
    return content;
}

// Whether the plug-in may be able to extract to a disk what it did not extract to memory, or the
// other way round. Those that know one way only say so in several ways; one that has told what is
// the matter with the member has not meant that.
bool clsSusie::IsWorthTheOtherWay(int32_t result) const {
    return Condition().kind == susie::kConditionNone &&
           (result == kResultNotExported || result == susie::kUnknownFormat ||
            result == susie::kInternalError);
}

int32_t clsSusie::ExtractToMemory(const Source& archive, const susie::FileInfo& member,
                                  OwnedBlock& content) {
    const auto position = static_cast<LONG_PTR>(member.position);
    HLOCAL handle = nullptr;
    const int32_t result =
        archive.IsMemory()
            ? calls_.GetFileMM(archive.Get().source, position, handle, ProgressRelay::Callback())
            : calls_.GetFileSM(bound_.pluginName, position, handle, ProgressRelay::Callback());
    if (result == susie::kSuccess) content = OwnedBlock(handle);
    return result;
}

int32_t clsSusie::ExtractOverDisk(const Source& archive, const susie::FileInfo& member,
                                  OwnedBlock& content) {
    // The plug-in itself makes a file name of the member's.
    const std::wstring name = ArchiveMemberName(member);
    if (SafeMemberName(name) != name) throw DecodeError(susie::kBrokenData, kUnsafeMemberText);
    const PrivateFolder folder;
    const std::optional<std::string> target = AnsiPathOf(folder.Target());
    if (!target) return kResultUnexpected;
    const auto position = static_cast<LONG_PTR>(member.position);
    const uint32_t before = calls_.ErrorSerial();
    int32_t result =
        archive.IsMemory()
            ? calls_.GetFileMS(archive.Get().source, position, *target, ProgressRelay::Callback())
            : calls_.GetFileSS(bound_.pluginName, position, *target, ProgressRelay::Callback());
    if (result == susie::kSuccess) {
        const std::wstring file = folder.FirstFile();
        const std::optional<FileStamp> written = StampOf(file);
        content = ReadWholeFile(file);
        if (!written) {
            result = kResultNotExported;  // it has not written anything
        } else if (!content && written->size != 0) {
            result = susie::kReadError;
        } else {
            extractsToDisk_ = true;
        }
    }
    // Plug-ins have no answer that means this, and some do not notice.
    const auto size = static_cast<size_t>(content ? LocalHandleSize(content.Get()) : 0);
    const bool isWhole = result == susie::kSuccess && size >= member.fileSize;
    if (!isWhole && folder.IsDiskFull()) throw UnwrittenFileError(ERROR_DISK_FULL);
    if (!content && calls_.ErrorSerial() == before) {
        // The last error is not to stay that the plug-in cannot extract to memory.
        calls_.SetError(kExtractingFailedText, L"GetFile");
    }
    return result;
}

}  // namespace tessary
