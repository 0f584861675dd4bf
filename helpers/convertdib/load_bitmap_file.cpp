#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include "helpers/convertdib/convertdib.h"
#include "helpers/dib/bitmap_file.h"
#include "helpers/files/file_name.h"
#include "helpers/files/file_source.h"

namespace tessary::convertdib {
namespace {

struct FreeLockedBlock {
    void operator()(void* address) const {
        const HLOCAL block = LocalHandle(address);
        LocalUnlock(block);
        LocalFree(block);
    }
};
// The address of a movable local-memory block that is locked once.
using LockedBlock = std::unique_ptr<void, FreeLockedBlock>;

LockedBlock AllocateLocked(size_t size) {
    const HLOCAL block = LocalAlloc(LMEM_MOVEABLE, size);
    if (block == nullptr) return nullptr;
    LockedBlock address(LocalLock(block));
    if (!address) LocalFree(block);
    return address;
}

// As the entries answer.
int Load(const std::wstring& fileName, BitmapReadRecord& record, const dib::Progress& progress) {
    auto file = files::FileSource::Open(fileName);
    if (!file) return 0;
    dib::BitmapFile bitmap(*file);
    if (bitmap.Open() != dib::DibError::kNone) return 0;
    LockedBlock bits = AllocateLocked(bitmap.BitsSize());
    if (!bits) return 0;
    const std::span rows(static_cast<uint8_t*>(bits.get()), bitmap.BitsSize());
    if (bitmap.ReadBits(rows, progress) != dib::DibError::kNone) return 0;

    const auto info = bitmap.Info();
    const auto behindHeader = info.subspan(dib::kInfoHeaderSize);
    auto* header = static_cast<uint8_t*>(record.info);
    std::memcpy(header, info.data(), dib::kInfoHeaderSize);
    std::memcpy(record.colorTable != nullptr ? record.colorTable : header + dib::kInfoHeaderSize,
                behindHeader.data(), behindHeader.size());
    record.bits = bits.release();
    return bitmap.IsWhole() ? kBitmapWhole : kBitmapCutShort;
}

// What both entries do, for a name in either kind of text.
template <typename Char>
int LoadGuarded(const Char* fileName, BitmapReadRecord* record, ProgressCallback callback,
                LONG_PTR userData) {
    if (record == nullptr) return 0;
    record->bits = nullptr;
    if (fileName == nullptr || record->info == nullptr) return 0;
    try {
        dib::Progress progress;
        if (callback != nullptr) {
            progress = [callback, userData](int percent) {
                return callback(percent, 100, userData) == 0;
            };
        }
        return Load(files::FileNameOf(fileName), *record, progress);
    } catch (...) {
        return 0;  // no exception crosses the boundary of the library
    }
}

}  // namespace
}  // namespace tessary::convertdib

using tessary::convertdib::BitmapReadRecord;
using tessary::convertdib::LoadGuarded;
using tessary::convertdib::ProgressCallback;

extern "C" __declspec(dllexport) int __stdcall LoadBITMAPFile(const char* fileName,
                                                              BitmapReadRecord* record,
                                                              ProgressCallback progress,
                                                              LONG_PTR userData) {
    return LoadGuarded(fileName, record, progress, userData);
}

extern "C" __declspec(dllexport) int __stdcall LoadBITMAPFileW(const wchar_t* fileName,
                                                               BitmapReadRecord* record,
                                                               ProgressCallback progress,
                                                               LONG_PTR userData) {
    return LoadGuarded(fileName, record, progress, userData);
}
