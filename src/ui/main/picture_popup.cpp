#include "ui/main/picture_popup.h"

#include <cstdlib>

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

std::wstring PicturePopupText(int id, const PictureSource& source,
                              const dib::BitmapInfoHeader* header) {
    switch (id) {
        case menuPopupGraphicInfo:
            return L"画像情報";
        case menuPopupFileName:
            return L"ファイル名 <" + OrElse(source.fileName, header != nullptr ? L"不明" : kNone) +
                   L">";
        case menuPopupPluginName:
            return L"使用プラグイン <" + OrElse(source.pluginName, kNone) + L">";
        case menuPopupGraphicSize:
            return L"画像サイズ <" + (header != nullptr ? SizeText(*header) : kNone) + L">";
        case menuPopupColorDepth:
            return L"色数 <" +
                   (header != nullptr ? std::to_wstring(header->bitCount) + L"bit" : kNone) + L">";
        default:
            return {};
    }
}

std::wstring PicturePopupCopyText(int id, const PictureSource& source,
                                  const dib::BitmapInfoHeader& header) {
    if (id != menuPopupGraphicInfo) return PicturePopupText(id, source, &header);
    std::wstring lines;
    for (const int item : kInformationItems) {
        if (!lines.empty()) lines += L"\r\n";
        lines += PicturePopupText(item, source, &header);
    }
    return lines;
}

}  // namespace tessary
