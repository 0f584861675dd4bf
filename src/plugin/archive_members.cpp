#include "plugin/archive_members.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "app/base/text.h"

namespace tessary {
namespace {

bool IsEnd(const susie::FileInfo& member) {
    return std::all_of(std::begin(member.method), std::end(member.method),
                       [](uint8_t byte) { return byte == 0; });
}

// A text field up to its NUL or its end. Converted before it is split at separators: the second
// byte of a double-byte character can look like one.
template <size_t kSize>
std::wstring FieldText(const char (&field)[kSize]) {
    std::wstring text = FromAnsi(std::string_view(field, strnlen(field, kSize)));
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
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

std::wstring ArchiveMemberName(const susie::FileInfo& member) {
    std::wstring folder = FieldText(member.path);
    const std::wstring name = FieldText(member.fileName);
    if (!folder.empty() && folder.back() != L'\\') folder += L'\\';
    // Some plug-ins name the folder in both fields.
    return name.starts_with(folder) ? name : folder + name;
}

}  // namespace tessary
