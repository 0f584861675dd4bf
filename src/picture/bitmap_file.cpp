#include "picture/bitmap_file.h"

#include <cstring>

#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/helper_function.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "helpers/convertdib/convertdib.h"

namespace tessary {
namespace {

// An info block as the reader wants it: the header and a colour table of 256 entries.
constexpr size_t kReadInfoSize = dib::kInfoHeaderSize + 256 * sizeof(dib::PaletteEntry);

int __stdcall OnReadProgress(int done, int total, LONG_PTR userData) {
    const auto& progress = *reinterpret_cast<const ReadProgress*>(userData);
    return Trapped(1, [&] { return !progress || progress(done, total) ? 0 : 1; });
}

// What a file's first bytes say. Behind the 14-byte file header stands the info header's own size:
// 12 for OS/2 1.x, 16 to 64 for OS/2 2.x, 40 to 124 for the Windows versions.
// A file that ends before that is a bitmap cut short.
bool HasBitmapHeader(const uint8_t (&head)[18], DWORD size) {
    if (head[0] != 'B' || (head[1] != 'M' && head[1] != 'A')) return false;
    if (size < sizeof(head)) return true;
    if (head[1] == 'A') return head[14] == 'B' && head[15] == 'M';  // an OS/2 bitmap array
    uint32_t headerSize = 0;
    std::memcpy(&headerSize, head + 14, sizeof(headerSize));
    return headerSize >= 12 && headerSize <= 124;
}

void TellUnreadable(const std::wstring& path, const wchar_t* what, const wchar_t* why) {
    ShowMessageBox(L"ファイル " + path + what + L"\r\n" + why +
                       L"、ほかのアプリケーションで使用中の可能性があります。",
                   MB_ICONEXCLAMATION);
}

}  // namespace

BitmapCheck IsBITMAPFile(const std::wstring& path, OnUnreadable onUnreadable) {
    try {
        const bool tells = onUnreadable == OnUnreadable::kTellUser;
        const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) {
            if (tells) TellUnreadable(path, L" が開けません。", L"ファイルが存在しないか");
            return BitmapCheck::kUnreadable;
        }
        uint8_t head[18] = {};
        DWORD read = 0;
        if (!ReadFile(file.Get(), head, sizeof(head), &read, nullptr) || read == 0) {
            if (tells) TellUnreadable(path, L" の読み取りエラーです。", L"ファイルが壊れているか");
            return BitmapCheck::kUnreadable;
        }
        return HasBitmapHeader(head, read) ? BitmapCheck::kYes : BitmapCheck::kNo;
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"IsBITMAPFile(");
        return BitmapCheck::kUnreadable;
    }
}

bool ReadBitmapFile(const std::wstring& path, PicturePair& picture, const ReadProgress& progress) {
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
        picture = {info.Release(), bits.Release()};
        return true;
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"ReadBitmapFile(");
        return false;
    }
}

}  // namespace tessary
