#include "ui/main/clipboard_commands.h"

#include <string>
#include <vector>

#include "app/base/message_box.h"
#include "app/settings/modValue.h"
#include "picture/clipboard_picture.h"
#include "picture/current_picture.h"
#include "picture/save/clipboard_png.h"
#include "picture/show/modShowPicture.h"
#include "picture/show/picture_text.h"
#include "res/resource.h"
#include "ui/form/activity.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/clipboard.h"
#include "ui/form/picture_box.h"
#include "ui/form/text_field.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr wchar_t kPictureSource[] = L"クリップボード";

// A PNG of more pixels would keep the user waiting; programs that prefer it take the bitmap too.
constexpr int64_t kMostPngPixels = 4'000'000;

// The system offers each of them where a program has put the other.
bool OffersPicture() {
    return IsClipboardFormatAvailable(CF_BITMAP) || IsClipboardFormatAvailable(CF_DIB);
}

// The device-independent bitmap stands for the plain bitmap too, which the system makes of it when
// a program asks.
ClipboardResult CopyPicture(HWND owner, const Picture& picture) {
    std::vector<ClipboardItem> items;
    items.push_back({CF_DIB, MakeClipboardDIB(picture, FlatBackdrop(Values().general))});
    if (!items[0].block) return {ClipboardFailure::kRefused};
    if (int64_t{picture.Width()} * picture.Height() <= kMostPngPixels) {
        UniqueGlobal png = MakeClipboardPNG(picture);
        if (png) items.push_back({RegisterClipboardFormatW(L"PNG"), std::move(png)});
    }
    return PutOnClipboard(owner, std::move(items));
}

// What was found on the clipboard.
struct Taken {
    Picture picture = {};
    bool isNoPicture = false;
    std::wstring trouble = {};  // for the user; empty: none
};

Taken InTrouble(std::wstring text) {
    return {.trouble = std::move(text)};
}

// May take as long as the program that has put the picture there takes to make it.
Taken TakePicture(HWND owner) {
    constexpr wchar_t kTooLarge[] = L"クリップボード内の画像が大きすぎて、メモリが足りません。";
    const ClipboardSession clipboard(owner);
    if (!clipboard) return InTrouble(ClipboardInUseText(clipboard.Holder()));
    if (!OffersPicture()) return {.isNoPicture = true};
    SetLastError(ERROR_SUCCESS);
    const HANDLE block = GetClipboardData(CF_DIB);
    if (block == nullptr) {
        return InTrouble(WasMemoryShort() ? kTooLarge
                                          : L"クリップボード内の画像を、コピーしたプログラムから"
                                            L"受け取れませんでした。");
    }
    Taken taken;
    switch (ReadClipboardDIB(block, taken.picture)) {
        case ClipboardBlock::kPicture:
            return taken;
        case ClipboardBlock::kNoMemory:
            return InTrouble(kTooLarge);
        case ClipboardBlock::kNoPicture:
            break;
    }
    return InTrouble(L"クリップボード内の画像は、壊れているか、対応していない種類です。");
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

// While another program changes what is there, nothing may be offered for a moment: so the paste
// itself looks.
bool ClipboardCommands::TakesUselessPaste(const MSG& message) {
    const auto isDown = [](int key) { return GetKeyState(key) < 0; };
    if (message.message != WM_KEYDOWN || message.wParam != L'V' || !isDown(VK_CONTROL) ||
        isDown(VK_SHIFT) || isDown(VK_MENU) || IsReadUnderWay() || OffersPicture() ||
        !AreKeysOurs(message.hwnd)) {
        return false;
    }
    menuEditPaste_Click();
    return true;
}

void ClipboardCommands::menuEditCopy_Click() {
    const BusyPointer busy;
    const ClipboardResult result = CopyPicture(window_.Handle(), CurrentPicture());
    if (!result) TellCopyFailure(result);
}

void ClipboardCommands::menuEditPaste_Click() {
    const BusyPointer busy;
    std::optional<Taken> taken;
    {
        const frmMain::Reading reading(window_, L"クリップボードから受け取っています");
        taken = CallInBackground<Taken>([owner = window_.Handle()] { return TakePicture(owner); },
                                        [this] {
                                            window_.TellProgress(0, 0);
                                            return window_.Breathe();
                                        });
    }
    window_.CloseIfAsked();
    if (!taken || CurrentActivity().quitRequested) return;  // the user has stopped it
    if (taken->isNoPicture) return window_.ShowNote(L"クリップボードに画像がありません。");
    if (!taken->trouble.empty()) {
        ShowMessageBox(L"貼り付けできません。\r\n" + taken->trouble, MB_ICONEXCLAMATION);
        return;
    }
    SetCurrentPicture(std::move(taken->picture));
    if (!DisplayCurrentPicture(window_)) {
        // Neither the former picture nor this one's name may stand for what is not there.
        SetCurrentPicture({});
        window_.ClearPicture();
        window_.ShowForeignPicture({});
        ShowMessageBox(L"クリップボード内の画像 を表示できません。", MB_ICONEXCLAMATION);
        return;
    }
    window_.SetPictureSource({kPictureSource, {}});
    const std::wstring name = L"クリップボード内の画像";
    window_.SetPanelText(
        kPluginCountPanel,
        kTagShown + name + L" ( " + std::to_wstring(CurrentPicture().Header().bitCount) + L"bit )");
    window_.ShowForeignPicture(name + PictureInfoTail());
}

}  // namespace tessary
