#include "ui/control/toolbar_items.h"

#include "ui/control/toolbar_images.h"

namespace tessary {
namespace {

ToolbarItem Item(int index, ToolbarItem::Kind kind, ToolbarImage image, const wchar_t* name,
                 const wchar_t* keys) {
    return {index, kind, static_cast<int>(image), name, keys};
}

ToolbarItem Separator(int index) {
    return {index, ToolbarItem::Kind::kSeparator};
}

}  // namespace

std::span<const ToolbarItem> ControlBarItems() {
    using enum ToolbarItem::Kind;
    using enum ToolbarImage;
    static const ToolbarItem items[] = {
        Item(1, kButton, kRewind, L"巻き戻し", L"Z"),
        Item(2, kButton, kReversePlay, L"逆再生", L"X"),
        Item(3, kButton, kStepBack, L"前へ", L"Shift+Enter"),
        Item(4, kButton, kStop, L"停止", L"C"),
        Item(5, kButton, kStepForward, L"次へ", L"Enter"),
        Item(6, kButton, kPlay, L"再生", L"V"),
        Item(7, kButton, kFastForward, L"早送り", L"B"),
        Separator(8),
        Item(9, kDropDown, SizeModeImage(0), L"表示サイズ", L"S"),
        Separator(10),
        Item(11, kDropDown, kOpen, L"ファイルを開く", L"Ctrl+O"),
        Item(12, kDropDown, kSave, L"名前を付けて保存", L"Ctrl+S"),
        Separator(13),
        Item(14, kButton, kAddToDeleteList, L"削除リストに追加", L"Ctrl+Delete"),
        Item(15, kButton, kFold, L"折りたたむ / 広げる", L"F"),
        Item(16, kButton, kCancelDelete, L"削除の取り消し", L"Esc"),
        Separator(17),
        Item(18, kButton, kPauseFrames, L"アニメーションの一時停止 / 再生", L"P"),
    };
    return items;
}

ToolbarImages ControlBarImages() {
    return {.count = kToolbarImageCount, .draw = [](int image, const ImageLook& look) {
                return DrawToolbarImage(static_cast<ToolbarImage>(image), look);
            }};
}

}  // namespace tessary
