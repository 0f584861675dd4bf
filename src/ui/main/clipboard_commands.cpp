#include "ui/main/clipboard_commands.h"

#include <ole2.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "app/settings/saver_format.h"
#include "picture/clipboard_picture.h"
#include "picture/current_picture.h"
#include "picture/modMemory.h"
#include "picture/save/clipboard_png.h"
#include "picture/show/modShowPicture.h"
#include "picture/show/picture_text.h"
#include "picture/show/read_to_show.h"
#include "picture/srgb_picture.h"
#include "res/resource.h"
#include "ui/form/activity.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/clipboard.h"
#include "ui/form/file_block.h"
#include "ui/form/picture_box.h"
#include "ui/form/text_field.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr wchar_t kPictureSource[] = L"クリップボード";
constexpr wchar_t kPastedPng[] = L"クリップボード.png";

// A PNG of more pixels would keep the user waiting; programs that prefer it take the bitmap too,
// but not all of them its alpha.
constexpr int64_t kMostPngPixels = 4'000'000;
constexpr int64_t kMostAlphaPngPixels = 16'000'000;

constexpr wchar_t kPngFormatName[] = L"PNG";
constexpr wchar_t kEffectFormatName[] = L"Preferred DropEffect";

// The names that programs put PNG files under.
std::vector<UINT> PngFormats() {
    return {RegisterClipboardFormatW(kPngFormatName), RegisterClipboardFormatW(L"image/png")};
}

bool IsOffered(UINT format) {
    return IsClipboardFormatAvailable(format) != FALSE;
}

// The system offers each bitmap where a program has put another.
bool OffersPicture() {
    return IsOffered(CF_BITMAP) || IsOffered(CF_DIB) ||
           std::ranges::any_of(PngFormats(), IsOffered);
}

bool OffersAnything() {
    return OffersPicture() || IsOffered(CF_HDROP);
}

// What file managers and everybody else take.
bool IsKnownEverywhere(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension == L"GIF" || SaverFormatOf(path) != nullptr;
}

// The device-independent bitmap stands for the plain bitmap too, which the system makes of it when
// a program asks. `file`: that has exactly this picture; empty: there is none.
ClipboardResult CopyPicture(HWND owner, const Picture& current, const std::wstring& file) {
    const Picture picture = SrgbPicture(current.Another());
    std::vector<ClipboardItem> items;
    const auto add = [&items](UINT format, UniqueGlobal block) {
        if (block) items.push_back({format, std::move(block)});
    };
    const int64_t pixels = int64_t{picture.Width()} * picture.Height();
    if (pixels <= (picture.HasAlpha() ? kMostAlphaPngPixels : kMostPngPixels)) {
        add(RegisterClipboardFormatW(kPngFormatName), MakeClipboardPNG(picture));
    }
    add(CF_DIBV5, MakeClipboardDIBWithAlpha(picture));
    UniqueGlobal flat = MakeClipboardDIB(picture, FlatBackdrop(Values().general));
    if (!flat) return {ClipboardFailure::kRefused};
    add(CF_DIB, std::move(flat));
    if (IsKnownEverywhere(file)) {
        add(CF_HDROP, MakeFileBlock({file}));
        add(RegisterClipboardFormatW(kEffectFormatName), MakeEffectBlock(DROPEFFECT_COPY));
    }
    return PutOnClipboard(owner, std::move(items));
}

// What was found on the clipboard.
struct Taken {
    OwnedBlock png = {};  // a file, still to be decoded
    Picture picture = {};
    std::vector<std::wstring> files = {};
    bool isNothing = false;
    std::wstring trouble = {};  // for the user; empty: none
};

Taken InTrouble(std::wstring text) {
    return {.trouble = std::move(text)};
}

constexpr wchar_t kTooLarge[] = L"クリップボード内の画像が大きすぎて、メモリが足りません。";
constexpr wchar_t kNotReceived[] =
    L"クリップボード内の画像を、コピーしたプログラムから受け取れませんでした。";
constexpr wchar_t kBroken[] = L"クリップボード内の画像は、壊れているか、対応していない種類です。";

OwnedBlock CopyOf(HGLOBAL block) {
    const void* const bytes = GlobalLock(block);
    if (bytes == nullptr) return {};
    OwnedBlock copy = FilledBlock(GlobalSize(block), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes, target.size());
    });
    GlobalUnlock(block);
    return copy;
}

// The bitmap that a program has put there comes first, and may have alpha; then the one that the
// system makes of it.
std::vector<UINT> BitmapFormats() {
    std::vector<UINT> formats;
    for (UINT format = EnumClipboardFormats(0); format != 0; format = EnumClipboardFormats(format))
        if (format == CF_DIB || format == CF_DIBV5) formats.push_back(format);
    if (formats.empty()) formats.push_back(CF_DIB);
    return formats;
}

Taken TakeBitmap() {
    Taken first;  // what was wrong with the program's own
    for (const UINT format : BitmapFormats()) {
        SetLastError(ERROR_SUCCESS);
        const HANDLE block = GetClipboardData(format);
        const bool wasMemoryShort = block == nullptr && WasMemoryShort();
        Taken taken;
        const ClipboardBlock read =
            block == nullptr ? ClipboardBlock::kNoPicture : ReadClipboardDIB(block, taken.picture);
        if (read == ClipboardBlock::kPicture) return taken;
        if (wasMemoryShort || read == ClipboardBlock::kNoMemory) return InTrouble(kTooLarge);
        if (first.trouble.empty()) first = InTrouble(block == nullptr ? kNotReceived : kBroken);
    }
    return first;
}

// May take as long as the program that has put the picture there takes to make it. `takesPng`: it
// was not tried in vain before.
Taken TakeFromClipboard(HWND owner, bool takesPng) {
    const ClipboardSession clipboard(owner);
    if (!clipboard) return InTrouble(ClipboardInUseText(clipboard.Holder()));
    for (const UINT format : PngFormats()) {
        if (!takesPng || !IsOffered(format)) continue;
        const HANDLE block = GetClipboardData(format);
        Taken taken{.png = block != nullptr ? CopyOf(block) : OwnedBlock()};
        if (taken.png.Get() != nullptr) return taken;
    }
    if (IsOffered(CF_BITMAP) || IsOffered(CF_DIB)) return TakeBitmap();
    if (OffersPicture()) return InTrouble(kBroken);
    if (!IsOffered(CF_HDROP)) return {.isNothing = true};
    const HANDLE files = GetClipboardData(CF_HDROP);
    return files != nullptr ? Taken{.files = PathsIn(static_cast<HDROP>(files))} : Taken{};
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
        menuEditPaste, {.run = [this] { menuEditPaste_Click(); }, .enabled = OffersAnything});
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
        isDown(VK_SHIFT) || isDown(VK_MENU) || IsReadUnderWay() || OffersAnything() ||
        !AreKeysOurs(message.hwnd)) {
        return false;
    }
    menuEditPaste_Click();
    return true;
}

void ClipboardCommands::menuEditCopy_Click() {
    const BusyPointer busy;
    const ClipboardResult result =
        CopyPicture(window_.Handle(), CurrentPicture(), window_.ShownFile());
    if (!result) TellCopyFailure(result);
}

void ClipboardCommands::menuEditPaste_Click() {
    const BusyPointer busy;
    std::optional<Taken> taken;
    {
        const frmMain::Reading reading(window_, L"クリップボードから受け取っています");
        const auto take = [&](bool takesPng) {
            return CallInBackground<Taken>(
                [owner = window_.Handle(), takesPng] { return TakeFromClipboard(owner, takesPng); },
                [this] {
                    window_.TellProgress(0, 0);
                    return window_.Breathe();
                });
        };
        taken = take(true);
        if (taken && taken->png.Get() != nullptr) {
            // A stranger's file, which goes the way of all others.
            ReadToShow read = ReadBlockToShow(taken->png.Get(), kPastedPng, window_);
            taken->picture = std::move(read.picture);
            if (read.file.stopped) {
                taken.reset();
            } else if (!taken->picture) {
                taken = take(false);
            }
        }
    }
    window_.CloseIfAsked();
    if (!taken || CurrentActivity().quitRequested) return;  // the user has stopped it
    if (taken->isNothing) return window_.ShowNote(L"クリップボードに画像がありません。");
    if (!taken->trouble.empty()) {
        ShowMessageBox(L"貼り付けできません。\r\n" + taken->trouble, MB_ICONEXCLAMATION);
        return;
    }
    if (!taken->picture) return window_.OpenLater(taken->files);
    ShowPasted(std::move(taken->picture));
}

void ClipboardCommands::ShowPasted(Picture picture) {
    SetCurrentPicture(std::move(picture));
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
