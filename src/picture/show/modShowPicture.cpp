#include "picture/show/modShowPicture.h"

#include <vector>

#include "app/base/handles.h"
#include "app/base/message_box.h"
#include "app/settings/modValue.h"
#include "picture/bitmap_file.h"
#include "picture/current_picture.h"
#include "picture/modDIBToPicture.h"
#include "picture/opaque_picture.h"
#include "picture/show/fit.h"
#include "picture/show/natural_order.h"
#include "picture/show/picture_kernel.h"
#include "picture/show/read_picture.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// Puts a pair into the view at its own size.
bool PutIntoView(const PicturePair& pair, SIZE size, PictureView& view) {
    const OwnedPicture opaque = OpaquePicture(pair);
    const PicturePair& shown = opaque ? opaque.Get() : pair;
    const BlockLock info(shown.info);
    const BlockLock bits(shown.bits);
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

// Makes what was read the current picture and shows it.
ShownFile Show(ReadResult result, PictureView& view, OnFailure onFailure) {
    if (IsPictureKind(result.file.kind)) {
        SetCurrentPicture(result.picture.Release(), result.file.damage);
        if (!DisplayCurrentPicture(view)) {
            // Neither the former picture nor this one's name may stand for what is not there.
            SetCurrentPicture({});
            view.ClearPicture();
            result.file = {.failure = FailureText(result.subject, kDrawingFailedText)};
        }
    }
    if (onFailure == OnFailure::kTellUser && !result.file.failure.empty()) {
        ShowMessageBox(result.file.failure, MB_ICONEXCLAMATION);
    }
    return result.file;
}

// Fills the list with the members of the archive that was just recognised.
void ListMembers(const std::wstring& path, MemberList& list) {
    clsSusie* const archive = SusieCollection().ArchiveToList(path);
    if (archive == nullptr) return;
    std::vector<ListedMember> members = archive->GetExpandFileList();
    SortNaturally(members);
    list.SetMembers(members);
}

}  // namespace

FileKind QueryFileKind(const std::wstring& path) {
    std::wstring failure;
    switch (IsBITMAPFile(path, failure)) {
        case BitmapCheck::kYes:
            return kFileBitmap;
        case BitmapCheck::kUnreadable:
            return kFileUnknown;
        case BitmapCheck::kNo:
            break;
    }
    CollectionSusie& plugins = SusieCollection();
    const int32_t index = plugins.QueryFile(path);
    if (index < 1) return kFileUnknown;
    return plugins.Item(index).DllStyle() == kStyleArchive ? kFileArchive : kFilePicture;
}

ShownFile ShowFile(const std::wstring& path, PictureView& view, MemberList& members,
                   OnFailure onFailure) {
    ReadResult result = ReadPictureFile(path, view);
    if (result.file.kind == kFileArchive) ListMembers(path, members);
    return Show(std::move(result), view, onFailure);
}

ShownFile ShowArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view,
                            OnFailure onFailure) {
    return Show(ReadArchiveMember(archivePath, position, view), view, onFailure);
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
