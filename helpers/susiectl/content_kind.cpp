// Tells a file's format from its first bytes.
#include <cstdint>
#include <string_view>

#include "helpers/susiectl/entry.h"
#include "helpers/susiectl/input_file.h"
#include "helpers/susiectl/susiectl.h"

namespace tessary::susiectl {
namespace {

using namespace std::string_view_literals;

// "BM" alone begins many a text. The size of the second header, at 14, is one of few numbers.
bool IsBmp(std::string_view head) {
    if (!head.starts_with("BM"sv) || head.size() < 18) return false;
    uint32_t headerSize = 0;
    for (size_t i = 0; i < 4; ++i)
        headerSize |= static_cast<uint32_t>(static_cast<uint8_t>(head[14 + i])) << (8 * i);
    return headerSize == 12 || (headerSize >= 16 && headerSize <= 124 && headerSize % 4 == 0);
}

// The name of the compression method, as "-lh5-", follows a size and a checksum byte.
bool IsLzh(std::string_view head) {
    if (head.size() < 7 || head[2] != '-' || head[6] != '-') return false;
    const auto family = head.substr(3, 2);
    return family == "lh"sv || family == "lz"sv || family == "pm"sv;
}

// The second form is an archive without members.
bool IsZip(std::string_view head) {
    return head.starts_with("PK\3\4"sv) || head.starts_with("PK\5\6"sv);
}

int KindOfContent(std::string_view head) {
    if (IsBmp(head)) return kContentBmp;
    if (head.starts_with("\x89PNG\r\n\x1A\n"sv)) return kContentPng;
    if (head.starts_with("\xFF\xD8\xFF"sv)) return kContentJpeg;
    if (head.starts_with("GIF87a"sv) || head.starts_with("GIF89a"sv)) return kContentGif;
    if (IsLzh(head)) return kContentLzh;
    if (IsZip(head)) return kContentZip;
    return kContentUnknown;
}

int KindOfFile(const std::wstring& path) {
    char head[18];  // as much as the tests above look at
    const InputFile file(path);
    if (!file.IsOpen()) return kContentUnknown;
    return KindOfContent({head, file.Read(0, std::as_writable_bytes(std::span(head)))});
}

}  // namespace
}  // namespace tessary::susiectl

using namespace tessary::susiectl;

SUSIECTL_ENTRY int __stdcall GetFileInformation(const char* path) {
    return WithoutExceptions(kContentUnknown, [&] { return KindOfFile(FromAnsi(path)); });
}

SUSIECTL_ENTRY int __stdcall GetFileInformationW(const wchar_t* path) {
    return WithoutExceptions(kContentUnknown, [&] { return KindOfFile(path ? path : L""); });
}
