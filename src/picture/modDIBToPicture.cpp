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

Picture CreateDIBFromBitmap(HDC context, HBITMAP bitmap) {
    BITMAP size{};
    if (GetObjectW(bitmap, sizeof(size), &size) == 0) return {};
    dib::BitmapInfoHeader header{
        dib::kInfoHeaderSize, size.bmWidth, size.bmHeight, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    header.sizeImage = static_cast<uint32_t>(dib::BitsBlockSize(header));
    BITMAPINFO info{};
    std::memcpy(&info.bmiHeader, &header, sizeof(header));
    return Picture::Make(dib::BytesOf(header), [&](std::span<uint8_t> rows) {
        return GetDIBits(context, bitmap, 0, static_cast<UINT>(size.bmHeight), rows.data(), &info,
                         DIB_RGB_COLORS) == size.bmHeight;
    });
}

}  // namespace tessary
