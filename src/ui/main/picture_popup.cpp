#include "ui/main/picture_popup.h"

#include <cstdlib>

#include "picture/metadata/picture_origin.h"
#include "res/resource.h"

namespace tessary {
namespace {

// The items that tell something, in menu order.
constexpr int kInformationItems[] = {menuPopupFileName, menuPopupPluginName, menuPopupGraphicSize,
                                     menuPopupColorDepth};

constexpr wchar_t kNone[] = L"なし";

std::wstring OrElse(const std::wstring& text, const wchar_t* whenEmpty) {
    return text.empty() ? whenEmpty : text;
}

std::wstring SizeText(const dib::BitmapInfoHeader& header) {
    return std::to_wstring(header.width) + L"×" + std::to_wstring(std::abs(int64_t{header.height}));
}

}  // namespace

std::wstring PicturePopupText(int id, const PictureSource& source, const Picture* picture) {
    switch (id) {
        case menuPopupGraphicInfo:
            return L"画像情報";
        case menuPopupFileName:
            return L"ファイル名 <" + OrElse(source.fileName, picture != nullptr ? L"不明" : kNone) +
                   L">";
        case menuPopupPluginName:
            return L"使用プラグイン <" + OrElse(source.pluginName, kNone) + L">";
        case menuPopupGraphicSize:
            return L"画像サイズ <" + (picture != nullptr ? SizeText(picture->Header()) : kNone) +
                   L">";
        case menuPopupColorDepth:
            return L"色数 <" +
                   (picture != nullptr ? std::to_wstring(ToldDepth(*picture)) + L"bit" : kNone) +
                   L">";
        default:
            return {};
    }
}

std::wstring PicturePopupCopyText(int id, const PictureSource& source, const Picture& picture) {
    if (id != menuPopupGraphicInfo) return PicturePopupText(id, source, &picture);
    std::wstring lines;
    for (const int item : kInformationItems) {
        if (!lines.empty()) lines += L"\r\n";
        lines += PicturePopupText(item, source, &picture);
    }
    return lines;
}

}  // namespace tessary
