#include "plugin/archive_members.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_set>

#include "app/base/text.h"

namespace tessary {
namespace {

// Behind it there may be anything.
bool IsEnd(const susie::FileInfo& member) {
    return member.method[0] == 0;
}

// A text up to its NUL or its end.
template <typename Char, size_t kSize>
std::string_view TextOf(const Char (&field)[kSize]) {
    const auto* const text = reinterpret_cast<const char*>(field);
    return {text, strnlen(text, kSize)};
}

bool HasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char each) { return static_cast<uint8_t>(each) < 0x20; });
}

bool LooksLikeMember(const susie::FileInfo& member) {
    const bool isNamed = member.path[0] != 0 || member.fileName[0] != 0;
    return isNamed && !HasControls(TextOf(member.method)) && !HasControls(TextOf(member.path)) &&
           !HasControls(TextOf(member.fileName));
}

// Converted before it is split at separators: the second byte of a double-byte character can look
// like one.
template <size_t kSize>
std::wstring FieldText(const char (&field)[kSize]) {
    std::wstring text = FromAnsi(TextOf(field));
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
}

using FolderSet = std::unordered_set<std::wstring>;

// Every folder that a name lies in, whole paths in upper case without the last separator.
FolderSet FoldersOf(const std::vector<ListedMember>& files) {
    FolderSet folders;
    std::wstring_view last;
    for (const ListedMember& file : files) {
        std::wstring_view name = file.name;
        name = name.substr(0, std::min(name.rfind(L'\\'), name.size()));
        if (name.size() == file.name.size() || name == last) continue;
        last = name;
        for (std::wstring folder = ToUpper(name); folders.insert(folder).second;) {
            const size_t end = folder.rfind(L'\\');
            if (end == std::wstring::npos) break;
            folder.resize(end);
        }
    }
    return folders;
}

}  // namespace

ArchiveMembers ReadArchiveMembers(HLOCAL block) {
    ArchiveMembers members;
    const BlockLock lock(block);
    const auto* const bytes = static_cast<const uint8_t*>(lock.Address());
    for (size_t i = 0; i < lock.Size() / sizeof(susie::FileInfo); ++i) {
        susie::FileInfo member;
        std::memcpy(&member, bytes + i * sizeof(member), sizeof(member));
        if (IsEnd(member)) break;
        members.push_back(member);
    }
    return members;
}

bool LooksLikeList(const ArchiveMembers& members) {
    return !members.empty() && std::ranges::all_of(members, LooksLikeMember);
}

std::wstring ArchiveMemberName(const susie::FileInfo& member) {
    std::wstring folder = FieldText(member.path);
    const std::wstring name = FieldText(member.fileName);
    if (!folder.empty() && folder.back() != L'\\') folder += L'\\';
    // Some plug-ins name the folder in both fields.
    return name.starts_with(folder) ? name : folder + name;
}

uint64_t MemberChanged(const susie::FileInfo& member) {
    // Archives write the first day of 1980 for want of one, and cannot write what is behind 2107.
    constexpr int64_t kFirst = 315'705'600, kLast = 4'354'819'200;
    constexpr int64_t kBefore1970 = 11'644'473'600, kUnitsInSecond = 10'000'000;
    const auto seconds = static_cast<int64_t>(member.timestamp);
    if (seconds < kFirst || seconds > kLast) return 0;
    return static_cast<uint64_t>((seconds + kBefore1970) * kUnitsInSecond);
}

std::vector<ListedMember> FilesAmong(const ArchiveMembers& members) {
    std::vector<ListedMember> files;
    files.reserve(members.size());
    for (size_t i = 0; i < members.size(); ++i) {
        files.push_back(
            {.name = ArchiveMemberName(members[i]),
             .position = static_cast<int32_t>(i) + 1,
             .size = members[i].fileSize,
             .time = static_cast<uint64_t>(std::max<int64_t>(members[i].timestamp, 0))});
    }
    const FolderSet folders = FoldersOf(files);
    std::erase_if(files, [&](const ListedMember& file) {
        if (file.name.ends_with(L'\\')) return true;
        const auto& record = members[static_cast<size_t>(file.position) - 1];
        return record.fileSize == 0 && folders.contains(ToUpper(file.name));
    });
    return files;
}

}  // namespace tessary
