#include "picture/bitmap_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "app/base/error.h"
#include "app/base/fetch_file.h"
#include "app/base/handles.h"
#include "app/base/helper_function.h"
#include "app/base/paths.h"
#include "helpers/color/color_profile.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/dib/bitmap_file.h"
#include "helpers/dib/embedded_profile.h"
#include "helpers/files/file_source.h"
#include "picture/srgb_picture.h"

namespace tessary {
namespace {

// An info block as the reader wants it: the header and a colour table of 256 entries.
constexpr size_t kReadInfoSize = dib::kInfoHeaderSize + 256 * sizeof(dib::PaletteEntry);

// How many bytes tell a bitmap.
constexpr size_t kHeadSize = 18;

constexpr wchar_t kCutShortText[] = L"ファイルが途中で切れています";

bool MayGoOn(const ReadProgress& progress, int done, int total) {
    return Trapped(false, [&] { return !progress || progress(done, total); });
}

int __stdcall OnReadProgress(int done, int total, LONG_PTR userData) {
    return MayGoOn(*reinterpret_cast<const ReadProgress*>(userData), done, total) ? 0 : 1;
}

// What a file's first bytes say. Behind the 14-byte file header stands the info header's own size:
// 12 for OS/2 1.x, 16 to 64 for OS/2 2.x, 40 to 124 for the Windows versions.
// A file that ends before that is a bitmap cut short.
bool HasBitmapHeader(std::span<const uint8_t> head) {
    if (head.size() < 2 || head[0] != 'B' || (head[1] != 'M' && head[1] != 'A')) return false;
    if (head.size() < kHeadSize) return true;
    if (head[1] == 'A') return head[14] == 'B' && head[15] == 'M';  // an OS/2 bitmap array
    uint32_t headerSize = 0;
    std::memcpy(&headerSize, &head[14], sizeof(headerSize));
    return headerSize >= 12 && headerSize <= 124;
}

// Of the system's last error.
std::wstring UnreadableText(const std::wstring& path, const wchar_t* what, const wchar_t* why) {
    const DWORD error = GetLastError();
    const std::wstring reason = L"、ほかのアプリケーションで使用中の可能性があります。";
    return L"ファイル " + path + what + L"\r\n" +
           (IsFetchError(error) ? FetchErrorText(error) : why + reason);
}

// In sRGB, whatever profile the file has.
Picture WithColorsOf(dib::ByteSource& file, Picture picture) {
    picture.SetProfile(dib::EmbeddedProfile(file, color::kLargestProfile));
    return SrgbPicture(std::move(picture));
}

}  // namespace

BitmapCheck IsBITMAPFile(const std::wstring& path, std::wstring& failure) {
    try {
        const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) {
            failure = UnreadableText(path, L" が開けません。", L"ファイルが存在しないか");
            return BitmapCheck::kUnreadable;
        }
        uint8_t head[kHeadSize];
        DWORD read = 0;
        if (!ReadFile(file.Get(), head, sizeof(head), &read, nullptr)) {
            failure = UnreadableText(path, L" の読み取りエラーです。", L"ファイルが壊れているか");
            return BitmapCheck::kUnreadable;
        }
        return HasBitmapHeader(std::span(head).first(read)) ? BitmapCheck::kYes : BitmapCheck::kNo;
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"IsBITMAPFile(");
        return BitmapCheck::kUnreadable;
    }
}

bool ReadBitmapFile(const std::wstring& path, Picture& picture, const ReadProgress& progress,
                    std::wstring* damage) {
    try {
        const auto load = HelperFunction<convertdib::LoadBITMAPFileWFunction>(
            L"convertdib.dll", convertdib::kLoadBITMAPFileWName);
        if (load == nullptr) return false;
        OwnedBlock info(LocalAlloc(LMEM_MOVEABLE | LMEM_ZEROINIT, kReadInfoSize));
        convertdib::BitmapReadRecord record{};
        int loaded = 0;
        {
            const BlockLock lock(info.Get());
            if (!lock) return false;
            record.info = lock.Address();
            record.colorTable = static_cast<uint8_t*>(lock.Address()) + dib::kInfoHeaderSize;
            record.colorTableAgain = record.colorTable;
            loaded = load(ExtendedPath(path).c_str(), &record, OnReadProgress,
                          reinterpret_cast<LONG_PTR>(&progress));
        }
        OwnedBlock bits(record.bits == nullptr ? nullptr : LocalHandle(record.bits));
        if (loaded == 0 || !bits) return false;
        UnlockLocalHandle(bits.Get());
        Picture read = Picture::FromPair({info.Release(), bits.Release()});
        if (!read) return false;
        if (damage != nullptr) {
            *damage = loaded == convertdib::kBitmapCutShort ? kCutShortText : L"";
        }
        auto file = files::FileSource::Open(path);
        picture = file ? WithColorsOf(*file, std::move(read)) : std::move(read);
        return true;
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"ReadBitmapFile(");
        return false;
    }
}

bool IsBitmapBlock(HLOCAL block) {
    const BlockLock lock(block);
    return HasBitmapHeader(lock.Bytes().first(std::min(lock.Size(), kHeadSize)));
}

Picture ReadBitmapBlock(HLOCAL block, const ReadProgress& progress, std::wstring& damage) {
    const BlockLock lock(block);
    dib::MemorySource source(lock.Bytes());
    dib::BitmapFile bitmap(source);
    if (bitmap.Open() != dib::DibError::kNone) return {};
    Picture picture = Picture::Make(bitmap.Info(), [&](std::span<uint8_t> rows) {
        return bitmap.ReadBits(rows, [&](int percent) {
            return MayGoOn(progress, percent, 100);
        }) == dib::DibError::kNone;
    });
    if (!picture) return {};
    damage = bitmap.IsWhole() ? L"" : kCutShortText;
    return WithColorsOf(source, std::move(picture));
}

}  // namespace tessary
