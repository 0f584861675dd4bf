// Drawing a decoded picture.
#include <algorithm>
#include <cmath>

#include "helpers/dib/dib_view.h"
#include "picture/opaque_picture.h"
#include "plugin/clsSusie.h"

namespace tessary {
namespace {

// Where a picture of that size is drawn in a box: as large as fits at its own proportions, centred.
RECT FittedRect(int width, int height, int boxWidth, int boxHeight) {
    const float fx = static_cast<float>(boxWidth) / static_cast<float>(width);
    const float fy = static_cast<float>(boxHeight) / static_cast<float>(height);
    const auto scaled = [](int length, float factor) {
        return std::max(1, static_cast<int>(std::lrint(static_cast<float>(length) * factor)));
    };
    const int drawnWidth = fx > fy ? scaled(width, fy) : boxWidth;
    const int drawnHeight = fx < fy ? scaled(height, fx) : boxHeight;
    const int left = (boxWidth - drawnWidth) / 2;
    const int top = (boxHeight - drawnHeight) / 2;
    return {left, top, left + drawnWidth, top + drawnHeight};
}

}  // namespace

void clsSusie::ShowPicture(HDC context, int boxWidth, int boxHeight, const PicturePair& picture) {
    Member(L"ShowPicture( ", [&] {
        const BlockLock info(picture.info);
        const BlockLock bits(picture.bits);
        const std::optional<dib::DibView> view = dib::DibView::Of(info.Bytes(), bits.Bytes());
        if (!view) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
        const Picture opaque = OpaquePicture(*view);

        const bool fit = showType_ != 0;
        const RECT target = fit ? FittedRect(view->Width(), view->Height(), boxWidth, boxHeight)
                                : RECT{0, 0, view->Width(), view->Height()};
        SetStretchBltMode(context, COLORONCOLOR);
        const int drawn = StretchDIBits(
            context, target.left, target.top, target.right - target.left,
            target.bottom - target.top, 0, 0, view->Width(), view->Height(),
            opaque ? opaque.Bits().data() : bits.Address(),
            static_cast<const BITMAPINFO*>(opaque ? static_cast<const void*>(opaque.Info().data())
                                                  : info.Address()),
            DIB_RGB_COLORS, SRCCOPY);
        SetError(L"ShowPicture Return:" + std::to_wstring(drawn) + L" " +
                     (fit ? L"PreView ShowFixControl" : L"PreView ShowDefault"),
                 L"ShowPicture( ");
        if (drawn == 0 || drawn == static_cast<int>(GDI_ERROR)) {
            throw PluginError(kErrorDrawingFailed, kDrawingFailedText);
        }
    });
}

}  // namespace tessary
