#include "picture/modDIBToPicture.h"

#include <olectl.h>

#include <cstring>

#include "app/base/handles.h"

namespace tessary {
namespace {

// Keeps OLE initialised for one call; a thread that already uses it in another way counts as
// initialised.
class OleSession {
  public:
    OleSession() : result_(OleInitialize(nullptr)) {}
    OleSession(const OleSession&) = delete;
    OleSession& operator=(const OleSession&) = delete;
    ~OleSession() {
        if (SUCCEEDED(result_)) OleUninitialize();
    }

  private:
    HRESULT result_;
};

}  // namespace

HBITMAP CreateBitmapFromDIB(HDC context, const LockedPair& pair) {
    if (pair.bits == nullptr || pair.info == nullptr) return nullptr;
    return CreateDIBitmap(context, static_cast<const BITMAPINFOHEADER*>(pair.info), CBM_INIT,
                          pair.bits, static_cast<const BITMAPINFO*>(pair.info), DIB_RGB_COLORS);
}

IPicture* BitmapToPicture(HBITMAP bitmap) {
    const OleSession ole;
    // On x86 the record's size is the 20 bytes that picture descriptions have always had.
    PICTDESC description{};
    description.cbSizeofstruct = sizeof(description);
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = bitmap;
    description.bmp.hpal = nullptr;
    void* picture = nullptr;
    const HRESULT result = OleCreatePictureIndirect(&description, IID_IPicture, TRUE, &picture);
    return SUCCEEDED(result) ? static_cast<IPicture*>(picture) : nullptr;
}

bool DIBToPicture(HDC context, const LockedPair& pair, IPicture** picture) {
    UniqueBitmap bitmap(CreateBitmapFromDIB(context, pair));
    if (!bitmap) return false;
    *picture = BitmapToPicture(bitmap.Get());
    if (*picture == nullptr) return false;
    (void)bitmap.Release();
    return true;
}

OwnedPicture CreateDIBFromBitmap(HDC context, HBITMAP bitmap) {
    BITMAP size{};
    if (GetObjectW(bitmap, sizeof(size), &size) == 0) return {};
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size.bmWidth;
    info.bmiHeader.biHeight = size.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    const uint64_t stride = dib::RowStride(static_cast<uint64_t>(size.bmWidth), 24);
    const uint64_t bytes = stride * static_cast<uint64_t>(size.bmHeight);
    if (bytes > MAXLONG) return {};
    info.bmiHeader.biSizeImage = static_cast<DWORD>(bytes);
    OwnedBlock header = FilledBlock(sizeof(info.bmiHeader), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), &info.bmiHeader, target.size());
    });
    bool complete = false;
    OwnedBlock bits = FilledBlock(static_cast<size_t>(bytes), [&](std::span<uint8_t> target) {
        complete = GetDIBits(context, bitmap, 0, static_cast<UINT>(size.bmHeight), target.data(),
                             &info, DIB_RGB_COLORS) == size.bmHeight;
    });
    if (!header || !complete) return {};
    return OwnedPicture({header.Release(), bits.Release()});
}

}  // namespace tessary
