#include "picture/show/picture_text.h"

#include "picture/current_picture.h"
#include "picture/metadata/picture_origin.h"

namespace tessary {

std::wstring PictureInfoTail() {
    const Picture& picture = CurrentPicture();
    if (!picture) return {};
    return L" ( " + std::to_wstring(picture.Width()) + L"×" + std::to_wstring(picture.Height()) +
           L" " + std::to_wstring(ToldDepth(picture)) + L"bit )" +
           (CurrentPictureDamage().empty() ? L"" : kDamagedMark);
}

}  // namespace tessary
