#include "picture/show/modShowPicture.h"

#include <set>

#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/bitmap_file.h"
#include "picture/current_picture.h"
#include "picture/modDIBToPicture.h"
#include "picture/show/fit.h"
#include "picture/show/picture_kernel.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// What came of the attempts to get a picture out of a file.
struct Attempt {
    ShownFile file;
    OwnedPicture picture;
    std::wstring failure;  // what to tell the user; empty when nobody claimed the file
};

std::wstring FailureText(const std::wstring& path, const std::wstring& reason) {
    return L"ファイル " + path + L" を表示できません。\r\n" + reason;
}

// The reason of a failed decode with its culprit: the plug-in's own file name.
std::wstring DecodeFailureText(const std::wstring& path, const clsSusie& plugin,
                               const RaisedError& error) {
    std::wstring reason = error.Description();
    if (!plugin.ErrorString().empty() && plugin.ErrorString() != reason) {
        reason += L"\r\n" + plugin.ErrorString();
    }
    return FailureText(path, reason + L"\r\nプラグイン: " + FileNameOf(plugin.DllName()));
}

// Offers the file to the plug-ins in trial order until one has decoded it. A plug-in that takes the
// file and then fails does not end the search: the next may do better.
Attempt OfferToPlugins(const std::wstring& path, PictureView& view) {
    CollectionSusie& plugins = SusieCollection();
    Attempt attempt;
    std::set<int32_t> asked;
    while (const int32_t index = plugins.FileSupported(path, asked)) {
        clsSusie& plugin = plugins.Item(index);
        const std::wstring name = FileNameOf(plugin.DllName());
        if (plugin.DllStyle() == kStyleArchive) return {{kFileArchive, name}, {}, {}};
        try {
            PicturePair pair;
            plugin.DecodePicture(
                DecodeTarget::kMemory, 0, [&](int, int) { return view.Breathe(); }, {}, &pair);
            return {{kFilePicture, name}, OwnedPicture(pair), {}};
        } catch (...) {
            const RaisedError error = CurrentError();
            // A read that was asked to stop has not failed.
            if (Values().quitRequested) return {};
            attempt.failure = DecodeFailureText(path, plugin, error);
            plugins.ForgetSuccess();
        }
    }
    return attempt;
}

Attempt DecodeByPlugins(const std::wstring& path, PictureView& view) {
    // An archive that is still bound would not be read again, whatever has become of its file.
    SusieCollection().UnloadFile();
    Attempt attempt = OfferToPlugins(path, view);
    // Nothing stays bound to a picture: its file may change on disk, and its plug-in may be freed.
    // An archive stays bound, for its members.
    if (attempt.file.kind != kFileArchive) SusieCollection().UnloadFile();
    return attempt;
}

Attempt ReadPicture(const std::wstring& path, PictureView& view) {
    switch (IsBITMAPFile(path, OnUnreadable::kTellUser)) {
        case BitmapCheck::kUnreadable:
            return {};  // already told
        case BitmapCheck::kYes: {
            PicturePair pair;
            if (ReadBitmapFile(path, pair, [&](int, int) { return view.Breathe(); })) {
                return {{kFileBitmap, {}}, OwnedPicture(pair), {}};
            }
            // A read that was asked to stop has not failed.
            if (Values().quitRequested) return {};
            break;  // damaged, or no bitmap after all: a plug-in may know better
        }
        case BitmapCheck::kNo:
            return DecodeByPlugins(path, view);
    }
    Attempt attempt = DecodeByPlugins(path, view);
    if (attempt.file.kind == kFileUnknown && attempt.failure.empty()) {
        attempt.failure =
            FailureText(path, L"ビットマップファイルが壊れているか、対応していない形式です。");
    }
    return attempt;
}

// Puts a pair into the view at its own size.
bool PutIntoView(const PicturePair& pair, SIZE size, PictureView& view) {
    const BlockLock info(pair.info);
    const BlockLock bits(pair.bits);
    const UniqueScreenDc screen(GetDC(nullptr));
    IPicture* picture = nullptr;
    if (!DIBToPicture(screen.Get(), {info.Address(), bits.Address()}, &picture)) return false;
    view.SetPicture(picture, size.cx, size.cy);
    picture->Release();
    return true;
}

bool PutResizedIntoView(const PicturePair& pair, SIZE size, PictureView& view) {
    const OwnedPicture resized = ResizePicture(pair, size.cx, size.cy);
    return resized && PutIntoView(resized.Get(), size, view);
}

}  // namespace

FileKind QueryFileKind(const std::wstring& path) {
    if (IsBITMAPFile(path, OnUnreadable::kStaySilent) == BitmapCheck::kYes) return kFileBitmap;
    CollectionSusie& plugins = SusieCollection();
    plugins.UnloadFile();  // what is bound would not be read again
    const int32_t index = plugins.FileSupported(path);
    if (index < 1) return kFileUnknown;
    const bool isArchive = plugins.Item(index).DllStyle() == kStyleArchive;
    plugins.UnloadFile();
    return isArchive ? kFileArchive : kFilePicture;
}

ShownFile ShowFile(const std::wstring& path, PictureView& view) {
    Attempt attempt = ReadPicture(path, view);
    if (!attempt.failure.empty()) ShowMessageBox(attempt.failure, MB_ICONEXCLAMATION);
    if (!IsPictureKind(attempt.file.kind)) return attempt.file;
    SetCurrentPicture(attempt.picture.Release());
    if (!DisplayCurrentPicture(view)) {
        // Neither the former picture nor this one's name may stand for what is not there.
        SetCurrentPicture({});
        view.ClearPicture();
        ShowMessageBox(FailureText(path, L"画像イメージを表示する際にエラーが発生しました"),
                       MB_ICONEXCLAMATION);
        return {};
    }
    return attempt.file;
}

bool DisplayCurrentPicture(PictureView& view) {
    const PicturePair& current = CurrentPicture();
    dib::BitmapInfoHeader header{};
    if (!GetPictureHeader(current, header)) {
        view.ClearPicture();
        return true;
    }
    const SIZE own{header.width, header.height < 0 ? -header.height : header.height};
    const SIZE wanted = FitIntoBox(own, SizeModeBox(Values().fixSizeValue, view.WorkAreaSize()));
    const bool fits = wanted.cx == own.cx && wanted.cy == own.cy;
    if (!fits && PutResizedIntoView(current, wanted, view)) return true;
    if (PutIntoView(current, own, view)) return true;
    // Too large beside the one that is still shown, or altogether: then as large as the screen.
    view.ClearPicture();
    return PutIntoView(current, own, view) ||
           PutResizedIntoView(current, FitIntoBox(own, view.WorkAreaSize()), view);
}

}  // namespace tessary
