#include "ui/main/clipboard_commands.h"

#include <string>
#include <vector>

#include "app/base/message_box.h"
#include "picture/clipboard_picture.h"
#include "picture/current_picture.h"
#include "picture/show/modShowPicture.h"
#include "picture/show/picture_text.h"
#include "res/resource.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/clipboard.h"
#include "ui/form/text_field.h"

namespace tessary {
namespace {

constexpr wchar_t kPictureSource[] = L"クリップボード";

// A PNG of more pixels would keep the user waiting; programs that prefer it take the bitmap too.
constexpr int64_t kMostPngPixels = 4'000'000;

// The system offers each of them where a program has put the other.
bool OffersPicture() {
    return IsClipboardFormatAvailable(CF_BITMAP) || IsClipboardFormatAvailable(CF_DIB);
}

int64_t PixelsOf(const PicturePair& picture) {
    dib::BitmapInfoHeader header{};
    GetPictureHeader(picture, header);
    return int64_t{header.width} * std::abs(int64_t{header.height});
}

// The device-independent bitmap stands for the plain bitmap too, which the system makes of it when
// a program asks.
bool CopyPicture(HWND owner, const PicturePair& picture) {
    std::vector<ClipboardItem> items;
    items.push_back({CF_DIB, MakeClipboardDIB(picture)});
    if (!items[0].block) return false;
    if (PixelsOf(picture) <= kMostPngPixels) {
        UniqueGlobal png = MakeClipboardPNG(picture);
        if (png) items.push_back({RegisterClipboardFormatW(L"PNG"), std::move(png)});
    }
    return PutOnClipboard(owner, items);
}

// Whether the clipboard's picture is the current one now.
bool TakePicture(HWND owner) {
    const HLOCAL former = CurrentPicture().info;
    const ClipboardSession clipboard(owner);
    if (!clipboard) return false;
    const HANDLE block = GetClipboardData(CF_DIB);
    if (block != nullptr) PictureFromClipboardDIB(block);
    return CurrentPicture().info != former;
}

}  // namespace

ClipboardCommands::ClipboardCommands(frmMain& window)
    : window_(window),
      accelerators_(
          acceleratorsClipboard, [&window] { return window.Handle(); },
          [this](const MSG& key) { return AreKeysOurs(key.hwnd); }) {
    window_.Commands().Register(menuEditCopy,
                                {.run = [this] { menuEditCopy_Click(); },
                                 .enabled = [this] { return window_.PictureShown(); }});
    window_.Commands().Register(
        menuEditPaste, {.run = [this] { menuEditPaste_Click(); }, .enabled = OffersPicture});
}

bool ClipboardCommands::AreKeysOurs(HWND focused) const {
    return GetAncestor(focused, GA_ROOTOWNER) == window_.Handle() &&
           IsWindowEnabled(window_.Handle()) && !IsTextField(focused);
}

void ClipboardCommands::menuEditCopy_Click() {
    const BusyPointer busy;
    if (!CopyPicture(window_.Handle(), CurrentPicture())) {
        ShowMessageBox(L"クリップボードにデータをコピーできません");
    }
}

void ClipboardCommands::menuEditPaste_Click() {
    if (!OffersPicture()) return;
    const BusyPointer busy;
    if (!TakePicture(window_.Handle())) return;
    if (!DisplayCurrentPicture(window_)) {
        // Neither the former picture nor this one's name may stand for what is not there.
        SetCurrentPicture({});
        window_.ClearPicture();
        window_.ShowForeignPicture({});
        ShowMessageBox(L"クリップボード内の画像 を表示できません。", MB_ICONEXCLAMATION);
        return;
    }
    dib::BitmapInfoHeader header{};
    GetPictureHeader(CurrentPicture(), header);
    window_.SetPictureSource({kPictureSource, {}});
    const std::wstring name = L"クリップボード内の画像";
    window_.SetPanelText(kPluginCountPanel,
                         kTagShown + name + L" ( " + std::to_wstring(header.bitCount) + L"bit )");
    window_.ShowForeignPicture(name + PictureInfoTail());
}

}  // namespace tessary
