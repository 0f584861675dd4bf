// The exported functions of a Susie archive plug-in (00AM). This is the outermost layer: nothing is
// thrown past it, and wrong arguments get a result code.
#include <algorithm>
#include <limits>
#include <string_view>

#include "helpers/files/file_name.h"
#include "helpers/files/replacing_file.h"
#include "helpers/susiectl/susie_interface.h"
#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/local_block.h"
#include "plugins/axtessarc/member_name.h"
#include "plugins/axtessarc/opened_archive.h"
#include "plugins/axtessarc/zip_directory.h"
#include "plugins/common/file_part.h"
#include "plugins/common/last_condition.h"
#include "plugins/common/plugin_info.h"
#include "plugins/common/susie_source.h"

namespace tessary::unpack {
namespace {

using codec::Result;

constexpr uint32_t kDestinationMask = 0x700;

template <class Number>
Number Clamped(uint64_t value) {
    return static_cast<Number>(std::min<uint64_t>(value, std::numeric_limits<Number>::max()));
}

// `record` is all zero before.
void FillRecord(const Member& member, size_t index, susie::FileInfo& record) {
    const ListedName name = ListedNameOf(member);
    member.method.copy(reinterpret_cast<char*>(record.method), sizeof record.method);
    record.position = index;
    record.compressedSize = Clamped<ULONG_PTR>(member.compressedSize);
    record.fileSize = Clamped<ULONG_PTR>(member.size);
    const bool isTime =
        member.time >= 0 && member.time <= std::numeric_limits<susie::SusieTime>::max();
    record.timestamp = isTime ? static_cast<susie::SusieTime>(member.time) : 0;
    name.folder.copy(record.path, sizeof record.path - 1);
    name.file.copy(record.fileName, sizeof record.fileName - 1);
    record.crc = member.crc;
}

Result ListMembers(const char* source, LONG_PTR length, uint32_t flag, HLOCAL& list,
                   codec::Remark& remark) {
    OpenedArchive archive;
    const Result opened = archive.Open(source, length, flag);
    remark = archive.Told();
    if (opened != Result::kSuccess) return opened;
    const std::vector<Member>& members = archive.Reader().Members();
    constexpr size_t kMostRecords = std::numeric_limits<size_t>::max() / sizeof(susie::FileInfo);
    if (members.size() >= kMostRecords) return Result::kOutOfMemory;
    // A fixed block: some hosts take the handle for the address. The last record stays zero.
    const HLOCAL block = LocalAlloc(LPTR, (members.size() + 1) * sizeof(susie::FileInfo));
    if (block == nullptr) return Result::kOutOfMemory;
    try {
        auto* record = static_cast<susie::FileInfo*>(block);
        for (size_t i = 0; i < members.size(); ++i)
            FillRecord(members[i], i, record[i]);
    } catch (...) {
        LocalFree(block);
        throw;
    }
    archive.Remember();
    list = block;
    return Result::kSuccess;
}

Result DescribeMember(const char* source, LONG_PTR length, const char* name, uint32_t flag,
                      susie::FileInfo& info, codec::Remark& remark) {
    OpenedArchive archive;
    const Result opened = archive.Open(source, length, flag);
    remark = archive.Told();
    if (opened != Result::kSuccess) return opened;
    const auto index = archive.Find(name);
    if (index) {
        info = {};
        FillRecord(archive.Reader().Members()[*index], *index, info);
    }
    archive.Remember();
    return index ? Result::kSuccess : Result::kInternalError;
}

Result ExtractToMemory(ArchiveReader& reader, size_t index, HLOCAL& block,
                       codec::Progress& progress) {
    LocalBlock contents(reader.Members()[index].size);
    const Result result = reader.Extract(index, contents, progress);
    if (contents.IsFull()) return Result::kOutOfMemory;
    if (result != Result::kSuccess) return result;
    if (!progress.Report(1, 1)) return Result::kAborted;
    const HLOCAL released = contents.Release();
    if (released == nullptr) return Result::kOutOfMemory;
    block = released;
    return Result::kSuccess;
}

void SetFileTimeOf(const std::wstring& path, int64_t time) {
    constexpr int64_t kUnixEpoch = 11644473600;  // seconds since the beginning of Windows' time
    const uint64_t ticks = static_cast<uint64_t>(time + kUnixEpoch) * 10'000'000;
    const FILETIME written{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    const HANDLE file = CreateFileW(files::ExtendedFullName(path).c_str(), FILE_WRITE_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    SetFileTime(file, nullptr, nullptr, &written);
    CloseHandle(file);
}

Result ExtractToFolder(ArchiveReader& reader, size_t index, const char* folder,
                       codec::Progress& progress) {
    const Member& member = reader.Members()[index];
    std::wstring path = files::FileNameOf(folder);
    if (!path.empty() && path.back() != L'\\' && path.back() != L'/') path += L'\\';
    path += files::FileNameOf(ListedNameOf(member).file.c_str());
    files::ReplacingFile file(path);
    if (!file.IsOpen()) return Result::kInternalError;
    const Result result = reader.Extract(index, file, progress);
    if (result != Result::kSuccess) return result;
    if (!progress.Report(1, 1)) return Result::kAborted;
    if (!file.Commit(files::Durability::kCache)) return Result::kInternalError;
    constexpr int64_t kLatest = int64_t{1} << 33;  // beyond 2200: no time, but a damaged one
    if (member.time > 0 && member.time < kLatest) SetFileTimeOf(path, member.time);
    return Result::kSuccess;
}

// `position` is the index that the list gave.
Result ExtractMember(const char* source, LONG_PTR position, char* destination, uint32_t flag,
                     codec::Progress& progress) {
    if (!progress.Report(0, 1)) return Result::kAborted;
    OpenedArchive archive;
    if (const Result opened = archive.OpenListed(source, flag); opened != Result::kSuccess) {
        codec::Remark told = archive.Told();
        progress.Tell(told.condition, std::move(told.text));
        return opened;
    }
    const auto index = static_cast<size_t>(position);
    Result result = Result::kInternalError;
    if (index < archive.Reader().Members().size()) {
        result = (flag & kDestinationMask) == susie::kDestinationMemory
                     ? ExtractToMemory(archive.Reader(), index,
                                       *reinterpret_cast<HLOCAL*>(destination), progress)
                     : ExtractToFolder(archive.Reader(), index, destination, progress);
    }
    archive.Remember();
    return result;
}

// Of a set that was cut where nobody looks for a beginning, only the first file looks like an
// archive. The others are taken to be called what they are.
bool IsNamedVolume(std::string_view name) {
    if (IsPieceName(name)) return true;
    if (!EndsWith(name, ".zip")) return false;
    const auto file = spi::FilePart::Open(files::FileNameOf(std::string(name).c_str()), 0);
    return file != nullptr && IsLastZipVolume(*file);
}

}  // namespace
}  // namespace tessary::unpack

using namespace tessary;

extern "C" {

__declspec(dllexport) int __stdcall GetPluginInfo(int infoNumber, char* buffer, int bufferLength) {
    try {
        return spi::WritePluginInfo("00AM", infoNumber, buffer, bufferLength);
    } catch (...) {
        return 0;
    }
}

__declspec(dllexport) int __stdcall IsSupported(const char* fileName, const void* header) {
    try {
        spi::HeaderBlock block;
        const std::string_view name = fileName == nullptr ? "" : fileName;
        return unpack::IsArchive(spi::HeaderBytes(fileName, header, block), name) ||
                       unpack::IsNamedVolume(name)
                   ? 1
                   : 0;
    } catch (...) {
        return 0;
    }
}

__declspec(dllexport) int __stdcall GetArchiveInfo(const char* source, LONG_PTR length,
                                                   uint32_t flag, HLOCAL* members) {
    return spi::GuardedAndTold([&](codec::Remark& remark) {
        if (members == nullptr) return codec::Result::kInternalError;
        return unpack::ListMembers(source, length, flag, *members, remark);
    });
}

__declspec(dllexport) int __stdcall GetFileInfo(const char* source, LONG_PTR length,
                                                const char* fileName, uint32_t flag,
                                                susie::FileInfo* info) {
    return spi::GuardedAndTold([&](codec::Remark& remark) {
        if (fileName == nullptr || info == nullptr) return codec::Result::kInternalError;
        return unpack::DescribeMember(source, length, fileName, flag, *info, remark);
    });
}

// By the interface, the second argument is the member's position here, not the archive's length.
__declspec(dllexport) int __stdcall GetFile(const char* source, LONG_PTR position,
                                            char* destination, uint32_t flag,
                                            susie::ProgressCallback progress, LONG_PTR userData) {
    return spi::GuardedAndTold([&](codec::Remark& remark) {
        if (destination == nullptr) return codec::Result::kInternalError;
        codec::Progress listener = spi::HostProgress(progress, userData);
        const codec::Result result =
            unpack::ExtractMember(source, position, destination, flag, listener);
        remark = listener.Told();
        return result;
    });
}

__declspec(dllexport) int __stdcall GetLastCondition(wchar_t* text, int length) {
    return spi::AnswerCondition(text, length);
}

}  // extern "C"
