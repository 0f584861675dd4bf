// What lists and the status bar say of a file: its kind's tag and the shown picture's size.
#pragma once

#include <string>

#include "picture/show/modShowPicture.h"

namespace tessary {

inline constexpr wchar_t kTagLoading[] = L"[読み込み中]";
inline constexpr wchar_t kTagShown[] = L"[表示中] ";
inline constexpr wchar_t kTagStopped[] = L"[中止] ";
inline constexpr wchar_t kTagNotFetched[] = L"[未取得] ";

// The tag of a kind, with the blank that follows it.
constexpr const wchar_t* KindTag(FileKind kind) {
    if (IsPictureKind(kind)) return L"[画像] ";
    return kind == kFileArchive ? L"[圧縮] " : L"[未知] ";
}

// Stands behind what is said of a picture of which only a part could be read.
inline constexpr wchar_t kDamagedMark[] = L"（損傷）";

// Size and depth of the current picture, as " ( 640×480 24bit )", and whether it is damaged; empty
// when there is none.
std::wstring PictureInfoTail();

}  // namespace tessary
