#include "picture/show/picture_text.h"

#include <cstdlib>

#include "picture/current_picture.h"

namespace tessary {

std::wstring PictureInfoTail() {
    dib::BitmapInfoHeader header{};
    if (!GetPictureHeader(CurrentPicture(), header)) return {};
    return L" ( " + std::to_wstring(header.width) + L"×" +
           std::to_wstring(std::abs(header.height)) + L" " + std::to_wstring(header.bitCount) +
           L"bit )" + (CurrentPictureDamage().empty() ? L"" : kDamagedMark);
}

}  // namespace tessary
